#!/usr/bin/env bash
# Builds Corvane with AddressSanitizer and UndefinedBehaviorSanitizer into build-sanitize/
# and runs the tests that feed it hostile settings, huge values and monitor layouts.
# Arguments are passed on to ctest.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --tests
cmake -S . -B build-sanitize -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCORVANE_SANITIZE=ON >/dev/null
# The editor and the hot key field: rows and fields made, deleted and dragged under the mouse.
tests=(tst_userdefaults tst_hotkey tst_controls tst_pointer tst_x11_actions tst_x11_input_safety tst_x11_settings
    tst_roworder tst_hotkeytextview tst_actionseditor)
# Only what these tests run: corvane and the tests themselves.
cmake --build build-sanitize --parallel "$(nproc)" --target corvane "${tests[@]}"
cd build-sanitize
# Qt's own allocations live as long as the process: leaks are not what this run looks for.
export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1
ctest --output-on-failure \
    -R "^($(IFS='|'; echo "${tests[*]}"))\$" "$@"
