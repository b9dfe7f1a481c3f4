#!/usr/bin/env bash
# Installs the Debian 12 packages a job needs, when any of them is missing.
# Usage: tools/install-deps.sh GROUP...
#   (groups: build, test, gui, bench, sample, package, screenshot, ci)
#   build   compiler, CMake, Ninja, CLI11                 (tarvex-cli)
#   test    build + GoogleTest, groff, desktop-file-utils, zsh, fish
#           (tools/test.sh: with the manual page, desktop entry and completion checks)
#   sample  ffmpeg, dvdauthor, lsdvd, python3             (tools/make-sample-disc.sh)
#   gui     Qt 6 Widgets                                  (the desktop tool)
#   bench   Google Benchmark                              (bench/)
#   package dpkg-dev, file, lintian, groff, man-db, desktop-file-utils
#           (tools/package.sh and tools/check-package.sh)
#   screenshot  Xvfb, ImageMagick                         (tools/screenshot.sh)
#   ci      all of the above but screenshot + clang-14 for the fuzz harnesses
# Runs apt-get through sudo unless already root. Does nothing when all is present.
set -euo pipefail

packages=()
for group in "$@"; do
  case "$group" in
    build) packages+=(cmake ninja-build g++ libcli11-dev) ;;
    test) packages+=(cmake ninja-build g++ libcli11-dev libgtest-dev libgmock-dev
                     groff-base desktop-file-utils zsh fish) ;;
    sample) packages+=(ffmpeg dvdauthor lsdvd python3) ;;
    gui) packages+=(qt6-base-dev) ;;
    bench) packages+=(libbenchmark-dev) ;;
    package) packages+=(dpkg-dev file lintian groff-base man-db desktop-file-utils) ;;
    screenshot) packages+=(xvfb xauth imagemagick qt6-qpa-plugins) ;;
    ci) packages+=(cmake ninja-build g++ libcli11-dev libgtest-dev libgmock-dev
                   groff-base desktop-file-utils zsh fish
                   clang-14 libclang-rt-14-dev libbenchmark-dev
                   ffmpeg dvdauthor lsdvd qt6-base-dev
                   dpkg-dev file lintian man-db) ;;
    *) echo "install-deps.sh: unknown group '$group'" >&2; exit 2 ;;
  esac
done

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    case " ${missing[*]-} " in *" $package "*) ;; *) missing+=("$package") ;; esac
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update
"${sudo[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
