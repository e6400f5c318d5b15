#!/bin/bash
# The recipes of docs/recipes.md, block by block as the page has them, on a small project that has build files of
# each kind: what they build runs, and its lines have the counts of the runs.
# shellcheck disable=SC2317 # functions by their names
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
page=$root/docs/recipes.md said=$work/said
unset CCACHE_DISABLE
port1=$((20000 + $$ % 10000)) port2=$((port1 + 10000)) # in the place of the page's
export CCACHE_DIR=$work/cache CFLAGS=-g

# --- the project
mkdir "$work/project" && cd "$work/project" || exit
printf '%s\n' 'int one(int x)' '{' '    if (x > 5)' '        return 0;' '    return 1;' '}' >one.c
echo 'int one(int); int main(void) { return one(2) - 1; }' >main.c
cat >Makefile <<'M'
main: main.o libone.a ; $(CC) -o $@ main.o libone.a
libone.a: one.o ; rm -f $@ && $(AR) rcs $@ one.o
check: main ; ./main
clean: ; rm -f main libone.a *.o
M
cat >build.ninja <<'M'
rule cc
  command = gcc -MMD -MF $out.d -c $in -o $out
  depfile = $out.d
rule ar
  command = rm -f $out && ar crs $out $in
rule link
  command = gcc $in -o $out
build one.o: cc one.c
build main.o: cc main.c
build libone.a: ar one.o
build main: link main.o libone.a
M
printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'project(p C)' 'enable_testing()' 'add_library(one STATIC one.c)' \
    'add_executable(main main.c)' 'target_link_libraries(main one)' 'add_test(NAME main COMMAND main)' >CMakeLists.txt
printf '%s\n' "project('p', 'c')" "one = static_library('one', 'one.c')" \
    "test('main', executable('main', 'main.c', link_with: one))" >meson.build
printf '%s\n' 'AC_INIT([p], [1])' 'AM_INIT_AUTOMAKE([foreign])' 'AC_PROG_CC' 'AM_PROG_AR' 'LT_INIT' \
    'AC_CONFIG_FILES([Makefile])' 'AC_OUTPUT' >configure.ac
printf '%s\n' 'lib_LTLIBRARIES = libone.la' 'libone_la_SOURCES = one.c' 'check_PROGRAMS = main' 'main_SOURCES = main.c' \
    'main_LDADD = libone.la' 'main_LDFLAGS = -static' 'TESTS = main' >Makefile.am
cat >Kbuild.mk <<'M'
flags = -Wp,-MMD,.$(@F).d -std=gnu11 -fno-common -DKBUILD_BASENAME='"$(basename $@)"' -DKBUILD_MODNAME='"m"' '-Dpr_fmt(f)=f'
main: main.o built-in.a ; gcc -o $@ main.o -Wl,--whole-archive built-in.a -Wl,--no-whole-archive
built-in.a: part.o ; rm -f $@; ar cDPrST $@ part.o
part.o: one.o ; ld -r -o $@ one.o
%.o: %.c ; gcc $(flags) -c -o $@ $<
M
cd "$work" || exit

cmake --install "$programs" --prefix "$work/local" >"$said" 2>&1 || skip 'no installation'
PATH=$work/local/bin:${PATH#"$programs:"}

before_configured() { (cmake -S . -B out && cmake --build out) >"$said" 2>&1; }

before_cross() {
    sed "s|/usr/local|$work/local|; s|./dev install|BUILD='$programs' '$root/packaging/install.sh'|" "$work/block.1" >block.sh
    sh -e block.sh >"$said" 2>&1
    expect 'the runtime of another target' 0 $?
}

# blocks HEADING: the commands of a section, each block as a file block.N
blocks() {
    rm -f "$work"/block.*
    awk -v heading="## $1" -v file="$work/block." '
        /^## / { on = $0 == heading }
        on && /^    / { if (!in_block) number++; in_block = 1; print substr($0, 5) > (file number) }
        !/^    / { in_block = 0 }' "$page"
}

# counts: those of the lines 4 and 5 of one.c
counts() { lltcov export --lcov 2>"$said" | sed -n '/one\.c$/,/end_of/s/^DA:[45],//p' | xargs; }

before_distcc() {
    local port tries
    for port in "$port1" "$port2"; do
        distccd --no-detach --daemon --user nobody --allow 127.0.0.1 --listen 127.0.0.1 --port "$port" \
            --log-stderr 2>"$work/daemon.$port" &
        daemons+=" $!"
        for ((tries = 0; tries < 300; tries++)); do
            : 2>/dev/null >"/dev/tcp/127.0.0.1/$port" && break
            sleep 0.1
        done
    done 2>/dev/null
}
stop_daemons() {
    # shellcheck disable=SC2086 # numbers
    [ -z "$daemons" ] || kill $daemons
    daemons=
    wait
}
after_distcc() {
    stop_daemons
    expect 'the daemons compiled' yes "$(grep -q COMPILE_OK "$work"/daemon.* && echo yes)"
}
after_ccache() { expect 'ccache was asked' yes "$(ccache -s -v | grep -qE '(Cacheable calls|cache miss).*[1-9]' && echo yes)"; }
before_bear() { export ASAN_OPTIONS=verify_asan_link_order=0; } # it preloads a library of its own
after_bear() {
    expect 'the real compiler' cc "$(jq -r '.[].arguments[0]' compile_commands.json | sed '/shims/! s|.*/||' | sort -u)"
}
daemons=
trap 'status=$?; stop_daemons; (exit $status); leave' EXIT

# Section, block, what it needs, what stands before and after it ("-": nothing): each block of the page has a row.
covered=
while IFS='|' read -r section block programs_needed hook; do
    covered+="$section $block"$'\n'
    blocks "$section"
    for program in $programs_needed; do
        command -v "$program" >/dev/null || { echo "not tried: $section, for $program is missing" && continue 2; }
    done
    [ "$hook" != - ] || hook=
    rm -rf "$work/tree" && cp -r "$work/project" "$work/tree" && cd "$work/tree" || exit
    [ "$(type -t "before_$hook")" != function ] || "before_$hook"
    (sed "s|/usr/local/|$work/local/|; s|:3632|:$port1|; s|:3633|:$port2|" "$work/block.$block" >block.sh && sh -e block.sh) >"$said" 2>&1
    expect "$section, block $block" 0 $?
    expect "$section, block $block, counts" '0 1' "$(counts)"
    [ "$(type -t "after_$hook")" != function ] || "after_$hook"
done <<'END'
GNU make|1|make|-
Ninja|1|ninja|-
CMake|1|cmake|-
CMake|2|cmake|configured
Meson|1|meson|-
Autoconf, Automake and libtool|1|autoreconf libtoolize automake|-
Makefiles in the manner of Kbuild|1|make|-
clang|1|clang llvm-cov|-
ccache|1|ccache|ccache
distcc|1|distcc distccd|distcc
Cross compilers|2|aarch64-linux-gnu-gcc qemu-aarch64|cross
A compile database|1|bear jq|bear
END
covered+=$'Bazel 1\nCross compilers 1\n' # said to be untried; before_cross
while read -r section; do
    blocks "$section"
    for file in "$work"/block.*; do
        [ ! -e "$file" ] || expect "a row for $section" 1 "$(grep -cxF "$section ${file##*.}" <<<"$covered")"
    done
done < <(sed -n 's/^## //p' "$page")
finish
