#!/bin/bash
# Makes the picture of README.md: builds examples/hello by ./dev demo and has chromium take a picture of a
# page of its report.
# usage: docs/screenshot.sh [FILE]      FILE: docs/report.png
set -euo pipefail
unset CDPATH
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
picture=$(realpath "${1:-$root/docs/report.png}")

for browser in chromium chromium-browser google-chrome ''; do
    command -v "$browser" >/dev/null && break
done
[ -n "$browser" ] || { echo 'screenshot.sh: there is no chromium on PATH; install the package chromium' >&2 && exit 1; }
"$root/dev" demo hello

profile=$(mktemp -d)
trap 'rm -rf "$profile"' EXIT
options=(--headless --disable-gpu --hide-scrollbars --user-data-dir="$profile" "--window-size=900,460")
[ "$(id -u)" != 0 ] || options+=(--no-sandbox) # which chromium refuses to make for root
"$browser" "${options[@]}" --screenshot="$picture" \
    "file://$root/build/demo/hello/html/almanac/day_part.c.gcov.html" 2>"$profile/log" || {
    cat "$profile/log" >&2
    exit 1
}
echo "screenshot.sh: $picture ($(stat -c %s "$picture") bytes)"
