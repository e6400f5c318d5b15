#!/bin/bash
# Fails when cppcheck finds something in the program, the tool set or the runtime.
# usage: check_cppcheck.sh
set -euo pipefail
cd "$(dirname "$0")/.."
allowed=(
    stlcstrParam stlcstrAssignment # to pass c_str() on is how a text is cut at its first NUL
    passedByValue                  # it takes the parameter of a function type for a large object
)
cppcheck -j "$(nproc)" --quiet --error-exitcode=1 --inline-suppr --std=c++17 --std=c99 -I . \
    --enable=warning,performance,portability "${allowed[@]/#/--suppress=}" \
    commonfunc contract lltld lltwrapper lltcov toolset
