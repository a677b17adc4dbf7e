#!/usr/bin/env bash
# Runs the Corvane benchmarks on a private Xvfb and prints the figures beside their goals.
#
#   bench/run-benchmarks.sh
#
# Environment:
#   BUILD_DIR      build tree (default: <repository>/build); built with CMake + Ninja when needed
#   IDLE_SECONDS   length of the idle measurement (default 60)
#   SAMPLES        hot key samples of each kind (default 300)
#   OVERLAY_SAMPLES  screen-section overlay openings (default 100), without and with xcompmgr
#   OVERLAY_COLD_SAMPLES  openings after the overlay let go of its window (default 5, 6 s each)
#   MODIFIERS      hold (press Control and Alt once) or each (press them with every sample); default hold
#   KEEP_TEMP=1    keep the temporary directory (settings, logs)
#
# Prints figures; it never fails because of a figure.

set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source_dir=$(cd "$here/.." && pwd)
build_dir=${BUILD_DIR:-$source_dir/build}
idle_seconds=${IDLE_SECONDS:-60}
samples=${SAMPLES:-300}
overlay_samples=${OVERLAY_SAMPLES:-100}
overlay_cold_samples=${OVERLAY_COLD_SAMPLES:-5}
modifiers=${MODIFIERS:-hold}

xvfb_pid=
corvane_pid=
compositor_pid=
work_dir=$(mktemp -d "${TMPDIR:-/tmp}/corvane-bench.XXXXXX")

