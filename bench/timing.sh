# The timing helpers of the bench scripts (sourced, not run). They set work (a folder for the
# logs), bytes (the bytes each run reads, for MB/s) and optionally cleanup (shell code run
# before each run, for instance to remove the outputs of earlier runs) and REPEAT.
#
# time_once COMMAND...: one run after cleanup and a sync (so that no run meets the write-back
#   of an earlier one's files); prints "seconds peak-kbytes" (wall time, maximum resident set
#   from /usr/bin/time -v). A run that fails stops the script with its standard error.
# median VALUE...: the median.
# report NAME PEAK-KBYTES SECONDS...: prints the median wall time, MB/s, the peak memory and
#   every run, and appends "NAME seconds kbytes" to the array results.
# run NAME COMMAND...: runs COMMAND REPEAT times (default 3: the page cache and the disk's
#   write-back make single runs noisy) and reports it.
repeat=${REPEAT:-3}
results=()

time_once() {
  local log=$work/time.log wall rss
  [ -n "${cleanup:-}" ] && eval "$cleanup"
  sync
  /usr/bin/time -v -o "$log" "$@" > "$work/run.out" 2> "$work/run.err" ||
    { echo "$* failed:" >&2; cat "$work/run.err" >&2; exit 1; }
  wall=$(sed -n 's/.*Elapsed (wall clock) time (h:mm:ss or m:ss): //p' "$log")
  rss=$(sed -n 's/.*Maximum resident set size (kbytes): //p' "$log")
  awk -v t="$wall" -v r="$rss" 'BEGIN { n = split(t, p, ":"); s = 0;
                                        for (i = 1; i <= n; i++) s = s * 60 + p[i]; print s, r }'
}

median() { printf '%s\n' "$@" | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

report() {
  local name=$1 rss_max=$2 secs
  shift 2
  secs=$(median "$@")
  printf '%-10s %8.2f s %9.1f MB/s %8.1f MB peak   (runs: %s)\n' "$name" "$secs" \
    "$(awk -v b="$bytes" -v s="$secs" 'BEGIN { print (s > 0 ? b / 1048576 / s : 0) }')" \
    "$(awk -v k="$rss_max" 'BEGIN { print k / 1024 }')" "$*"
  results+=("$name $secs $rss_max")
}

run() {
  local name=$1 times=() rss_max=0 out secs rss
  shift
  for ((r = 0; r < repeat; r++)); do
    out=$(time_once "$@") || exit 1
    read -r secs rss <<< "$out"
    times+=("$secs")
    [ "$rss" -gt "$rss_max" ] && rss_max=$rss
  done
  report "$name" "$rss_max" "${times[@]}"
}
