#!/usr/bin/env bash
# Makes docs/screenshot.png: the desktop tool's window with the sample disc's title VOB open
# (its first page), on a virtual X server (Xvfb), so that the picture can be made again when
# the window changes.
#
# tarvex itself takes no file argument, so the picture comes from tarvex_screenshot
# (tools/screenshot/, built only here): the same main window, whose File > Open chooser
# answers the sample file. The window is captured from the X server with ImageMagick.
# Usage: tools/screenshot.sh [OUTPUT]     (build directory: build-shot/)
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
output=$(realpath -m "${1:-docs/screenshot.png}")

tools/install-deps.sh build gui screenshot
build=build-shot
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARVEX_GUI=ON \
  -DTARVEX_SCREENSHOT=ON -DTARVEX_TESTS=OFF -DTARVEX_CLI=OFF >/dev/null
ninja -C "$build" -j"${JOBS:-2}" tarvex_screenshot

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# Runs on the virtual display: starts the window, waits for its id, captures it.
capture='
  helper=$1 file=$2 output=$3 scratch=$4 id=
  QT_QPA_PLATFORM=xcb XDG_CONFIG_HOME=$scratch/config "$helper" "$file" >"$scratch/id" &
  pid=$!
  for _ in $(seq 100); do
    id=$(cat "$scratch/id")
    [ -n "$id" ] && break
    sleep 0.1
  done
  if [ -z "$id" ]; then
    echo "screenshot.sh: the window did not appear" >&2
    kill $pid
    exit 1
  fi
  import -window "$id" "$scratch/shot.png"
  kill $pid
  # No time stamps or other text chunks: the same window gives the same file.
  convert "$scratch/shot.png" -strip "$output"
'
mkdir -p "$(dirname "$output")"
xvfb-run --auto-servernum --server-args="-screen 0 1024x768x24" \
  bash -c "$capture" _ "$root/$build/tools/screenshot/tarvex_screenshot" \
  "$root/samples/disc/VIDEO_TS/VTS_01_1.VOB" "$output" "$scratch"
echo "wrote $output"
