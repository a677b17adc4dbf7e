#!/usr/bin/env bash
# Controls performed from outside on a private headless sway: `corvane --perform` started
# as a process and D-Bus Perform, each until the probe client's window saw the pointer
# move, beside the floor of a motion of the probe's own virtual pointer. The program
# starts sway, the probe and corvane itself; this script gives it a private session bus.
# Prints figures; never fails because of one.
#
#   bench/run-wayland-perform-benchmark.sh [SAMPLES]      (BUILD_DIR as in run-benchmarks.sh)
set -euo pipefail

# shellcheck source-path=SCRIPTDIR source=perform-benchmark-rig.sh
source "$(dirname "${BASH_SOURCE[0]}")/perform-benchmark-rig.sh"
build_targets corvane-wayland-probe wayland_perform_latency
start_session_bus

# In the background, so that a signal to this script reaches the program at once: it
# stops sway, the probe and corvane itself before it exits.
"$build_dir/bench/wayland_perform_latency" "$build_dir/app/corvane" "$settings" right "${1:-100}" &
pids=("$!" "${pids[@]}")
wait "${pids[0]}"
