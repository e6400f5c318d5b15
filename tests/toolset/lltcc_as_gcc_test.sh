#!/bin/bash
# Each command of the table runs plainly and through lltcc, in two copies of one directory. Exit
# status, names of the files left, dependency files and diagnostics have to be the same; the first
# column says how many sources have to be instrumented.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"

make_sources() {
    mkdir -p "$1/sub/out" && cd "$1" || exit 1
    echo '#define THREE 3' >h.h
    printf '#include "h.h"\nint a(int x)\n{\n    if (x > THREE)\n        return 1;\n    return 0;\n}\n' >a.c
    printf 'int b(void)\n{\n    int unused;\n    return 2;\n}\n' >'sub/b c.c'
    printf 'int broken(void)\n{\n    return x;\n}\n' >broken.c
    printf '#include "h.h"\nint data = THREE;\n' >data.c
    printf 'struct S { ~S(); };\nvoid f();\nvoid g()\n{\n    S s;\n    f();\n}\n' >cc.cpp
    echo '.globl s' >s.s
    printf 'extern int y;\nint z(void)\n{\n    __asm__("bad instruction");\n    return 1;\n}\n' >badasm.c
    echo 'struct P { int p; };' >p.h
    $compiler -c p.h -o p.h.gch
    echo '-O2 -DX="a b" -c a.c -o sub/out/r.o' >args.rsp
}

# Stands for a compiler cache: nothing of it may be in the way of instrumentation.
mkdir "$work/bin"
printf '#!/bin/sh\nexec "$@"\n' >"$work/bin/ccache"
chmod +x "$work/bin/ccache"
PATH=$work/bin:$PATH

# Of the diagnostics only names of temporary files may differ.
diagnostics() {
    sed -e '/^lltcc: /d' -e 's,/tmp/[^ :]*\.s:,TEMP:,' -e 's,{standard input}:,TEMP:,' \
        -e 's,TEMP:[0-9]*:,TEMP:,' "$1"
}

check() {
    records=$1
    shift
    rm -rf "$work/plain" "$work/cover" "$work/project"
    (make_sources "$work/plain")
    (make_sources "$work/cover")
    (cd "$work/plain" && eval "$compiler $*" 2>"$work/plain.err")
    plain=$?
    (cd "$work/cover" && eval "lltcc -qmr_current_prj_path '$work/project' -projectname LLTTEMP \
        -qmr_coverage_stub_mold 1 $compiler $*" 2>"$work/cover.err")
    cover=$?
    expect "$*: status" "$plain" "$cover"
    for side in plain cover; do
        (cd "$work/$side" && find . -type f | sort) >"$work/$side.files"
        (cd "$work/$side" && find . -name '*.d' -o -name '*.dep' | sort | xargs -r cat) >"$work/$side.deps"
        diagnostics "$work/$side.err" >"$work/$side.said"
    done
    for what in files deps said; do
        expect "$*: $what" "$(cat "$work/plain.$what")" "$(cat "$work/cover.$what")"
    done
    found=$(find "$work/project/LLTTEMP/codemeasure/ini" -type f 2>/dev/null | wc -l)
    expect "$*: instrumented sources" "$records" "$found"
    symbols=$(cd "$work/cover" && find . -name '*.o' -exec nm {} + 2>/dev/null | grep -c g_QMRCovData_)
    expect "$*: counter arrays" "$records" "$symbols"
    expect "$*: notices after the first" '' "$(grep '^lltcc: ' "$work/cover.err" | sed 1d)"
}

while read -r records command; do
    check "$records" "$command"
done <<'END'
1 -c a.c
1 -c a.c -o sub/out/x.o
1 -osub/out/x.o a.c -c -O2
1 -c "$PWD/a.c" -O3 -g
2 -c a.c "sub/b c.c" -Wall
2 -c a.c cc.cpp
1 -c -pipe a.c -o a.o
1 -c -save-temps a.c
1 -c -O2 -MMD a.c
1 -c -MD -MP -MF my.dep a.c -o sub/out/x.o
1 -c -MD -MT 'tar$get' -MQ 'q$t' a.c -o sub/out/x.o
1 -c -Wp,-MMD,wp.dep a.c -o sub/out/x.o
1 @args.rsp
1 -x c++ -c a.c
1 -c -g -gdwarf-4 -O2 a.c
1 -c -g3 cc.cpp
1 -c -O2 -fno-exceptions cc.cpp
1 -c -O1 -masm=intel a.c
1 -c -fno-plt -O2 a.c
1 -c -fvisibility=hidden -fPIC a.c
1 -c -O2 -flto=auto -ffat-lto-objects a.c
1 -c -Winvalid-pch -Werror -include p.h a.c
0 -c data.c
0 -c broken.c
1 -c broken.c a.c
0 -c --coverage a.c
0 -c missing.c
0 -c badasm.c
0 -c a.c --no-such-option
0 -c -Wall -Werror "sub/b c.c"
0 -c s.s
0 -c h.h
0 -E a.c
0 -S a.c
1 -c -flto a.c
0 -c -x assembler a.c
0 -c -x c -o in.o - <a.c
0 -c -fsyntax-only a.c
0 -c
END
compiler="ccache $compiler"
check 1 '-c -O2 a.c'
check 0 '-c s.s'
finish
