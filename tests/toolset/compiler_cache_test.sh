#!/bin/bash
# With a real compiler cache: a second build of the same tree, in another project, comes from the
# cache and has its records and its report; a cache under the compiler's own name serves plain and
# covered builds in turn; a lost record comes back; an object of the same tree in another directory
# is no hit.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
unset CCACHE_DISABLE
export CCACHE_DIR=$work/cache
needs ccache

# A library in C++ that is worth a cache, and a program.
make_tree() {
    mkdir "$work/tree"
    cp -r "$root/commonfunc" "$work/tree"
    rm "$work/tree/commonfunc/own_files.cpp" # it needs what its own build defines
    cd "$work/tree" || exit
    cat >main.cpp <<'C'
#include "commonfunc/text.h"
int main()
{
    return is_one_of("b", {"a", "b"}) ? 0 : 1;
}
C
    cat >Makefile <<'M'
objects = $(patsubst %.cpp,%.o,$(wildcard commonfunc/*.cpp))
prog: main.o libcommon.a
	$(LINK) main.o libcommon.a -o $@
libcommon.a: $(objects)
	rm -f $@
	$(AR) rcs $@ $^
%.o: %.cpp
	$(CXX) -std=c++17 -O1 -g -I. -c $< -o $@
clean:
	rm -f prog libcommon.a main.o $(objects)
M
}

# build LAUNCHER...: a clean build through lltwrapper and these; milliseconds in `took`
build() {
    make -s clean
    local began=${EPOCHREALTIME/[.,]/}
    logged make -j"$(nproc)" CXX="lltwrapper $* g++" LINK="lltwrapper $* g++" \
        AR="lltwrapper -artool ar -arsuffix .a ar"
    took=$(((${EPOCHREALTIME/[.,]/} - began) / 1000))
}

# stat NAME...: of the cache since the last call
stats() {
    ccache --print-stats | awk -v names="$*" 'BEGIN { split(names, name, " ") }
        { value[$1] = $2 } END { for (i = 1; i in name; i++) sum += value[name[i]]; print sum + 0 }'
    ccache --zero-stats >/dev/null
}

report() { logged ./prog && logged lltcov export --lcov -o "$work/$1.info"; }

make_tree
sources=$(find . -name '*.cpp' | wc -l)
enter_project "$work/first"
build ccache
first=$took
report first
expect 'lines that ran' yes "$(grep -q '^DA:.*,[1-9]' "$work/first.info" && echo yes)"
expect 'sources in the report' "$sources" "$(grep -c '^SF:.*\.cpp$' "$work/first.info")"
stats cache_miss >/dev/null
enter_project "$work/second"
build ccache
second=$took
expect 'the second build comes from the cache' "$sources" \
    "$(stats direct_cache_hit preprocessed_cache_hit)"
report second
expect 'the same report' same "$(cmp "$work/first.info" "$work/second.info" && echo same)"
build ccache
second=$((took < second ? took : second))
echo "first build $first ms, from the cache $second ms"
expect 'at most 0.4 of the time' yes "$([ $((second * 10)) -le $((first * 4)) ] && echo yes)"

# --- lost records
records=$work/second/LLTTEMP/codemeasure
lose() { rm -rf "$records"/db/db"$1"_cpp_* "$records/ini/$1"_cpp_*; } # lose NAME: of NAME.cpp
found() { find "$records/db" -path "*/db$1_cpp_*/record" | wc -l; }
rebuild() { logged make CXX='lltwrapper ccache g++' LINK='lltwrapper g++'; }
stats cache_miss >/dev/null
lose main
rm main.o
rebuild
expect 'a record comes back with the compile' 1 "$(found main)"
expect 'which is a hit' 1 "$(stats direct_cache_hit preprocessed_cache_hit)"
lose main
lose text # of the library
rm prog
rebuild
expect 'records come back with the link' '1 1' "$(found main) $(found text)"
rm -f "$work"/second/llt_result/*
report third
expect 'and the report with it' same "$(cmp "$work/first.info" "$work/third.info" && echo same)"

# --- the same tree in another directory: without -g nothing that the compiler sees differs
enter_project "$work/directories"
for directory in one two; do
    mkdir -p "$work/$directory/sub"
    cd "$work/$directory" || exit
    printf 'int half(int x)\n{\n    return x / 2;\n}\n' >sub/half.c
    logged lltwrapper ccache gcc -c sub/half.c -o half.o
    expect "the record names directory $directory" "source $PWD/sub/half.c object $PWD/half.o" \
        "$(grep -aE '^(source|object) ' half.o | paste -sd ' ')"
done

# --- under the compiler's own name
mkdir "$work/names"
ln -s "$(command -v ccache)" "$work/names/gcc"
PATH=$work/names:$PATH
mkdir "$work/small"
cd "$work/small" || exit
printf 'int twice(int x)\n{\n    return 2 * x;\n}\n' >twice.c
printf 'int twice(int);\nint main(void)\n{\n    return twice(2) == 4 ? 0 : 1;\n}\n' >main.c

small() { # small WRAPPER...: "status of the build, of the run, objects with counters"
    rm -f ./*.o prog
    {
        "$@" gcc -O1 -c twice.c -o twice.o && "$@" gcc -O1 -c main.c -o main.o &&
            "$@" gcc main.o twice.o -o prog
        set -- $?
        ./prog
        set -- "$1" $?
    } >"$work/log" 2>&1
    echo "$1 $2 $(nm ./*.o | grep -c g_QMRCovData_)"
}

for order in 'plain covered plain covered' 'covered plain covered plain'; do
    rm -rf "$work/cache"
    for kind in $order; do
        if [ "$kind" = plain ]; then
            expect "$order: plain" '0 0 0' "$(small)"
        else
            rm -rf "$work/small_covered"
            enter_project "$work/small_covered"
            expect "$order: covered" '0 0 2' "$(small lltwrapper)"
            lltcov export --lcov >"$work/small.info" 2>"$work/log"
            expect "$order: lines" 'DA:1,1 DA:2,1 DA:3,1 DA:4,1' \
                "$(grep ^DA: "$work/small.info" | sort | paste -sd ' ')"
        fi
    done
done
finish
