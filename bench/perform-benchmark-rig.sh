# shellcheck shell=bash
# Sourced by the perform benchmarks (run-perform-benchmark.sh, run-wayland-perform-benchmark.sh):
# a work folder, the settings file of one Move control named "right", and every process
# in pids stopped by its id on exit, first to last.
#
#   build_targets TARGET...   builds corvane and the targets into build_dir (BUILD_DIR)
#   start_session_bus         a private dbus-daemon; exports DBUS_SESSION_BUS_ADDRESS

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
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

build_targets() {
    if [[ ! -f $build_dir/build.ninja ]]; then
        cmake -S "$source_dir" -B "$build_dir" -G Ninja >/dev/null
    fi
    ninja -C "$build_dir" corvane "$@" >/dev/null
}

start_session_bus() {
    dbus-daemon --session --nofork --print-address=1 --address="unix:path=$work_dir/bus" >"$work_dir/bus.address" 2>/dev/null &
    pids+=($!)
    for _ in $(seq 100); do [[ -s $work_dir/bus.address ]] && break; sleep 0.05; done
    DBUS_SESSION_BUS_ADDRESS=$(head -n 1 "$work_dir/bus.address")
    export DBUS_SESSION_BUS_ADDRESS
}

settings=$work_dir/settings.json
cat >"$settings" <<'JSON'
{"Stealth Mode": true, "Custom Controls": [
  {"Identifier": "right", "Action": 31, "Move Direction": 5, "Move Delta": 1}]}
JSON
