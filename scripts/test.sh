#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test: the unit tests and the
# tests against the real X servers (Xvfb, Xorg with the dummy driver) they start.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --tests
scripts/build.sh
cd build
ctest --output-on-failure "$@"
