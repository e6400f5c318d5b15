#!/bin/bash
# Times links with the tool set beside plain ones: a first one, one of what has not changed, and a build of
# small programs.
# usage: link.sh [ROUNDS [PROGRAMS]]
# shellcheck source=bench/figures.sh
. "$(dirname "${BASH_SOURCE[0]}")/figures.sh"

rounds=${1:-10} programs=${2:-100}
begin_bench link
. "$root/toolset/TUSK_INIT.SH"
PATH=$root/build/release:$PATH
cd "$place"
echo 'int one(int a) { return a > 3 ? a : 1; }' >one.c
echo 'int one(int); int main(int count, char** words) { (void)words; return one(count) - 1; }' >main.c
for source in one main; do
    logged compile gcc -c $source.c -o plain_$source.o
    logged compile gcc --coverage -c $source.c -o gcov_$source.o
    logged compile lltwrapper gcc -c $source.c -o $source.o
done
plain='gcc plain_one.o plain_main.o -o plain' gcov='gcc --coverage gcov_one.o gcov_main.o -o gcov'
wrapped='lltwrapper gcc one.o main.o -o prog'

say "links, $rounds rounds"
area=$qmr_current_prj_path/prog_exe
compare "$rounds" 5 "rm -rf $area prog plain gcov" first.plain "$plain" first.wrapped "$wrapped" first.gcov "$gcov"
compare "$rounds" 5 '' again.plain "$plain" again.wrapped "$wrapped"
[ -d "$area" ] || die "the link has no work area $area"
against 'first link: wrapped to plain' first.wrapped first.plain 2.0
against 'link without a change: wrapped to plain' again.wrapped again.plain 1.3

cat >Makefile <<END
all: $(printf ' p%d' $(seq "$programs"))
p%: p%.o
	\$(CC) \$< -o \$@
%.o: %.c
	\$(CC) -c \$< -o \$@
.SECONDARY:
END
for ((i = 1; i <= programs; i++)); do cp one.c "p$i.c" && cat main.c >>"p$i.c"; done
build() { # build LIST CC
    rm -rf "${qmr_current_prj_path:?}"
    find . -name 'p[1-9]*' ! -name '*.c' -delete
    . "$root/toolset/TUSK_INIT.SH"
    CC=$2 timed "$1" logged "$1" make -e
}
for ((round = 0; round < (rounds + 3) / 4; round++)); do
    build programs.plain gcc
    build programs.wrapped 'lltwrapper gcc'
    build programs.gcov 'gcc --coverage'
done
against "build of $programs programs: wrapped to plain" programs.wrapped programs.plain 1.6
say "with gcc --coverage to plain: a link $(ratio first.gcov first.plain), a build $(ratio programs.gcov programs.plain)"
