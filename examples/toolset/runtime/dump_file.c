/* A dump is written beside its place. The first one of a module is then linked to the first name
 * that is free, which no other process or copy of the runtime can take at the same instant; later
 * ones are renamed over it. */
#include "dump_file.h"

#include "out.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

/* Bytes of the names in a file name, and how many names are tried. */
enum { MODULE_LENGTH = 150, BUID_LENGTH = 40, MAX_COUNTER = 1000000 };

/* Static, since a handler may run on a small stack; the lock guards it. */
static char beside[PATH_MAX];

/* At most `length` bytes of the name, with only such as need no care in a file name. */
static void out_plain(struct out* out, const char* name, size_t length)
{
    static const char KEPT[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.+";
    for (size_t i = 0; name[i] != '\0' && i < length; ++i) {
        const char plain[] = {strchr(KEPT, name[i]) != NULL ? name[i] : '_', '\0'};
        out_text(out, plain);
    }
}

/* ROOT/START MODULE.PID.BUID.COUNTER END; 0, with errno set, when that is too long or there is no
 * root. */
static int make_path(char* path, const struct module* module, const char* start,
                     unsigned long long counter, const char* end)
{
    struct out out = {path, PATH_MAX, 0, -1, 0};
    out_text(&out, module->root);
    out_text(&out, "/");
    out_text(&out, start);
    out_plain(&out, module->name, MODULE_LENGTH);
    out_text(&out, ".");
    out_number(&out, (unsigned long long)getpid());
    out_text(&out, ".");
    out_plain(&out, module->buid != NULL ? module->buid : "", BUID_LENGTH);
    out_text(&out, ".");
    out_number(&out, counter);
    out_text(&out, end);
    errno = ENAMETOOLONG;
    return out_end(&out) && module->root[0] != '\0';
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

/* A descriptor above those of the standard streams, which the program may have closed. */
static int create(const char* path)
{
    int fd = open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0 && fd < 3) {
        const int higher = fcntl(fd, F_DUPFD_CLOEXEC, 3);
        close(fd);
        fd = higher;
    }
    return fd;
}

int dump_file_open(const struct module* module)
{
    /* A process of the same id may have been killed here, or work in another container. */
    for (unsigned long long i = 0; i < MAX_COUNTER && make_path(beside, module, ".", i, ".tmp");
         ++i) {
        int fd = create(beside);
        if (fd < 0 && errno == ENOENT) {
            make_directories(beside);
            fd = create(beside);
        }
        if (fd >= 0 || errno != EEXIST) {
            return fd;
        }
    }
    return -1;
}

int dump_file_publish(struct module* module)
{
    if (module->file[0] != '\0') {
        return rename(beside, module->file) == 0;
    }
    static char path[PATH_MAX];
    for (unsigned long long i = 0; i < MAX_COUNTER && make_path(path, module, "", i, ".lltcov");
         ++i) {
        const int is_linked = link(beside, path) == 0;
        if (!is_linked && errno == EEXIST) {
            continue;
        }
        if (is_linked) {
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

void dump_file_discard(void)
{
    unlink(beside);
}
