// The pieces of a shim, in the POSIX shell's language: `shim_text` puts those together that a tool
// needs.
#pragma once

inline constexpr char SHELL[] = "#!/bin/sh\n";
inline constexpr char REMARK[] = ", through lltwrapper while LLT_WRAP is on";
inline constexpr char MARK[] = "# Shim of lltcov: ";

/// A cache that calls a shim does not see what the wrapper adds; other machines have no wrapper.
inline constexpr char SKIP_LAUNCHER[] = R"SH(if [ "$on" != 0 ]; then
    case $1 in
        '' | -* | *=*) ;;
        *) exec "$@" ;;
    esac
fi
)SH";

/// What the real tool runs is found without this directory, and is wrapped here or not at all.
/// `${0%/*}` is the directory as PATH has it, by which a compiler cache under the compiler's name,
/// later on PATH, would find the shim again.
inline constexpr char LEAVE_PATH[] = R"SH(unset LLT_WRAP
case :$PATH: in
    *:"${0%/*}":*)
        PATH=:$PATH:
        PATH=${PATH%%":${0%/*}:"*}:${PATH#*":${0%/*}:"}
        PATH=${PATH#:} PATH=${PATH%:}
        ;;
esac
)SH";

inline constexpr char PLAIN_CASE[] = R"SH([ "$on" != 0 ] || exec "$real" "$@"
)SH";

inline constexpr char WRAPPED_CASE[] =
    R"SH(if [ ! -x "$wrapper" ]; then
    echo "lltwrapper: '$wrapper', which the shim '$0' runs, is gone; write the shims again," \
        "by lltcov run or lltcov shims of the new place" >&2
    exit 127
fi
export LLTWRAPPER_EXACT_STATUS="${LLTWRAPPER_EXACT_STATUS:-1}"
project=${qmr_current_prj_path:-}
project=${project%/*.prj} project=${project%/}
case $project in
    # As the settings make it: lltcov clean --all has removed it.
    */.lltcov)
        [ -e "$project/.gitignore" ] ||
            { mkdir -p "$project/LLTTEMP" && echo '*' >"$project/.gitignore"; }
        ;;
esac
if [ -z "$LLTWRAPPER_LOG" ] && [ -d "$project/LLTTEMP" ]; then
    export LLTWRAPPER_LOG="$project/LLTTEMP/build.log"
fi
# run_plainly WHY WORD...
run_plainly() {
    echo "lltwrapper: '${0##*/}' runs without coverage: $1" >&2
    shift
    exec "$real" "$@"
}
# Without one, data would go to where the command runs, or to /.
needs_project() {
    [ -n "$project" ] || run_plainly "no project is set; source its TUSK_INIT.SH" "$@"
}
)SH";

/// Sets `step` when the call compiles or links, `rewrite` when a word cannot stand as it is. A link
/// of objects is never left to the real tool: those that count need what the wrapper adds.
inline constexpr char SCAN_COMPILER[] = R"SH(
case $PWD/ in
    */CMakeFiles/CMakeScratch/* | */CMakeFiles/CMakeTmp/* | */CMakeFiles/_CMakeLTOTest-* | \
        */CMakeFiles/*/CompilerId* | */meson-private/*) exec "$real" "$@" ;;
esac
step='' trial='' input='' objects='' lists='' rewrite='' option=''
for word; do
    case $option in
        '')
            case $word in
                # Its output is read, or it makes no code.
                -E | -S | -M | -MM | -fsyntax-only | -'###' | --version | --help* | \
                    --target-help | -print-* | --print-* | -dumpmachine | -dumpversion | \
                    -dumpfullversion | -dumpspecs | -xc-header | -xc++-header) exec "$real" "$@" ;;
                # A configure step tries something.
                /dev/* | -o/dev/* | conftest.* | conftest[0-9_]*.* | *meson-private/*) trial=yes ;;
                -) trial=${trial:-stdin} ;;
                -c) step=-c ;;
                -o) step=${step:--o} ;;
                -o*) step=${step:--o} rewrite=yes ;;
                @*) lists=yes ;;
                *.[oa]) objects=yes input=yes ;;
                *.[cCi] | *.cc | *.cp | *.cxx | *.cpp | *.CPP | *.c++ | *.ii) input=yes ;;
            esac
            ;;
        -o)
            case $word in /dev/* | conftest.* | conftest[0-9_]*.* | *meson-private/*) trial=yes ;; esac
            ;;
        -x) case $word in c-header | c++-header) exec "$real" "$@" ;; esac ;;
        -Xlinker) rewrite=yes ;;
    esac
    case $option$word in
        -o | -x | -MF | -MT | -MQ | -include | -imacros | -Xlinker) option=$word ;;
        *) option='' ;;
    esac
    case $word in '' | *[!A-Za-z0-9_@%+=:,./^-]*) rewrite=yes ;; esac
done
if [ -n "$trial" ] && { [ -z "$objects" ] || [ "$step" = -c ]; }; then
    [ "$trial" = yes ] || run_plainly 'its source comes from standard input' "$@"
    exec "$real" "$@"
fi
[ "$trial" != stdin ] ||
    echo "lltwrapper: '${0##*/}' links a source from standard input without coverage" >&2

