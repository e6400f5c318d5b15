#!/bin/bash
# Prints the project's own files of these patterns, also where there is no git; a NUL ends each name.
# usage: own_files.sh PATTERN...
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit
if [ -e .git ] && command -v git >/dev/null && git ls-files -z -co --exclude-standard -- "$@" 2>/dev/null; then
    exit
fi
names=()
for pattern; do names+=(-o -name "$pattern"); done
find . -path ./build -prune -o -type f \( "${names[@]:1}" \) -print0
