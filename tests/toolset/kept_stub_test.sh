#!/bin/bash
# What did not change is not made again: a link keeps its stub and the records of a compile stay, until
# something that they are made of is another one, or they are damaged. Then all is as in a new build.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
mkdir project
cd project || exit
enter_project "$PWD"
area=prog_exe/codemeasure records=LLTTEMP/codemeasure
export area records
echo 'int f(int a) { return a > 2 ? 1 : 0; }' >f.c
echo 'int f(int); int main(void) { return f(3) - 1; }' >main.c

compile() { logged lltwrapper gcc -c f.c && logged lltwrapper gcc -c main.c; }
link() { logged lltwrapper gcc -L . -o prog main.o f.o; }
# state FILE...: another text after the file was written again
state() { stat -c '%i %z' "$@"; }
# as_new: the records and the work area, which a build without any gives too
as_new() {
    find "$area" $records -type f ! -name stub.state ! -name turns.lock -size +0 | sort |
        while read -r file; do
            echo "$file $(sed -E 's/Q[0-9]{10}/BUID/g; s/^(EndTime_Caddis=).*/\1/' "$file" | cksum)"
        done
}

compile && link
while IFS='|' read -r what change expected; do
    stub=$area/obj/__code_measure_stub_lib_prog_exe.o
    before=$(state $stub)
    bash -c "$change" || expect "$what" changed no
    link
    result=made
    [ "$(state $stub 2>&1)" != "$before" ] || result=kept
    expect "stub, $what" "$expected" "$result"
    left=$(as_new)
    mv prog_exe ../kept
    link
    expect "files, $what" "$(as_new)" "$left"
    expect "program, $what" 0 "$(./prog && echo $?)"
    rm -rf ../kept
    link # the next row finds it kept
done <<'E'
nothing changed|:|kept
the program is gone|rm prog|kept
another library list|echo >$area/libraries.txt|kept
a source is compiled again|sed -i s/2/1/ f.c; lltwrapper gcc -c f.c >/dev/null|made
the same source is compiled again|lltwrapper gcc -c f.c >/dev/null|made
an input is another file of the same content|cp f.o g.o; mv g.o f.o|made
a source has another time|touch -d 2001-02-03 f.c; lltwrapper gcc -c f.c >/dev/null|made
the table is gone|rm $area/db/.tab|made
the stub is cut|truncate -s 9 $area/obj/*.o|made
the stub is written over|dd if=f.c bs=1 count=9 seek=99 conv=notrunc status=none of=$(echo $area/obj/*.o)|made
a copied record is cut|truncate -s 9 $area/db/db0/record|made
a file more in the database|mkdir $area/db/db7|made
the state is cut|truncate -s 12 $area/stub.state|made
E
# A setting that goes into the stub. The earlier link has none.
before=$(state "$area"/obj/*.o)
TimerPolicy=1 TimeInterval=7 link
expect "stub, another setting" made "$([ "$(state "$area"/obj/*.o)" = "$before" ] || echo made)"

# Each file that a compile leaves comes back when it is gone or damaged, and stays when it is whole.
symbol=$(cd "$records/obj/before" && echo f_c_*)
for file in "db/db$symbol/.tab" "db/db$symbol/CompileCmd.txt" "db/db$symbol/record" \
    "ini/$symbol.ini" "obj/before/$symbol"; do
    compile
    before=$(state "$records/$file") content=$(cksum <"$records/$file")
    compile
    [[ $file = */.tab ]] || # whose time is that of the compile
        expect "$file, whole" "$before" "$(state "$records/$file")"
    truncate -s 5 "$records/$file"
    compile
    expect "$file, cut" "$content" "$(cksum <"$records/$file")"
    rm "$records/$file"
    compile
    expect "$file, gone" "$content" "$(cksum <"$records/$file")"
done
finish
