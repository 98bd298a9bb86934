#!/bin/sh
# Builds a user's project in both ways against the library: installed into a scratch folder and moved, or a given tree.
# Usage: consumer.sh BUILD SCRATCH CMAKE CC    or    consumer.sh --tree PREFIX SCRATCH CMAKE CC
set -eu
tree=
if [ "$1" = --tree ]; then
    tree=$2
    shift
fi
build=$1 scratch=$2 cmake=$3 cc=$4
source=$(cd "$(dirname "$0")/../consumer" && pwd)
rm -rf "$scratch"
mkdir -p "$scratch"

if [ -z "$tree" ]; then
    for component in runtime dev; do
        "$cmake" --install "$build" --component $component --prefix "$scratch/first" >/dev/null
    done
    tree=$scratch/moved
    mv "$scratch/first" "$tree"
    test -n "$(find "$tree/share/doc" -name LICENSE)"
fi
test -n "$(find "$tree/share/doc" -name recipes.md)"
test -f "$tree/include/jorm/jorm.hpp" -a -f "$tree/include/jorm/cxx/view.hpp"

echo "find_package:"
"$cmake" -S "$source" -B "$scratch/build" -DCMAKE_C_COMPILER="$cc" -DCMAKE_PREFIX_PATH="$tree" >/dev/null
"$cmake" --build "$scratch/build" >/dev/null
"$scratch/build/consumer"
[ ! -f "$scratch/build/static_consumer" ] || "$scratch/build/static_consumer"

echo "pkg-config:"
pc=$(dirname "$(find "$tree" -name jorm.pc)")
export PKG_CONFIG_PATH="$pc"
# shellcheck disable=SC2046
"$cc" -std=c99 -Wall -Wextra -Werror "$source/consumer.c" $(pkg-config --cflags --libs jorm) -o "$scratch/by_pkg_config"
LD_LIBRARY_PATH=$(pkg-config --variable=libdir jorm) "$scratch/by_pkg_config"
if pkg-config --exists jorm-static; then
    # shellcheck disable=SC2046
    "$cc" -std=c99 "$source/consumer.c" $(pkg-config --cflags --libs jorm-static) -o "$scratch/by_static_pkg_config"
    "$scratch/by_static_pkg_config"
fi
test "$(pkg-config --modversion jorm)" = 1.0.0
