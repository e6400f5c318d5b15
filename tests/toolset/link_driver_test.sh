#!/bin/bash
# Every kind of link that builds make, run and its counts compared.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
mkdir bin
cp "$programs/lltld" bin
driver=$work/bin/lltld area=$work/LLTTEMP/codemeasure said=$work/link.err
enter_project "$work"
export LLTCOV_RUNTIME=$programs/lib/lltcov/liblltcov_rt.a

# instrumented NAME [OPTION...]: NAME.o from NAME.c; each of its functions has one counter
instrumented() {
    lltcc -qmr_current_prj_path "$work" -projectname LLTTEMP -qmr_coverage_stub_mold 1 \
        gcc -O0 "${@:2}" -fPIC -c "$1.c" -o "$1.o" || exit
}

# link NAME COMMAND...: as lltwrapper calls the driver
link() {
    target=$1
    shift
    "$driver" -qmr_current_prj_path "$work" -projectname "$target" -qmr_coverage_stub_mold 1 \
        "$@" > "$work/link.out" 2> "$work/link.err"
}

# counts MODULE SOURCE: the counts of SOURCE.c in every dump file of the module, one line per file, sorted
counts() {
    find "$work/llt_result" -name "$1.*.lltcov" 2> /dev/null | while read -r file; do
        place=$(sed '/^counts /q' "$file" | awk -v "symbol=$2_c_" '
            { header += length($0) + 1 }
            $1 == "file" && index($3, symbol) == 1 { start = bytes; size = $4 }
            $1 == "file" { bytes += $4 }
            END { print header + 8 + start + 1, size + 0 }')
        tail -c "+${place% *}" "$file" | head -c "${place#* }" | od -An -v -w8 -tu8 | xargs -r
    done | sort
}

printf 'int beta(int);\nint main(int argc, char **argv)\n{\n    return beta(argc) - (argv != 0);\n}\n' > main.c
printf 'int beta(int x)\n{\n    return x;\n}\n' > beta.c
gcc -c main.c -o plain.o
echo 'int other(void) { return 0; }' > other.c
gcc -fPIC -c other.c
echo 'const char *format = "extern int g_QMRCovData_%s[];";' > format.c
gcc -c format.c
echo 'int is_secure(void) { return 1; } int write_all(void) { return 2; }' > inner.c # as in the runtime
gcc -c inner.c
instrumented main
instrumented beta -O2

wrapped_ar() { lltwrapper -artool ar -arsuffix .a ar "$@" > /dev/null 2>&1; }
wrapped_ar rcs libbeta.a beta.o
mkdir sub twin raw conv
wrapped_ar rcs conv/libconv.a beta.o other.o
wrapped_ar rcs twin/libbeta.a main.o
ar rcs raw/libraw.a beta.o other.o
ar rcsT raw/thin.a beta.o other.o
echo '/* -lno */ GROUP ( AS_NEEDED ( -lm ) raw/libraw.a )' > raw/libscript.so
echo 'main.o -o "rsp" beta.o' > words.rsp

# What a link gives: NAME | dump of the module for main | the same for beta | COMMAND
# The output is NAME; "-" in the table stands for no dump.
check_row() {
    rm -rf llt_result
    eval "link '$1' $4"
    status=$?
    expect "$1 links" 0 $status
    # shellcheck disable=SC2086
    [ ! -x "./$1" ] || { "./$1"; expect "$1 runs" 0 $?; }
    expect "$1 counts main" "$2" "$(counts '*' main)"
    expect "$1 counts beta" "$3" "$(counts '*' beta)"
}
while IFS='|' read -r name of_main of_beta command; do
    check_row "$name" "$of_main" "$of_beta" "$command"
done <<'ROWS'
direct|1 1|1|gcc main.o beta.o -o direct
inner_names|1 1|1|gcc main.o beta.o inner.o -o inner_names
texts|1 1|1|gcc main.o beta.o format.o -o texts
behind|1 1|1|gcc -o behind -L. main.o -lbeta -Wl,--as-needed -lm
static|1 1|1|gcc -static -o static main.o libbeta.a
group|1 1|1|gcc -o group -Wl,--start-group libbeta.a main.o -Wl,--end-group
whole|1 1|1|gcc -o whole main.o -Wl,--whole-archive libbeta.a -Wl,--no-whole-archive
library||1|gcc plain.o libbeta.a -o library
whole_library||1|gcc plain.o -o whole_library -Wl,--whole-archive libbeta.a -Wl,--no-whole-archive
shared|1 1|1|gcc main.o beta.o conv/libconv.a -o shared
rawlib||1|gcc plain.o -o rawlib raw/libraw.a
thin||1|gcc plain.o -o thin raw/thin.a
named_libc|1 1|1|gcc -nodefaultlibs main.o beta.o -o named_libc -lc
script||1|gcc plain.o -o script -Lraw -lscript
language||1|gcc -x c main.c -o language -L. -lbeta
rsp|1 1|1|gcc @words.rsp -Wl,-E -Wl,-S
wl|1 1|1|gcc -o wl main.o -Wl,beta.o
xlinker|1 1|1|gcc -o xlinker main.o -Xlinker beta.o
gcsections|1 1|1|gcc -o gcsections -Wl,--gc-sections -s main.o beta.o
ROWS
for linker in bfd gold lld; do
    if gcc "-fuse-ld=$linker" -Wl,--version > /dev/null 2>&1; then
        check_row "by_$linker" "1 1" 1 "gcc -fuse-ld=$linker -o by_$linker main.o libbeta.a"
    else
        echo "skipped: the linker $linker is not installed"
    fi
done

# a relocatable link stays as it is, and its result is an input like any other
link part gcc -r -nostdlib main.o beta.o -o part.o
expect "-r gives no work area" "no" "$([ -d part_exe ] && echo yes || echo no)"
check_row whole_part "1 1" 1 "gcc part.o -o whole_part"

# a shared library carries its own stub and runtime; the static one of the same stem keeps its own
link libbeta gcc -shared -Wl,--no-undefined beta.o -o sub/libbeta.so
expect "shared library links" 0 $?
check_row uses_so "1 1" 1 "gcc main.o -Lsub -lbeta '-Wl,-rpath,\$ORIGIN/sub' -o uses_so"
rm -rf llt_result
gcc plain.o -Lsub -lbeta "-Wl,-rpath,$PWD/sub" -o plain_uses_so && ./plain_uses_so
expect "a plain program reports the library's counts" 1 "$(counts libbeta_so beta)"
check_row two_forms "" 1 "gcc plain.o -Lsub -L. -Wl,-Bstatic,-Bdynamic -lbeta -Wl,-rpath,sub -o two_forms"
expect "a library of both forms is the shared one" "no" "$([ -d two_forms_exe ] && echo yes || echo no)"
expect "work areas of one stem" "libbeta libbeta_so" "$(echo libbeta libbeta_so/codemeasure/..* | sed 's|/.*||')"

link libversion gcc -shared beta.o -o libversion.so.1.2
expect "a library with a version" libversion_so "$(ls -d libversion_*)"

# ld itself, as a compiler driver would call it
file_of() { gcc -print-file-name="$1"; }
check_row by_ld "1 1" 1 "ld -static -o by_ld $(file_of crt1.o) $(file_of crti.o) \
    $(file_of crtbeginT.o) main.o beta.o -L$(dirname "$(file_of libgcc.a)") --start-group -lgcc \
    -lgcc_eh $(file_of libc.a) --end-group $(file_of crtend.o) $(file_of crtn.o)"

# two static libraries of one stem
rm -rf llt_result
link twins gcc libbeta.a twin/libbeta.a libbeta.a -o twins
expect "libraries of one stem link" 0 $?
./twins
expect "libraries of one stem count" "1 1 1" "$(counts '*' main) $(counts '*' beta)"
check_row all_twins "1 1" 1 \
    "gcc -o all_twins -Wl,--whole-archive libbeta.a twin/libbeta.a -Wl,--no-whole-archive"
expect "libraries of one stem are named" 1 "$(grep -c 'different names' link.err)"

# What a link took is on record, and stays so when another library of the stem is made.
expect "a linked library's build" "$(sed -n 's/^BUID=//p' libbeta/codemeasure/.prj) main" \
    "$(sed -n "\\|^library $PWD/twin/libbeta.a|,\$s/^buid \|^symbol \(.*\)_c_.*/\1/p" twins_exe/codemeasure/libraries.txt | xargs)"

# one library archived in two steps
wrapped_ar q twin/libsteps.a main.o
wrapped_ar q twin/libsteps.a beta.o
check_row steps "1 1" 1 "gcc twin/libsteps.a -o steps"

# two programs of one name have work areas of their own
link same gcc main.o beta.o -o sub/same
link same gcc main.o beta.o -o twin/same
rm -rf llt_result
sub/same && twin/same
expect "programs of one name" "1 1 1 1" "$(counts same_exe main) $(counts same_exe_2 main)"

# a destructor of a library that runs after the library's stub and the program's runtime
cat > bye.c <<'C'
static int all;
__attribute__((destructor)) static void bye(void) { ++all; }
int beta(int x) { return x; }
C
instrumented bye
wrapped_ar rcs libbye.a bye.o
link libgone gcc -shared other.o libbye.a -Wl,-u,beta -o libgone.so
check_row goes "1 1" "" "gcc main.o ./libgone.so -o goes"
expect "late destructors count" "1 1" "$(counts libbye bye)"

# The functions that the compiler puts in place of fork and exec are there without a runtime, too.
cat > execs.c <<'C'
#include <sys/wait.h>
#include <unistd.h>
int main(void)
{
    if (fork() == 0)
        return 0;
    wait(0);
    execl("/nowhere", "", "", "", "", "", "", "", "", (char *)0);
    return execl("/bin/sh", "sh", "-c", "test $6 = six", "0", "1", "2", "3", "4", "5", "six", (char *)0);
}
C
instrumented execs
while read -r how dumps runtime; do
    rm -rf llt_result
    LLTCOV_RUNTIME=$runtime link execs gcc "$how" execs.o -o execs && ./execs
    expect "$how, runtime $runtime: the new program ends well" 0 $?
    expect "$how, runtime $runtime: dump files" "$dumps" "$(counts execs_exe execs | grep -c .)"
done <<ROWS
-rdynamic 1 $LLTCOV_RUNTIME
-static 1 $LLTCOV_RUNTIME
-rdynamic 0 /nowhere
-static 0 /nowhere
ROWS
echo 'int puts(const char *); int execv(void) { return puts("fake") < 0; }' > fake.c
gcc -w -fno-builtin -c fake.c
link fakes gcc -o fakes execs.o fake.o
expect "a test's own exec" "fake fake" "$(./fakes | xargs)"

# the coverage side fails, the link does not
check_plain() {
    "./$2"
    expect "$1: runs" 0 $?
    expect "$1: reports nothing" "" "$(counts '*' main)"
    expect "$1: says so" 1 "$(grep -c 'no coverage' link.err)"
}
rm -rf llt_result
LLTCOV_RUNTIME=/nowhere link no_runtime gcc main.o libbeta.a -o no_runtime
check_plain "no runtime" no_runtime
link libfree gcc -shared -nostdlib beta.o -o libfree.so && gcc plain.o ./libfree.so -o uses_free
check_plain "no C library" uses_free
sed -i 's/^assembler as/assembler no/' "${area:?}"/db/dbmain_c_*/record
link no_stub gcc main.o beta.o -o no_stub
check_plain "a table that is not assembled" no_stub
instrumented main

# --- what the settings say of a program
cat >waits.c <<'END'
#include <signal.h>
#include <unistd.h>
int asked;
void TUSK_UserAgentConfig(void) { asked = 1; }
int main(int argc, char **argv)
{
    if (argc > 2)
        sleep(2);
    else if (argc > 1)
        raise(SIGUSR1);
    (void)argv;
    _exit(asked);
}
END
instrumented waits
odd="$work/odd \"\\\\n\" \$root"
# NAME | SETTINGS | ARGUMENTS | status and dumps of the program
while IFS='|' read -r name settings arguments expected; do
    rm -rf "$odd"
    # shellcheck disable=SC2163,SC2086 # words
    (export $settings "lltcovRootpath=$odd" && link waits gcc waits.o -o waits)
    # shellcheck disable=SC2086 # words
    ./waits $arguments
    expect "$name" "$expected" "$? $(find "$odd" -name 'waits_exe.*' 2>/dev/null | wc -l)"
done <<'END'
no policy|LLT_DISABLE_USRCFG=0||1 0
a signal|SignalPolicy=1 SignalNUM=10|x|0 1
a timer|TimerPolicy=1 TimeInterval=1|x x|0 1
settings that are not asked for|LLT_DISABLE_USRCFG=1||0 0
END

qmr_current_prj_path='' "$driver" -qmr_current_prj_path -projectname lost \
    -qmr_coverage_stub_mold 1 gcc plain.o beta.o -o lost > link.out 2> link.err
expect "no project: the linker's status" 1 $?
expect "no project: says so" 1 "$(grep -c 'project is not known' link.err)"

mkdir gone
mv "$area"/db/dbbeta_c_* gone
objcopy --remove-section .lltcov_record beta.o bare.o # the record that else comes back from the object
link gone gcc main.o bare.o -o gone_program
expect "missing records fail" 1 $?
expect "missing records are named" 1 "$(grep -c 'counter array of unknown size' link.err)"
mv gone/* "$area/db"

# the user's own error is reported once, with the tool's status
link wrong gcc main.o -o wrong
expect "user's error: status" 1 $?
expect "user's error: once" 1 "$(grep -c 'undefined reference to .beta' link.err)"

# runs that concern no coverage are run word for word
cat > bin/tool <<'TOOL'
#!/bin/sh
printf '[%s]' "$@"
exit 7
TOOL
chmod +x bin/tool
while IFS='|' read -r words; do
    eval "link plain bin/tool $words"
    expect "status of: $words" 7 $?
    # shellcheck disable=SC2086
    expect "words of: $words" "$(eval "bin/tool $words")" "$(cat link.out)"
done <<'ROWS'
plain.o -o 'a b' -DX='"y"'
-r main.o -o x.o
-c main.c -o main2.o
main.o -Wl,-r -o y.o
-o main.o plain.o
ROWS
LLTLD_RUNS=1 link nested bin/tool main.o beta.o -o nested
expect "a nested call" "[main.o][beta.o][-o][nested]" "$(cat link.out)"
"$driver" -qmr_current_prj_path -projectname x -qmr_coverage_stub_mold bin/tool q > link.out 2>&1
expect "unset project and mode" "[q]" "$(cat link.out)"

# sources in a link go through the compiler driver beside the link driver
cat > bin/lltcc <<'LLTCC'
#!/bin/bash
[ "$1 $3 $4" = "-qmr_current_prj_path -projectname LLTTEMP" ] || exit 9
shift 6
echo "$*" >> "$qmr_current_prj_path/lltcc.log"
case "$*" in *beta.c*) cp beta.o "${!#}" ;; *) exit 1 ;; esac
LLTCC
chmod +x bin/lltcc
check_row compiled "" 1 "gcc plain.o -O1 beta.c -o compiled -lm"
expect "its call" "gcc -O1 -c beta.c" "$(sed 's/ -o .*//' lltcc.log)"
rm lltcc.log
check_row deps "" 1 "gcc plain.o -MMD ./other.o beta.c -o ./deps"
expect "dependencies" "gcc -MMD -MF ./deps.d -MQ ./deps -c beta.c" \
    "$(sed 's/ -o .*//' lltcc.log)"
check_row fallen_back "" 1 "gcc main.c libbeta.a -o fallen_back"
finish
