/* A dump appears whole or not at all: it is written beside its place. The first dump of a module
 * is then linked to the first name that is free, which no other process or copy of the runtime
 * can take at the same instant; later dumps are renamed over it. */
#include "dump.h"

#include "out.h"

#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

/* Bytes of the module name in file names, and names that are tried. */
enum { FILE_NAME_LENGTH = 150, MAX_COUNTER = 1000000 };

/* Static, since a handler may run on a small stack; the lock guards it. */
static char buffered[1 << 16];

static unsigned long long count_of(const struct buffer* buffer, enum width width, unsigned int i)
{
    if (width == WIDTH_WORD) {
        return ((const volatile uint32_t*)buffer->data)[i];
    }
    if (width == WIDTH_BYTE) {
        return ((const volatile unsigned char*)buffer->data)[i];
    }
    return ((const volatile uint32_t*)buffer->data)[i / 32] >> (i % 32) & 1U;
}

static unsigned long long sum_of(const struct module* module)
{
    const enum width width = width_of_mode(module->mode);
    unsigned long long sum = 0;
    for (const struct buffer* buffer = module->first; buffer != NULL; buffer = buffer->next) {
        for (unsigned int i = 0; i < buffer->points; ++i) {
            sum += count_of(buffer, width, i);
        }
    }
    return sum;
}

/* Runs of equal counts as COUNT*TIMES. */
static void write_counts(struct out* out, const struct buffer* buffer, enum width width)
{
    const char* separator = "";
    unsigned long long next = buffer->points > 0 ? count_of(buffer, width, 0) : 0;
    for (unsigned int i = 0; i < buffer->points;) {
        const unsigned long long count = next;
        const unsigned int start = i;
        /* Each counter is read once: it may go on counting meanwhile. */
        while (++i < buffer->points && (next = count_of(buffer, width, i)) == count) {
        }
        out_text(out, separator);
        out_number(out, count);
        if (i - start > 1) {
            out_text(out, "*");
            out_number(out, i - start);
        }
        separator = " ";
    }
    out_text(out, "\n");
}

static void write_line(struct out* out, const char* key, const char* value)
{
    out_text(out, key);
    out_name(out, value != NULL ? value : "");
    out_text(out, "\n");
}

static void write_header(struct out* out, const struct module* module)
{
    out_text(out, "lltcov 1\n");
    write_line(out, "module ", module->name);
    write_line(out, "project ", module->project);
    write_line(out, "buid ", module->buid);
    out_text(out, "pid ");
    out_number(out, (unsigned long long)getpid());
    out_text(out, "\nmode ");
    out_number(out, (unsigned long long)module->mode);
    write_line(out, "\narea ", module->area);
}

static int write_content(int fd, const struct module* module)
{
    struct out out = {buffered, sizeof buffered, 0, fd, 0};
    const enum width width = width_of_mode(module->mode);
    write_header(&out, module);
    for (const struct buffer* buffer = module->first; buffer != NULL; buffer = buffer->next) {
        out_text(&out, "file ");
        out_number(&out, buffer->index);
        out_text(&out, " ");
        out_name(&out, buffer->name);
        out_text(&out, " ");
        out_number(&out, buffer->points);
        out_text(&out, " ");
        out_number(&out, width);
        out_text(&out, "\n");
        write_counts(&out, buffer, width);
    }
    out_text(&out, "end\n");
    out_flush(&out);
    return !out.failed;
}

/* ROOT/START MODULE.PID.NUMBER END */
static int make_path(char* path, const struct module* module, const char* start,
                     unsigned long long number, const char* end)
{
    static const char KEPT[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.+";
    char name[FILE_NAME_LENGTH + 1];
    size_t length = 0;
    for (; module->name[length] != '\0' && length < FILE_NAME_LENGTH; ++length) {
        name[length] = strchr(KEPT, module->name[length]) != NULL ? module->name[length] : '_';
    }
    name[length] = '\0';
    struct out out = {path, PATH_MAX, 0, -1, 0};
    out_text(&out, module->root);
    out_text(&out, "/");
    out_text(&out, start);
    out_text(&out, name);
    out_text(&out, ".");
    out_number(&out, (unsigned long long)getpid());
    out_text(&out, ".");
    out_number(&out, number);
    out_text(&out, end);
    return out_end(&out);
}

/* Creates the directory of the file with its parents. */
static void make_directories(const char* file)
{
    static char path[PATH_MAX];
    for (size_t i = 0; file[i] != '\0'; ++i) {
        if (i > 0 && file[i] == '/') {
            path[i] = '\0';
            mkdir(path, 0777);
        }
        path[i] = file[i];
    }
}

/* Opened with a number above those of the standard streams, which the program may have closed. */
static int open_beside(const char* path)
{
    int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0 && errno == ENOENT) {
        make_directories(path);
        fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    }
    if (fd >= 0 && fd < 3) {
        const int higher = fcntl(fd, F_DUPFD_CLOEXEC, 3);
        close(fd);
        fd = higher;
    }
    return fd;
}

/* Moves the file beside to its place; 1, or 0 with errno set. */
static int publish(const char* beside, struct module* module)
{
    if (module->file[0] != '\0') {
        return rename(beside, module->file) == 0;
    }
    static char path[PATH_MAX];
    for (unsigned long long counter = 0; counter < MAX_COUNTER; ++counter) {
        if (!make_path(path, module, "", counter, ".lltcov")) {
            errno = ENAMETOOLONG;
            return 0;
        }
        const int linked = link(beside, path) == 0;
        if (!linked && errno == EEXIST) {
            continue;
        }
        if (linked) {
            unlink(beside);
        } else if (access(path, F_OK) == 0) {
            continue; /* a file system without hard links */
        } else if (rename(beside, path) != 0) {
            return 0;
        }
        memcpy(module->file, path, sizeof path);
        return 1;
    }
    return 0;
}

static void report_failure(const char* path, int error)
{
    static int is_reported;
    if (!is_reported) {
        static char line[PATH_MAX + 200];
        struct out out = {line, sizeof line, 0, STDERR_FILENO, 0};
        out_text(&out, "lltcov: coverage counts are lost, '");
        out_text(&out, path);
        out_text(&out, "' is not written (error ");
        out_number(&out, (unsigned long long)error);
        out_text(&out, "); make the directory writable or set LLTCOV_ROOT to another one\n");
        out_flush(&out);
    }
    is_reported = 1;
}

int dump_module(struct module* module)
{
    static char beside[PATH_MAX];
    const unsigned long long sum = sum_of(module);
    if (sum == module->dumped_sum) {
        return 1;
    }
    /* The address tells apart the runtime copies of several libraries in one process. */
    int done = make_path(beside, module, ".", (unsigned long long)(uintptr_t)beside, ".tmp");
    int error = ENAMETOOLONG;
    if (done) {
        const int fd = open_beside(beside);
        done = fd >= 0 && write_content(fd, module);
        error = errno;
        done = fd >= 0 && close(fd) == 0 && done;
        done = done && publish(beside, module);
        error = done ? 0 : errno != 0 ? errno : error;
        if (!done && fd >= 0) {
            unlink(beside);
        }
    }
    if (done) {
        module->dumped_sum = sum;
    } else {
        report_failure(beside, error);
    }
    return done;
}

int dump_all_modules(void)
{
    const int saved = errno;
    int done = 1;
    for (struct module* module = registry_modules; module != NULL; module = module->next) {
        done = dump_module(module) && done;
    }
    errno = saved;
    return done;
}
