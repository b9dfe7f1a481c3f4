#!/usr/bin/env bash
# Checks a Debian package made by tools/package.sh without installing it: the files it holds,
# its tools run from a scratch folder (dpkg -x) on the sample disc, its manual pages rendered
# with groff -ww, its desktop entry validated, and lintian (no error allowed).
# Usage: tools/check-package.sh [DEB]     (default: the one in build-pkg/)
set -uo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
deb=${1:-$(ls build-pkg/tarvex_*.deb 2>/dev/null | head -n 1)}
if [ -z "$deb" ] || [ ! -f "$deb" ]; then
  echo "check-package.sh: no package (run tools/package.sh first)" >&2
  exit 2
fi
deb=$(realpath "$deb")
version=$(sed -n 's/^project(tarvex VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)

failures=0
check() { # description command...
  local what=$1
  shift
  if "$@"; then
    echo "ok: $what"
  else
    echo "FAIL: $what"
    failures=$((failures + 1))
  fi
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
dpkg -x "$deb" "$scratch/root"
usr=$scratch/root/usr

# Exactly these files, nothing a user does not need.
expected_files() {
  cat <<'EOF'
usr/bin/tarvex
usr/bin/tarvex-cli
usr/share/applications/tarvex.desktop
usr/share/bash-completion/completions/tarvex
usr/share/bash-completion/completions/tarvex-cli
usr/share/doc/tarvex/README.md
usr/share/doc/tarvex/changelog.gz
usr/share/doc/tarvex/copyright
usr/share/fish/vendor_completions.d/tarvex-cli.fish
usr/share/icons/hicolor/scalable/apps/tarvex.svg
usr/share/lintian/overrides/tarvex
usr/share/man/man1/tarvex-cli.1.gz
usr/share/man/man1/tarvex.1.gz
usr/share/zsh/vendor-completions/_tarvex-cli
EOF
}
same_files() {
  diff <(expected_files) <(cd "$scratch/root" && find . -type f | sed 's,^\./,,' | sort)
}
check "the package holds exactly the expected files" same_files

file_name_ok() { [ "$(basename "$deb")" = "tarvex_${version}_$(dpkg --print-architecture).deb" ]; }
check "the package is named tarvex_${version}_<arch>.deb" file_name_ok

libraries_found() { ! ldd "$usr/bin/tarvex-cli" "$usr/bin/tarvex" | grep 'not found'; }
check "every library the tools need is installed" libraries_found

config=$scratch/config
sample=$root/samples/disc/VIDEO_TS

cli_version() { [ "$("$usr/bin/tarvex-cli" --version)" = "tarvex-cli $version" ]; }
check "tarvex-cli --version prints 'tarvex-cli $version'" cli_version

cli_open() {
  local out
  out=$(XDG_CONFIG_HOME=$config "$usr/bin/tarvex-cli" open "$sample/VTS_01_1.VOB") || return 1
  # The first page: records 0 to 15 in order (some followed by a frame line), the first a
  # navigation pack.
  [ "$(grep -o '^[0-9]\{6\} ' <<<"$out" | tr -d ' ' | tr '\n' ' ')" = \
    "$(seq -f '%06g' -s ' ' 0 15) " ] &&
    [ "$(head -n 1 <<<"$out")" = "000000 Navigations  SCR 0.000" ]
}
check "tarvex-cli open on the sample title VOB lists its first page" cli_open

# The desktop tool in its batch mode (no display needed): a disassembled title set IFO
# assembles back and the window closes by itself.
gui_batch() {
  local work=$scratch/batch
  mkdir -p "$work" && cp -r "$sample" "$work/" &&
    XDG_CONFIG_HOME=$config "$usr/bin/tarvex-cli" disasm "$work/VIDEO_TS/VTS_01_0.IFO" \
      "$work/vts_01_0.ini" >/dev/null &&
    rm "$work/VIDEO_TS/VTS_01_0.IFO" &&
    XDG_CONFIG_HOME=$config QT_QPA_PLATFORM=offscreen timeout 60 "$usr/bin/tarvex" \
      "-asm=$work/vts_01_0.ini" "-obj=$work/VIDEO_TS/VTS_01_0.IFO" 2>/dev/null &&
    [ -s "$work/VIDEO_TS/VTS_01_0.IFO" ]
}
check "tarvex -asm= -obj= assembles without a display and exits" gui_batch

man_renders() {
  local page warnings
  for page in "$usr"/share/man/man1/*.1.gz; do
    warnings=$(zcat "$page" | groff -man -ww -z 2>&1) || return 1
    if [ -n "$warnings" ]; then
      echo "$page: $warnings"
      return 1
    fi
  done
}
check "the manual pages render without groff warnings" man_renders

check "desktop-file-validate accepts the desktop entry" \
  desktop-file-validate "$usr/share/applications/tarvex.desktop"

no_lintian_errors() {
  local report
  report=$(lintian --allow-root --info "$deb" 2>&1)
  echo "lintian: $(grep -c '^E:' <<<"$report") errors, $(grep -c '^W:' <<<"$report") warnings," \
    "$(grep -c '^I:' <<<"$report") info, $(grep -c '^O:' <<<"$report") overridden"
  grep -E '^[EWI]:' <<<"$report"
  ! grep -q '^E:' <<<"$report"
}
check "lintian reports no error" no_lintian_errors

if [ $failures -ne 0 ]; then
  echo "$failures package checks failed"
  exit 1
fi
echo "package checks passed: $(basename "$deb")"
