#!/bin/bash
# A compiler, assembler or linker that is killed once, as for want of memory, while it works for coverage: make
# takes what is there then for whole, so it has coverage, and nothing says otherwise. One that refuses each time
# costs the coverage, with one line, and so does a work area that cannot be made.
# usage: hindered_drivers_test.sh PROGRAMS [GCC]
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
real=$(command -v "${1:-gcc}")
enter_project "$work"
mkdir bin
cat >bin/gcc <<END
#!/bin/sh
case " \$* " in
    *\$TROUBLE*) [ -e '$work/ended' ] || { \$ONCE; case \$END in self) kill -9 \$\$ ;; *) exit 1 ;; esac; } ;;
esac
exec '$real' "\$@"
END
chmod +x bin/gcc
echo 'int main(void) { return 0; }' >m.c

# build TROUBLE END ONCE TAKEN: compiles and links m.c with such a compiler, where a file has the place of this
# directory of the work area, and runs the program; what the drivers say of coverage, what is left in the
# temporary directory, and the counted runs of main
build() {
    rm -rf m.o m llt_result ended LLTTEMP m_exe
    [ -z "$4" ] || { mkdir -p m_exe/codemeasure && : >"m_exe/codemeasure/$4"; }
    export TROUBLE=$1 END=$2 ONCE=$3
    { lltwrapper "$work/bin/gcc" -c m.c -o m.o && lltwrapper "$work/bin/gcc" m.o -o m; } >log 2>said
    ./m || echo "status $?"
    grep -oE 'compiled without coverage: the compiler refuses|reports no coverage: [a-z]+ [a-z]+ [a-z]+' said
    ls "$TMPDIR"
    lltcov export --lcov 2>/dev/null | grep -c '^FNDA:1,main'
}
said=$work/said
mkdir temporary && export TMPDIR=$work/temporary
while IFS='|' read -r trouble end once taken outcome; do
    expect "$trouble $end, $once, $taken" "$outcome" "$(build "$trouble" "$end" "$once" "$taken" | paste -sd ' ')"
done <<'END'
nothing||||1
-specs=|self|touch ended||1
-specs=|exit|touch ended||1
liblltcov_rt.a|exit|touch ended||1
-specs=|exit|:||compiled without coverage: the compiler refuses 0
liblltcov_rt.a|exit|:||reports no coverage: it does not 0
nothing|||obj|reports no coverage: its work area 0
nothing|||db|reports no coverage: its stub could 0
END
finish
