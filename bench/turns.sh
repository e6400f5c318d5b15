# shellcheck shell=bash
# Work that is timed in three builds of a sample project: plain, through lltwrapper with the tool
# set, and with gcc --coverage. They take turns, so that a busy moment of the machine hits all of
# them. To be sourced; ./dev bench builds the program before.
# shellcheck source=bench/figures.sh
. "$(dirname "${BASH_SOURCE[0]}")/figures.sh"

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
