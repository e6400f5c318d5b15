# shellcheck shell=bash
# shellcheck disable=SC2154 # work is that of the sourcing script
# Builds a program with `gcc --coverage` and through lltwrapper and the tool set, and compares what
# gcov and lltcov say of it. To be sourced after common.sh.
# Verdicts are sorted rows. Fields are separated by tabs; files are those below the project's directory,
# relative to it:
#     line FILE LINE COUNT            added up over functions and objects
#     start FILE FUNCTION LINE        assembler name
#     function FILE FUNCTION COUNT
#     branches FILE LINE COUNT...     a row for each function that has branches in the line
set -o pipefail

# fresh_tree SOURCE: in the same place each time, as its path appears in the reports
fresh_tree() {
    rm -rf "$work/tree"
    cp -a "$1" "$work/tree"
    cd "$work/tree" || return
}

# with_gcov SOURCE COMMANDS [PREFIX [OPTIONS]]: runs shell commands that build and test a copy of the
# directory by $CC, $CXX and $AR, the compilers of that prefix with these options; leaves gcov.rows
with_gcov() {
    fresh_tree "$1"
    CC="${3:-}gcc --coverage ${4:-}" CXX="${3:-}g++ --coverage ${4:-}" AR=${3:-}ar \
        logged bash -ec "$2" || return
    gcov_verdicts "$work/tree" "${3:-}gcov" >"$work/gcov.rows"
}

# with_lltcov SOURCE COMMANDS [PREFIX [OPTIONS]]: the same with the tool set; leaves lltcov.rows
with_lltcov() {
    fresh_tree "$1"
    (
        enter_project "$work/tree"
        CC="lltwrapper ${3:-}gcc ${4:-}" CXX="lltwrapper ${3:-}g++ ${4:-}" \
            AR="lltwrapper -artool ${3:-}ar -arsuffix .a ${3:-}ar" logged bash -ec "$2" &&
            logged lltcov export --lcov --no-markers -o "$work/report.info"
    ) || return
    tracefile_verdicts "$work/tree" <"$work/report.info" >"$work/lltcov.rows"
}

# gcov_verdicts ROOT [GCOV]: of all notes below ROOT, also of objects that never ran
gcov_verdicts() {
    find "$1" -name '*.gcno' -print0 |
        xargs -0 -r -n 1 "${2:-gcov}" --json-format --stdout -b 2>/dev/null |
        jq -r '.current_working_directory as $directory | .files[] |
            (if .file | startswith("/") then .file else $directory + "/" + .file end) as $file |
            (.functions[] | ["start", $file, .name, .start_line, 0, ""],
                ["function", $file, .name, "", 0, .execution_count]),
            (.lines[] | ["line", $file, .line_number, "", 0, .count],
                (. as $line | .branches | to_entries[] |
                    ["branches", $file, $line.line_number, $line.function_name, .key, .value.count])) |
            @tsv' | add_up "$1"
}

# tracefile_verdicts ROOT: of the tracefile in standard input
tracefile_verdicts() {
    awk -v OFS='\t' '
        { kind = $0; sub(/:.*/, "", kind); sub(/^[^:]*:/, ""); split($0, field, ","); name = $0; sub(/^[^,]*,/, "", name) }
        kind == "SF" { file = $0 }
        kind == "FN" { print "start", file, name, field[1], 0, "" }
        kind == "FNDA" { print "function", file, name, "", 0, field[1] }
        kind == "DA" { print "line", file, field[1], "", 0, field[2] }
        kind == "BRDA" { print "branches", file, field[1], field[2], field[3], field[4] }' | add_up "$1"
}

# add_up ROOT: rows KIND FILE PLACE GROUP INDEX COUNT, in any order, a path may go over ".."
add_up() {
    awk -F '\t' -v OFS='\t' -v root="$1/" '
        function plain(path) {
            while (gsub(/\/\.\//, "/", path) || sub(/\/[^\/]+\/\.\.\//, "/", path)) { }
            return path
        }
        {
            path = plain($2)
            if (index(path, root) != 1) next
            path = substr(path, length(root) + 1)
            if ($1 == "start") { print $1, path, $3, $4 | "sort -u"; next }
            row = $1 OFS path OFS $3 SUBSEP $4
            if (!(row in last) || $5 > last[row]) last[row] = $5 + 0
            sum[row, $5 + 0] += $6
        }
        END {
            close("sort -u")
            for (row in last) {
                text = row
                sub(SUBSEP ".*", "", text)
                for (i = 0; i <= last[row]; i++)
                    if ((row, i) in sum) text = text OFS sprintf("%.0f", sum[row, i])
                print text
            }
        }' | LC_ALL=C sort
}

# differing GCOV LLTCOV [AGAIN...]: compares two files of verdicts, shows the rows that differ and
# closes with a summary; fails when there are any, or nothing to compare. AGAIN: what gcov says of
# other runs; what is not the same in all of them is left out.
differing() {
    local again unstable=$1.unstable
    for again in "${@:3}"; do
        LC_ALL=C comm -3 "$1" "$again" | sed 's/^\t//' | cut -f 1-3
    done >"$unstable"
    awk -F '\t' -v unstable="$unstable" -v gcov="$1" '
        function key() { return $1 FS $2 FS $3 }
        FILENAME == unstable { left_out[key()]; next }
        key() in left_out { next }
        FILENAME == gcov { kind[$1]++; row[$0]++; next }
        row[$0]-- > 0 { next }
        { only["lltcov\t" $0] }
        END {
            for (each in row) if (row[each] > 0) only["gcov\t" each]
            for (each in only) { print each | "sort -t \"\t\" -k 3,3 -k 4,4n -k 2,2"; differ++ }
            close("sort -t \"\t\" -k 3,3 -k 4,4n -k 2,2")
            for (each in left_out) { unsteady++ }
            printf "%d lines, %d functions, %d branches: %d rows differ", kind["line"],
                kind["function"], kind["branches"], differ
            print unsteady ? "; left out, as runs with gcov differ: " unsteady : ""
            exit differ > 0 || kind["line"] == 0
        }' "$unstable" "$1" "$2"
}
