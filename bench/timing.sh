# The timing helper of the bench scripts (sourced, not run). They set work (a folder for the
# logs), bytes (the bytes each run reads, for MB/s) and optionally cleanup (shell code run
# before each run) and REPEAT.
#
# run NAME COMMAND...: runs COMMAND REPEAT times (default 3: the page cache and the disk's
# write-back make single runs noisy), prints its median wall time, MB/s and the highest peak
# memory (maximum resident set, from /usr/bin/time -v), and appends "NAME seconds kbytes" to
# the array results. A run that fails stops the script with its standard error.
repeat=${REPEAT:-3}
results=()
run() {
  local name=$1; shift
  local log=$work/$name.time times=() rss_max=0 wall rss secs
  for ((r = 0; r < repeat; r++)); do
    [ -n "${cleanup:-}" ] && eval "$cleanup"
    sync
    /usr/bin/time -v -o "$log" "$@" > "$work/$name.out" 2> "$work/$name.err" ||
      { echo "$name failed:" >&2; cat "$work/$name.err" >&2; exit 1; }
    wall=$(sed -n 's/.*Elapsed (wall clock) time (h:mm:ss or m:ss): //p' "$log")
    rss=$(sed -n 's/.*Maximum resident set size (kbytes): //p' "$log")
    secs=$(awk -v t="$wall" 'BEGIN { n = split(t, p, ":"); s = 0;
                                     for (i = 1; i <= n; i++) s = s * 60 + p[i]; print s }')
    times+=("$secs")
    [ "$rss" -gt "$rss_max" ] && rss_max=$rss
  done
  secs=$(printf '%s\n' "${times[@]}" | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }')
  printf '%-10s %8.2f s %9.1f MB/s %8.1f MB peak   (runs: %s)\n' "$name" "$secs" \
    "$(awk -v b="$bytes" -v s="$secs" 'BEGIN { print (s > 0 ? b / 1048576 / s : 0) }')" \
    "$(awk -v k="$rss_max" 'BEGIN { print k / 1024 }')" "${times[*]}"
  results+=("$name $secs $rss_max")
}
