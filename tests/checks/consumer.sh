#!/bin/sh
# Installs the library into a scratch folder, moves it, and builds a user's project against it in both ways.
# Usage: consumer.sh BUILD SCRATCH CMAKE CC
set -eu
build=$1 scratch=$2 cmake=$3 cc=$4
source=$(cd "$(dirname "$0")/../consumer" && pwd)
rm -rf "$scratch"
mkdir -p "$scratch"

"$cmake" --install "$build" --component jorm --prefix "$scratch/first" >/dev/null
mv "$scratch/first" "$scratch/moved"
test -n "$(find "$scratch/moved/share/doc" -name LICENSE)" -a -n "$(find "$scratch/moved/share/doc" -name recipes.md)"
test -f "$scratch/moved/include/jorm/jorm.hpp" -a -f "$scratch/moved/include/jorm/cxx/view.hpp"

echo "find_package:"
"$cmake" -S "$source" -B "$scratch/build" -DCMAKE_C_COMPILER="$cc" -DCMAKE_PREFIX_PATH="$scratch/moved" >/dev/null
"$cmake" --build "$scratch/build" >/dev/null
"$scratch/build/consumer"

echo "pkg-config:"
pc=$(dirname "$(find "$scratch/moved" -name jorm.pc)")
export PKG_CONFIG_PATH="$pc"
# shellcheck disable=SC2046
"$cc" -std=c99 -Wall -Wextra -Werror "$source/consumer.c" $(pkg-config --cflags --libs jorm) -o "$scratch/by_pkg_config"
LD_LIBRARY_PATH=$(pkg-config --variable=libdir jorm) "$scratch/by_pkg_config"
test "$(pkg-config --modversion jorm)" = 1.0.0
