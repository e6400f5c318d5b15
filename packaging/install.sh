#!/bin/bash
# Installs what is built, and keeps the list of files and directories that came by it, for uninstall.sh:
# PREFIX/share/lltwrapper/installed.
# usage: install.sh PREFIX [TARGET...]      TARGET: prefix of a cross compiler, whose runtime is installed, too
# What is built is in build/release, or in the directory BUILD of the environment.
set -euo pipefail
unset CDPATH
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${BUILD:-$root/build/release}
mkdir -p "$1"
prefix=$(cd "$1" && pwd)
shift
list=$prefix/share/lltwrapper/installed

# install_runtime TARGET ARCHIVE: the coverage runtime as its compiler makes it, in one member
install_runtime() {
    local object=${2%.a}.o
    mkdir -p "$(dirname "$2")"
    rm -f "$2"
    "$1-gcc" -std=c99 -D_GNU_SOURCE -O2 -fPIC -fvisibility=hidden -fno-stack-protector -I"$root" \
        -r -nostdlib -o "$object" "$root"/toolset/runtime/*.c
    "$1-objcopy" --wildcard --keep-global-symbols="$root/toolset/runtime/public_symbols" "$object"
    "$1-ar" rcs "$2" "$object"
    rm "$object"
    echo "-- Installing: $2"
}

before=$(find "$prefix" -type d | LC_ALL=C sort)
cmake --install "$build" --prefix "$prefix"
names=$(<"$build/install_manifest.txt")
runtime=$(grep '/liblltcov_rt\.a$' <<<"$names")
for target; do
    archive=$(dirname "$runtime")/$target/liblltcov_rt.a
    install_runtime "$target" "$archive"
    names+=$'\n'$archive
done
made=$(find "$prefix" -type d | LC_ALL=C sort | LC_ALL=C comm -13 <(printf '%s\n' "$before") -)
{
    # A second time: also what the first one made.
    cat "$list" 2>/dev/null || true
    printf '%s\n' "${names//"$prefix/"/}"
    sed "s|^$prefix/||; s|\$|/|" <<<"$made"
} | grep -v '^/*$' | LC_ALL=C sort -u >"$list.new"
mv "$list.new" "$list"
