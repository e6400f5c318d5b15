#!/bin/sh
# Fails when a folder includes from a folder that it must not know, and names file and line.
# usage: check_layers.sh [SOURCE_DIR]
set -eu
cd "${1:-$(dirname "$0")/..}"
violations=0

# keep_out FOLDER OTHER...: no file of FOLDER may include from the OTHER folders
keep_out() {
    folder=$1
    shift
    sources=$(find "$folder" -name '*.cpp' -o -name '*.h')
    if [ -z "$sources" ]; then
        echo "check_layers: $folder/ in $PWD holds no sources: nothing to check" >&2
        exit 2
    fi
    for other; do
        include="^[[:space:]]*#[[:space:]]*include[[:space:]]*[\"<]([^\">]*/)?$other/"
        if grep -rnE --include='*.cpp' --include='*.h' "$include" "$folder"; then
            echo "check_layers: $folder/ must not include from $other/" >&2
            violations=1
        fi
    done
}

keep_out commonfunc contract lltld lltwrapper lltcov tests
keep_out contract lltld lltwrapper lltcov tests
keep_out lltld lltwrapper lltcov tests
keep_out lltwrapper lltcov tests
keep_out lltcov tests
keep_out examples/toolset lltwrapper lltcov tests
exit $violations
