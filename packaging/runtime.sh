#!/bin/bash
# Makes the coverage runtime for a target, as the build makes that of the machine itself.
# usage: runtime.sh ARCHIVE PREFIX [OPTION...]      PREFIX: of the tools' names, such as aarch64-linux-gnu-;
#        OPTION: of the compiler, such as -m32
set -euo pipefail
unset CDPATH
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
archive=$1 tools=$2
shift 2
mkdir -p "$(dirname "$archive")"
cd "$(dirname "$archive")"
archive=$(basename "$archive")
compile=("${tools}gcc" -std=c99 -D_GNU_SOURCE -O2 -fPIC -fvisibility=hidden -fno-stack-protector -I"$root" "$@")

rm -f "$archive"
shopt -s extglob
"${compile[@]}" -r -nostdlib -o runtime.o "$root"/toolset/runtime/!(wrap).c
"${tools}objcopy" --wildcard --keep-global-symbols="$root/toolset/runtime/public_symbols" runtime.o
"${compile[@]}" -c -o wrap.o "$root/toolset/runtime/wrap.c"
"${tools}ar" rcs "$archive" runtime.o wrap.o
rm runtime.o wrap.o
