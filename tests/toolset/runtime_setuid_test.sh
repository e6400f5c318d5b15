#!/bin/bash
# A set-user-ID program of root that another user calls: where that user's choices do not reach.
# shellcheck source=tests/toolset/runtime_fixture.sh
. "$(dirname "$0")/runtime_fixture.sh"
needs setpriv
[ "$(id -u)" = 0 ] || skip "only root can make a set-user-ID program of another user"
build program "$exec_part" "$binaries/liblltcov_rt.a" -ldl -pthread
user=(setpriv --reuid 65534 --regid 65534 --clear-groups)
chmod 755 "$work"
mkdir own elsewhere secret && chmod 777 own && chmod 700 secret && chmod u+s program
"${user[@]}" test -x program || skip "another user cannot go to $work"
[ "$("${user[@]}" env TEST_ROOT="$work/secret" ./program exit 2>&1)$(ls secret)" != "" ] || skip "$work is mounted without set-user-ID"
ln -s ../elsewhere own/link

# The user's umask is 0 or all. root that the stub names | LLTCOV_ROOT | files and modes | what is said
lost="lltcov: coverage counts are lost: no dump file of program-m can be written in"
link="a symbolic link is in the path, which a set-user-ID program does not follow (error 40)"
cure="; link it with lltcovRootpath set to an absolute path without links"
while IFS='|' read -r root environment expected says; do
    for mask in 000 777; do
        rm -rf own/new secret/{*,.prog*}
        said=$(cd own && umask $mask && "${user[@]}" env TEST_ROOT="${root/@/$work}" \
            LLTCOV_ROOT="${environment/@/$work}" ../program exit 2>&1)
        expect "$root $environment $mask" "$expected" \
            "$(find own elsewhere secret -mindepth 1 \( -type f -o ! -type l -perm /022 \) -printf '%m %u %P\n' |
                sed 's/program-m.*lltcov$/dump/; s/\.program.*/beside/' | sort | xargs)"
        expect "$root $environment $mask: says" "$says" "${said//$work/@}"
    done
done <<ROWS
@/secret||644 root beside 644 root dump|
@/secret|@/own/new|644 root beside 644 root dump|
@/own/new/deep||644 root new/deep/beside 644 root new/deep/dump|
@/own/link|||$lost '@/own/link': $link$cure
@/own/link/new|||$lost '@/own/link/new': $link$cure
@/program/new|||$lost '@/program/new': the directory cannot be created (error 20); set LLTCOV_ROOT to a directory that the program can write
link|||$lost '': a set-user-ID program needs an absolute directory (error 89)$cure
new|@/own/new||$lost '': a set-user-ID program needs an absolute directory (error 89)$cure
ROWS

# What the user has laid out in a directory that all may write is not written.
rm -rf own/* && echo text > secret/text
TEST_ROOT=$work/own ./program exit
slot=own/$(cd own && echo program*.lltcov)
for made in 'ln -s ../secret/text' 'ln secret/text' 'cp secret/text'; do
    rm -f own/* own/.prog*
    $made "own/.${slot#own/}.tmp" && chown -h 65534 "own/.${slot#own/}.tmp"
    "${user[@]}" env TEST_ROOT="$work/own" ./program exit
    expect "$made beside" "644 root text" "$(stat -c '%a %U' "$slot") $(cat secret/text)"
done
finish
