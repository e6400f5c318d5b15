# shellcheck shell=sh
# A project with objects as the instrumenting compiler driver leaves them, without that driver.
# Needs PROJECT (a fresh directory) and DRIVER (the link driver).

export qmr_current_prj_path="$PROJECT" qmr_coverage_stub_mold=1 isOverlappedCompile=0
export TimerPolicy=0 SignalPolicy=0 lltcovRootpath="$PROJECT/llt_result"
export LLT_DISABLE_SOCKET=1 LLT_DISABLE_USRCFG=1

area=$PROJECT/LLTTEMP/codemeasure
failures=0
cases=0

# le32 NUMBER: the number as four bytes, the least significant first
le32() {
    # shellcheck disable=SC2059
    printf "\\$(printf %03o $(($1 % 256)))\\$(printf %03o $(($1 / 256 % 256)))\\000\\000"
}

# records SYMBOL PROBES SOURCE OBJECT: what the archive step and the link driver read
records() {
    mkdir -p "$area/db/db$1" "$area/ini" "$area/obj/before" "$area/obj/after"
    {
        le32 0
        printf %s.c "$1"
        head -c $((254 - ${#1})) /dev/zero
        le32 1; le32 2; le32 0; le32 "$2"; le32 0
    } > "$area/db/db$1/.tab"
    printf 'gcc -g' > "$area/db/db$1/CompileCmd.txt"
    printf '[StubFiles]\nStubFilePath1=%s\nObjFilePath=%s\n' "$3" "$4" > "$area/ini/$1.ini"
    cp "$4" "$area/obj/before/$1"
}

# instrumented SYMBOL PROBES [OPTION...]: SYMBOL.o in the current directory from SYMBOL.c, which
# counts by hand through HIT(PROBE)
instrumented() {
    symbol=$1 probes=$2
    shift 2
    gcc -fPIC "$@" -DHIT\(i\)="(++g_QMRCovData_${symbol}[i])" \
        -include "$PROJECT/$symbol.h" -c "$symbol.c" -o "$symbol.o"
    records "$symbol" "$probes" "$PWD/$symbol.c" "$PWD/$symbol.o"
}

# source SYMBOL: SYMBOL.c from standard input
source_of() {
    cat > "$1.c"
    echo "extern unsigned int g_QMRCovData_$1[];" > "$PROJECT/$1.h"
}

# link NAME COMMAND...: as lltwrapper calls the driver
link() {
    target=$1
    shift
    "$DRIVER" -qmr_current_prj_path "$PROJECT" -projectname "$target" -qmr_coverage_stub_mold 1 \
        "$@" > "$PROJECT/link.out" 2> "$PROJECT/link.err"
}

# counts MODULE SYMBOL: the counts of every dump file of the module, one line per file, sorted
counts() {
    find "$PROJECT/llt_result" -name "$1.*.lltcov" -exec awk -v "symbol=$2.c" '
        wanted { print; wanted = 0 }
        $1 == "file" { wanted = $3 == symbol }' {} + 2> /dev/null | sort
}

# expect WHAT EXPECTED ACTUAL
expect() {
    cases=$((cases + 1))
    if [ "$2" != "$3" ]; then
        failures=$((failures + 1))
        printf 'FAILED %s\n  expected: %s\n  actual:   %s\n' "$1" "$2" "$3"
        cat "$PROJECT/link.err" 2> /dev/null
    fi
}

finish() {
    printf '%d passed, %d failed\n' $((cases - failures)) "$failures"
    exit $((failures > 0))
}
