#!/usr/bin/env bash
# Installs the Debian 12 packages a job needs, when any of them is missing.
# Usage: tools/install-deps.sh GROUP...   (groups: build, test, gui, bench, sample, ci)
#   build   compiler, CMake, Ninja, CLI11, libudfread     (tarvex-cli; ISO images)
#   test    build + GoogleTest, nlohmann-json, lsdvd,     (tools/test.sh: JSON parsed back,
#           genisoimage, python3                           lsdvd comparison, ISO images,
#                                                          damaged discs)
#   sample  ffmpeg, dvdauthor, lsdvd, python3             (tools/make-sample-disc.sh)
#   gui     Qt 6 Widgets                                  (the desktop tool)
#   bench   Google Benchmark, time, genisoimage           (bench/)
#   ci      all of the above + clang-14 for the fuzz harnesses, Google Benchmark
# Runs apt-get through sudo unless already root. Does nothing when all is present.
set -euo pipefail

packages=()
for group in "$@"; do
  case "$group" in
    build) packages+=(cmake ninja-build g++ pkg-config libcli11-dev libudfread-dev) ;;
    test) packages+=(cmake ninja-build g++ pkg-config libcli11-dev libudfread-dev libgtest-dev
                     libgmock-dev nlohmann-json3-dev lsdvd genisoimage python3) ;;
    sample) packages+=(ffmpeg dvdauthor lsdvd python3) ;;
    gui) packages+=(qt6-base-dev) ;;
    bench) packages+=(libbenchmark-dev time genisoimage python3) ;;
    ci) packages+=(cmake ninja-build g++ pkg-config libcli11-dev libudfread-dev libgtest-dev
                   libgmock-dev nlohmann-json3-dev genisoimage python3
                   clang-14 libclang-rt-14-dev libbenchmark-dev
                   ffmpeg dvdauthor lsdvd qt6-base-dev) ;;
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
