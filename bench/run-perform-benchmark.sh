#!/usr/bin/env bash
# Controls performed from outside on a private Xvfb: `corvane --perform` started as a
# process and D-Bus Perform, each until the pointer moved, beside the floor of an XTest
# motion posted by the benchmark itself. Prints figures; never fails because of one.
#
#   bench/run-perform-benchmark.sh [SAMPLES]      (BUILD_DIR as in run-benchmarks.sh)
set -euo pipefail

# shellcheck source-path=SCRIPTDIR source=perform-benchmark-rig.sh
source "$(dirname "${BASH_SOURCE[0]}")/perform-benchmark-rig.sh"
build_targets perform_latency

for n in $(seq 90 199); do
    [[ ! -e /tmp/.X11-unix/X$n && ! -e /tmp/.X$n-lock ]] && break
done
Xvfb ":$n" -screen 0 1280x800x24 -nolisten tcp >/dev/null 2>&1 &
pids+=($!)
export DISPLAY=:$n
for _ in $(seq 200); do xset q >/dev/null 2>&1 && break; sleep 0.05; done

start_session_bus
export XDG_RUNTIME_DIR=$work_dir/runtime
mkdir -m 0700 -p "$XDG_RUNTIME_DIR"

"$build_dir/app/corvane" --settings "$settings" 2>"$work_dir/corvane.log" &
pids=("$!" "${pids[@]}")
for _ in $(seq 100); do grep -q 'started' "$work_dir/corvane.log" 2>/dev/null && break; sleep 0.05; done

echo "Xvfb 1280x800, private session bus ($(nproc) cores)"
"$build_dir/bench/perform_latency" "$build_dir/app/corvane" "$settings" right "${1:-100}"
