#!/bin/bash
# The tool set on AArch64, by cross compiler and emulator: counters of each stub mode, and the lines
# of examples/hello, which must count as on the machine itself when nothing is optimised.
# usage: aarch64_test.sh PROGRAMS     the folder of lltwrapper, lltcc and lltcov
set -euo pipefail
unset CDPATH MAKEFLAGS CC CXX AR CFLAGS CXXFLAGS CPPFLAGS LDFLAGS "${!qmr_@}" "${!llt@}" "${!LLT@}"
programs=$1
tests=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
toolset=$tests/../../examples/toolset
emulator="qemu-aarch64 -L /usr/aarch64-linux-gnu"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
PATH=$programs:$PATH

LLTCC_RUN=$emulator "$tests/lltcc_counts.sh" "$programs/lltcc" aarch64-linux-gnu-gcc

# lines_of PREFIX OPTION...: builds and runs hello with the tools of this prefix; "FILE LINE COUNT"
lines_of() {
    local prefix=$1
    shift
    rm -rf "$work/hello"
    cp -a "$toolset/../hello" "$work/hello"
    cd "$work/hello"
    LLT_PROJECT=$PWD
    unset lltcovRootpath
    # shellcheck source=examples/toolset/TUSK_INIT.SH
    . "$toolset/TUSK_INIT.SH"
    {
        make clean
        make -j2 CC="lltwrapper ${prefix}gcc" CXX="lltwrapper ${prefix}g++" \
            AR="lltwrapper -artool ${prefix}ar -arsuffix .a ${prefix}ar" "$@"
    } >"$work/log" 2>&1 || {
        cat "$work/log"
        return 1
    } >&2
    printf '#!/bin/sh\nexec %s "$@"\n' "${prefix:+$emulator} ./hello" >run
    chmod +x run
    export LD_LIBRARY_PATH=.
    ${prefix:+$emulator} ./library_test >&2
    ./hello_test.sh ./run >&2
    lltcov export --lcov | awk -F '[:,]' '$1 == "SF" { f = $2 } $1 == "DA" { print f, $2, $3 }'
}

mkdir "$work/runtime"
cd "$work/runtime"
aarch64-linux-gnu-gcc -std=c99 -D_GNU_SOURCE -O2 -fPIC -fvisibility=hidden -Wall -Wextra -Werror \
    -c "$toolset"/runtime/*.c
ar rcs liblltcov_rt.a ./*.o

lines_of '' >"$work/native"
LLTCOV_RUNTIME=$work/runtime lines_of aarch64-linux-gnu- >"$work/cross"
diff "$work/native" "$work/cross"
echo "$(wc -l <"$work/cross") lines count the same"
[ -s "$work/cross" ]
