#!/usr/bin/env bash
# Start-up time and memory of Corvane on a private Xvfb with an XEmbed tray (trayer):
# start to hot keys registered and to the settings window shown (p50 of STARTS starts),
# resident memory with the tray icon and after the window was opened and closed, and
# wake-ups while idle. Prints figures beside their goals; never fails because of a figure.
#
#   bench/run-startup-benchmark.sh        (BUILD_DIR, STARTS=20, KEEP_TEMP=1 as in run-benchmarks.sh)
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source_dir=$(cd "$here/.." && pwd)
build_dir=${BUILD_DIR:-$source_dir/build}
starts=${STARTS:-20}
work_dir=$(mktemp -d "${TMPDIR:-/tmp}/corvane-startup.XXXXXX")
server_pid=
tray_pid=

stop_pid() {
    [[ -n $1 ]] && kill -0 "$1" 2>/dev/null || return 0
    kill -TERM "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}
cleanup() {
    local status=$?
    stop_pid "$tray_pid"
    stop_pid "$server_pid"
    [[ ${KEEP_TEMP:-0} == 1 ]] && echo "temporary files kept in $work_dir" || rm -rf "$work_dir"
    exit "$status"
}
trap cleanup EXIT

if [[ ! -f $build_dir/build.ninja ]]; then
    cmake -S "$source_dir" -B "$build_dir" -G Ninja >/dev/null
fi
ninja -C "$build_dir" corvane corvane-restart startup_memory >/dev/null

for n in $(seq 90 199); do
    [[ ! -e /tmp/.X11-unix/X$n && ! -e /tmp/.X$n-lock ]] && break
done
Xvfb ":$n" -screen 0 1920x1080x24 -nolisten tcp >"$work_dir/xvfb.log" 2>&1 &
server_pid=$!
export DISPLAY=:$n
for _ in $(seq 200); do xset q >/dev/null 2>&1 && break; sleep 0.05; done
trayer --edge top --align right --widthtype pixel --width 64 --height 24 >"$work_dir/trayer.log" 2>&1 &
tray_pid=$!
sleep 0.5
# No session bus: Qt embeds the tray icon the XEmbed way, into trayer.
unset DBUS_SESSION_BUS_ADDRESS
export XDG_RUNTIME_DIR=$work_dir/runtime
mkdir -m 0700 -p "$XDG_RUNTIME_DIR"

echo "Xvfb 1920x1080, trayer, $starts starts each ($(nproc) cores)"
"$build_dir/bench/startup_memory" "$build_dir/app/corvane" "$work_dir" "$starts"
