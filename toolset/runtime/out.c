/* No stdio and no memory of its own: a dump may be asked for in a signal handler, in which both may
 * be in the middle of something. */
#include "out.h"

#include <errno.h>
#include <signal.h>
#include <unistd.h>

static void out_byte(struct out* out, char byte)
{
    if (out->used < out->size) {
        out->data[out->used] = byte;
    }
    ++out->used;
}

void out_text(struct out* out, const char* text)
{
    while (*text != '\0') {
        out_byte(out, *text++);
    }
}

void out_number(struct out* out, unsigned long long number)
{
    char digits[24];
    char* first = digits + sizeof digits - 1;
    *first = '\0';
    do {
        *--first = (char)('0' + number % 10);
        number /= 10;
    } while (number > 0);
    out_text(out, first);
}

void out_name(struct out* out, const char* name)
{
    for (; *name != '\0'; ++name) {
        out_byte(out, (unsigned char)*name < ' ' || *name == 127 ? '?' : *name);
    }
}

int out_end(struct out* out)
{
    out_byte(out, '\0');
    return out->used <= out->size;
}

/* A write that fails may raise a signal that ends programs. All signals are blocked in here, so it
 * waits: it is taken back, for the program has not written anything. */
static void take_back(int number)
{
    const int saved = errno;
    const struct timespec at_once = {0, 0};
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, number);
    sigtimedwait(&set, NULL, &at_once);
    errno = saved;
}

int write_all(int fd, const char* data, size_t size)
{
    while (size > 0) {
        const ssize_t written = write(fd, data, size);
        if (written > 0) {
            data += written;
            size -= (size_t)written;
        } else if (written == 0 || errno != EINTR) {
            take_back(errno == EFBIG ? SIGXFSZ : SIGPIPE);
            return 0;
        }
    }
    return 1;
}
