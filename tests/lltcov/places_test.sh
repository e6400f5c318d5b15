#!/bin/bash
# Where a build through shims puts its data: a directory of its own by the settings; where the project path
# is the directory of the build itself, a library and a program that want one place; nowhere without settings.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
said=$work/said
lltcov shims "$work/shims" >"$said"
PATH=$work/shims:$PATH
export LLT_WRAP=1 LLT_DISABLE_SOCKET=1

# fresh NAME: an empty project in a place of this name
fresh() {
    unset qmr_current_prj_path lltcovRootpath
    mkdir "$work/$1" && cd "$work/$1" || exit
    echo 'int lib(int a) { return a + 1; }' >lib.c
    echo 'int lib(int); int main(void) { return lib(2) - 3; }' >main.c
}
names() { find . -mindepth 1 -maxdepth 1 -printf '%P\n' | sort | xargs; }
# shellcheck source=toolset/TUSK_INIT.SH
settings() { . "$root/toolset/TUSK_INIT.SH"; }
build() { # build PROGRAM
    { gcc -c lib.c && ar rcs "$1.a" lib.o && gcc -c main.c && gcc main.o "$1.a" -o "$1" && ./"$1"; } >"$said" 2>&1
    echo $?
}
hits() { lltcov status "$@" 2>&1 | awk '{ print $1, $4 }' | sed 1d | xargs; }

# --- a directory of its own
fresh own && settings
built='.lltcov foo foo.a lib.c lib.o main.c main.o'
for round in first second 'after clean --all'; do
    expect "$round build" "0 $built" "$(build foo) $(names)"
    [ "$round" = first ] || expect "$round build says nothing" '' "$(cat "$said")"
    expect 'git sees nothing of it' '*' "$(cat .lltcov/.gitignore)"
    lltcov clean >/dev/null && LLTCOV_TEST=run ./foo
    expect 'all is counted' 'foo 1/1 foo_exe 1/1 total 2/2' "$(hits)"
    for directory in . .lltcov "$PWD"; do expect "--project $directory" "$(hits)" "$(hits --project "$directory")"; done
    expect 'sources are relative to the project' 'lib.c main.c' \
        "$(lltcov export --cobertura 2>/dev/null | sed -n 's/.* filename="\([^"]*\)".*/\1/p' | xargs)"
    expect 'a line of the project' 'TEST COUNT run 1' "$(cd / && lltcov tests lib.c:1 | xargs)"
    expect doctor "nothing found: 2 modules in '$PWD'" "$(lltcov doctor)"
    [ "$round" != second ] || { : >main.o && expect 'clean --all' "${built#* }" "$(lltcov clean --all >/dev/null; names)"; }
done

# --- libraries of one name, the second one of which moves
fresh moved && settings && gcc -c lib.c && mkdir one two && ar rcs one/lib.a lib.o
expect 'two libraries' 1 "$(ar rcs two/lib.a lib.o 2>&1 | grep -c "'$PWD/one/lib.a' and '$PWD/two/lib.a' share")"
expect 'one that moved' '' "$(mv two three; ar rcs three/lib.a lib.o 2>&1)"

# --- the directory of the build itself: foo.a wants the place of the program foo
fresh shared && export qmr_current_prj_path=$PWD && settings && gcc -c lib.c && ar rcs foo.a lib.o
clash="'$PWD/foo' stands where the coverage data of 'foo.a' would go"
warns() { lltcov explain -- "$@" 2>&1 | grep -o "'[^']*' stands where .* would go"; }
expect 'explain of the link' "$clash" "$(warns gcc main.o foo.a -o foo)"
expect 'explain of another' '' "$(warns gcc main.o foo.a -o bar)"
expect 'built all the same' 0 "$(build foo)"
expect 'which is said' "lltld: 'foo' is also the place of a library's work area" "$(grep -o "^lltld: .* area" "$said")"
expect 'and counted' 'foo_exe 2/2 total 2/2' "$(hits)"
expect 'explain of the archive' "$clash" "$(warns lltwrapper -artool ar -arsuffix .a ar rcs foo.a lib.o)"
expect 'doctor' "archives: ${clash/\'foo.a/\'$PWD/foo.a}" "$(lltcov doctor | grep -o '.*would go')"
expect 'built again' 0 "$(build foo)"
expect 'which is said, too' "lltwrapper: 'ar' runs without coverage: $clash" "$(grep -o '.*would go' "$said")"
expect 'counted again' 'foo_exe 2/2 total 2/2' "$(lltcov clean >/dev/null; ./foo; hits)"
mkdir lib_x && : >lib_x/codemeasure
expect 'a dash, and a file in the directory' "lib_x/codemeasure'" "$(ar rcs lib-x.a lib.o 2>&1 | grep -o 'lib_x/[^ ]*')"
expect 'the archive' lib.o "$(ar t lib-x.a)"
export isOverlappedCompile=1 PlatformToken=BOARD BOARD=arm
mkdir arm && : >arm/libp
expect 'a platform' "arm/libp'" "$(ar rcs libp.a lib.o 2>&1 | grep -o 'arm/[^ ]*' | head -1)"
export isOverlappedCompile=0
mkdir keep && : >keep/mine && cp -r foo_exe/codemeasure keep && rm foo && mkdir foo_exe_2
expect 'a directory with more in it stays' '1 keep/mine' "$(gcc main.o foo.a -o keep >"$said" 2>&1; echo $? keep/mi*)"
rm -rf keep* foo_exe && : >foo_exe
expect 'a file where a program would be' "0 '$PWD/foo_exe' stands where the work area of 'foo'" \
    "$(gcc main.o lib.o -o foo 2>"$said" >"$work/out"; echo $? "$(grep -o "'[^']*' stands .* of 'foo'" "$said")")"
expect 'another name is taken' 'foo_exe_2 2/2 total 2/2' "$(lltcov clean >/dev/null; ./foo; hits)"

# --- settings forgotten
fresh forgotten
ls -A / >"$work/before"
for value in unset '' /; do
    if [ "$value" = unset ]; then unset qmr_current_prj_path; else export qmr_current_prj_path=$value; fi
    rm -f foo foo.a ./*.o
    expect "path '$value'" "0 ${built#* }" "$(build foo) $(names)"
    expect 'one line for each step' 'gcc ar gcc gcc' "$(sed \
        "s/^lltwrapper: '\(.*\)' runs without coverage: no project is set; source its TUSK_INIT.SH$/\1/" "$said" | xargs)"
    expect 'nothing is left' "$(cat "$work/before")" "$(ls -A /)"
done
unset qmr_current_prj_path
expect 'the compiler driver' 'lltcc: compiled without coverage: its project is not known, set qmr_current_prj_path' \
    "$(lltwrapper gcc -c lib.c 2>&1 >/dev/null | grep lltcc)"
expect 'leaves the object alone' 0 "$(nm lib.o | grep -c g_QMRCovData_)"
finish
