#!/usr/bin/env bash
# Installs what is missing, builds Tarvex with warnings as errors and runs every unit test.
# Usage: tools/test.sh          (build directory: $TARVEX_BUILD_DIR, default build/)
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh test
build=${TARVEX_BUILD_DIR:-build}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTARVEX_WERROR=ON -DTARVEX_TESTS=ON
ninja -C "$build" -j"${JOBS:-2}"
ctest --test-dir "$build" --output-on-failure -j"${JOBS:-2}"
