#!/usr/bin/env bash
# Runs every test: installs what is missing, builds and runs the suite through CTest in the normal
# build and under the address/undefined-behaviour and thread sanitizers, then installs the library
# into a scratch prefix and builds and runs the example consumers against it.
# With arguments, runs the suite under those presets only (default, asan, tsan, clang).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

presets=("$@")
[ "${#presets[@]}" -gt 0 ] || presets=(default asan tsan)

for preset in "${presets[@]}"; do
  echo "== ${preset}: build"
  cmake --preset "${preset}" >/dev/null
  cmake --build --preset "${preset}"
  echo "== ${preset}: tests"
  ctest --preset "${preset}"
done

if [[ " ${presets[*]} " == *" default "* ]]; then
  echo "== example consumers against the installed package"
  prefix=$(mktemp -d)
  trap 'rm -rf "${prefix}" build-examples' EXIT
  cmake --install build --prefix "${prefix}" >/dev/null
  cmake -S examples -B build-examples -G Ninja -DCMAKE_PREFIX_PATH="${prefix}" >/dev/null
  cmake --build build-examples
  LD_LIBRARY_PATH="${prefix}/lib" ./build-examples/hello_c
  LD_LIBRARY_PATH="${prefix}/lib" ./build-examples/hello_cpp
  # The pkg-config file serves a plain C build as well.
  PKG_CONFIG_PATH="${prefix}/lib/pkgconfig" cc -std=c99 -Wall -Werror examples/c/main.c -o build-examples/hello_pc \
    $(PKG_CONFIG_PATH="${prefix}/lib/pkgconfig" pkg-config --cflags --libs orv_utils)
  LD_LIBRARY_PATH="${prefix}/lib" ./build-examples/hello_pc
  echo "examples: 3 passed, 0 failed"
fi
