#!/bin/bash
# Builds a real C library twice, without lltwrapper and through it, and compares what came out.
# Then shows an archive step: a static library whose counters reach the coverage runtime.
# usage: demo.sh [zlib|hello]      (./dev demo installs what it needs and builds the program first)
set -euo pipefail
unset CDPATH
export LC_ALL=C
unset MAKEFLAGS CFLAGS CPPFLAGS LDFLAGS

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
work=$root/build/demo

say() { echo "demo: $*"; }

die() {
    say "FAILED: $*" >&2
    exit 1
}

# get_...: the sources of a project in $source, its name and version in $title.

get_hello() {
    source=$root/examples/hello
    title='the bundled sample project examples/hello'
}

get_zlib() {
    say 'fetching the source package of zlib'
    if ! "$root/examples/apt_source.sh" zlib "$work/apt" >"$work/apt.log" 2>&1; then
        say "no zlib: $(tail -n 1 "$work/apt.log" | sed 's/^apt_source: //') (log: $work/apt.log)"
        say 'taking the bundled sample project instead'
        get_hello
        return
    fi
    source=$work/apt/source
    title="zlib $(sed -n '1s/.*(\(.*\)).*/\1/p' "$source/debian/changelog"), Debian's source package"
    # One probe of zlib's configure takes any output of the compiler as a "no", also the lines that
    # lltwrapper prints. Both builds get the answer, beside zlib's usual flags.
    export CFLAGS='-O3 -DHAVE_HIDDEN'
}

# What a project that is built through lltwrapper sets up.
wrapper_environment() {
    PATH=$root/examples/pass_through:$root/build/release:$PATH
    export qmr_current_prj_path=$project
    # shellcheck source=examples/toolset/TUSK_INIT.SH
    . "$root/examples/toolset/TUSK_INIT.SH"
    export CC='lltwrapper gcc' AR='lltwrapper -artool ar -arsuffix .a ar'
}

# logged NAME COMMAND...: output goes to build/demo/NAME.log
logged() {
    local log=$work/$1.log
    shift
    "$@" >"$log" 2>&1 && return
    tail -n 20 "$log" >&2
    die "$* (log: $log)"
}

# Both builds run in the same folder, as objects may hold its path.
build() {
    rm -rf "$work/tree" "$work/tree.$1"
    cp -a "$source" "$work/tree"
    cd "$work/tree"
    [ ! -x configure ] || logged "$1.configure" ./configure
    logged "$1.build" make -j "$(nproc)"
    logged "$1.test" make -s test
    mv "$work/tree" "$work/tree.$1"
}

# Static libraries can be compared where ar leaves the time out of them.
built_files() {
    local names=(-name '*.o' -o -name '*.lo' -o -name '*.so*')
    if ar --help | grep -q 'zero for timestamps.*(default)'; then
        names+=(-o -name '*.a')
    fi
    (cd "$work/tree.$1" && find . -type f \( "${names[@]}" \) | sort)
}

compare() {
    local file
    built_files plain >"$work/plain.files"
    built_files wrapped | cmp -s "$work/plain.files" - || die 'the two builds made different files'
    while read -r file; do
        cmp "$work/tree.plain/$file" "$work/tree.wrapped/$file" || die "$file differs"
    done <"$work/plain.files"
    cmp "$work/plain.test.log" "$work/wrapped.test.log" || die 'the output of make test differs'
}

# count TEXT FILE: how often it occurs
count() { { grep -o -e "$1" "$2" || true; } | wc -l; }

# The comparison says something only when every object came through the wrapper.
count_steps() {
    files=$(wc -l <"$work/plain.files")
    objects=$(count '[.]l\?o$' "$work/plain.files")
    compiles=$(count 'lltcc cmd:' "$work/wrapped.build.log")
    links=$(count 'lltld cmd:' "$work/wrapped.build.log")
    if [ "$objects" -eq 0 ] || [ "$compiles" -lt "$objects" ] || [ "$links" -eq 0 ]; then
        die "$objects objects, but $compiles compiles and $links links through lltwrapper"
    fi
}

# The archive step of examples/archive; what its program prints is known.
show_archive_step() {
    local archive=$work/archive
    rm -rf "$archive"
    cp -a "$root/examples/archive" "$archive"
    cd "$archive"
    logged archive.build make AR="$AR"
    logged archive.test make -s test
    cat >"$work/archive.expected" <<'END'
libshapes: 2 sources, counter class 2
volume 24
libshapes: area.c 2 of 3 points hit, 12 bytes
libshapes: volume.c 1 of 2 points hit, 8 bytes
END
    cmp "$work/archive.expected" "$work/archive.test.log" || die 'the library registered otherwise'
}

summary() {
    cat <<END

  built       $title
  compiles    $compiles through lltwrapper and lltcc
  links       $links through lltwrapper and lltld
  compared    $files files, $objects of them objects: equal to a build without lltwrapper
  make test   passed, same output as without lltwrapper
  log         $work/wrapped.build.log

and for the static library examples/archive, whose sources are instrumented by hand:

$(sed 's/^/  /' "$work/archive.test.log")

END
    say 'passed'
}

# The tools get the project's path as one word: a checkout path with a blank cannot serve.
choose_project_path() {
    case $work in
        *[!A-Za-z0-9_./+,:=@%-]*)
            project=$(mktemp -d /tmp/lltwrapper-demo.XXXXXX)
            trap 'rm -rf "$project"' EXIT
            ;;
        *)
            project=$work/project
            rm -rf "$project"
            mkdir "$project"
            ;;
    esac
}

mkdir -p "$work"
case ${1-zlib} in
    zlib) get_zlib ;;
    hello) get_hello ;;
    *) die "'$1' is not a sample project; take zlib or hello" ;;
esac
say "building $title, without lltwrapper"
(export CC=gcc AR=ar && build plain)
say 'building it again with CC="lltwrapper gcc"'
choose_project_path
(wrapper_environment && build wrapped)
compare
count_steps
say 'archiving a library with instrumented members'
(wrapper_environment && show_archive_step)
summary
