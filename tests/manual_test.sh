#!/bin/bash
# Holds the manual pages against the programs, in both directions: options, environment variables, and the
# texts of what failed; and the changelog against the version.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/common.sh"
shopt -s extglob
pages=("$root"/man/*.[1-9])
rooms=("$root"/{commonfunc,contract,lltld,lltwrapper,lltcov,toolset})

# code: all of it
code() { find "${rooms[@]}" \( -name '*.[ch]' -o -name '*.cpp' \) -print0 | sort -z | xargs -0 cat; }

# nothing_missing WHAT NEEDED PRESENT: lists of lines; each of the first stands in the second
nothing_missing() {
    [ -n "$2" ] || expect "$1: something to look for" something ''
    expect "$1" '' "$(comm -23 <(sort -u <<<"$2") <(sort -u <<<"$3"))"
}

# flags: the options of mdoc lines, with their dashes
flags() { grep -oE '\bFl( -?[a-z_-]+| [,|])+' | sed 's/^Fl//' | tr ' ' '\n' | grep -E '[a-z]' | sed 's/^/-/'; }

# section NAME FILE
section() { sed -n "/^\.Sh $1\$/,/^\.Sh /p" "$2"; }

# --- options of lltcov: each option of any subcommand is tried with each; an option that is wrong follows,
# so that no call does anything

section SYNOPSIS "$root/man/lltcov.1" >synopsis
shared=$(section SELECTION "$root/man/lltcov.1" | grep '^\.It' | flags)
candidates=$({ cat "$root"/lltcov/*/*.cpp | grep -oE '"--?[a-z-]+"' | tr -d '"'; flags <synopsis; } |
    grep -E '^(--[a-z].*|-[a-z])$' | grep -vxE -e '--help|-h' | sort -u)
for command in $(lltcov help | sed -nE 's/^  ([a-z]+) .*/\1/p'); do
    promised=$(sed -n "/^\.Cm $command\$/,/^\.Nm/p" synopsis)
    [[ $promised != *selection* ]] || taken=$shared
    promised=$(flags <<<"$promised" | grep -vx -e -- && echo "${taken:-}")
    accepted=$(for option in $candidates; do
        said=$(lltcov "$command" "$option" --wrong --wrong -- true 2>&1)
        [ $? = 2 ] || echo "$command $option: status other than 2"
        [[ $said = *"there is no option '$option'"* ]] || echo "$option"
    done)
    taken=
    expect "options of lltcov $command" "$(sort -u <<<"$promised" | grep .)" "$(grep . <<<"$accepted")"
done

# --- options of the wrapper: rows of its own, the help and the page

own=$(sed -nE -e 's/^#define [A-Z]+_OPTION "(.*)"/\1/p' "$root/contract/names.h" &&
    sed -nE 's/.*equals[a-z_]*, "(-[a-z_]+)", .*, true\},/\1/p' "$root/lltwrapper/cmd_parser.cpp")
help=$(lltwrapper --help | grep -oE '(^| )-[a-z_]+' | tr -d ' ')
page=$(section OPTIONS "$root/man/lltwrapper.1" | grep '^\.It' | flags)
nothing_missing 'options of the wrapper in its page' "$own" "$page"
nothing_missing 'options of the page in the wrapper' "$page" "$own"$'\n'"$(printf '%s\n' -v --version --help)"
nothing_missing 'options of the wrapper in its help' "$own" "$help"

# --- environment variables: what is read or set for others, by its name or by a constant that holds it

