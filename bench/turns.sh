# shellcheck shell=bash
# Work that is timed in three builds of a sample project: plain, through lltwrapper with the tool
# set, and with gcc --coverage. They take turns, so that a busy moment of the machine hits all of
# them. To be sourced; ./dev bench builds the program before.
# shellcheck source=examples/build_twice.sh
. "$(dirname "${BASH_SOURCE[0]}")/../examples/build_twice.sh"

export CCACHE_DISABLE=1 # meson takes it when it is there: the plain build would be of cached objects

# shellcheck disable=SC2034 # for the sourcing scripts
variants=(plain wrapped gcov)

# set_up VARIANT: the environment of a build, and of what runs its programs
set_up() {
    case $1 in
        wrapped) wrapper_environment "$root/build/release" ;;
        gcov) export CC='gcc --coverage' CXX='g++ --coverage' ;;
    esac
}

# make_tree VARIANT: one tree for each, configured once
make_tree() {
    set_up "$1"
    cp -a "$work/source" "$place/$1"
    cd "$place/$1"
    LLT_WRAP=0 logged "$1.configure" configure_project "$name"
}

# timed LIST COMMAND...: appends its milliseconds to LIST.times of the work directory
timed() {
    local list=$work/$1.times began=${EPOCHREALTIME/[.,]/}
    shift
    "$@"
    echo $(((${EPOCHREALTIME/[.,]/} - began) / 1000)) >>"$list"
}

# nth N LIST: the N-th smallest time
nth() { sort -n "$work/$2.times" | sed -n "$1p"; }

median() { nth $((($(wc -l <"$work/$1.times") + 1) / 2)) "$1"; }

# ratio LIST LIST: of their medians
ratio() { awk "BEGIN { printf \"%.2f\", $(median "$1") / $(median "$2") }"; }

# against WHAT LIST LIST GOAL: prints the ratio beside its goal
against() {
    awk -v is="$(ratio "$2" "$3")" -v goal="$4" -v what="$1" 'BEGIN {
        printf "%-48s %5s x   goal: at most %s x%s\n", what, is, goal, (is > goal + 0 ? " (missed)" : "") }'
}
