#!/usr/bin/env bash
# Builds the Debian package build-pkg/tarvex_<version>_<arch>.deb: both tools in a Release
# build with Debian's hardening flags, stripped, installed under /usr, dependencies found from
# the binaries (dpkg-shlibdeps).
# Usage: tools/package.sh       (build directory: $TARVEX_PACKAGE_DIR, default build-pkg/)
# Then:  sudo apt install ./build-pkg/tarvex_*.deb
# The maintainer field comes from $DEBFULLNAME and $DEBEMAIL when both are set.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh build gui package
build=${TARVEX_PACKAGE_DIR:-build-pkg}
umask 022

# dpkg-buildflags: optimisation, stack protector, fortified functions, read-only relocations
# and immediate binding. CMake reads CXXFLAGS and LDFLAGS; CPPFLAGS goes along with CXXFLAGS.
export DEB_BUILD_MAINT_OPTIONS=hardening=+all
CXXFLAGS="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)"
LDFLAGS="$(dpkg-buildflags --get LDFLAGS)"
export CXXFLAGS LDFLAGS

options=(-DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DTARVEX_DEBIAN=ON
  -DTARVEX_GUI=ON -DTARVEX_CLI=ON -DTARVEX_TESTS=OFF -DTARVEX_BENCH=OFF)
if [ -n "${DEBFULLNAME:-}" ] && [ -n "${DEBEMAIL:-}" ]; then
  options+=("-DTARVEX_PACKAGE_MAINTAINER=$DEBFULLNAME <$DEBEMAIL>")
fi
# A fresh configuration each time, so that the flags above are the ones used.
rm -f "$build/CMakeCache.txt"
cmake -S . -B "$build" -G Ninja "${options[@]}"
ninja -C "$build" -j"${JOBS:-2}"
rm -f "$build"/tarvex_*.deb
(cd "$build" && cpack -G DEB)
ls "$build"/tarvex_*.deb
