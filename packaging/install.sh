#!/bin/bash
# Installs what is built, and keeps the list of files and directories that came by it, for uninstall.sh:
# PREFIX/share/lltwrapper/installed.
# usage: install.sh PREFIX [TARGET...]      TARGET: prefix of a cross compiler, whose runtime is installed, too,
#        or m32, for gcc -m32
# What is built is in build/release, or in the directory BUILD of the environment.
set -euo pipefail
unset CDPATH
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${BUILD:-$root/build/release}
mkdir -p "$1"
prefix=$(cd "$1" && pwd)
shift
list=$prefix/share/lltwrapper/installed

before=$(find "$prefix" -type d | LC_ALL=C sort)
cmake --install "$build" --prefix "$prefix"
names=$(<"$build/install_manifest.txt")
runtime=$(grep '/liblltcov_rt\.a$' <<<"$names")
for target; do
    archive=$(dirname "$runtime")/$target/liblltcov_rt.a
    tools=("$target-")
    [ "$target" != m32 ] || tools=('' -m32)
    "$root/packaging/runtime.sh" "$archive" "${tools[@]}"
    echo "-- Installing: $archive"
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
