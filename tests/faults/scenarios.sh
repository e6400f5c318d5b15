# shellcheck shell=bash disable=SC2034 # its variables are for the tests
# Steps of a build that can be disturbed and repeated. To be sourced by the tests of this directory.
#
# A scenario is a project in `$work/NAME/start` and one step in it. `begin` puts the project, as it
# was before the step, to `$work/NAME/p`, the same path each time, as paths are in the data. What a
# disturbed step and a step after it leave is compared with what an undisturbed one leaves.
# Every how many-th place is disturbed, from which on. All of them: STRIDE=1 FIRST=1.
stride=${STRIDE:-149} first=${FIRST:-5}
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
needs strace

# A tool that cannot be looked at is taken from another directory of PATH: here each stands in one.
IFS=: read -ra directories <<<"$PATH"
kept='' places=:
for directory in "${directories[@]}"; do
    place=$(cd "$directory" 2>/dev/null && pwd -P)
    [ -z "$place" ] || [[ $places = *":$place:"* ]] || kept+=${kept:+:}$directory
    places+=$place:
done
PATH=$kept

sources() { # sources N
    local i
    for ((i = 1; i <= $1; i++)); do
        printf 'int f%d(int a)\n{\n    return a > %d ? a : %d;\n}\n' "$i" "$i" "$i" >"m$i.c"
        lltwrapper gcc -c "m$i.c"
    done
    echo 'int f1(int); int main(void) { return f1(2) - 2; }' >main.c
    lltwrapper gcc -c main.c
}

archive() { lltwrapper -artool ar -arsuffix .a ar rcs libx.a m*.o; }
link() { lltwrapper gcc -Wl,--build-id=none -o prog main.o libx.a; }

# What is there before the step, and the step.
make_archive_1() { sources 1; }
make_archive_3() { sources 3; }
make_archive_12() { sources 12; }
make_again_1() { sources 1 && archive && change; }
make_again_3() { sources 3 && archive && change; }
make_again_12() { sources 12 && archive && change; }
make_compile() { sources 1 && echo 'int g;' >>m1.c; }
make_link() { sources 2 && archive; }
make_dump() { sources 2 && archive && link && ./prog; }
make_export() { make_dump; }
make_clean() { make_dump; }
make_clean_all() { make_dump; }
change() { echo 'int changed(void) { return 1; }' >>m1.c && lltwrapper gcc -c m1.c; }

words_of() { # words_of SCENARIO: the step
    case $1 in
        archive_* | again_*) echo lltwrapper -artool ar -arsuffix .a ar rcs libx.a m*.o ;;
        compile) echo lltcc -qmr_current_prj_path "$PWD" -projectname LLTTEMP \
            -qmr_coverage_stub_mold 1 gcc -c m1.c ;;
        link) echo lltld -qmr_current_prj_path "$PWD" -projectname prog_exe \
            -qmr_coverage_stub_mold 1 gcc -Wl,--build-id=none -o prog main.o libx.a ;;
        dump) echo ./prog ;;
        export) echo lltcov export --lcov -o info ;;
        clean) echo lltcov clean ;;
        clean_all) echo lltcov clean --all ;;
    esac
}

# prepare SCENARIO: makes the project and what an undisturbed step leaves
prepare() {
    scenario=$1
    mkdir -p "$work/$scenario/p"
    cd "$work/$scenario/p" || exit
    enter_project "$PWD"
    "make_$scenario" >../log 2>&1 || expect "preparation of $scenario" made "$(tail ../log)"
    cp -a . ../start
    read -ra step < <(words_of "$scenario")
    [ "${step[0]}" = ./prog ] || step[0]=$(command -v "${step[0]}")
    "${step[@]}" >../log 2>&1 || expect "undisturbed $scenario" made "$(tail ../log)"
    tree >../undisturbed
    "${step[@]}" >../log 2>&1
    tree >../twice
    disturbed -o ../calls
    calls=$(grep -c '^[a-z]' ../calls)
}

begin() {
    cd .. && rm -rf p && cp -a start p && cd p || exit
}

# tree: a line for each file, but for the moment of the build. A key that could not be written once stands
# in another place of .prj later. One process: it is called twice for each place.
tree() {
    find . -printf '%y %m %p %l\n' | sort
    find . -type f ! -name stub.state | sort | perl -MDigest::MD5=md5_hex -lne '
        open(my $file, "<", $_) or die "$_: $!";
        my @lines = map { s/Q[0-9]{10}/BUID/gr =~ s/^(EndTime_Caddis=).*/$1/r } <$file>;
        @lines = sort @lines if m{/[.]prj$};
        print "$_ ", md5_hex(@lines);'
}

# disturbed OPTION...: the step under strace with these options; waits for the processes it left. Its
# status, by a shell's rules, is in `status`, what it said in ../err.
disturbed() {
    begin
    {
        strace -qq -o ../trace "$@" "${step[@]}" 2>&1 >/dev/null
        echo $? >../status
    } 2>/dev/null | cat >../err
    status=$(cat ../status)
}

# without_superseded FILE: a tree without the data of the m1.c that was changed
without_superseded() {
    if [[ $scenario = again* ]]; then grep -v 'LLTTEMP/.*m1_c_' "$1"; else cat "$1"; fi
}

# recovers WHAT [FILTER]: a step after it leaves what an undisturbed one leaves. A run of a program that
# was killed has counted in none, some or all modules.
recovers() {
    "${step[@]}" >../log 2>&1
    local counted='^$' module modules=''
    tree >../left
    [ "$scenario" != dump ] || modules='libx prog_exe'
    for module in $modules; do
        [ "$(grep "result/.*$module" ../left)" != "$(grep "result/.*$module" ../twice)" ] ||
            counted+="|result/.*$module"
    done
    expect "$1" "$("${2:-cat}" ../undisturbed | grep -vE "$counted")" \
        "$("${2:-cat}" ../left | grep -vE "$counted")"
}
