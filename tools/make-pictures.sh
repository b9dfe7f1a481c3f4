#!/usr/bin/env bash
# Makes the README's pictures of the sample disc with tarvex-cli itself, so that they can be
# made again when the drawing changes:
#   docs/menu-button.png   the video manager menu with its first button selected (menus)
#   docs/subpicture.png    the title's second sub-picture unit in its chain's colours
#                          (subpictures), RGBA
#   docs/bitrate.svg       the title's mux and video rates per half second (bitrate)
# Usage: tools/make-pictures.sh [BUILD_DIR]     (default build-pictures/, a Release build of
#        tarvex-cli; a given folder must already hold a built tarvex-cli)
set -euo pipefail
cd "$(dirname "$0")/.."

if [ $# -ge 1 ]; then
  cli=$(realpath "$1")/tarvex-cli
else
  tools/install-deps.sh build
  cmake -S . -B build-pictures -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARVEX_TESTS=OFF >/dev/null
  ninja -C build-pictures -j"${JOBS:-2}" tarvex-cli
  cli=$(pwd)/build-pictures/tarvex-cli
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
"$cli" menus samples/disc --png "$scratch/menus" --json >"$scratch/menus.json"
first=$(python3 -c 'import json,sys; m=json.load(open(sys.argv[1]))[0]; print(m["file"][:-4])' \
  "$scratch/menus.json")
cp "$scratch/menus/$first-b1-selected.png" docs/menu-button.png
"$cli" subpictures samples/disc --title 1 --png "$scratch/units" >/dev/null
cp "$scratch/units/0002.png" docs/subpicture.png
"$cli" bitrate samples/disc --title 1 --interval 0.5 --svg docs/bitrate.svg >/dev/null
echo "docs/menu-button.png, docs/subpicture.png and docs/bitrate.svg made from samples/disc"
