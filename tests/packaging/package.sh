#!/bin/bash
# The packages of two builds, in two directories, are the same byte for byte; the .deb files are installed,
# used and removed in a bare root of this machine's Debian.
# usage: package.sh
set -euo pipefail
unset CDPATH
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
git -C "$root" diff --quiet HEAD || { echo 'the other build is of the last commit: commit the changes first' >&2 && exit 1; }
other=$(mktemp -d "${TMPDIR:-/tmp}/package.XXXXXX")
trap 'rm -rf "$other"' EXIT

"$root/packaging/package.sh"
git clone -q "$root" "$other/a b"
"$other/a b/packaging/package.sh"
for package in "$root"/build/packages/lltwrapper*; do
    cmp "$package" "$other/a b/build/packages/$(basename "$package")"
done
[ "$(find "$other/a b/build/packages" -name 'lltwrapper*' | wc -l)" = 5 ]

suite=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
BRING=build/packages "$root/tests/in_root.sh" "$suite" tests/packaging/in_bare_root.sh
