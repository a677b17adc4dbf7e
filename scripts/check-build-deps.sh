#!/usr/bin/env bash
# Fails when building Corvane needs a Debian package that the plain
# `scripts/install-deps.sh` (without --tests) does not bring in.
#
# Every build input is traced to the package that owns it: each pkg-config
# module and Qt component the CMake files ask for, and each system header the
# sources include. That package must be in the plain list or be pulled in by one
# of its packages (Depends and Pre-Depends, followed through installed packages).
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t plain < <(scripts/install-deps.sh --list)
cmake_files=$(git ls-files '*CMakeLists.txt' '*.cmake' 2>/dev/null || find . -name CMakeLists.txt -o -name '*.cmake')
sources=$(git ls-files '*.cpp' '*.h' 2>/dev/null || find . -name '*.cpp' -o -name '*.h')

# --- the closure of the plain list over installed packages' dependencies -------------------------
declare -A reachable=()
queue=("${plain[@]}")
while ((${#queue[@]})); do
    package=${queue[0]}
    queue=("${queue[@]:1}")
    [[ -n ${reachable[$package]:-} ]] && continue
    reachable[$package]=1
    depends=$(dpkg-query -W -f='${Depends}, ${Pre-Depends}, ${Provides}' "$package" 2>/dev/null || true)
    # Alternatives ("a | b") count each; versions and architectures are dropped.
    for next in $(sed -e 's/([^)]*)//g' -e 's/[|,]/ /g' -e 's/:[a-z0-9]*//g' <<<"$depends"); do
        [[ -z ${reachable[$next]:-} ]] && queue+=("$next")
    done
done

failures=0
owner_of() { dpkg -S "$1" 2>/dev/null | head -1 | cut -d: -f1 | cut -d, -f1; }
require() { # what file
    local owner
    owner=$(owner_of "$(readlink -f "$2")")
    [[ -n $owner ]] || owner=$(owner_of "$2")
    if [[ -z $owner ]]; then
        echo "FAIL: $1: no installed package owns $2"
        failures=$((failures + 1))
    elif [[ -z ${reachable[$owner]:-} ]]; then
        echo "FAIL: $1 comes from package $owner, which scripts/install-deps.sh does not install without --tests"
        failures=$((failures + 1))
    else
        echo "ok: $1 ($owner)"
    fi
}

# --- pkg-config modules -----------------------------------------------------------------------------
modules=$(cat $cmake_files | tr '\n' ' ' | grep -o 'pkg_check_modules([^)]*)' | sed 's/pkg_check_modules(//; s/)//' |
    tr ' \t' '\n\n' | grep -v -e '^$' -e REQUIRED -e IMPORTED_TARGET -e QUIET -e '^[A-Z0-9_]*$' | sort -u)
for module in $modules; do
    directory=$(pkg-config --variable=pcfiledir "$module" 2>/dev/null || true)
    if [[ -z $directory ]]; then
        echo "FAIL: pkg-config module $module is not installed"
        failures=$((failures + 1))
        continue
    fi
    require "pkg-config module $module" "$directory/$module.pc"
done
grep -q 'find_package(PkgConfig' $cmake_files && require "pkg-config" "$(command -v pkg-config)"

# --- Qt components ----------------------------------------------------------------------------------
components=$(grep -ho 'find_package(Qt6[^)]*COMPONENTS[^)]*)' $cmake_files | sed 's/.*COMPONENTS//; s/)//' | tr ' ' '\n' |
    grep -v '^$' | sort -u)
qt_cmake_dir=$(dirname "$(dpkg -L qt6-base-dev | grep '/cmake/Qt6/Qt6Config.cmake$' | head -1)")/..
for component in $components; do
    require "Qt6 component $component" "$qt_cmake_dir/Qt6$component/Qt6${component}Config.cmake"
done

# --- system headers ---------------------------------------------------------------------------------
include_dirs=(/usr/include /usr/include/"$(gcc -dumpmachine)" /usr/include/c++/*)
headers=$(grep -ho '#include <[^>]*>' $sources | sed 's/#include <\(.*\)>/\1/' | grep -v '^Q' | sort -u)
for header in $headers; do
    found=
    for directory in "${include_dirs[@]}"; do
        [[ -e $directory/$header ]] && { found=$directory/$header; break; }
    done
    if [[ -z $found ]]; then
        echo "FAIL: header <$header> is not installed"
        failures=$((failures + 1))
        continue
    fi
    require "header <$header>" "$found"
done

echo
if ((failures)); then
    echo "$failures build input(s) not covered by the plain install"
    exit 1
fi
echo "every build input comes with scripts/install-deps.sh"