cleanup() {
    local status=$?
    if [[ -n $corvane_pid ]] && kill -0 "$corvane_pid" 2>/dev/null; then
        kill -TERM "$corvane_pid" 2>/dev/null || true
        for _ in $(seq 50); do kill -0 "$corvane_pid" 2>/dev/null || break; sleep 0.1; done
        kill -KILL "$corvane_pid" 2>/dev/null || true
        wait "$corvane_pid" 2>/dev/null || true
    fi
    if [[ -n $compositor_pid ]] && kill -0 "$compositor_pid" 2>/dev/null; then
        kill -TERM "$compositor_pid" 2>/dev/null || true
        wait "$compositor_pid" 2>/dev/null || true
    fi
    if [[ -n $xvfb_pid ]] && kill -0 "$xvfb_pid" 2>/dev/null; then
        kill -TERM "$xvfb_pid" 2>/dev/null || true
        wait "$xvfb_pid" 2>/dev/null || true
    fi
    if [[ ${KEEP_TEMP:-0} == 1 ]]; then
        echo "temporary files kept in $work_dir"
    else
        rm -rf "$work_dir"
    fi
    exit "$status"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# --- build -------------------------------------------------------------------------------------
if [[ ! -f $build_dir/build.ninja ]]; then
    cmake -S "$source_dir" -B "$build_dir" -G Ninja -DBUILD_TESTING=ON >/dev/null
fi
ninja -C "$build_dir" corvane hotkey_latency overlay_frame_latency >/dev/null
corvane=$build_dir/app/corvane
bench=$build_dir/bench/hotkey_latency
overlay_bench=$build_dir/bench/overlay_frame_latency

# --- X server ----------------------------------------------------------------------------------
display_number=
for n in $(seq 90 199); do
    if [[ ! -e /tmp/.X11-unix/X$n && ! -e /tmp/.X$n-lock ]]; then
        display_number=$n
        break
    fi
done
[[ -n $display_number ]] || { echo "no free X display number in :90..:199" >&2; exit 1; }
Xvfb ":$display_number" -screen 0 1920x1080x24 -nolisten tcp >"$work_dir/xvfb.log" 2>&1 &
xvfb_pid=$!
export DISPLAY=:$display_number
for _ in $(seq 100); do
    [[ -e /tmp/.X11-unix/X$display_number ]] && break
    kill -0 "$xvfb_pid" 2>/dev/null || { echo "Xvfb failed:" >&2; cat "$work_dir/xvfb.log" >&2; exit 1; }
    sleep 0.05
done

# --- settings: the Move hot key plus 19 more controls, 20 distinct hot keys --------------------
# Modifier flags: Shift 131072, Control 262144, Option 524288.
# The settings file gets a directory of its own: Corvane watches that directory, and the logs the
# benchmark writes next to it would otherwise wake it up.
mkdir "$work_dir/config"
settings=$work_dir/config/settings.json
{
    printf '{"Custom Controls": [\n'
    control() { # identifier action direction delta keycode flags representation
        printf '  {"Identifier":"%s","Action":%s,"Move Direction":%s,"Move Delta":%s,' "$1" "$2" "$3" "$4"
        printf '"Move to Edge/Corner Direction":%s,' "$3"
        printf '"Hot Key":{"Identifier":"%s","Visual Representation":"%s","Key Code":%s,"Modifier Flags":%s}}' \
            "$1" "$7" "$5" "$6"
    }
    ca=786432     # Control+Option
    cas=917504    # Control+Option+Shift
    control B00 31 5 10 114 $ca '^⌥→'; printf ',\n'     # the measured one: 10 px right
    control B01 31 9 10 113 $ca '^⌥←'; printf ',\n'
    control B02 31 3 10 111 $ca '^⌥↑'; printf ',\n'
    control B03 31 7 10 116 $ca '^⌥↓'; printf ',\n'
    control B04 31 5 50 114 $cas '^⌥⇧→'; printf ',\n'
    control B05 31 9 50 113 $cas '^⌥⇧←'; printf ',\n'
    control B06 31 3 50 111 $cas '^⌥⇧↑'; printf ',\n'
    control B07 31 7 50 116 $cas '^⌥⇧↓'; printf ',\n'
    directions=(4 6 8 10 4 6 8 10 5)
    for i in $(seq 0 8); do   # Control+Option+1 .. 9 (key codes 10..18)
        control "B$((i + 8))" 31 "${directions[$i]}" 20 $((10 + i)) $ca "^⌥$((i + 1))"; printf ',\n'
    done
    control B17 21 1 0 54 $ca '^⌥C'; printf ',\n'        # move to centre
    control B18 51 1 0 39 $ca '^⌥S'; printf ',\n'        # the screen-section overlay
    control B19 101 1 0 36 $ca '^⌥↩'; printf '\n'        # click
    printf ']}\n'
} >"$settings"
hot_keys=$(grep -o '"Key Code"' "$settings" | wc -l)

# --- Corvane -----------------------------------------------------------------------------------
"$corvane" --settings "$settings" >"$work_dir/corvane.log" 2>&1 &
corvane_pid=$!
ready=0
deadline=$((SECONDS + 20))
while ((SECONDS < deadline)); do
    kill -0 "$corvane_pid" 2>/dev/null || { echo "corvane exited:" >&2; cat "$work_dir/corvane.log" >&2; exit 1; }
    if "$bench" --probe --timeout-ms 200 >/dev/null 2>&1; then
        ready=1
        break
    fi
    sleep 0.1
done
((ready)) || { echo "corvane did not react to the hot key within 20 s" >&2; cat "$work_dir/corvane.log" >&2; exit 1; }

echo "== Corvane benchmarks on $DISPLAY (Xvfb 1920x1080), $hot_keys hot keys, corvane PID $corvane_pid"
echo

# --- per-thread figures of the Corvane process -------------------------------------------------
# Sums over every thread: voluntary+nonvoluntary context switches and schedstat run counts.
thread_counts() {
    local switches=0 runs=0 threads=0 task v n r
    for task in /proc/"$corvane_pid"/task/*; do
        v=$(awk '/^voluntary_ctxt_switches/ {print $2}' "$task/status" 2>/dev/null) || continue
        n=$(awk '/^nonvoluntary_ctxt_switches/ {print $2}' "$task/status" 2>/dev/null) || continue
        [[ -n $v && -n $n ]] || continue
        switches=$((switches + v + n))
        if [[ -r $task/schedstat ]]; then
            r=$(awk '{print $3}' "$task/schedstat" 2>/dev/null || echo 0)
            runs=$((runs + ${r:-0}))
        fi
        threads=$((threads + 1))
    done
    echo "$switches $runs $threads"
}
per_thread() { # tid:name:voluntary:nonvoluntary
    local task
    for task in /proc/"$corvane_pid"/task/*; do
        awk -v t="${task##*/}" '/^Name/ {name=$2} /^voluntary_ctxt/ {v=$2} /^nonvoluntary_ctxt/ {n=$2}
            END {printf "%s:%s:%d:%d\n", t, name, v, n}' "$task/status" 2>/dev/null || true
    done
}
status_kb() { awk -v k="$1:" '$1 == k {print $2}' "/proc/$corvane_pid/status"; }
# Per-thread differences between two per_thread snapshots, optionally divided by a count.
thread_delta() {
    LC_ALL=C join -t: -j1 <(LC_ALL=C sort <<<"$1") <(LC_ALL=C sort <<<"$2") |
        awk -F: -v d="${3:-1}" '$6 + $7 - $3 - $4 > 0 {
            printf " %s(%s) %.1f (voluntary %.1f, preempted %.1f)", $2, $1, ($6 + $7 - $3 - $4) / d, ($6 - $3) / d, ($7 - $4) / d}'
}

