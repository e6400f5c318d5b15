#!/bin/bash
# Installs what is built, and keeps the list of files and directories that came by it: DATA/installed.
# usage: install.sh PREFIX [BUILD]       BUILD: build/release
set -euo pipefail
unset CDPATH
mkdir -p "$1"
prefix=$(cd "$1" && pwd)
build=${2:-$(dirname "${BASH_SOURCE[0]}")/../build/release}
list=$prefix/share/lltwrapper/installed

before=$(find "$prefix" -type d | LC_ALL=C sort)
cmake --install "$build" --prefix "$prefix"
made=$(find "$prefix" -type d | LC_ALL=C sort | LC_ALL=C comm -13 <(printf '%s\n' "$before") -)
{
    # A second time: also what the first one made.
    cat "$list" 2>/dev/null || true
    sed "s|^$prefix/||" "$build/install_manifest.txt"
    printf '\n'
    [ -z "$made" ] || sed "s|^$prefix/||; s|\$|/|" <<<"$made"
} | grep . | LC_ALL=C sort -u >"$list.new"
mv "$list.new" "$list"
