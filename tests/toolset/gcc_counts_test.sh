#!/bin/bash
# Code and compiler options on which counting stumbles easily: each row is built and run with
# `gcc --coverage` and through the tool set, and gcov and lltcov have to say the same of it.
# usage: gcc_counts_test.sh PROGRAMS [NAME]     PROGRAMS: the folder of lltwrapper, lltcc and lltcov
# Exit status 77: jq is missing.
set -uo pipefail
unset CDPATH MAKEFLAGS CC CXX AR CFLAGS CXXFLAGS CPPFLAGS LDFLAGS "${!qmr_@}" "${!llt@}" "${!LLT@}"
export LC_ALL=C CCACHE_DISABLE=1
tests=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck disable=SC2034 # for against_gcov.sh
toolset=$tests/../../toolset
work=$(mktemp -d /tmp/cases.XXXXXX)
trap 'rm -rf "$work"' EXIT
PATH=$(cd "$1" && pwd):$PATH
only=${2:-}
# shellcheck source=tests/toolset/against_gcov.sh
. "$tests/against_gcov.sh"
command -v jq >/dev/null || exit 77

# Name ("x86:" in front: for that machine only), commands that build and run in the folder "cases".
cases() {
    cat <<'END'
statements          | $CC -c statements.c && $CC statements.o -o prog && ./prog
statements -O1      | $CC -O1 -c statements.c && $CC statements.o -o prog && ./prog
statements -O2      | $CC -O2 -g -c statements.c && $CC statements.o -o prog && ./prog
statements -O3      | $CC -O3 -funroll-loops -c statements.c && $CC statements.o -o prog && ./prog
statements -Os      | $CC -Os -fPIE -c statements.c && $CC -pie statements.o -o prog && ./prog
split debug data    | $CC -O2 -g -gsplit-dwarf -c statements.c && $CC -g -gsplit-dwarf statements.o -o prog && ./prog
split, no optimiser | $CC -g -gsplit-dwarf -c statements.c && $CC -gsplit-dwarf statements.o -o prog && ./prog
strict debug data   | $CC -O2 -g -gstrict-dwarf -c statements.c && $CC statements.o -o prog && ./prog
names in debug data | $CC -g -ggnu-pubnames -c statements.c && $CC statements.o -o prog && ./prog
old debug data      | $CC -g -gdwarf-4 -fdebug-types-section -c statements.c && $CC statements.o -o prog && ./prog
precompiled C       | $CC -x c-header all.h -o all.h.gch && $CC -include all.h -c header.c && $CC header.o -o prog && ./prog
precompiled -O2     | $CC -O2 -g all.h && $CC -O2 -g -include all.h -c header.c && $CC header.o -o prog && ./prog
precompiled C++     | $CXX -x c++-header all.h -o all.h.gch && $CXX -include all.h -c throws.cpp && $CXX throws.o -o prog && ./prog
exceptions          | $CXX -c throws.cpp && $CXX throws.o -o prog && ./prog
exceptions -O2      | $CXX -O2 -g -c throws.cpp && $CXX throws.o -o prog && ./prog
jumps               | $CC -c jumps.c && $CC jumps.o -o prog && ./prog
jumps -O2           | $CC -O2 -c jumps.c && $CC jumps.o -o prog && ./prog
threads             | $CC -O2 -pthread -c threads.c && $CC -pthread threads.o -o prog && ./prog
static of one name  | $CC -c one.c two.c && $CC one.o two.o -o prog && ./prog
sections            | $CC -O2 -fdata-sections -ffunction-sections -c one.c && $CC -O2 -fdata-sections -ffunction-sections -c two.c && $CC -Wl,--gc-sections one.o two.o -o prog && ./prog
sections C++        | $CXX -fdata-sections -ffunction-sections -c throws.cpp && $CXX -Wl,--gc-sections throws.o -o prog && ./prog
compile and link    | $CC -O2 one.c two.c -o prog && ./prog
partial link        | $CC -c one.c && $CC -c two.c && ld -r one.o two.o -o both.o && $CC both.o -o prog && ./prog
archive             | $CC -O2 -c one.c && $CC -O2 -c two.c && $AR rcs libtwo.a two.o && $CC one.o -L. -ltwo -o prog && ./prog
shared library      | $CC -fPIC -c two.c && $CC -shared two.o -o libtwo.so && $CC -c one.c && $CC one.o -L. -ltwo -Wl,-rpath,$PWD -o prog && ./prog
static program      | $CC -O2 -c statements.c && $CC -static statements.o -o prog && ./prog
x86:intel syntax    | $CC -O2 -masm=intel -c statements.c && $CC statements.o -o prog && ./prog
x86:large model     | $CC -O1 -mcmodel=large -c statements.c && $CC statements.o -o prog && ./prog
x86:vectors         | $CC -O3 -mavx2 -c statements.c && $CC statements.o -o prog && ./prog
address sanitizer   | $CC -fsanitize=address -O1 -g -c statements.c && $CC -fsanitize=address statements.o -o prog && ./prog
pipe                | $CC -pipe -O2 -c statements.c && $CC statements.o -o prog && ./prog
saved temporaries   | $CC -save-temps -O2 -c statements.c && $CC statements.o -o prog && ./prog
response file       | echo -O2 -g statements.c -o s.o >args && $CC -c @args && $CC s.o -o prog && ./prog
other folder        | mkdir out && cd out && $CC -O2 -c ../statements.c -o s.o && $CC s.o -o ../prog && ../prog
without a suffix    | $CC -x c -c plain -o plain.o && $CC plain.o -o prog && ./prog
link-time optimiser | $CC -O2 -flto -ffat-lto-objects -c statements.c && $CC -fno-lto statements.o -o prog && ./prog
atomic counts       | $CC -O2 -fprofile-update=atomic -c statements.c && $CC statements.o -o prog && ./prog
END
}