# --- hot key latency ---------------------------------------------------------------------------
latency_before=$(per_thread)
"$bench" --samples "$samples" --modifiers "$modifiers" | tee "$work_dir/latency.txt"
latency_after=$(per_thread)
result=$(grep '^RESULT ' "$work_dir/latency.txt" || true)
field() { sed -n "s/.* $1=\([^ ]*\).*/\1/p" <<<"$result"; }
presses=$(field presses) # rounds, warm-up included
# Corvane also sees the reference client's keys (raw key events), so this is per round: its own hot key
# and the reference client's keys, each pressed and released.
echo "  corvane context switches per round of the latency run, by thread:$(thread_delta "$latency_before" "$latency_after" "$presses")"
echo

# --- idle --------------------------------------------------------------------------------------

sleep 2 # let the last hot key reactions settle
idle_before=$(per_thread)
read -r switches_before runs_before threads_before < <(thread_counts)
echo "Idle: measuring $idle_seconds s with nothing happening ($threads_before threads) ..."
sleep "$idle_seconds"
read -r switches_after runs_after threads_after < <(thread_counts)
idle_after=$(per_thread)
rss_kb=$(status_kb VmRSS)
hwm_kb=$(status_kb VmHWM)

wakeups=$((switches_after - switches_before))
runs=$((runs_after - runs_before))
per_minute() { awk -v d="$1" -v s="$idle_seconds" 'BEGIN {printf "%.1f", d * 60 / s}'; }
wakeups_per_minute=$(per_minute "$wakeups")
runs_per_minute=$(per_minute "$runs")

busy_threads=$(thread_delta "$idle_before" "$idle_after")

# --- screen-section overlay (after the idle phase, which it would disturb) --------------------
overlay_run() { # label [options]
    local label=$1
    shift
    "$overlay_bench" --label "($label) " "$@" | tee -a "$work_dir/overlay.txt" || true
    echo
}
: >"$work_dir/overlay.txt"
overlay_run "no compositing manager: shaped window" --samples "$overlay_samples"
overlay_rss_kb=$(status_kb VmRSS)
# Corvane lets go of the overlay's window 5 s after it closed; these openings start from nothing.
overlay_run "no compositing manager, first opening after 6 s" --samples "$overlay_cold_samples" --warmup 0 \
    --pause-ms 6000
released_rss_kb=$(status_kb VmRSS)
if command -v xcompmgr >/dev/null; then
    (exec xcompmgr >"$work_dir/xcompmgr.log" 2>&1) &
    compositor_pid=$!
    sleep 1 # it takes the _NET_WM_CM selection and redirects the windows
    overlay_run "xcompmgr: translucent window" --samples "$overlay_samples"
    kill -TERM "$compositor_pid"
    wait "$compositor_pid" 2>/dev/null || true
    compositor_pid=
fi
overlay_field() { # row field
    sed -n "$1p" <(grep '^RESULT ' "$work_dir/overlay.txt") | sed -n "s/.* $2=\([^ ]*\).*/\1/p"
}

# --- summary -----------------------------------------------------------------------------------
verdict() { if awk "BEGIN {exit !($1)}"; then echo met; else echo "NOT met"; fi; }
floor_p50=$(field floor_p50_us)
hot_p50=$(field hotkey_p50_us)
hot_p99=$(field hotkey_p99_us)
ratio=$(field ratio_p50)
rss_mb=$(awk -v k="$rss_kb" 'BEGIN {printf "%.1f", k / 1024}')
hwm_mb=$(awk -v k="$hwm_kb" 'BEGIN {printf "%.1f", k / 1024}')

