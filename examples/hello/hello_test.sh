#!/bin/sh
# Compares what the program prints with expected.txt.
# usage: hello_test.sh PROGRAM
set -u
hello=$1
expected=$(dirname "$0")/expected.txt

{
    "$hello" -t 9
    "$hello" -t 15 Ada
    "$hello" -l fr -t 19 -d 1789-07-14 Ada 'Grace Hopper' ''
    "$hello" -l tlh -t 9 2>&1
} | diff "$expected" - && echo 'hello test passed'
