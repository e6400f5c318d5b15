#!/bin/bash
# The tool set on the compiler's targets, by cross compilers and emulators: examples/hello has to
# have the lines, functions, branches and counts that gcov of the same compiler reports of the same
# tests, and without optimisation the lines that ran of the machine itself.
# usage: compare_targets.sh PROGRAMS [TARGET...]     PROGRAMS: the directory of lltwrapper, lltcc and
#        lltcov; a target without its compiler is skipped, with STRICT=1 it fails
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
set -e
# shellcheck source=tests/toolset/against_gcov.sh
. "$root/tests/toolset/against_gcov.sh"

# name, prefix of the tools, program that runs the code, stub modes, options
targets() {
    cat <<'END'
native - - 1,0,2,8,9
i386 - - 1 -m32 -idirafter /usr/include/x86_64-linux-gnu
aarch64 aarch64-linux-gnu- qemu-aarch64 1,0,2,8,9
arm arm-linux-gnueabihf- qemu-arm 1
riscv64 riscv64-linux-gnu- qemu-riscv64 1
s390x s390x-linux-gnu- qemu-s390x 1
END
}

# can_build PREFIX EMULATOR OPTIONS
can_build() {
    # shellcheck disable=SC2086 # several options
    echo '#include <string>' | "$1g++" $3 -x c++ -S -o /dev/null - 2>"$work/why" || return
    [ -z "$2" ] || command -v "${2%% *}" >"$work/why"
}

# The program through which hello_test.sh runs hello stands beside it.
hello_commands() {
    # shellcheck disable=SC2016 # variables of the build
    printf '%s\n' 'make -j2 CC="$CC" CXX="$CXX" AR="$AR" CFLAGS="$flags" CXXFLAGS="$flags"' \
        'export LD_LIBRARY_PATH=.' '$emulator ./library_test' \
        'echo "exec $emulator ./hello \"\$@\"" >run' 'chmod +x run' './hello_test.sh ./run'
}

# test_target NAME PREFIX EMULATOR MODES OPTIONS
test_target() {
    export emulator=${3:+$3 -L /usr/${2%-}} flags qmr_coverage_stub_mold
    # shellcheck disable=SC2086 # several options
    "$root/packaging/runtime.sh" "$LLTCOV_RUNTIME/liblltcov_rt.a" "$2" $5 -Wall -Wextra -Werror || return
    for flags in '-O0 -g' '-O2 -g'; do
        with_gcov "$work/source" "$(hello_commands)" "$2" "$5" || return
        for qmr_coverage_stub_mold in ${4//,/ }; do
            with_lltcov "$work/source" "$(hello_commands)" "$2" "$5" || return
            differing "$work/gcov.rows" "$work/lltcov.rows" >"$work/result" ||
                status=1
            sed "\$s/^/$1 $flags, mode $qmr_coverage_stub_mold: /" "$work/result"
        done
        [ "$flags" = '-O0 -g' ] || continue
        # Not the counts: the compiler cuts a line with temporaries into other blocks for each target
        # (phrases/greeting.cpp:6 runs 7 or 14 times, in its own gcov too).
        awk '$1 == "line" { print $2, $3, ($4 > 0) }' "$work/lltcov.rows" >"$work/$1.lines"
        diff "$work/native.lines" "$work/$1.lines" || status=1
    done
    return "${status:-0}"
}

failed=()
cp -a "$root/examples/hello" "$work/source"
make -s -C "$work/source" clean
while read -r name prefix emulator modes options; do
    [ $# = 0 ] || [ "$name" = native ] || [[ " $* " = *" $name "* ]] || continue
    prefix=${prefix#-} emulator=${emulator#-}
    if ! can_build "$prefix" "$emulator" "$options"; then
        echo "$name: skipped: ${prefix}g++ or ${emulator:-its library} is missing: $(head -n 1 "$work/why")"
        [ "${STRICT:-0}" = 0 ] || failed+=("$name")
        continue
    fi
    export LLTCOV_RUNTIME=$work/runtime
    (test_target "$name" "$prefix" "$emulator" "$modes" "$options") </dev/null || failed+=("$name")
done < <(targets)
[ ${#failed[@]} = 0 ] || echo "FAILED: ${failed[*]}"
[ ${#failed[@]} = 0 ] && [ -s "$work/native.lines" ]
