#!/bin/bash
# lltcov doctor and lltcov clean on a small project that is built through shims: a sound project is
# called so, each fault is found alone, and clean removes what the build and the runs left.
# shellcheck disable=SC2016,SC2317 # texts that are evaluated later, and what they call
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
set -e
said=$work/out

# status COMMAND...: its exit status; what it says is in $said
status() { "$@" >"$said" 2>&1 && echo 0 || echo $?; }

# cure: does what the doctor says
cure() {
    expect "there is a cure in '$(cat "$said")'" yes "$(grep -q '; .*type: ' "$said" && echo yes)"
    eval "$(sed -n 's/.*type: //p' "$said")"
}

# finds TEXT BREAK [MEND]: after BREAK, the doctor's only findings have TEXT (a pattern)
finds() {
    eval "$2" # variables that it sets are the test's own again after MEND
    expect "'$2' is found" 1 "$(status lltcov doctor)"
    expect "'$2' gives '$1'" yes "$(grep -q -e "$1" "$said" && echo yes)"
    expect "'$2' gives nothing else" '' "$(grep -v -e "$1" "$said")"
    eval "${3:-}"
    expect "'${3:-}' mends '$2'" 0 "$(status lltcov doctor)"
}

# sets TEXT NAME VALUE: the same for a variable, which the doctor cures
sets() { finds "$1" "was=\$$2 && export $2=$3" "cure && $2=\"\$was\""; }

