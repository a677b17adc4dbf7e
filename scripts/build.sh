#!/usr/bin/env bash
# Configures and builds Corvane into build/ (tests and benchmarks included).
set -euo pipefail
cd "$(dirname "$0")/.."
launcher=()
# ccache, where installed, makes rebuilds of unchanged sources (other build folders, other checkouts) cheap.
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${launcher[@]}" >/dev/null
cmake --build build --parallel "$(nproc)"