make_sources() {
    mkdir -p "$1"
    cd "$1" || exit
    cat >statements.c <<'C'
#include <stdlib.h>
#define COLOURS(X) X(red, 3) X(green, 0) X(blue, 5)
#define CASE(name, times) \
    case name:            \
        return times;
#define NAME(name, times) name,
enum colour { COLOURS(NAME) last };
static int times_of(enum colour colour)
{
    switch (colour) {
        COLOURS(CASE)
    default:
        return -1;
    }
}
#define FUNCTION(name)                  \
    static int twice_##name(int x)      \
    {                                   \
        return x > 100 ? 0 : 2 * x;     \
    }
FUNCTION(called)
FUNCTION(often)
FUNCTION(never)
static int digits(unsigned value)
{
    int count = 0;
    for (;;) {
        count++;
        value /= 10;
        if (!value)
            break;
    }
    return count;
}
static int kind(int c)
{
    int weight = 0;
    switch (c) {
    case 'a':
    case 'b':
        weight = 1;
        /* fall through */
    case 'c':
        weight += 2;
        break;
    case 'd':
        return 9;
    default:
        weight = 7;
    }
    return weight;
}
static long spin(const int* table, int size)
{
    long sum = 0;
    for (int round = 0; round < 1000; round++)
        for (int i = 0; i < size; i++)
            sum += table[i] > 2 && table[i] < 7 ? table[i] : 1;
    do
        sum--;
    while (sum % 16);
    return sum;
}
int main(int argc, char** argv)
{
    int table[8] = {0, 1, 2, 3, 4, 5, 6, argc};
    int sum = argv == NULL;
    for (const char* c = "abcdzz"; *c; c++)
        sum += kind(*c);
    for (enum colour each = red; each < last; each++)
        sum += times_of(each);
    for (int i = 0; i < 200; i++)
        sum += twice_often(i);
    if (argc > 5)
        sum += twice_never(argc);
    sum += twice_called(argc) + digits(12345) + digits(7);
    return sum == 10147 && spin(table, 8) == 21984 ? 0 : sum % 100 + 1;
}
C
    cat >all.h <<'C'
#ifndef ALL_H
#define ALL_H
#include <stdio.h>
#include <string.h>
static inline int length_of(const char* text)
{
    return text ? (int)strlen(text) : -1;
}
#endif
C
    cat >header.c <<'C'
int main(void)
{
    return length_of("four") == 4 && length_of(NULL) == -1 ? 0 : 1;
}
C
    cat >throws.cpp <<'C'
#include "all.h"
#include <map>
#include <stdexcept>
#include <string>
#include <vector>
namespace
{
struct Guard {
    int& count;
    ~Guard() { count++; }
};
template <typename Value> Value larger(Value a, Value b)
{
    if (a > b)
        return a;
    return b;
}
int parse(const std::string& text, int& guards)
{
    Guard guard{guards};
    if (text.empty())
        throw std::invalid_argument("empty");
    int value = 0;
    for (char c : text) {
        if (c < '0' || c > '9')
            throw std::runtime_error("no digit");
        value = value * 10 + (c - '0');
    }
    return value;
}
} // namespace
int main()
{
    std::map<std::string, int> found;
    int guards = 0, failures = 0;
    for (const char* text : {"12", "", "7x", "9"}) {
        try {
            found[text] = parse(text, guards);
        } catch (const std::invalid_argument&) {
            failures += 1;
        } catch (const std::exception&) {
            failures += 10;
        }
    }
    auto sum = [&found](int start) {
        for (const auto& entry : found)
            start += entry.second;
        return start;
    };
    bool right = larger(1, 2) == 2 && larger(2.5, 1.5) == 2.5 && larger<long>(3, 4) == 4;
    return right && guards == 4 && failures == 11 && sum(0) == 21 && length_of("a") == 1 ? 0 : 1;
}
C
    cat >jumps.c <<'C'
#include <setjmp.h>
static jmp_buf place;
static int depth(int n)
{
    if (n == 0)
        longjmp(place, 3);
    return depth(n - 1) + 1;
}
static int run(const char* program)
{
    static void* const targets[] = {&&stop, &&add, &&twice};
    int value = 0;
    goto* targets[*program - '0'];
add:
    value++;
    goto* targets[*++program - '0'];
twice:
    value *= 2;
    goto* targets[*++program - '0'];
stop:
    return value;
}
int main(void)
{
    volatile int rounds = 0;
    int from = setjmp(place);
    rounds++;
    if (from == 0)
        return depth(4);
    return from == 3 && rounds == 2 && run("1121220") == 20 && run("0") == 0 ? 0 : 1;
}
C
    cat >threads.c <<'C'
#include <pthread.h>
#include <stddef.h>
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static long total;
static void add(long amount)
{
    pthread_mutex_lock(&lock);
    total += amount;
    pthread_mutex_unlock(&lock);
}
static void* work(void* argument)
{
    for (int i = 0; i < 200000; i++)
        if (i % 2)
            add(*(int*)argument);
    return NULL;
}
int main(void)
{
    pthread_t threads[4];
    int one = 1;
    for (int i = 0; i < 4; i++)
        pthread_create(&threads[i], NULL, work, &one);
    for (int i = 0; i < 4; i++)
        pthread_join(threads[i], NULL);
    return total == 400000 ? 0 : 1;
}
C
    cat >one.c <<'C'
int other(int x);
static int helper(int x)
{
    return x > 3 ? x : 3;
}
int unused(int x)
{
    return helper(x);
}
int main(void)
{
    int sum = 0;
    for (int i = 0; i < 10; i++)
        sum += helper(i) + other(i);
    return sum == 51 + 25 ? 0 : 1;
}
C
    cat >two.c <<'C'
static int helper(int x)
{
    if (x % 2)
        return x;
    return 0;
}
int never(int x)
{
    return helper(x);
}
int other(int x)
{
    return helper(x);
}
C
    printf 'int main(void)\n{\n    return 0;\n}\n' >plain
}