# --- a sound project
mkdir project other home
cd project
echo 'int twice(int a) { return a + a; }' >twice.c
echo 'int twice(int); int main(void) { return twice(21) != 42; }' >main.c
export lltwrapper_cfg=0
enter_project "$PWD"
lltcov shims "$work/shims" >"$said"
PATH=$work/shims:$PATH
export LLT_WRAP=1
build() {
    rm -f libtwice.a llt_result/*
    { gcc -c twice.c && ar rcs libtwice.a twice.o && gcc -o main main.c libtwice.a; } >"$said" 2>&1
    ./main
}
build
expect 'a sound project' 0 "$(status lltcov doctor)"
expect 'is called so' 'nothing found: 2 modules' "$(grep -o '^nothing found: 2 modules' "$said")"

# --- settings
finds 'TimerPolicy is not set; type: ' 'unset TimerPolicy' cure
sets "settings: TimerPolicy is '2', not one of 0 1; type: export TimerPolicy=0" TimerPolicy 2
sets "settings: qmr_coverage_stub_mold is '10'" qmr_coverage_stub_mold 10
sets "settings: qmr_coverage_stub_mold is '3'" qmr_coverage_stub_mold 3 # its stubs declare nothing
finds "TimeInterval is '0' although TimerPolicy is 1" 'TimerPolicy=1 TimeInterval=0' \
    'cure && TimerPolicy=0'
finds "SignalNUM is '65'" 'SignalPolicy=1 SignalNUM=65' 'cure && SignalPolicy=0'
sets "settings: lltwrapper_cfg is '5'" lltwrapper_cfg 5
sets "settings: LLTCOV_COUNT is 'all', not one of branches lines conditions" LLTCOV_COUNT all
sets "project path: qmr_current_prj_path '.' is relative" qmr_current_prj_path .
ln -s "$work/project" "$work/a b"
export HOME=$work/home
finds 'project path: .* has a blank' "qmr_current_prj_path='$work/a b'" \
    'cure && lltcov doctor >"$said" && rm -r .lltcov "$HOME/project" && cd "$work/project" && enter_project "$PWD"'
finds "project path: .*gone' does not exist" 'export qmr_current_prj_path=$work/gone' \
    'cure && lltcov doctor >"$said" && rm -r .lltcov && enter_project "$PWD"'
finds 'sockets: .*g_TUSKSockBindPort for the stub of libtwice' 'LLT_DISABLE_SOCKET=0' cure
finds "places: '.*nowhere', where programs write" 'lltcovRootpath=$work/nowhere' \
    'cure && lltcovRootpath=$PWD/llt_result'

# --- tools
finds "shims: '.*shims' is on PATH, but LLT_WRAP is off" 'LLT_WRAP=0' cure
finds "shims: '/[^']*gcc' stands before its shim" 'was=$PATH && PATH=$work/other:$PATH &&
    ln -s "$(sed -n "s/^real=\([^ ]*\) .*/\1/p" "$work/shims/gcc")" "$work/other/gcc"' 'cure && lltcov doctor >"$said" && PATH=$was && rm "$work/other/gcc"'
finds "shims: '.*odd-elf-gnu-gcc' stands for .*'/nowhere/gcc', which is gone" \
    'sed "s|^# Shim of lltcov: [^,]*|# Shim of lltcov: /nowhere/gcc|" "$work/shims/gcc" \
        >"$work/shims/odd-elf-gnu-gcc"' cure
finds "programs: '.*other/lltcc' is used, not" 'was=$PATH && PATH=$work/other:$PATH &&
    cp "$work/shims/gcc" "$work/other/lltcc"' 'cure && lltcov doctor >"$said" && PATH=$was'
finds "programs: LLTCOV_RUNTIME names '/nowhere'" 'export LLTCOV_RUNTIME=/nowhere' cure

# --- what the build left
records=LLTTEMP/codemeasure
finds "places: '.*/ini'" "mv $records/ini saved" "mv saved $records/ini"
finds "sources: .*twice.c" 'echo >>twice.c' build
finds "objects: '.*twice.o' is gone" 'mv twice.o saved' 'mv saved twice.o'
finds "objects: '.*twice.o' was compiled anew" 'mv twice.o saved && LLT_WRAP=0 gcc -c twice.c' \
    'mv saved twice.o'
finds "archives: '.*libtwice.a' of module libtwice is gone" 'mv libtwice.a saved' \
    'mv saved libtwice.a'
finds "archives: '.*libtwice.a' of module libtwice is gone; if it was not renamed, type: " \
    'mv libtwice.a libother.a' 'mv libother.a libtwice.a'
finds "archives: '.*libtwice.a' has instrumented members and no stub" \
    'mv libtwice.a saved && LLT_WRAP=0 ar rcs libtwice.a twice.o' 'mv saved libtwice.a'
finds "archives: '.*lib+.a' has .* no stub: .*; its name must be" \
    'LLT_WRAP=0 ar rcs lib+.a twice.o' 'rm lib+.a'
finds "archives: '.*libtwice.a' and '.*libtwice.a' share the work area of 'libtwice'" \
    'mkdir sub && cp libtwice.a sub && LLT_WRAP=0 ar q sub/libtwice.a main' 'rm -r sub'
finds "names: symbol 's123456789.123456789.123456789.1' has more than 31" \
    "mkdir $records/db/dbs123456789.123456789.123456789.1" "rmdir $records/db/dbs123*"
finds "names: module 'lib+' is no C identifier" 'cp -r libtwice lib+' 'rm -r lib+'
finds "modules: .*libtwice/codemeasure/db/.tab' is missing or damaged\|dumps: .*no module is left" \
    'mv libtwice/codemeasure/db/.tab saved' 'mv saved libtwice/codemeasure/db/.tab'
dump=$(echo llt_result/libtwice.*)
finds "dumps: .*$dump" "cp $dump saved && echo x >$dump" "mv saved $dump"
finds "leftovers: '.*/.lltwrapper-aB3dE6'" 'mkdir sub.d && touch -d "1 hour ago" sub.d/.lltwrapper-aB3dE6' \
    'cure && rmdir sub.d'

# --- clean
# cleans WORDS TEXT: lltcov clean WORDS prints TEXT last
cleans() {
    # shellcheck disable=SC2086
    expect "clean $1" 0 "$(status lltcov clean $1)"
    expect "clean $1 says" "$2" "$(tail -n 1 "$said")"
}

lists() { find . -type f | sort; }

project=$PWD
sed "s|^area .*|area /elsewhere/libtwice/codemeasure|" "$dump" >llt_result/foreign.1.0.lltcov
cp "$dump" "$work/target" && ln -s "$work/target" llt_result/link.1.0.lltcov
echo 'cut' >llt_result/cut.1.0.lltcov # damaged ones stay with --gone: whose they are is not known
: >llt_result/empty.1.0.lltcov
: >llt_result/.libtwice.Q1121104110.1a2b.2.lltcov.tmp
: >llt_result/notes.txt
mkdir -p linked/codemeasure real && cp libtwice/codemeasure/.prj linked/codemeasure
mv linked "$work/linked" && ln -s "$work/linked" linked
: >libtwice/mine.c
lists >"$work/before"
mkdir -p plain/codemeasure/db && mv main main.saved
cleans '--dry-run --gone' "would remove 1 dumps, 1 work areas of '$project'"
mv main.saved main
cleans --gone "removed 0 dumps of '$project'"
expect 'clean --gone leaves what is there' "$(cat "$work/before")" "$(lists)"
cleans '--dry-run --all' "would remove 4 dumps, 3 work areas, LLTTEMP of '$project'"
expect 'a dry run changes no file' "$(cat "$work/before")" "$(lists)"
cleans '' "removed 4 dumps of '$project'"
expect 'clean leaves' 'foreign.1.0.lltcov link.1.0.lltcov notes.txt' "$(find llt_result -type f -o -type l | sed "s|.*/||" | sort | xargs)"
expect 'and LLTTEMP' "$records" "$(ls -d "$records")"
cleans --all "removed 0 dumps, 3 work areas, LLTTEMP of '$project'"
expect 'clean --all leaves what is not its own' "libtwice/mine.c $work/linked/codemeasure/.prj $work/target" \
    "$(echo libtwice/* "$work"/linked/*/.prj "$work"/targe*)"
expect 'and no areas' '' "$(ls -d libtwice/codemeasure main_exe plain LLTTEMP 2>/dev/null)"
rm linked
expect 'clean of what is no project' 1 "$(status lltcov clean --all)"
expect 'is said' 'is no project' "$(grep -o 'is no project' "$said")"
finish
