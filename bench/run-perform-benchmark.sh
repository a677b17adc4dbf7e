#!/usr/bin/env bash
# Controls performed from outside on a private Xvfb: `corvane --perform` started as a
# process and D-Bus Perform, each until the pointer moved, beside the floor of an XTest
# motion posted by the benchmark itself. Prints figures; never fails because of one.
#
#   bench/run-perform-benchmark.sh [SAMPLES]      (BUILD_DIR as in run-benchmarks.sh)
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source_dir=$(cd "$here/.." && pwd)
build_dir=${BUILD_DIR:-$source_dir/build}
work_dir=$(mktemp -d "${TMPDIR:-/tmp}/corvane-perform.XXXXXX")
pids=()

cleanup() {
    local status=$?
    for pid in "${pids[@]}"; do
        kill -TERM "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    done
    rm -rf "$work_dir"
    exit "$status"
}
trap cleanup EXIT

if [[ ! -f $build_dir/build.ninja ]]; then
    cmake -S "$source_dir" -B "$build_dir" -G Ninja >/dev/null
fi
ninja -C "$build_dir" corvane perform_latency >/dev/null

for n in $(seq 90 199); do
    [[ ! -e /tmp/.X11-unix/X$n && ! -e /tmp/.X$n-lock ]] && break
done
Xvfb ":$n" -screen 0 1280x800x24 -nolisten tcp >/dev/null 2>&1 &
pids+=($!)
export DISPLAY=:$n
for _ in $(seq 200); do xset q >/dev/null 2>&1 && break; sleep 0.05; done

dbus-daemon --session --nofork --print-address=1 --address="unix:path=$work_dir/bus" >"$work_dir/bus.address" 2>/dev/null &
pids+=($!)
for _ in $(seq 100); do [[ -s $work_dir/bus.address ]] && break; sleep 0.05; done
export DBUS_SESSION_BUS_ADDRESS=$(head -n 1 "$work_dir/bus.address")
export XDG_RUNTIME_DIR=$work_dir/runtime
mkdir -m 0700 -p "$XDG_RUNTIME_DIR"

settings=$work_dir/settings.json
cat >"$settings" <<'JSON'
{"Stealth Mode": true, "Custom Controls": [
  {"Identifier": "right", "Action": 31, "Move Direction": 5, "Move Delta": 1}]}
JSON
"$build_dir/app/corvane" --settings "$settings" 2>"$work_dir/corvane.log" &
pids=("$!" "${pids[@]}")
for _ in $(seq 100); do grep -q 'started' "$work_dir/corvane.log" 2>/dev/null && break; sleep 0.05; done

echo "Xvfb 1280x800, private session bus ($(nproc) cores)"
"$build_dir/bench/perform_latency" "$build_dir/app/corvane" "$settings" right "${1:-100}"
