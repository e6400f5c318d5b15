#!/bin/bash
# Builds a sample project through lltwrapper with the tool set of toolset/, runs its tests
# and makes an HTML report of the lines that ran. Checks on the way that nothing went past
# lltwrapper, that the tests pass as without it and that the report shows the whole library.
# usage: demo.sh [NAME|all]      (./dev demo installs what it needs and builds the program first)

# shellcheck source=examples/build_twice.sh
. "$(dirname "${BASH_SOURCE[0]}")/build_twice.sh"
demo=$root/build/demo

# Each object with code has counters, each linked file registers them, each archive has a stub.
check_built_files() {
    local file symbols
    compiles=0 links=0 archives=0
    while read -r file; do
        case $file:$(readelf -h "$file" 2>/dev/null | sed -n 's/^ *Type: *//p') in
            *.a:*)
                archives=$((archives + 1))
                [[ $(ar t "$file") = *__code_measure_stub_lib_* ]] || die "$name: $file has no stub"
                ;;
            *:REL*)
                compiles=$((compiles + 1))
                symbols=$(nm "$file")
                [[ $symbols != *' '[Tt]' '* || $symbols = *' g_QMRCovData_'* ]] ||
                    die "$name: $file has no counters"
                ;;
            *:EXEC* | *:DYN*)
                links=$((links + 1))
                [[ $(nm "$file") = *' QMR_CreateCoverageListExt'* ]] ||
                    die "$name: $file does not register its counters"
                ;;
        esac
    done <"$work/wrapped.built"
    if [ "$compiles" -eq 0 ] || [ "$links" -eq 0 ]; then
        die "$name: nothing was built (log: $work/wrapped.build.log)"
    fi
}

make_report() {
    logged export lltcov export --lcov -o "$work/report.info"
    logged genhtml genhtml --title "$name" --prefix "$place/tree" --demangle-cpp --branch-coverage \
        -o "$work/html" "$work/report.info"
    # "SOURCE LINE COUNT", the source relative to the project's directory
    sed -n -e 's/^SF://p' -e 's/^DA:/ /p' "$work/report.info" |
        awk -v skip=$((${#place} + 7)) '/^ / { sub(",", " "); print source $0; next }
            { source = substr($0, skip) }' | sort >"$work/lines"
}

check_report() {
    local source
    total=$(wc -l <"$work/lines")
    hit=$(awk '$NF > 0' "$work/lines" | wc -l)
    [ "$hit" -gt 0 ] || die "$name: no line was hit, says $work/report.info"
    while read -r source; do
        grep -q "^$source " "$work/lines" || die "$name: $source is missing in $work/report.info"
    done < <(project_sources "$name")
    [ "$(find "$work/html" -name '*.gcov.html' | wc -l)" = "$(grep -c '^SF:' "$work/report.info")" ] ||
        die "$name: sources without a page in $work/html (log: $work/genhtml.log)"
}

table_row() { printf '%-12s %8s %8s %8s %11s %8s\n' "$@"; }

# demo_one NAME: of a project that was fetched
demo_one() {
    local began=$SECONDS built
    prepare "$1" "$demo/$1"
    say "$name: building and testing it without lltwrapper"
    build_and_test plain
    say "$name: building and testing it through lltwrapper"
    wrapper_environment "$root/build/release"
    build_and_test wrapped
    compare_builds
    check_built_files
    say "$name: the tests pass as without lltwrapper;" \
        "$compiles compiles, $links links and $archives archives went through it"
    built=$SECONDS
    make_report
    check_report
    table_row "$name" "$compiles" "$links" "$archives" "$hit/$total" $((SECONDS - began)) >"$work/row"
    say "$name: $hit of $total lines hit; report $work/html/index.html ($((SECONDS - built)) s for the" \
        "report, $((SECONDS - began)) s for the project, $SECONDS s in all)"
}

# Every project, then a table of them. A project that cannot be fetched is left out, and said so.
demo_all() {
    local each failed='' status
    mkdir -p "$demo"
    table_row project compiles links archives lines seconds >"$demo/table"
    for each in $(projects | cut -d ' ' -f 1); do
        if ! fetch "$each" "$demo/$each"; then
            table_row "$each" '' '' '' 'not fetched' '' >>"$demo/table"
            continue
        fi
        set +e
        (set -e && demo_one "$each")
        status=$?
        set -e
        if [ $status = 0 ]; then cat "$demo/$each/row" >>"$demo/table"; else failed+=" $each"; fi
    done
    for each in hello-cmake hello-meson; do
        cmp "$demo/hello/lines" "$demo/$each/lines" || failed+=" $each (other lines than hello)"
    done
    cat "$demo/table"
    [ -z "$failed" ] || die "these did not pass:$failed"
    say "all that could be fetched passed ($SECONDS s)"
}

if [ "${1:-}" = all ]; then
    demo_all
    exit
fi
name=${1:-hello}
[ -n "$(project "$name" 1)" ] ||
    die "there is no sample project '$name'; take one of: $(projects | cut -d ' ' -f 1 | tr '\n' ' ')all"
fetch_or_hello "$name" "$demo"
demo_one "$name"
