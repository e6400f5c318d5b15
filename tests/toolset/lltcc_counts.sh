#!/bin/sh
# LLTCC COMPILER...: a program is instrumented in each stub mode and run; the counters of its lines
# have to hold how often they ran. Set LLTCC_RUN to a machine emulator for a cross compiler.
set -u
lltcc=$1
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
cat >m.c <<'END'
int puts(const char*); int seldom(int), either(int); void many(void)
{ __asm__ volatile("");
}
int tail(int n)
{
    if (n > 2)
        return n * 2;
    return tail(n + 1);
}
int never(int x)
{
    return x + 1;
}
int main(int argc, char** argv)
{
    (void)argv, (void)seldom(9), argc += either(9999) - 4;
    for (int i = 0; i < 299 + argc; i++)
        many();
    return tail(argc - 1) == 6 ? 0 : never(argc);
}
int seldom(int n)
{
    do {
        if (n > 5000)
            puts("its address is the same in every round");
        many();
    } while (--n > 0);
    return n;
}
int either(int n)
{
    if (n > 5000)
        return 4;
    return 0;
}
END

failures=0
# Largest count of the probes of a line.
count_of() {
    awk -v line="$1" 'NR == FNR { for (i = 1; i <= NF; i++) count[i - 1] = $i; next }
        $1 == "probe" { n = split($3, lines, ",")
            for (i = 1; i <= n; i++) if (lines[i] == line && count[$2] > most) most = count[$2] }
        END { print most + 0 }' counts project/LLTTEMP/codemeasure/db/db*/probes.txt
}
expect() { # what, line, count
    found=$(count_of "$2")
    [ "$found" = "$3" ] && return
    failures=$((failures + 1))
    echo "FAILED: $1: line $2 counted $found, not $3"
}

# mode, type of the array, count as an expression, largest count, counter of one run
while read -r mode declaration read_count most; do
    for options in "-O0" "-O0 -fPIC" "-O1" "-O0 -g"; do
        rm -rf project counts
        "$lltcc" -qmr_current_prj_path "$work/project" -projectname LLTTEMP \
            -qmr_coverage_stub_mold "$mode" "$@" $options -fno-inline -c m.c -o m.o
        symbol=$(basename project/LLTTEMP/codemeasure/ini/*.ini .ini)
        probes=$(awk '$1 == "probe" { n = $2 + 1 } END { print n }' \
            "project/LLTTEMP/codemeasure/db/db$symbol/probes.txt")
        cat >stub.c <<END
#include <stdio.h>
#define A g_QMRCovData_$symbol
$(echo "$declaration" | sed "s/N/$probes/; s/_/ /g; s/ARRAY/A/");
__attribute__((destructor)) static void dump(void)
{
    for (int i = 0; i < $probes; i++)
        printf("%u ", (unsigned)($read_count));
}
END
        "$@" stub.c m.o -o m && ${LLTCC_RUN:-} ./m >counts || failures=$((failures + 1))
        many=$((most < 309 ? most : 309))
        expect "mode $mode $options" 1 "$many"
        expect "mode $mode $options" 18 $((most < 300 ? most : 300))
        expect "mode $mode $options" 7 1
        expect "mode $mode $options" 8 $((most < 3 ? most : 3))
        expect "mode $mode $options" 12 0
        expect "mode $mode $options" 19 1
        expect "mode $mode $options, moved out of a loop" 25 0
        expect "mode $mode $options, chosen without a jump" 34 0
    done
done <<'END'
0 unsigned_ARRAY[N/32+1] A[i/32]>>i%32&1 1
1 unsigned_ARRAY[N] A[i] 4294967295
2 unsigned_char_ARRAY[N] A[i] 255
8 extern_unsigned_ARRAY[] A[i] 4294967295
9 extern_unsigned_char_ARRAY[] A[i] 255
END
echo "$failures failures"
[ "$failures" = 0 ]
