#!/usr/bin/env bash
# Installs what is missing, builds, and starts Corvane on the current display (X11 or Wayland).
# Arguments are passed on (e.g. --settings FILE).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh
exec build/app/corvane "$@"
