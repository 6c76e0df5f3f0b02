#!/usr/bin/env bash
# run.sh BUILD SOURCE CXX: installs what BUILD holds under a folder of its own, and builds and runs the program in
# SOURCE against that, once through the CMake package and once through pkg-config.
set -euo pipefail
build=$1 source=$2 compiler=$3
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT

cmake --install "$build" --prefix "$place/prefix" >/dev/null
expected=$'Gauge 120 Alarm\nabove 100: 20\nscaled 3.5 of plant.gauges'
expected+=$'\n'$expected
check() {
    local said
    said=$("$@") || { echo "$* failed: $said" >&2; exit 1; }
    [ "$said" = "$expected" ] || { echo "$* said: $said" >&2; exit 1; }
}

cmake -S "$source" -B "$place/build" -G Ninja -DCMAKE_PREFIX_PATH="$place/prefix" -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_CXX_FLAGS="-Wall -Wextra -Werror" >/dev/null
cmake --build "$place/build" >"$place/log" || { cat "$place/log" >&2; exit 1; }
check "$place/build/plant"

export PKG_CONFIG_PATH=$(dirname "$(find "$place/prefix" -name orvcore.pc)")
# shellcheck disable=SC2046
"$compiler" -Wall -Wextra -Werror $(pkg-config --cflags orvcore) "$source"/*.cpp -o "$place/plant" \
    $(pkg-config --libs orvcore)
LD_LIBRARY_PATH=$(pkg-config --variable=libdir orvcore) check "$place/plant"
