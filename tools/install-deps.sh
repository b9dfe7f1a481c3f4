#!/usr/bin/env bash
# Installs the Debian 12 packages a job needs, when any of them is missing.
# Usage: tools/install-deps.sh GROUP...
#   (groups: build, test, gui, bench, sample, package, screenshot, ci)
#   build   compiler, CMake, Ninja, CLI11, libudfread, Graphviz, libpng, libavcodec (tarvex-cli)
#   test    build + GoogleTest and every tool and library the tests use, so that no test
#           is skipped: ffmpeg (with ffprobe) and lsdvd for the interoperability tests,
#           dvdauthor and genisoimage for test discs and ISO images, libdvdnav-dev for the
#           playback tests' reference player (and libdvdread-dev for the rip tests' reference
#           ripper), mkvtoolnix to read chapter files back, nlohmann-json, python3 for the
#           damaged-disc tool, and
#           groff, desktop-file-utils, zsh and fish for the manual page, desktop entry and
#           completion checks (tools/test.sh), graphviz (the dot tool) to read the navigation
#           graph back, mkvtoolnix (mkvmerge muxes the VobSub files of subpictures)
#   sample  ffmpeg, dvdauthor, lsdvd, python3             (tools/make-sample-disc.sh)
#   gui     Qt 6 Widgets                                  (the desktop tool)
#   bench   Google Benchmark, time, genisoimage, python3, ffmpeg and dvdauthor  (bench/)
#   package dpkg-dev, file, lintian, groff, man-db, desktop-file-utils
#           (tools/package.sh and tools/check-package.sh)
#   screenshot  Xvfb, ImageMagick                         (tools/screenshot.sh)
#   ci      all of the above but screenshot + clang-14 for the fuzz harnesses
# Runs apt-get through sudo unless already root. Does nothing when all is present.
set -euo pipefail

build_packages=(cmake ninja-build g++ libcli11-dev pkg-config libudfread-dev libgraphviz-dev
                libpng-dev libavcodec-dev)
test_packages=("${build_packages[@]}" libgtest-dev libgmock-dev
               ffmpeg lsdvd dvdauthor genisoimage libdvdnav-dev libdvdread-dev mkvtoolnix
               nlohmann-json3-dev python3
               groff-base desktop-file-utils zsh fish graphviz)
sample_packages=(ffmpeg dvdauthor lsdvd python3)
gui_packages=(qt6-base-dev)
bench_packages=(libbenchmark-dev time genisoimage python3 ffmpeg dvdauthor)
package_packages=(dpkg-dev file lintian groff-base man-db desktop-file-utils)
screenshot_packages=(xvfb xauth imagemagick qt6-qpa-plugins)

packages=()
for group in "$@"; do
  case "$group" in
    build) packages+=("${build_packages[@]}") ;;
    test) packages+=("${test_packages[@]}") ;;
    sample) packages+=("${sample_packages[@]}") ;;
    gui) packages+=("${gui_packages[@]}") ;;
    bench) packages+=("${bench_packages[@]}") ;;
    package) packages+=("${package_packages[@]}") ;;
    screenshot) packages+=("${screenshot_packages[@]}") ;;
    ci) packages+=("${test_packages[@]}" "${sample_packages[@]}" "${gui_packages[@]}"
                   "${bench_packages[@]}" "${package_packages[@]}" clang-14 libclang-rt-14-dev) ;;
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
