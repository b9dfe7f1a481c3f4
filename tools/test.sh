#!/usr/bin/env bash
# Installs what is missing, builds Tarvex (command-line tool, desktop tool, benchmarks) with
# warnings as errors and runs every test: the unit and golden tests, the interoperability tests
# with ffmpeg, ffprobe and lsdvd, and the desktop tool's tests (without a display). A skipped
# test fails the run: everything the tests use is installed first.
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
# A test that is skipped (or does not run at all) fails the run.
QT_QPA_PLATFORM=offscreen tools/ctest-all.sh --test-dir "$build" --output-on-failure -j"${JOBS:-2}"
