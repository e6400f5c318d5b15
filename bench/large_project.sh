#!/bin/bash
# Makes a project of N sources (a multiple of 100): N/100 libraries of 100 sources, N/50 programs that
# each take all of one library, and one program that takes all libraries. All sources include one header
# with code in it. Its makefile has the targets objects, libraries, programs and run.
# usage: large_project.sh N DIRECTORY     DIRECTORY does not exist yet
set -euo pipefail
number=$1 per_library=100 programs_per_library=2
libraries=$((number / per_library))
if [ "$libraries" = 0 ] || [ $((number % per_library)) != 0 ]; then
    echo 'large_project.sh: the number of sources is not a multiple of 100' >&2
    exit 2
fi
mkdir -p "$2"
cd "$2"

cat >shared.h <<'END'
#pragma once
static inline int limited(int value, int most)
{
    if (value > most)
        return most;
    return value < 0 ? 0 : value;
}
END

# write_source NUMBER FILE
write_source() {
    cat >"$2" <<END
#include "shared.h"

static int sum_$1(const int* values, int count)
{
    int sum = 0;
    for (int i = 0; i < count; ++i)
        sum += values[i] % 3 ? values[i] : -i;
    return sum;
}

int f$1(int value)
{
    int values[8];
    for (int i = 0; i < 8; ++i) {
        values[i] = limited(value + i * $1, 1000);
        if (values[i] > 900 && value != $1)
            values[i] -= 10;
    }
    switch (sum_$1(values, 8) % 4) {
    case 0:
        return value;
    case 1:
        return value + 1;
    default:
        return value > 5 ? value - 1 : 0;
    }
}
END
}

# write_program FILE FIRST LAST: calls the functions with these numbers
write_program() {
    {
        echo '#include <stdlib.h>'
        printf 'int f%d(int);\n' $(seq "$2" "$3")
        printf 'int main(int argc, char** argv)\n{\n    int sum = 0, value = argc > 1 ? atoi(argv[1]) : 0;\n'
        printf '    sum += f%d(value);\n' $(seq "$2" "$3")
        printf '    return sum < 0;\n}\n'
    } >"$1"
}

{
    echo "all: programs"
    echo "CFLAGS = -O1"
    all=''
    for ((library = 0; library < libraries; library++)); do
        first=$((library * per_library)) last=$((library * per_library + per_library - 1))
        mkdir "lib$library"
        for ((i = first; i <= last; i++)); do write_source "$i" "lib$library/s$i.c"; done
        objects=$(printf " lib$library/s%d.o" $(seq $first $last))
        echo "OBJECTS +=$objects"
        echo "LIBRARIES += lib$library/libl$library.a"
        echo "lib$library/libl$library.a:$objects"
        all+=" lib$library/libl$library.a"
        for ((i = 0; i < programs_per_library; i++)); do
            program=program$((library * programs_per_library + i))
            write_program "$program.c" "$first" "$last"
            echo "PROGRAMS += $program"
            echo "$program: $program.o lib$library/libl$library.a"
        done
    done
    write_program whole.c 0 $((number - 1))
    echo "PROGRAMS += whole"
    echo "whole: whole.o$all"
    cat <<'END'
objects: $(OBJECTS) $(PROGRAMS:=.o)
libraries: $(LIBRARIES)
programs: $(PROGRAMS)
$(LIBRARIES):
	ar rcs $@ $^
$(PROGRAMS):
	gcc $^ -o $@
%.o: %.c
	gcc $(CFLAGS) -I. -c $< -o $@
run: $(PROGRAMS:=.run)
%.run: %
	./$< 7
.PHONY: all objects libraries programs run
END
} >Makefile
