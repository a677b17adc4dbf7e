#!/usr/bin/env bash
# Configures and builds Corvane into build/ (tests and benchmarks included).
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --parallel "$(nproc)"
