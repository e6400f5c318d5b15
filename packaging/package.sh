#!/bin/bash
# Makes the packages, the same byte for byte each time: .deb and .rpm, the parts for other projects'
# build files apart, and .tar.gz with everything.
# usage: package.sh      builds in build/package, packages come to build/packages
# The time in them is SOURCE_DATE_EPOCH, else that of the last commit, else that of the change log.
set -euo pipefail
unset CDPATH
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build/package
packages=$root/build/packages

if [ -z "${SOURCE_DATE_EPOCH:-}" ]; then
    SOURCE_DATE_EPOCH=$(git -C "$root" log -1 --format=%ct 2>/dev/null || stat -c %Y "$root/CHANGELOG.md")
fi
export SOURCE_DATE_EPOCH LC_ALL=C TZ=UTC
umask 022
mkdir -p "$packages"
log=$packages/log
rm -rf "${packages:?}"/*

# logged COMMAND...
logged() {
    "$@" >>"$log" 2>&1 </dev/null && return
    tail -n 40 "$log" >&2
    exit 1
}
logged cmake -S "$root" --preset package -B "$build"
logged cmake --build "$build" -j "$(nproc)"
made=$(mktemp -d) # rpmbuild takes no path with a blank
trap 'rm -rf "$made"' EXIT
(cd "$build" && logged cpack -B "$made")
mv "$made"/lltwrapper[-_]* "$packages"
ls -1 "$packages"/lltwrapper*

# lintian's own warning about root is none of the packages'.
if command -v lintian >/dev/null; then
    found=$(lintian --allow-root --fail-on none "$packages"/*.deb)
    [ -z "$found" ] || { echo "$found" >&2 && exit 1; }
fi