# scan_list FILE: a response file and those that it names
scan_list() {
    [ -r "$1" ] && [ "$files" != .................... ] || return 0
    files=$files.
    # shellcheck disable=SC2013 # words it is
    for word in $(cat "$1"); do
        word=${word#[\"\']} word=${word%[\"\']}
        case $option$word in
            -E | -S | -M | -MM | -fsyntax-only) step=none ;;
            -c) step=${step%-o} step=${step:--c} ;;
            -o?*) output=${word#-o} ;;
            @*) scan_list "${word#@}" ;;
            *.[cCioa] | *.cc | *.cp | *.cxx | *.cpp | *.CPP | *.c++ | *.ii) input=yes ;;
        esac
        case $option$word in -o) option=-o ;; *) option='' ;; esac
    done
}
# The wrapper looks for -c and -o in the command only.
if [ -n "$lists" ] && [ "$step" != -c ]; then
    set -f
    output='' files='' option=''
    for word; do
        case $word in @*) scan_list "${word#@}" ;; esac
    done
    case $step$output in
        none*) exec "$real" "$@" ;;
        -c*) set -- "$@" -c ;;
        -o*) ;;
        # The last one counts: this one only names the link for the wrapper.
        ?*)
            step=-o output=${output%%[!A-Za-z0-9_@%+=:,./^-]*}
            set -- -o "${output:-a.out}" "$@"
            ;;
    esac
fi
if [ -z "$step" ]; then
    [ -n "$input" ] || exec "$real" "$@"
    set -- "$@" -o a.out
fi
)SH";

inline constexpr char SCAN_LINKER[] = R"SH(
step='' rewrite=''
for word; do
    case $word in
        # Partial links are left to the last one; scripts of another kind, questions.
        -r | -i | -Ur | --relocatable | -c | -v | -V | --version | --help | --print-*)
            exec "$real" "$@" ;;
        -o) step=yes ;;
        -o* | -E | -S) step=yes rewrite=yes ;;
    esac
    case $word in
        '' | *[!A-Za-z0-9_@%+=:,./^-]*) rewrite=yes ;;
    esac
done
[ -n "$step" ] || exec "$real" "$@"
)SH";

