#!/bin/sh
# The C program in the README is the example. Usage: readme.sh ROOT
set -eu
# shellcheck disable=SC2016
sed -n '/^```c$/,/^```$/{/^```/d;p;}' "$1/README.md" | diff - "$1/examples/add_two.c"
