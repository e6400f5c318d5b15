#!/bin/bash
# Fails when a unit does not include what it uses, or includes what it does not use, as
# include-what-you-use sees it; headers are looked at with the source of their name.
# usage: check_includes.sh BUILD      BUILD: a build directory configured for clang
set -euo pipefail
cd "$(dirname "$0")/.."
rooms=(commonfunc contract lltld lltwrapper lltcov toolset)
# What it names for the inside of templates, and a header that is another's inside.
noise='<(type_traits|initializer_list|iterator|iosfwd|bits/chrono.h|bits/types/sig_atomic_t.h|ext/alloc_traits.h|memory|system_error|syscall.h)>'
options=()
for option in --no_fwd_decls --no_comments --quoted_includes_first --cxx17ns "--mapping_file=$PWD/tests/includes.imp"; do
    options+=(-Xiwyu "$option")
done

found=$(iwyu_tool -j "$(nproc)" -p "$1" "${rooms[@]}" -- "${options[@]}" 2>&1 |
    awk -v noise="$noise" '
        / should (add|remove) these lines:$/ {
            what = $(NF - 2)
            file = $0
            sub(/ should [a-z]* these lines:$/, "", file)
            next
        }
        /^The full include-list|^---$/ { what = "" }
        what && /#include/ {
            sub(/^- /, "")
            # A header of C is taken by its C++ form, and an umbrella stays what it is.
            if ($0 ~ noise || $0 ~ /<(std|str|err|sig|ti|lim)[a-z]*\.h>/ ||
                file ~ /Caddis_func\.h|linuxfunc\.h|covlinktool\.h/) next
            print file ": " what " " $0
        }
        /error:/ { print }' | sort -u)
[ -z "$found" ] || { printf '%s\n' "$found" >&2 && exit 1; }
