/* Stands in for any tool: appends the words of its call in brackets, and other finds in braces, to
 * the file RECORDER_LOG; ends with the status RECORDER_END, or of the signal -RECORDER_END. */
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(int argc, char** argv)
{
    const char* name = strrchr(argv[0], '/') ? strrchr(argv[0], '/') + 1 : argv[0];
    const char *size = getenv("TUSK_innerenv_m32m64"), *inner = getenv("lltwrapper_cfg_inner");
    const int status = getenv("RECORDER_END") ? atoi(getenv("RECORDER_END")) : 0;
    const int closed = fcntl(0, F_GETFD) < 0 || fcntl(1, F_GETFD) < 0 || fcntl(2, F_GETFD) < 0;
    const int deaf = signal(SIGPIPE, SIG_IGN) == SIG_IGN;
    FILE* log = fopen(getenv("RECORDER_LOG"), "a");
    fprintf(log, "[%s", name);
    for (int i = 1; i < argc; ++i) {
        fputs("][", log);
        for (const char* c = argv[i]; *c; ++c) {
            fprintf(log, strchr("[]{}\\\n", *c) ? "\\%c" : "%c", *c);
        }
    }
    fprintf(log, "]%s%s%s", size ? "{m32m64=" : "", size ? size : "", size ? "}" : "");
    fprintf(log, "%s%s%s", inner ? "{inner=" : "", inner ? inner : "", inner ? "}" : "");
    fprintf(log, "%s%s\n", closed ? "{closed descriptor}" : "", deaf ? "{SIGPIPE ignored}" : "");
    fclose(log);
    printf("%s ran\n", name);
    fflush(stdout);
    signal(SIGPIPE, SIG_DFL);
    if (status < 0) {
        signal(-status, SIG_DFL); // a sanitizer catches some
        raise(-status);
    }
    return status;
}