failed=()
check() { # check NAME COMMANDS
    : >"$work/result"
    if with_gcov "$work/cases" "$2" && with_lltcov "$work/cases" "$2" &&
        differing "$work/gcov.rows" "$work/lltcov.rows" >"$work/result"; then
        echo "$1: $(tail -n 1 "$work/result")"
        return
    fi
    echo "FAILED: $1"
    cat "$work/result"
    failed+=("$1")
}

# The counters' room must stay small: bytes of bss in the program just built, beside those of none.
check_room() {
    local plain
    plain=$(cd "$work/cases" && gcc -O2 statements.c -o "$work/plain" && bss_of "$work/plain")
    with_lltcov "$work/cases" '$CC -O2 -c statements.c && $CC statements.o -o prog && ./prog'
    [ $(($(bss_of "$work/tree/prog") - plain)) -lt 16384 ] && return
    echo "FAILED: bss: $(bss_of "$work/tree/prog") bytes, not $plain"
    failed+=(bss)
}

bss_of() { size "$1" | awk 'NR == 2 { print $3 }'; }

(make_sources "$work/cases") || exit
while IFS='|' read -r name commands; do
    name=${name%"${name##*[! ]}"}
    [ -z "$only" ] || [ "$name" = "$only" ] || continue
    [ "$name" = "${name#x86:}" ] || [ "$(uname -m)" = x86_64 ] || continue
    check "$name" "$commands"
done < <(cases)
[ -n "$only" ] || check_room
[ ${#failed[@]} = 0 ]