echo
echo "== Summary (modifiers: $(field modifiers), move detection: $(field detection), $(field samples) samples)"
printf '%-40s %-22s %-24s %s\n' "figure" "measured" "goal" "verdict"
printf '%-40s %-22s %-24s %s\n' "floor p50 (XTest motion + QueryPointer)" "${floor_p50} us" "-" "-"
printf '%-40s %-22s %-24s %s\n' "hot key -> moved p50" "${hot_p50} us (${ratio}x)" "<= 2x floor p50" \
    "$(verdict "$ratio <= 2")"
printf '%-40s %-22s %-24s %s\n' "hot key -> moved p90" "$(field hotkey_p90_us) us" "-" "-"
ref_p50=$(field reference_direct_p50_us)
if [[ -n $ref_p50 ]]; then
    printf '%-40s %-22s %-24s %s\n' "minimal reference client p50 (p99)" "${ref_p50} us ($(field reference_direct_p99_us))" \
        "-" "$(awk -v a="$hot_p50" -v b="$ref_p50" 'BEGIN {printf "corvane/reference %.2f", a / b}')"
    printf '%-40s %-22s %-24s %s\n' "reference client, query first, p50 (p99)" \
        "$(field reference_query_p50_us) us ($(field reference_query_p99_us))" "-" "-"
fi
printf '%-40s %-22s %-24s %s\n' "hot key -> moved p99" "${hot_p99} us" "< 300 us" "$(verdict "$hot_p99 < 300")"
printf '%-40s %-22s %-24s %s\n' "idle wake-ups (context switches)" "${wakeups_per_minute}/min" "0 (no timers)" \
    "$(verdict "$wakeups == 0")"
printf '%-40s %-22s %-24s %s\n' "idle scheduler runs (schedstat)" "${runs_per_minute}/min" "0" \
    "$(verdict "$runs == 0")"
printf '%-40s %-22s %-24s %s\n' "resident memory VmRSS" "${rss_mb} MB" "< 30 MB" "$(verdict "$rss_kb < 30720")"
printf '%-40s %-22s %-24s %s\n' "peak resident memory VmHWM" "${hwm_mb} MB" "< 30 MB" "$(verdict "$hwm_kb < 30720")"
overlay_names=("overlay, no compositor" "overlay, first after 6 s" "overlay, xcompmgr")
for row in 1 2 3; do
    shown_p50=$(overlay_field $row shown_p50_ms)
    [[ -n $shown_p50 ]] || continue
    name=${overlay_names[$((row - 1))]}
    shown_p99=$(overlay_field $row shown_p99_ms)
    step_p50=$(overlay_field $row step_p50_ms)
    step_p99=$(overlay_field $row step_p99_ms)
    printf '%-40s %-22s %-24s %s\n' "$name: hot key -> shown" "p50 $shown_p50, p99 $shown_p99 ms" "<= 30 ms" \
        "$(verdict "$shown_p99 <= 30")"
    printf '%-40s %-22s %-24s %s\n' "$name: step -> redrawn" "p50 $step_p50, p99 $step_p99 ms" "<= 16 ms" \
        "$(verdict "$step_p99 <= 16")"
done
printf '%-40s %-22s %-24s %s\n' "VmRSS just after the overlay closed" "$(awk -v k="$overlay_rss_kb" 'BEGIN {printf "%.1f", k / 1024}') MB" \
    "-" "-"
printf '%-40s %-22s %-24s %s\n' "VmRSS 6 s after the overlay closed" "$(awk -v k="$released_rss_kb" 'BEGIN {printf "%.1f", k / 1024}') MB" \
    "< 30 MB" "$(verdict "$released_rss_kb < 30720")"
echo "idle phase: $idle_seconds s, threads $threads_before -> $threads_after, context switches $wakeups, schedstat runs $runs"
[[ -n $busy_threads ]] && echo "threads that woke up while idle:$busy_threads"

# --- stop Corvane ------------------------------------------------------------------------------
kill -TERM "$corvane_pid"
stopped=0
for _ in $(seq 50); do
    kill -0 "$corvane_pid" 2>/dev/null || { stopped=1; break; }
    sleep 0.1
done
if ((stopped)); then
    wait "$corvane_pid" && code=0 || code=$?
    echo "corvane stopped on SIGTERM (exit status $code)"
else
    echo "corvane did not stop within 5 s of SIGTERM"
fi
corvane_pid=
