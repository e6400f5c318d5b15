#!/bin/bash
# Programs and libraries that end in every way: whether their counts are there, by LLTCOV_ENDS, and whether
# the status is that of the same program without coverage.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
enter_project "$work"
ulimit -c 0

cat > ends.c <<'C'
#define _GNU_SOURCE
#include <assert.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
void leave(int status);
static volatile int zero;
void mark(void)
{
    ++zero; /* COUNTED */
    --zero;
}
static int overflow(volatile char *above)
{
    volatile char here[4096];
    here[0] = above[0];
    return overflow(here) + here[0];
}
static void *crash(void *unused) { mark(); *(volatile int *)unused = 1; return 0; }
static void handle(int number) { _exit(number); }
static int is(const char *a, const char *b) { return strcmp(a, b) == 0; }
static void wait_and_leave(void) { int status; wait(&status); _exit(WIFSIGNALED(status) ? 50 + WTERMSIG(status) : WEXITSTATUS(status)); }
static void thread(void) { pthread_t id; pthread_create(&id, 0, crash, 0); pthread_join(id, 0); }
int main(int argc, char **argv)
{
    const char *end = argv[1];
    if (is(end, "thread")) thread();
    if (is(end, "child") || is(end, "child_crash")) {
        if (fork()) wait_and_leave();
        mark();
        is(end, "child") ? _exit(4) : abort();
    }
    mark();
    if (is(end, "exit")) exit(3);
    if (is(end, "_exit")) _exit(3);
    if (is(end, "_Exit")) _Exit(3);
    if (is(end, "quick_exit")) quick_exit(3);
    if (is(end, "library")) leave(3);
    if (is(end, "abort")) abort();
    if (is(end, "assert")) assert(zero);
    if (is(end, "null")) crash(0);
    if (is(end, "overflow")) overflow("");
    if (is(end, "vfork")) { if (vfork() == 0) _exit(5); wait_and_leave(); }
    if (is(end, "clone")) { if (syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0) == 0) _exit(5); wait_and_leave(); }
    if (is(end, "handled")) signal(SIGTERM, handle);
    if (is(end, "ignored")) signal(SIGTERM, SIG_IGN);
    if (is(end, "handled") || is(end, "ignored")) raise(SIGTERM);
    if (argc > 2) raise(atoi(argv[2]));
    return 7;
}
C
printf '%s\n' '#include <unistd.h>' 'void leave(int status) { _exit(status); }' > leave.c
# shellcheck disable=SC2317 # it is called by logged
build() { # build PREFIX TOOL...
    prefix=$1 && shift
    "$@" gcc -g -O0 -fPIC -c ends.c -o "${prefix}ends.o" && "$@" gcc -g -O0 -fPIC -c leave.c -o "${prefix}leave.o" &&
        "$@" gcc -shared "${prefix}leave.o" -o "lib${prefix}leave.so" &&
        "$@" gcc -pthread "${prefix}ends.o" -L. -Wl,-rpath,"$work" -l"${prefix}leave" -o "${prefix}shared" &&
        "$@" gcc -static -pthread "${prefix}ends.o" "${prefix}leave.o" -o "${prefix}static"
}
logged build plain_ env && logged build '' lltwrapper || exit 2

# END | counts of mark when LLTCOV_ENDS is: unset, "all", "calls" | more
while IFS='|' read -r end counts more; do
    for program in shared static; do
        # shellcheck disable=SC2086 # words
        { ./plain_$program "$end" $more; } > /dev/null 2>&1
        status=$?
        for ends in '' all calls; do
            # shellcheck disable=SC2086 # words
            { LLTCOV_ENDS=$ends LLTCOV_TEST=$program.$end.$ends ./$program "$end" $more; } > /dev/null 2>&1
            expect "$program $end ends='$ends': status" "$status" $?
        done
        # shellcheck disable=SC2086 # words
        printf "$program.$end.%s %s\n" '' ${counts%% *} all "$(cut -d ' ' -f 2 <<< "$counts")" calls "${counts##* }"
    done >> wanted
done <<'ROWS'
return|1 1 1
exit|1 1 1
_exit|0 1 1
_Exit|0 1 1
quick_exit|0 1 1
library|0 1 1
abort|0 1 0
assert|0 1 0
null|0 2 0
overflow|0 1 0
thread|0 1 0
child|0 1 1
child_crash|0 1 0
vfork|0 1 1
clone|0 1 1
handled|0 1 1
ignored|1 1 1
alarm|0 1 0|14
processor_time|0 1 0|24
terminate|0 1 0|15
user|0 1 0|10
real_time|0 1 0|40
kill|0 0 0|9
stopping_is_no_end|1 1 1|18
ROWS
lltcov tests "ends.c:$(grep -n COUNTED ends.c | cut -d : -f 1)" 2> messages | sed '1d; s/  */ /g' | sort > reached
expect_file "counts of each end" <(grep -v ' 0$' wanted | sort) reached
expect "a setting that there is not" "lltcov: LLTCOV_ENDS has no effect: set it to 'calls' or 'all' (error 22) 7" \
    "$(LLTCOV_ENDS=some ./shared return 2>&1) $?"
finish
