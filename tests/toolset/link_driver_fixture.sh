# shellcheck shell=bash
# shellcheck disable=SC2154 # work is that of the sourcing script
# A project with objects as the instrumenting compiler driver leaves them, without that driver.
# To be sourced after common.sh; needs `driver`, the link driver.

export qmr_current_prj_path="$work" qmr_coverage_stub_mold=1 isOverlappedCompile=0
export TimerPolicy=0 SignalPolicy=0 lltcovRootpath="$work/llt_result"
export LLT_DISABLE_SOCKET=1 LLT_DISABLE_USRCFG=1

area=$work/LLTTEMP/codemeasure

# le32 NUMBER: the number as four bytes, the least significant first
le32() {
    # shellcheck disable=SC2059
    printf "\\$(printf %03o $(($1 % 256)))\\$(printf %03o $(($1 / 256 % 256)))\\000\\000"
}

# records SYMBOL COUNTERS SOURCE OBJECT: what the archive step and the link driver read
records() {
    mkdir -p "$area/db/db$1" "$area/ini" "$area/obj/before" "$area/obj/after"
    {
        le32 0
        printf %s.c "$1"
        head -c $((254 - ${#1})) /dev/zero
        le32 1; le32 2; le32 0; le32 $((2 * $2)); le32 0
    } > "$area/db/db$1/.tab"
    printf 'gcc -g' > "$area/db/db$1/CompileCmd.txt"
    printf '[StubFiles]\nStubFilePath1=%s\nObjFilePath=%s\n' "$3" "$4" > "$area/ini/$1.ini"
    cp "$4" "$area/obj/before/$1"
}

# instrumented SYMBOL COUNTERS [OPTION...]: SYMBOL.o in the current directory from SYMBOL.c, which
# counts by hand through HIT(COUNTER)
instrumented() {
    symbol=$1 counters=$2
    shift 2
    gcc -fPIC "$@" -DHIT\(i\)="(++((unsigned long long *)g_QMRCovData_$symbol)[i])" \
        -include "$work/$symbol.h" -c "$symbol.c" -o "$symbol.o"
    records "$symbol" "$counters" "$PWD/$symbol.c" "$PWD/$symbol.o"
}

# source SYMBOL: SYMBOL.c from standard input
source_of() {
    cat > "$1.c"
    echo "extern unsigned int g_QMRCovData_$1[];" > "$work/$1.h"
}

# link NAME COMMAND...: as lltwrapper calls the driver
link() {
    target=$1
    shift
    "$driver" -qmr_current_prj_path "$work" -projectname "$target" -qmr_coverage_stub_mold 1 \
        "$@" > "$work/link.out" 2> "$work/link.err"
}

# counts MODULE SYMBOL: the counts in every dump file of the module, one line per file, sorted;
# N*TIMES stands for equal counts
counts() {
    find "$work/llt_result" -name "$1.*.lltcov" 2> /dev/null | while read -r file; do
        place=$(sed '/^counts /q' "$file" | awk -v "symbol=$2.c" '
            { header += length($0) + 1 }
            $1 == "file" && $3 == symbol { start = bytes; size = $4 }
            $1 == "file" { bytes += $4 }
            END { print header + 8 + start + 1, size + 0 }')
        tail -c "+${place% *}" "$file" | head -c "${place#* }" | od -An -v -w8 -tu8 | awk '
            NR > 1 && $1 != last { printf "%s%s ", last, (times > 1 ? "*" times : ""); times = 0 }
            { last = $1; ++times }
            END { if (NR > 0) print last (times > 1 ? "*" times : "") }'
    done | sort
}
