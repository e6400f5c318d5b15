#!/bin/bash
# Times the archive step of a library that is there already: through lltwrapper, by the archiver alone, and
# by the bare pieces (the stub's compile, then the archiver). Then what the wrapper takes of memory and of
# system calls, and a curve of the times. All files lie in memory.
# usage: archive.sh [OBJECTS...]     3 10 100 1000 10000
# shellcheck source=bench/figures.sh
. "$(dirname "${BASH_SOURCE[0]}")/figures.sh"

sizes=("$@")
[ $# -gt 0 ] || sizes=(3 10 100 1000 10000)
step=(lltwrapper -artool ar -arsuffix .a ar rcs lib.a @list)

# multiply FIRST NUMBER: objects FIRST to NUMBER - 1 and their records, made of those of object 0
multiply() {
    find . -type f -path '*s00000*' ! -name '*.c' -print0 | perl -0e '
        my ($first, $number) = @ARGV;
        chomp(my @files = <STDIN>);
        local $/;
        my %text_of = map { open(my $file, "<", $_) or die "$_: $!"; $_ => <$file> } @files;
        for my $name (map { sprintf("s%05d", $_) } $first .. $number - 1) {
            for my $from (@files) {
                (my $path = $from) =~ s/s00000/$name/g;
                (my $text = $text_of{$from}) =~ s/s00000/$name/g;
                mkdir($1) if $path =~ m{^(.*/db$name[^/]*)/};
                open(my $file, ">", $path) or die "$path: $!";
                print $file $text;
                close($file) or die "$path: $!";
            }
        }' "$1" "$2"
}

# has_room NUMBER: of objects of 93 KB, each of which is in up to six places
has_room() {
    local free
    free=$(df --output=avail "$place" | tail -n 1)
    awk -v free="$free" -v wanted=$(($1 * 93 * 6)) '
        /^MemAvailable/ { exit !(free > wanted && $2 > wanted) }' /proc/meminfo
}

# time_step NUMBER
time_step() {
    local rounds=$((20000 / $1 > 20 ? 20 : 20000 / $1 < 3 ? 3 : 20000 / $1)) stub
    printf 'o/s%05d.o\n' $(seq 0 $(($1 - 1))) >list
    rm -rf lib.a plain.a "$LLT_PROJECT/.lltcov/lib"
    logged step "${step[@]}"
    stub=$(grep -e ' -stub .* -o .* -c ' "$work/step.log") || die "the step of $1 objects compiled no stub"
    printf '%s\n' "$stub &&" "ar rcs plain.a ${stub##* -c } @list" | sed '2s/[.]c /.o /' >pieces
    ar rcs plain.a @list
    compare "$rounds" 1 '' "ar.$1" 'ar rcs plain.a @list' "wrapped.$1" "${step[*]}" "pieces.$1" 'sh pieces'
    echo "$1 $(typical "ar.$1") $(typical "pieces.$1") $(typical "wrapped.$1")" >>"$work/curve"
}

# The archiver comes last: what its caller has taken until then is the peak.
peak_kib() {
    mkdir -p peak
    cat >peak/ar <<'END'
#!/bin/sh
pid=$$
until [ "$(cat /proc/$pid/comm)" = lltwrapper ]; do
    read -r pid comm state pid rest </proc/$pid/stat
done
sed -n 's/^VmHWM:[^0-9]*\([0-9]*\) kB/\1/p' /proc/$pid/status >peak.kib
END
    chmod +x peak/ar
    PATH=$place/peak:$PATH logged peak "${step[@]}"
    cat peak.kib
}

system_calls() {
    strace -f -c -o calls "${step[@]}" >"$work/strace.log" 2>&1 && awk '$NF == "total" { print $(NF - 2) }' calls
}

# The time that a step took, over the number of objects.
draw() {
    gnuplot <<END
set terminal svg size 800,500
set output '$root/build/bench/archive.svg'
set logscale xy
set xlabel 'objects'
set ylabel 'ms'
set key left top
plot '$work/curve' using 1:2 with linespoints title 'ar', \
    '' using 1:3 with linespoints title 'stub compiled, then ar', \
    '' using 1:4 with linespoints title 'lltwrapper'
END
}

tell() { # tell NUMBER: the figures of that many objects that have a goal
    case $1 in
        3) against '3 objects: wrapped to stub compiled, then ar' wrapped.3 pieces.3 1.25 ;;
        1000) against '1,000 objects: wrapped to ar' wrapped.1000 ar.1000 1.8 ;;
        10000)
            against '10,000 objects: wrapped to ar' wrapped.10000 ar.10000 1.15
            [ ! -e "$work/ar.1000.times" ] || result 'growth from 1,000 to 10,000: wrapped to ar' "$(awk "BEGIN {
                printf \"%.2f\", $(ratio wrapped.10000 wrapped.1000) / $(ratio ar.10000 ar.1000) }")" x 1
            ;;
    esac
    result "$1 objects: peak of the wrapper" "$(peak_kib | awk '{ printf "%.1f", $1 / 1024 }')" MiB 16
}

begin_bench archive
[ "$place" = "$work" ] || rmdir "$place"
memory=$(mktemp -d /dev/shm/lltwrapper.XXXXXX 2>/dev/null || mktemp -d)
trap 'rm -rf "$memory"' EXIT
place=$memory LLT_PROJECT=$memory/project
. "$root/toolset/TUSK_INIT.SH"
PATH=$root/build/release:$PATH
cd "$place"
mkdir o
printf '%s\n' 'char blob_s00000[90000] = {1};' \
    'int s00000(int a) { int s = 0; for (int i = 0; i < a; i++) s += i % 3 ? i : -a; return s; }' >o/s00000.c
logged compile lltwrapper gcc -c o/s00000.c -o o/s00000.o

made=1
for size in "${sizes[@]}"; do
    if ! has_room "$size"; then
        say "$size objects: left out, there is too little memory"
        continue
    fi
    multiply "$made" "$size"
    made=$size
    time_step "$size"
    tell "$size"
    if [ "$size" = 1000 ]; then
        calls=$(system_calls) || say 'strace does not run here'
        [ -z "$calls" ] || result '1,000 objects: calls of the system' "$calls" ' ' 90000
    fi
done
[ -e "$work/curve" ] || exit 0
draw
say "curve of the times: $root/build/bench/archive.svg"
