#!/bin/bash
# Removes what install.sh has installed under PREFIX, and no more: files of its list, and the directories
# that came by it, when nothing else is in them.
# usage: uninstall.sh PREFIX
set -euo pipefail
unset CDPATH
prefix=$1
list=$prefix/share/lltwrapper/installed
if ! grep -q . "$list" 2>/dev/null; then
    echo "dev: '$prefix' holds no installation of ./dev install: there is no '$list'" >&2
    exit 1
fi
prefix=$(cd "$prefix" && pwd)
mapfile -t names < <(LC_ALL=C sort -r "$prefix/share/lltwrapper/installed")
cd "$prefix"
rm -f share/lltwrapper/installed
for name in "${names[@]}"; do
    case /$name in
        */../* | //*) echo "dev: '$name' stays, it is not in '$prefix'" >&2 ;;
        */) rmdir "$name" 2>/dev/null || true ;; # of others, too
        *) rm -f "$name" ;;
    esac
done
echo "removed ${#names[@]} files and directories of '$prefix'"
