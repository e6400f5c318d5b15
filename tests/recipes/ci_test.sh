#!/bin/bash
# The CI recipes: each is what its service reads, and its commands, but for those that install packages, do what
# they promise for a clone of examples/hello with a change of one line that no test reaches, and with one of none.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
needs make git python3 genhtml
python3 -c 'import yaml' 2>/dev/null || skip 'python3-yaml is missing'
said=$work/said
export GIT_CONFIG_GLOBAL=/dev/null GIT_AUTHOR_NAME=t GIT_AUTHOR_EMAIL=t@t GIT_COMMITTER_NAME=t GIT_COMMITTER_EMAIL=t@t

mkdir origin && (cd "$root/examples/hello" && tar -c --exclude='*.[oda]' --exclude='*.so' --exclude=.lltcov .) | tar -x -C origin
{ make -C origin clean && cd origin && git init -q -b main . && git add -A && git commit -qm first; } >"$said" 2>&1 || exit

# clone NAME LINE: of a merge request that adds the line to numbers/roman.c
clone() {
    git clone -q "$work/origin" "$work/$1" && cd "$work/$1" || exit
    [ -z "$2" ] || echo "$2" >>numbers/roman.c
    git commit -qam change --allow-empty
    base=$(git rev-parse origin/main)
    last=$(wc -l <numbers/roman.c)
}

# The example has 188 lines with code, of which its tests run 167; 167/189 is 88.4 %.
while IFS='|' read -r kind file name line status rate; do
    clone "$kind-$name" "$line"
    "$root/tests/recipes/ci_steps.py" "$kind" "$root/examples/ci/$file" >"$work/script" 2>"$said"
    expect "$kind: $file is read" 0 $?
    GITHUB_BASE_REF=main GITHUB_STEP_SUMMARY=$work/summary CI_MERGE_REQUEST_DIFF_BASE_SHA=$base \
        sh -e "$work/script" >"$work/out" 2>"$said"
    expect "$kind: a change of $name" "$status" $?
    expect "$kind: Cobertura of $name" "$rate" \
        "$(sed -n 's/.*<coverage line-rate="\([0-9.]*\)".*/\1/p' coverage.xml | cut -c 1-5)"
    case $kind-$name in
        github-untested)
            expect 'a mark at the line' "::warning file=numbers/roman.c,line=$last::This line is not tested." \
                "$(grep ^:: "$work/out")"
            expect 'the summary has the line' 1 "$(grep -c "^numbers/roman.c:$last: not run: " "$work/summary")"
            ;;
        gitlab-untested)
            expect 'the rate beside the job' 88.4 "$("$root/tests/recipes/ci_steps.py" gitlab "$root/examples/ci/$file" "$work/out")"
            ;;
        *) expect 'no mark' '' "$(grep ^:: "$work/out")" ;;
    esac
done <<'END'
github|github.yml|untested|int unused(void) { return 0; }|1|0.883
github|github.yml|nothing||0|0.888
gitlab|gitlab-ci.yml|untested|int unused(void) { return 0; }|1|0.883
gitlab|gitlab-ci.yml|comment|/* at the end */|0|0.888
docker|Dockerfile|untested|int unused(void) { return 0; }|0|0.883
END
finish
