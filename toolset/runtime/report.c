/* A test's output is compared with what is expected, so the runtime is silent; but counts that are
 * lost without a word would be reported as lines that did not run. */
#define _FILE_OFFSET_BITS 64 /* large numbers of files on 32-bit machines */

#include "report.h"

#include "out.h"

#include <errno.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

static struct stat at_start;
static int is_known;

void report_prepare(void)
{
    is_known = fstat(STDERR_FILENO, &at_start) == 0;
}

/* Empty for an unusual error. strerror is not safe in a signal handler. */
static const char* reason_of(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return "permission denied";
    case EROFS:
        return "the file system is read-only";
    case ENOSPC:
    case EDQUOT:
        return "no space left";
    case EFBIG:
        return "files may not grow so large";
    case EMFILE:
    case ENFILE:
        return "too many open files";
    case ENOENT:
    case ENOTDIR:
        return "the directory cannot be created";
    case ENAMETOOLONG:
        return "the path is too long";
    case ENOMEM:
        return "no memory is left";
    case ELOOP:
        return "a symbolic link is in the path, which a set-user-ID program does not follow";
    case EDESTADDRREQ:
        return "a set-user-ID program needs an absolute directory";
    default:
        return "";
    }
}

static const char* cure_of(int error)
{
    switch (error) {
    case ENOMEM:
        return "let the program have more memory";
    case EMFILE:
    case ENFILE:
        return "let the program open a file more (ulimit -n)";
    case EFBIG:
        return "let the program write larger files (ulimit -f)";
    case ELOOP:
    case EDESTADDRREQ: /* the environment is its caller's */
        return "link it with lltcovRootpath set to an absolute path without links";
    default:
        return "set LLTCOV_ROOT to a directory that the program can write";
    }
}

/* Standard error is what it was at the start. */
static int is_heard(void)
{
    struct stat now;
    return is_known && fstat(STDERR_FILENO, &now) == 0 && now.st_dev == at_start.st_dev &&
           now.st_ino == at_start.st_ino;
}

static void say(struct out* out, int error, const char* cure)
{
    out_text(out, " (error ");
    out_number(out, (unsigned long long)error);
    out_text(out, cure[0] != '\0' ? "); " : ")");
    out_text(out, cure);
    out_text(out, "\n");
    write_all(STDERR_FILENO, out->data, out->used < out->size ? out->used : out->size);
}

void report_lost(const char* module, const char* root, int error)
{
    static int is_reported;
    static char line[PATH_MAX + 500];
    if (is_reported || !is_heard()) {
        return;
    }
    is_reported = 1;
    struct out out = {line, sizeof line, 0};
    out_text(&out, "lltcov: coverage counts are lost: no dump file of ");
    out_name(&out, module);
    out_text(&out, " can be written in '");
    out_name(&out, root);
    out_text(&out, "': ");
    out_text(&out, reason_of(error));
    say(&out, error, cure_of(error));
}

void report_failure(const char* what, int error)
{
    static int is_reported;
    char line[200];
    if (is_reported || !is_heard()) {
        return;
    }
    is_reported = 1;
    struct out out = {line, sizeof line, 0};
    out_text(&out, "lltcov: ");
    out_text(&out, what);
    say(&out, error, "");
}
