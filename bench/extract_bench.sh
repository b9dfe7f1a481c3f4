#!/usr/bin/env bash
# Extraction throughput: builds a stream of at least 1 GB by repeating a title VOB in a
# temporary folder, then times, in the same run,
#   - tarvex-cli extract --audio --video (every audio stream and the video, into files),
#   - cp FILE COPY                        (reads and writes the same number of bytes),
#   - cat FILE > /dev/null                (reading alone),
#   - ffmpeg -i FILE -map 0:v -map 0:a -c copy (the video and every audio stream into files),
# and reports wall time, throughput and peak memory (maximum resident set) of each.
# Goals: extraction within 1.5 x cp's time, faster than ffmpeg, peak memory under 16 MB.
#
# tarvex, cp and cat take turns for REPEAT rounds (default 3); each one's median time counts,
# and the median of the rounds' own tarvex / cp ratios is printed beside the ratio of medians.
#
# Usage: bench/extract_bench.sh [VOB] [MIN_MB]
#   VOB     default samples/disc/VIDEO_TS/VTS_01_1.VOB
#   MIN_MB  size of the repeated stream, default 1024
# Environment: TARVEX_CLI (default build/tarvex-cli), BENCH_TMP (default $TMPDIR or /tmp),
#   BENCH_KEEP=1 keeps the temporary folder.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
vob=${1:-$here/samples/disc/VIDEO_TS/VTS_01_1.VOB}
min_mb=${2:-1024}
cli=${TARVEX_CLI:-$here/build/tarvex-cli}

for tool in "$cli" ffmpeg /usr/bin/time; do
  command -v "$tool" >/dev/null || { echo "missing $tool" >&2; exit 1; }
done
[ -f "$vob" ] || { echo "missing $vob" >&2; exit 1; }

work=$(mktemp -d "${BENCH_TMP:-${TMPDIR:-/tmp}}/tarvex-bench.XXXXXX")
[ "${BENCH_KEEP:-0}" = 1 ] || trap 'rm -rf "$work"' EXIT

# ---- the stream: whole copies of the VOB until it reaches MIN_MB -------------------------
big=$work/stream.vob
vob_bytes=$(stat -c %s "$vob")
copies=$(( (min_mb * 1024 * 1024 + vob_bytes - 1) / vob_bytes ))
for ((i = 0; i < copies; i++)); do cat "$vob"; done > "$big"
bytes=$(stat -c %s "$big")
echo "stream: $copies x $(basename "$vob") = $bytes bytes"
cat "$big" > /dev/null  # warm the page cache so every contender starts alike

# ---- timing (bench/timing.sh): every run starts after all earlier runs' outputs were removed
# and the page cache's dirty pages written out, so that no contender meets another's 1 GB of
# files being written back or freed.
cleanup='rm -f "$work"/tarvex/* "$work"/ffmpeg/* "$work/COPY"'
source "$here/bench/timing.sh"

# tarvex, cp and cat take turns, REPEAT rounds (default 3): on this kind of machine the load
# and the disk's write-back drift over a minute, and taking turns lets every contender meet
# the same conditions. Each round's tarvex / cp ratio is kept too.
tarvex_bytes=0
mkdir -p "$work/tarvex" "$work/ffmpeg"
t_tarvex=() t_cp=() t_cat=() ratios=() m_tarvex=0 m_cp=0 m_cat=0
for ((r = 0; r < repeat; r++)); do
  out=$(time_once "$cli" extract "$big" --audio --video \
    --dir "$work/tarvex" --video-out "$work/tarvex/stream.M2V") || exit 1
  read -r t m <<< "$out"
  tarvex_bytes=$(du -sb "$work/tarvex" | cut -f1)
  t_tarvex+=("$t"); [ "$m" -gt "$m_tarvex" ] && m_tarvex=$m
  out=$(time_once cp "$big" "$work/COPY") || exit 1
  read -r c m <<< "$out"
  t_cp+=("$c"); [ "$m" -gt "$m_cp" ] && m_cp=$m
  out=$(time_once sh -c 'cat "$1" > /dev/null' sh "$big") || exit 1
  read -r t2 m <<< "$out"
  t_cat+=("$t2"); [ "$m" -gt "$m_cat" ] && m_cat=$m
  ratios+=("$(awk -v a="$t" -v b="$c" 'BEGIN { print (b > 0 ? a / b : 0) }')")
done
report tarvex "$m_tarvex" "${t_tarvex[@]}"
report cp "$m_cp" "${t_cp[@]}"
report cat "$m_cat" "${t_cat[@]}"
# ffmpeg: the video into an M2V and each audio stream into its own file, as extracted.
ffargs=(-nostdin -v error -y -i "$big" -map 0:v -c copy -f mpeg2video "$work/ffmpeg/stream.m2v")
audio=0
while read -r codec; do
  case $codec in
    ac3) ext=ac3 fmt=ac3 ;;
    pcm_dvd) ext=wav fmt=wav ;;
    mp2|mp1|mp3) ext=mpa fmt=mp2 ;;
    *) ext=bin fmt=data ;;
  esac
  if [ "$fmt" = wav ]; then
    ffargs+=(-map "0:a:$audio" -c pcm_s16le -f wav "$work/ffmpeg/audio$audio.$ext")
  else
    ffargs+=(-map "0:a:$audio" -c copy -f "$fmt" "$work/ffmpeg/audio$audio.$ext")
  fi
  audio=$((audio + 1))
done < <(ffprobe -v error -select_streams a -show_entries stream=codec_name -of csv=p=0 "$vob")
# ffmpeg is an order of magnitude slower; one run tells.
out=$(time_once ffmpeg "${ffargs[@]}") || exit 1
read -r t m <<< "$out"
report ffmpeg "$m" "$t"

echo
echo "output: tarvex $tarvex_bytes bytes, ffmpeg $(du -sb "$work/ffmpeg" | cut -f1) bytes"
awk -v r="${results[*]}" -v rr="$(median "${ratios[@]}")" 'BEGIN {
  n = split(r, f, " ");
  for (i = 1; i <= n; i += 3) { t[f[i]] = f[i + 1]; m[f[i]] = f[i + 2] }
  printf "tarvex / cp     = %.2f (goal <= 1.5)\n", t["tarvex"] / t["cp"];
  printf "tarvex / cp     = %.2f (median of the per-round ratios)\n", rr;
  printf "tarvex / cat    = %.2f\n", t["tarvex"] / t["cat"];
  printf "tarvex / ffmpeg = %.2f (goal < 1)\n", t["tarvex"] / t["ffmpeg"];
  printf "tarvex peak     = %.1f MB (goal < 16)\n", m["tarvex"] / 1024;
}'