inline constexpr char RUN_STEP[] = R"SH(needs_project "$@"
# Up to its first dot the name of such an output is empty, and nothing would be linked.
for word; do
    case ${word##*/} in .[!.]* | -o.[!.]*) export LLTLD_AVOID_SAME_NAME=1 ;; esac
done
# escape WORD WHERE: $word, such that the wrapper's shell makes WORD of it
escape() {
    word='' rest=$1
    [ -n "$rest" ] || word="''"
    while
        plain=${rest%%[!A-Za-z0-9_@%+=:,./^-]*}
        word=$word$plain rest=${rest#"$plain"}
        [ -n "$rest" ]
    do
        char=${rest%"${rest#?}"} rest=${rest#?}
        case $2$char in
            value[\ \"\(\)\<\>]) ;;       # the wrapper escapes these in values
            *'
') char="'$char'" ;;
            *) char=\\$char ;;
        esac
        word=$word$char
    done
}

if [ -n "$rewrite" ]; then
    option=''
    for word; do
        shift
        case $option in
            -Xlinker)
                # The wrapper would take its value for an option of the compiler.
                option=''
                case $word in
                    *,*) set -- "$@" -Xlinker ;;
                    *) escape "-Wl,$word" '' ;;
                esac
                ;;
            ?*)
                option=''
                escape "$word" value
                ;;
            *)
                case $word in
                    # Of a linker: the wrapper would take them for a compiler's.
                    -E) word=--export-dynamic ;;
                    -S) word=--strip-debug ;;
                    -Xlinker) option=$word; continue ;;
                    -[DIocLl]) option=$word ;;
                    -o*)
                        set -- "$@" -o
                        escape "${word#-o}" value
                        ;;
                    -[DILl]*) escape "$word" value ;;
                    *) escape "$word" '' ;;
                esac
                ;;
        esac
        set -- "$@" "$word"
    done
fi
exec "$wrapper" "$real" "$@"
)SH";

/// Only what puts members into an archive. A separate "-c" or "-o" would make it a compile or link
/// for the wrapper: the letter is doubled, which means the same.
inline constexpr char ARCHIVE_STEP[] = R"SH(
letters='' operation='' archive='' rewrite='' option=''
for word; do
    case $option$word in
        --version | --help | -M | -h | -V) exec "$real" "$@" ;;
        --plugin | --target | --output) option=$word; continue ;;
        --*) ;; # with its value
        -[coSE]) rewrite=yes ;;
        -*[rq]*) letters=yes operation=yes ;;
        -*) letters=yes ;;
        *)
            # Without a dash the operation stands first.
            case $letters$word in
                yes*.a) archive=${archive:-$word} ;;
                yes*) ;;
                *[rq]*) letters=yes operation=yes ;;
                *) exec "$real" "$@" ;;
            esac
            ;;
    esac
    option=''
done
[ -n "$operation" ] || exec "$real" "$@"
# A member must stand as it is for the wrapper to find it: the shell would take these names apart.
for word; do
    case $word in [\#\~]* | *[\$\&\;\|\'\`\*\?\[\\]*) exec "$real" "$@" ;; esac
done
# The wrapper looks for the archive's name in the command that it has escaped.
case $archive in
    '' | *[!A-Za-z0-9_@%+=:,./^-]*) exec "$real" "$@" ;;
esac
# The module's name becomes part of the stub's function names; a link finds the members of others.
module=${archive##*/} module=${module%%.*}
case $module in
    '' | *[!A-Za-z0-9_-]* | LLTTEMP) exec "$real" "$@" ;;
esac
needs_project "$@"
while :; do
    case $module in *-*) module=${module%%-*}_${module#*-} ;; *) break ;; esac
done
if [ "${isOverlappedCompile:-0}" = 1 ]; then
    case ${PlatformToken:-} in
        '' | [0-9]* | *[!A-Za-z0-9_]*) ;;
        *) eval "project=\$project/\${$PlatformToken:-}" ;;
    esac
fi
for place in "$project/$module" "$project/$module/codemeasure"; do
    if [ ! -d "$place" ] && { [ -e "$place" ] || [ -h "$place" ]; }; then
        run_plainly "'$place' stands where the coverage data of '$archive' would go; \
set qmr_current_prj_path to a directory of their own, as TUSK_INIT.SH does" "$@"
    fi
done
if [ -n "$rewrite" ]; then
    for word; do
        shift
        case $word in
            -[coSE]) word=$word${word#-} ;;
        esac
        set -- "$@" "$word"
    done
fi
exec "$wrapper" -artool "${real##*/}" -arsuffix .a "$real" "$@"
)SH";
