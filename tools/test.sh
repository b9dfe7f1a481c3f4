#!/usr/bin/env bash
# Installs what is missing, builds Tarvex (command-line tool, desktop tool, benchmarks) with
# warnings as errors and runs every test: the unit and golden tests and the desktop tool's tests
# (without a display).
# Usage: tools/test.sh          (build directory: $TARVEX_BUILD_DIR, default build/)
set -euo pipefail
cd "$(dirname "$0")/.."

groups=(test gui)
options=(-DTARVEX_TESTS=ON -DTARVEX_GUI=ON -DTARVEX_SCREENSHOT=ON)
if [ -f bench/CMakeLists.txt ]; then
  groups+=(bench)
  options+=(-DTARVEX_BENCH=ON)
fi
tools/install-deps.sh "${groups[@]}"
build=${TARVEX_BUILD_DIR:-build}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTARVEX_WERROR=ON "${options[@]}"
ninja -C "$build" -j"${JOBS:-2}"
QT_QPA_PLATFORM=offscreen ctest --test-dir "$build" --output-on-failure -j"${JOBS:-2}"
