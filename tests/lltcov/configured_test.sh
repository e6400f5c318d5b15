#!/bin/bash
# A build directory of CMake that was configured without lltcov run counts nothing: the doctor says so and
# its cure helps; directories that go through the wrapper, in whichever way, are left alone.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
needs cmake make
said=$work/said

mkdir 'project' && cd project || exit
printf '%s\n' 'int one(int x)' '{' '    return x;' '}' >one.c
echo 'int one(int); int main(void) { return one(0); }' >main.c
printf '%s\n' 'cmake_minimum_required(VERSION 3.16)' 'project(p C)' 'add_executable(main main.c one.c)' >CMakeLists.txt

# doctor: its lines about build directories
doctor() { lltcov doctor 2>&1 | grep '^builds: '; }
# configured LINE...: build directories that the doctor is shown, each with rows of its cache
configured() {
    rm -rf out && mkdir out
    printf '%s\n' '# of cmake' "$@" "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" >out/CMakeCache.txt
    doctor | sed "s|$PWD|HERE|g; s|;.*||"
}
counts() { lltcov export --lcov 2>"$said" | sed -n '/one\.c$/,/end_of/s/^DA:3,//p'; }

cmake -S . -B out >"$said" 2>&1
lltcov run -- cmake --build out >"$said" 2>&1
expect 'nothing is counted' '' "$(counts)"
expect 'and the doctor is named' yes "$(grep -q "'lltcov doctor' may know why" "$said" && echo yes)"
expect 'whose status' 1 "$(lltcov doctor >"$said" && echo 0 || echo $?)"
cure=$(doctor | sed -n 's/.* with its options, type: //p')
expect 'the cure' "rm $PWD/out/CMakeCache.txt && lltcov run -- cmake -S $PWD -B $PWD/out" "$(tr -d "'" <<<"$cure")"
PATH=$programs:$PATH bash -ec "$cure" >"$said" 2>&1
expect 'configured anew' '' "$(doctor)"
lltcov run -- cmake --build out >"$said" 2>&1 && out/main
expect 'counts' 1 "$(counts)"
expect 'with modules' '' "$(doctor)"

lltcov clean --all >"$said" 2>&1
plain=CMAKE_C_COMPILER:FILEPATH=/usr/bin/cc
what() { printf "builds: 'HERE/out' is configured for '%s' and keeps it: nothing built there is counted" "$1"; }
expect plain "$(what /usr/bin/cc)" "$(configured $plain)"
expect 'C++ alone' "$(what /opt/c++)" "$(configured CMAKE_CXX_COMPILER:STRING=/opt/c++)"
expect 'no compiler' '' "$(configured CMAKE_LINKER:FILEPATH=/usr/bin/ld)"
expect 'a comment' '' "$(configured "#$plain")"
expect 'an include' '' "$(configured $plain CMAKE_PROJECT_INCLUDE:UNINITIALIZED=/a/lltwrapper-project.cmake)"
expect 'a package' '' "$(configured $plain lltwrapper_DIR:PATH=/a)"
expect 'a launcher' '' "$(configured $plain CMAKE_C_COMPILER_LAUNCHER:STRING=lltwrapper)"
expect 'a compiler' '' "$(configured CMAKE_C_COMPILER:STRING=/a/lltwrapper)"
lltcov shims "$work/shims" >"$said" 2>&1
expect 'a shim' '' "$(configured "CMAKE_C_COMPILER:FILEPATH=$work/shims/cc")"
finish
