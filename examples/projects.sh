# shellcheck shell=bash
# The sample projects: where their sources come from and how each is configured, built and tested,
# as its own documentation says. To be sourced. The commands run in the project's directory and know
# nothing of coverage: they take CC, CXX, AR and CFLAGS from the environment when these are set
# (for plain makefiles by make -e), else what they find on PATH.
#
#     get_project zlib DIR && cd DIR && configure_project zlib && build_project zlib &&
#         test_project zlib
#
# Rows: name, Debian package ("-": bundled), commands that configure, build and test; and the
# sources whose lines a coverage report of the library must show: all that have code.
# popt's programs become others within the library; were that shared, gcov would lose what the
# program itself has counted, and could not be compared with.
projects() {
    cat <<'END'
hello | - | - | make -e | make -e test | *.cpp */*.c */*.cpp
hello-cmake | - | cmake -S . -B out | cmake --build out | ctest --test-dir out | *.cpp */*.c */*.cpp
hello-meson | - | meson setup out | meson compile -C out | meson test -C out | *.cpp */*.c */*.cpp
zlib | zlib | ./configure | make | make test | *.c
bzip2 | bzip2 | - | make -e libbz2.a bzip2 bzip2recover | make -e test | blocksort.c bzlib.c compress.c decompress.c huffman.c
cjson | cjson | cmake -S . -B out -DBUILD_SHARED_AND_STATIC_LIBS=ON -DENABLE_CJSON_UTILS=ON | cmake --build out | ctest --test-dir out | cJSON.c cJSON_Utils.c
tinyxml2 | tinyxml2 | meson setup out -Ddefault_library=both -Dtests=true | meson compile -C out | meson test -C out | tinyxml2.cpp
jsoncpp | libjsoncpp | meson setup out -Dtests=true | meson compile -C out | meson test -C out | src/lib_json/*.cpp
libtommath | libtommath | - | make -e libtommath.a test | ./test | bn_!(cutoffs|mp_radix_smap|prime_tab).c
popt | popt | ./configure --disable-nls --disable-shared | make | make check | src/popt*.c
lz4 | lz4 | - | make -C lib && make -C programs && make -C tests fullbench frametest fuzzer checkFrame | LD_LIBRARY_PATH=$PWD/lib make -C tests test-lz4-basic test-frametest test-fuzzer FUZZER_TIME='-i100 -s1' >/dev/null 2>&1 | lib/lz4*.c lib/xxhash.c
lzo2 | lzo2 | ./configure | make | make check >/dev/null | src/lzo1?(a)?(_99).c src/lzo@(1[bcfx]_9x|2a_9x|1[bc]_xx|_crc|_init|_ptr|_util).c
END
}

projects_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# project NAME COLUMN: a field of its row, nothing for "-"; fails for an unknown name
project() {
    projects | awk -F ' +[|] +' -v name="$1" -v column="$2" \
        '$1 == name { found = 1; if ($column != "-") print $column } END { exit !found }'
}

# get_project NAME DIR: a fresh copy of the sources as DIR; fails, with one line on standard error,
# when the package cannot be had. Packages are kept in build/sources: a second run needs no network.
get_project() {
    local package kept
    package=$(project "$1" 2) || return
    rm -rf "$2"
    if [ -z "$package" ]; then
        cp -a "$projects_root/examples/hello" "$2" && make -s -C "$2" clean && rm -rf "$2/out"
        return
    fi
    kept=$projects_root/build/sources/$package
    mkdir -p "$kept"
    if ! "$projects_root/examples/apt_source.sh" "$package" "$kept" >"$kept/log" 2>&1; then
        echo "no $package: $(tail -n 1 "$kept/log") (log: $kept/log)" >&2
        return 1
    fi
    cp -a "$kept/source" "$2"
}

# Each runs a command of the row, here.
configure_project() { run_column "$1" 3; }
build_project() {
    MAKEFLAGS=-j$(nproc) CMAKE_BUILD_PARALLEL_LEVEL=$(nproc) run_column "$1" 4
}
test_project() { run_column "$1" 5; }

run_column() {
    local command
    command=$(project "$1" "$2") || return
    eval "$command"
}

# project_sources NAME: the sources that a report must show, one a line, relative to here
project_sources() {
    local patterns
    patterns=$(project "$1" 6) || return
    shopt -s extglob
    # shellcheck disable=SC2086 # patterns to be expanded
    printf '%s\n' $patterns
}
