#!/usr/bin/env bash
# Runs the Corvane benchmarks on private X servers and prints the figures beside their goals:
# hot key latency, its CPU cost and the cost of typing elsewhere, on Xvfb and on Xorg with the
# dummy driver and three RandR monitors (the layout of the integration tests), beside the
# server's own floor, a minimal reference client and keynav, all measured in the same run;
# then idle cost, memory and the screen-section overlay on Xvfb.
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
#   CPU_PRESSES    hot key presses for the CPU time figure (default 1000)
#   TYPED_KEYS     ordinary keys typed into another window (default 500)
#   SERVERS        which servers the hot key figures run on (default "xvfb xorg")
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
cpu_presses=${CPU_PRESSES:-1000}
typed_keys=${TYPED_KEYS:-500}
servers=${SERVERS:-xvfb xorg}

server_pid=
corvane_pid=
keynav_pid=
compositor_pid=
work_dir=$(mktemp -d "${TMPDIR:-/tmp}/corvane-bench.XXXXXX")

stop_pid() { # pid: SIGTERM, then SIGKILL after 5 s
    [[ -n $1 ]] && kill -0 "$1" 2>/dev/null || return 0
    kill -TERM "$1" 2>/dev/null || true
    for _ in $(seq 50); do kill -0 "$1" 2>/dev/null || break; sleep 0.1; done
    kill -KILL "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}
stop_all() {
    stop_pid "$corvane_pid"; corvane_pid=
    stop_pid "$keynav_pid"; keynav_pid=
    stop_pid "$compositor_pid"; compositor_pid=
    stop_pid "$server_pid"; server_pid=
}
cleanup() {
    local status=$?
    stop_all
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

# --- X servers -----------------------------------------------------------------------------------
free_display() {
    local n
    for n in $(seq 90 199); do
        if [[ ! -e /tmp/.X11-unix/X$n && ! -e /tmp/.X$n-lock ]]; then
            echo "$n"
            return
        fi
    done
    echo "no free X display number in :90..:199" >&2
    exit 1
}
wait_for_server() { # number log
    for _ in $(seq 200); do
        [[ -e /tmp/.X11-unix/X$1 ]] && xset -display ":$1" q >/dev/null 2>&1 && return 0
        kill -0 "$server_pid" 2>/dev/null || { echo "X server failed:" >&2; tail -20 "$2" >&2; exit 1; }
        sleep 0.05
    done
    echo "X server :$1 did not come up" >&2
    exit 1
}
start_xvfb() {
    local n
    n=$(free_display)
    Xvfb ":$n" -screen 0 1920x1080x24 -nolisten tcp >"$work_dir/xvfb.log" 2>&1 &
    server_pid=$!
    export DISPLAY=:$n
    wait_for_server "$n" "$work_dir/xvfb.log"
    server_label="Xvfb 1920x1080"
}
# Xorg's dummy driver with one 4160x1080 screen carved into three RandR monitors: L 1280x800 at
# (0,280), the primary P 1920x1080 at (1280,0), R 960x600 at (3200,100).
start_xorg() {
    local n
    n=$(free_display)
    # The tests' configuration, filled as QVTestXServer::startXorg fills it.
    sed -e 's/%1/4160/g; s/%2/1080/g; s/%3/4200/g; s/%4/4300/g; s/%5/4400/g' \
        -e 's/%6/1083/g; s/%7/1093/g; s/%8/1120/g' \
        "$source_dir/tests/integration/xorg-dummy.conf" >"$work_dir/xorg.conf"
    Xorg ":$n" -noreset -nolisten tcp -config "$work_dir/xorg.conf" -logfile "$work_dir/xorg.log" \
        >"$work_dir/xorg.stderr" 2>&1 &
    server_pid=$!
    export DISPLAY=:$n
    wait_for_server "$n" "$work_dir/xorg.stderr"
    xrandr --setmonitor '*P' 1920/480x1080/270+1280+0 DUMMY0 >/dev/null
    xrandr --setmonitor L 1280/320x800/200+0+280 none >/dev/null
    xrandr --setmonitor R 960/240x600/150+3200+100 none >/dev/null
    server_label="Xorg dummy, 3 monitors 4160x1080"
}

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

# --- Corvane and keynav -----------------------------------------------------------------------------
start_corvane() {
    "$corvane" --settings "$settings" >"$work_dir/corvane.log" 2>&1 &
    corvane_pid=$!
    local deadline=$((SECONDS + 20))
    while ((SECONDS < deadline)); do
        kill -0 "$corvane_pid" 2>/dev/null || { echo "corvane exited:" >&2; cat "$work_dir/corvane.log" >&2; exit 1; }
        "$bench" --probe --timeout-ms 200 >/dev/null 2>&1 && return 0
        sleep 0.1
    done
    echo "corvane did not react to the hot key within 20 s" >&2
    cat "$work_dir/corvane.log" >&2
    exit 1
}
# keynav, the nearest peer, with a private configuration: Control+Alt+y starts it, l cuts the
# region to its right half and warps the pointer there, then ends.
start_keynav() {
    command -v keynav >/dev/null || return 0
    mkdir -p "$work_dir/keynav-home"
    printf 'clear\nctrl+alt+y start\nl cut-right,warp,end\nEscape end\n' >"$work_dir/keynav-home/.keynavrc"
    (HOME=$work_dir/keynav-home exec keynav >"$work_dir/keynav.log" 2>&1) &
    keynav_pid=$!
    sleep 0.5
}

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

# CPU time of every thread of corvane, in nanoseconds.
cpu_ns() { cat /proc/"$corvane_pid"/task/*/schedstat 2>/dev/null | awk '{sum += $1} END {printf "%d", sum}'; }

# --- hot key latency, CPU cost and typing elsewhere ------------------------------------------------
# Prints its figures and leaves "name value" lines in $work_dir/summary-<label>.txt.
hotkey_suite() { # label
    local label=$1 out=$work_dir/latency-$1.txt summary=$work_dir/summary-$1.txt
    local before after cpu_before cpu_after
    : >"$summary"
    before=$(per_thread)
    "$bench" --samples "$samples" --modifiers "$modifiers" | tee "$out"
    after=$(per_thread)
    echo "  corvane context switches per round of the latency run, by thread:$(thread_delta "$before" "$after" \
        "$(sed -n 's/.* presses=\([0-9]*\).*/\1/p' "$out")")"
    grep '^RESULT ' "$out" | sed 's/^RESULT //' | tr ' ' '\n' | tr '=' ' ' >>"$summary"
    echo
    if [[ -n $keynav_pid ]]; then
        echo "-- beside keynav: every move seen by polling the pointer (keynav warps, which makes no raw event)"
        "$bench" --samples "$samples" --modifiers "$modifiers" --keynav 29,46 --no-reference | tee "$out.keynav"
        grep '^RESULT ' "$out.keynav" | sed 's/^RESULT //' | tr ' ' '\n' | tr '=' ' ' | sed 's/^/polled_/' >>"$summary"
        echo
    fi

    echo "-- CPU time of $cpu_presses hot key presses (press and release, nothing else)"
    sleep 1
    cpu_before=$(cpu_ns)
    "$bench" --samples "$cpu_presses" --warmup 0 --no-reference --modifiers "$modifiers" >/dev/null
    cpu_after=$(cpu_ns)
    awk -v a="$cpu_before" -v b="$cpu_after" -v n="$cpu_presses" \
        'BEGIN {printf "  corvane CPU per 1,000 hot key presses: %.1f ms (%.1f us a press)\n", (b - a) / n / 1000, (b - a) / n / 1000}'
    echo "cpu_ms_per_1000 $(awk -v a="$cpu_before" -v b="$cpu_after" -v n="$cpu_presses" 'BEGIN {printf "%.1f", (b - a) / n / 1000}')" >>"$summary"

    echo "-- $typed_keys ordinary keys typed into another window"
    sleep 1
    read -r switches_before _ _ < <(thread_counts)
    cpu_before=$(cpu_ns)
    "$bench" --type "$typed_keys" >/dev/null
    sleep 0.5
    cpu_after=$(cpu_ns)
    read -r switches_after _ _ < <(thread_counts)
    local wakeups=$((switches_after - switches_before))
    awk -v w="$wakeups" -v a="$cpu_before" -v b="$cpu_after" -v n="$typed_keys" 'BEGIN {
        printf "  corvane woke up %d times (%.2f a key, press and release) and used %.2f ms of CPU (%.1f us a key)\n",
            w, w / n, (b - a) / 1e6, (b - a) / n / 1000}'
    echo "typing_wakeups $wakeups" >>"$summary"
    echo "typing_cpu_us_per_key $(awk -v a="$cpu_before" -v b="$cpu_after" -v n="$typed_keys" 'BEGIN {printf "%.1f", (b - a) / n / 1000}')" >>"$summary"
    echo
}

hotkey_summary() { # label
    local summary=$work_dir/summary-$1.txt
    value() { awk -v k="$1" '$1 == k {print $2}' "$summary"; }
    local floor hot p99 ratio keynav polled
    floor=$(value floor_p50_us); hot=$(value hotkey_p50_us); p99=$(value hotkey_p99_us); ratio=$(value ratio_p50)
    printf '%-44s %-30s %-22s %s\n' "floor p50 (XTest motion + QueryPointer)" "$floor us (p99 $(value floor_p99_us))" "-" "-"
    printf '%-44s %-30s %-22s %s\n' "hot key -> moved p50" "$hot us (${ratio}x floor)" "<= 2x floor p50" \
        "$(verdict "$ratio <= 2")"
    printf '%-44s %-30s %-22s %s\n' "hot key -> moved p99" "$p99 us" "< 300 us" "$(verdict "$p99 < 300")"
    printf '%-44s %-30s %-22s %s\n' "minimal reference client p50 (p99)" \
        "$(value reference_direct_p50_us) us ($(value reference_direct_p99_us))" "-" \
        "$(awk -v a="$hot" -v b="$(value reference_direct_p50_us)" 'BEGIN {printf "corvane/reference %.2f", a / b}')"
    keynav=$(value polled_keynav_p50_us)
    if [[ -n $keynav ]]; then
        polled=$(value polled_hotkey_p50_us)
        printf '%-44s %-30s %-22s %s\n' "polled: corvane p50 (p99)" "$polled us ($(value polled_hotkey_p99_us))" "-" "-"
        printf '%-44s %-30s %-22s %s\n' "polled: keynav p50 (p99)" "$keynav us ($(value polled_keynav_p99_us))" \
            "corvane faster" "$(verdict "$polled < $keynav && $(value polled_hotkey_p99_us) < $(value polled_keynav_p99_us)")"
        printf '%-44s %-30s %-22s %s\n' "ratio corvane / keynav p50 (p99)" \
            "$(awk -v a="$polled" -v b="$keynav" -v c="$(value polled_hotkey_p99_us)" -v d="$(value polled_keynav_p99_us)" \
                'BEGIN {printf "%.2f (%.2f)", a / b, c / d}')" "< 1" "-"
    fi
    printf '%-44s %-30s %-22s %s\n' "CPU per 1,000 hot key presses" "$(value cpu_ms_per_1000) ms" "-" "-"
    printf '%-44s %-30s %-22s %s\n' "wake-ups for $typed_keys keys typed elsewhere" \
        "$(value typing_wakeups) ($(value typing_cpu_us_per_key) us CPU a key)" "only reading the event" "-"
}
verdict() { if awk "BEGIN {exit !($1)}"; then echo met; else echo "NOT met"; fi; }

# --- idle, memory and the overlay (on Xvfb) ---------------------------------------------------------
idle_and_overlay() {
    sleep 2 # let the last hot key reactions settle
    local idle_before idle_after
    idle_before=$(per_thread)
    read -r switches_before runs_before threads_before < <(thread_counts)
    echo "Idle: measuring $idle_seconds s with nothing happening ($threads_before threads) ..."
    sleep "$idle_seconds"
    read -r switches_after runs_after threads_after < <(thread_counts)
    idle_after=$(per_thread)
    rss_kb=$(status_kb VmRSS)
    hwm_kb=$(status_kb VmHWM)
    idle_wakeups=$((switches_after - switches_before))
    idle_runs=$((runs_after - runs_before))
    busy_threads=$(thread_delta "$idle_before" "$idle_after")

    # After the idle phase, which it would disturb.
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
        stop_pid "$compositor_pid"
        compositor_pid=
    fi
}
overlay_run() { # label [options]
    local label=$1
    shift
    "$overlay_bench" --label "($label) " "$@" | tee -a "$work_dir/overlay.txt" || true
    echo
}
overlay_field() { # row field
    sed -n "$1p" <(grep '^RESULT ' "$work_dir/overlay.txt") | sed -n "s/.* $2=\([^ ]*\).*/\1/p"
}
per_minute() { awk -v d="$1" -v s="$idle_seconds" 'BEGIN {printf "%.1f", d * 60 / s}'; }
mb() { awk -v k="$1" 'BEGIN {printf "%.1f", k / 1024}'; }

idle_and_overlay_summary() {
    printf '%-44s %-30s %-22s %s\n' "idle wake-ups (context switches)" "$(per_minute "$idle_wakeups")/min" \
        "0 (no timers)" "$(verdict "$idle_wakeups == 0")"
    printf '%-44s %-30s %-22s %s\n' "idle scheduler runs (schedstat)" "$(per_minute "$idle_runs")/min" "0" \
        "$(verdict "$idle_runs == 0")"
    printf '%-44s %-30s %-22s %s\n' "resident memory VmRSS" "$(mb "$rss_kb") MB" "< 30 MB" "$(verdict "$rss_kb < 30720")"
    printf '%-44s %-30s %-22s %s\n' "peak resident memory VmHWM" "$(mb "$hwm_kb") MB" "< 30 MB" \
        "$(verdict "$hwm_kb < 30720")"
    local overlay_names=("overlay, no compositor" "overlay, first after 6 s" "overlay, xcompmgr") row name
    for row in 1 2 3; do
        local shown_p50 shown_p99 step_p50 step_p99
        shown_p50=$(overlay_field $row shown_p50_ms)
        [[ -n $shown_p50 ]] || continue
        name=${overlay_names[$((row - 1))]}
        shown_p99=$(overlay_field $row shown_p99_ms)
        step_p50=$(overlay_field $row step_p50_ms)
        step_p99=$(overlay_field $row step_p99_ms)
        printf '%-44s %-30s %-22s %s\n' "$name: hot key -> shown" "p50 $shown_p50, p99 $shown_p99 ms" "<= 30 ms" \
            "$(verdict "$shown_p99 <= 30")"
        printf '%-44s %-30s %-22s %s\n' "$name: step -> redrawn" "p50 $step_p50, p99 $step_p99 ms" "<= 16 ms" \
            "$(verdict "$step_p99 <= 16")"
    done
    printf '%-44s %-30s %-22s %s\n' "VmRSS just after the overlay closed" "$(mb "$overlay_rss_kb") MB" "-" "-"
    printf '%-44s %-30s %-22s %s\n' "VmRSS 6 s after the overlay closed" "$(mb "$released_rss_kb") MB" "< 30 MB" \
        "$(verdict "$released_rss_kb < 30720")"
    echo "idle phase: $idle_seconds s, threads $threads_before -> $threads_after, context switches $idle_wakeups," \
        "schedstat runs $idle_runs"
    [[ -n $busy_threads ]] && echo "threads that woke up while idle:$busy_threads"
    return 0
}

# --- the runs ----------------------------------------------------------------------------------------
for server in $servers; do
    "start_$server"
    start_corvane
    start_keynav
    echo "== $server_label on $DISPLAY: $hot_keys hot keys, corvane PID $corvane_pid${keynav_pid:+, keynav PID $keynav_pid}"
    echo
    hotkey_suite "$server"
    [[ $server == xvfb ]] && idle_and_overlay
    echo "== Summary, $server_label (modifiers $modifiers, $samples samples each)"
    printf '%-44s %-30s %-22s %s\n' "figure" "measured" "goal" "verdict"
    hotkey_summary "$server"
    [[ $server == xvfb ]] && idle_and_overlay_summary
    kill -TERM "$corvane_pid"
    wait "$corvane_pid" && code=0 || code=$?
    echo "corvane stopped on SIGTERM (exit status $code)"
    echo
    corvane_pid=
    stop_all
done
