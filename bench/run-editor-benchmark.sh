#!/usr/bin/env bash
# The Actions page with 200 controls on a private Xvfb: time to open the page, and
# frame times while scrolling and while dragging a row, beside the same figures for
# a short list on the same server. Prints figures beside their goals; never fails
# because of a figure.
#
#   bench/run-editor-benchmark.sh [CONTROLS]      (BUILD_DIR as in run-benchmarks.sh)
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source_dir=$(cd "$here/.." && pwd)
build_dir=${BUILD_DIR:-$source_dir/build}
server_pid=

cleanup() {
    local status=$?
    if [[ -n $server_pid ]] && kill -0 "$server_pid" 2>/dev/null; then
        kill -TERM "$server_pid" 2>/dev/null || true
        wait "$server_pid" 2>/dev/null || true
    fi
    exit "$status"
}
trap cleanup EXIT

if [[ ! -f $build_dir/build.ninja ]]; then
    cmake -S "$source_dir" -B "$build_dir" -G Ninja >/dev/null
fi
ninja -C "$build_dir" actions_page >/dev/null

for n in $(seq 90 199); do
    [[ ! -e /tmp/.X11-unix/X$n && ! -e /tmp/.X$n-lock ]] && break
done
Xvfb ":$n" -screen 0 1920x1080x24 -nolisten tcp >/dev/null 2>&1 &
server_pid=$!
export DISPLAY=:$n
for _ in $(seq 200); do xset q >/dev/null 2>&1 && break; sleep 0.05; done
export QT_QPA_PLATFORM=xcb
export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$(mktemp -d "${TMPDIR:-/tmp}/corvane-runtime.XXXXXX")}

echo "Xvfb 1920x1080 ($(nproc) cores)"
"$build_dir/bench/actions_page" "${1:-200}"
