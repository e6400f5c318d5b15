#!/bin/bash
# What ./dev install puts in place for other projects' build files, and what ./dev uninstall leaves of it.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
needs cmake
said=$work/said

# --- there and gone; what is of others stays
mkdir -p place/share && touch place/share/other
names() { find place -printf '%p %y\n' | sort; }
before=$(names)
cd / || exit
for round in first second; do
    BUILD=$programs "$root/packaging/install.sh" "$work/place" >"$said" 2>&1
    expect "$round installation" 0 $?
done
cd "$work" || exit
expect 'it has what it needs' 'bin/lltcov bin/lltwrapper libexec/lltwrapper/lltcc lib/lltcov/liblltcov_rt.a share/man/man1/lltcov.1.gz ' \
    "$(cd place && for name in bin/lltcov bin/lltwrapper libexec/lltwrapper/lltcc lib/lltcov/liblltcov_rt.a share/man/man1/lltcov.1.gz; do
        [ -s $name ] && echo -n "$name "
    done)"
cp -a place kept
printf '%s\n' ../outside >>place/share/lltwrapper/installed && touch outside
"$root/packaging/uninstall.sh" place >"$said" 2>&1
expect 'uninstall leaves what was there' "$before" "$(names)"
expect 'and what is outside' 'outside' "$(ls outside)"
expect 'nothing to uninstall' 1 "$("$root/packaging/uninstall.sh" place >"$said" 2>&1; echo $?)"

# --- the CMake package: of a project that asks for it, of one that is not edited
PATH=$work/kept/bin:${PATH#"$programs:"}
mkdir project && cd project || exit
expect 'explain finds the installed driver' '' "$(lltcov explain -- gcc -c a.c -o a.o | grep "driver 'lltcc'")"
echo '#include <string.h>
int one(void) { return strcmp(TEXT, "a \"b\"") == 0; }' >one.c
echo 'extern "C" int one(void); int main() { return one() - 1; }' >main.cpp
cat >CMakeLists.txt <<'C'
cmake_minimum_required(VERSION 3.25)
project(p C CXX)
if(ASKS)
  find_package(lltwrapper 0.1 REQUIRED)
  lltwrapper_enable()
endif()
add_library(one STATIC one.c)
target_compile_definitions(one PRIVATE "TEXT=\"a \\\"b\\\"\"")
add_executable(main main.cpp)
target_link_libraries(main one)
C
for generator in Ninja 'Unix Makefiles'; do
    [ "$generator" != Ninja ] || command -v ninja >/dev/null || continue
    for how in "-DASKS=ON -DCMAKE_PREFIX_PATH=$work/kept" \
        "-DCMAKE_PROJECT_INCLUDE=$work/kept/share/cmake/lltwrapper/lltwrapper-project.cmake"; do
        rm -rf .lltcov out
        # shellcheck disable=SC2086 # options
        cmake -S . -B out -G "$generator" $how -DCMAKE_C_COMPILER="$compiler" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >"$said" 2>&1 &&
            cmake --build out >"$said" 2>&1 && touch one.c && cmake --build out >>"$said" 2>&1 && ./out/main
        expect "$generator $how" 0 $?
        expect "$generator $how counts" '2/2 2' \
            "$(lltcov status | awk '/^total/ { print $4 }') $(ar t out/libone.a | grep -c .)"
        expect "$generator $how says nothing of the wrapper" '' "$(grep -i 'lltcc cmd' "$said")"
        expect "$generator $how names the real compiler" 2 \
            "$(grep -c '"command": "/[^ ]*\(cc\|clang\|++\)[-0-9]* ' out/compile_commands.json)"
    done
done

# --- a program that calls the runtime
cd "$work" || exit
echo '#include <lltcov_rt.h>
int main(void) { lltcov_dump(); return 0; }' >calls.c
if command -v pkg-config >/dev/null; then
    # shellcheck disable=SC2046 # words
    PKG_CONFIG_PATH=$work/kept/share/pkgconfig "$compiler" calls.c -o calls $(PKG_CONFIG_PATH=$work/kept/share/pkgconfig pkg-config --cflags --libs lltcov_rt) >"$said" 2>&1 && ./calls
    expect 'the .pc file' 0 $?
fi
finish