constant() { code | sed -nE "s/.*\b$1(\[\])? *= *\"([A-Za-z_0-9]+)\".*/\2/p"; }
variables=$(
    code | grep -oE '\b(secure_getenv|getenv|setenv|env_[a-z_]+|read_(switch|selected_value))\("[A-Za-z_0-9]+"' |
        cut -d '"' -f 2
    for name in $(code | grep -oE '\b(getenv|setenv|env_text|set)\([A-Z_]{3,}' | cut -d '(' -f 2); do
        constant "$name"
    done
    cat "$root"/toolset/TUSK_INIT.SH "$root"/lltcov/shims/shim_parts.h | grep -oE '\$\{?LLT[A-Za-z_]+' | tr -d "\${"
)
described=$(cat "${pages[@]}" | sed -nE 's/^\.(It )?(Pf [^ ]+ )?Ev //p' | grep -oE '[A-Za-z_0-9]{2,}')
nothing_missing 'variables in the pages' "$variables" "$described"
# TZ is the C library's, CCACHE_DISABLE a compiler cache's.
known=$({ code && cat "$root/toolset/TUSK_INIT.SH"; } | grep -oE '[A-Za-z_0-9]+')
nothing_missing 'variables of the pages in the code' "$described" "$known"$'\nTZ\nCCACHE_DISABLE'

# --- what failed: the first words of a message, without what is put in, stand in an entry of DIAGNOSTICS;
# and those of an entry in the code

# words: of each line the first part of two words and more between what is put in, up to what to do about it
words() {
    sed -E "s/;.*//; s/%[a-z0-9.]+|'[^']*'|\b[A-Z][A-Z_]*\b|[\"'():,[]|\.\.\./\n/g; s/\$/\n--/" |
        awk '/^--$/ { print first; first = ""; next } { sub(/^ +/, ""); sub(/[ .]+$/, "") }
            first == "" && length($0) > 5 && / / { first = $0 }' | grep . | sort -u
}
STRING='"([^"\\]|\\.)*"'
# one_line: the code without comments
one_line() { sed -E 's|(^\|[ ;{}])//.*||; s/\\n//g' | tr '\n' ' '; }
# literals CALLS: the first literal of several words in each of these calls, but the kind that begins some
literals() {
    grep -oE "\b($1)\((\"[^\"]*\", )?($STRING|[^\";])*;" |
        sed -nE 's/^(add|note)\( *"[^"]*"//; s/\\"/~/g; s/^[^"]*("[^" ]*"[^"]*)*"([^"]* [^"]*)".*/\2/; T; s/~/"/g; p'
}
missing() { words <"$1" | while IFS= read -r text; do grep -qF -e "$text" "$2" || echo "$text"; done; }
code | one_line >all
cat "$root"/lltcov/report/!(*_format).cpp | one_line >report
{
    literals 'warn|notice|print_fatal|TUSKLog|report_failure' <all
    literals 'say|printf|puts' <all | grep -iE "fail|error|can'?(t| ?not) |doesn't exist"
    literals 'add|note' <report
} >said
sed -n '/^\.Sh DIAGNOSTICS/,/^\.Sh SEE/p' "${pages[@]}" |
    sed -E 's/\\\(dq/"/g; s/\\-/-/g; s/\\&//g; s/^\.It (lltwrapper|lltcov|lltcc|lltld|liblltcov_rt|TUSK_FATAL): ?/.It /' >diagnostics
grep '^\.It ' diagnostics | sed 's/^\.It //' >items
sed -i 's/\\"/"/g' all
expect 'messages of the programs' many "$([ "$(wc -l <said)" -gt 150 ] && echo many)"
expect 'messages in DIAGNOSTICS' '' "$(missing said items)"
expect 'entries of DIAGNOSTICS in the code' '' "$(missing items all)"
# An entry, or several of one cause, has its explanation.
expect 'explained entries' '' "$(awk '/^\.It/ { item = $0; next } /^\.(El|Sh|Ss)/ && item != "" { print item }
    { item = "" }' diagnostics)"

# --- the version: the last numbered release is that of the build

expect 'newest release in the changelog' "$(lltcov --version)" \
    "lltcov $(sed -nE 's/^## \[([0-9.]+)\].*/\1/p' "$root/CHANGELOG.md" | sed q)"
finish
