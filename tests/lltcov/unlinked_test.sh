#!/bin/bash
# A source that a static and a shared library hold, of which tests link one: the other one is marked, and its
# lines count by those of the first.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
printf '%s\n' 'int twice(int x)' '{' '    return 2 * x;' '}' > lib.c
printf '%s\n' 'int twice(int);' 'int main(void)' '{' '    return twice(0);' '}' > test.c
cat > build <<'SH'
gcc -g -O0 -c lib.c -o lib.o && ar rcs libx.a lib.o && gcc -g -O0 -fPIC -c lib.c -o lib.lo &&
    gcc -shared lib.lo -o libx.so && gcc -g -O0 -c test.c -o test.o &&
    for how in $1; do gcc test.o $how -o test || exit; ./test || exit; done
SH
row() { lltcov status 2> said | awk -v name="$1" '$1 == name { print $4, $5, $10, $11 }'; }
note="lltcov: no program or shared library was linked with '$work/libx.a': nothing in it can run; link a test with it, by lltcov run, to count it"
# what the tests link | lines, rate and runs of the static library | of the shared one | lines on standard error
while IFS='|' read -r links static shared says; do
    lltcov clean --all > /dev/null 2>&1
    rm -f ./*.o ./*.a
    logged env LD_LIBRARY_PATH=. lltcov run -- sh build "$links" || exit 2
    for row in "libx $static" "libx_so $shared" "total 4/4 100.0"; do
        expect "tests with $links: ${row%% *}" "${row#* }" "$(row "${row%% *}" | cut -d ' ' -f "1-$(wc -w <<< "${row#* }")")"
    done
    for report in status 'status --json' 'export --lcov'; do
        # shellcheck disable=SC2086 # words
        expect "tests with $links: $report says" "$says" "$(lltcov $report 2>&1 > out | grep -c -F "$note")"
    done
done <<'ROWS'
./libx.so|0/2 - not|2/2 100.0 1|1
./libx.a|2/2 100.0 1|0/2 0.0 0|0
./libx.so ./libx.a|2/2 100.0 1|2/2 100.0 1|0
ROWS
finish
