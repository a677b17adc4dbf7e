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
# One query for every installed package's dependencies, then a walk from the plain list.
declare -A dependencies=()
# Alternatives ("a | b") count each; versions and architectures are dropped.
while IFS=$'\t' read -r package depends; do
    dependencies[$package]=$depends
done < <(dpkg-query -W -f='${Package}\t${Depends}, ${Pre-Depends}, ${Provides}\n' |
    sed -e 's/([^)]*)//g' -e 's/[|,]/ /g' -e 's/:[a-z0-9]*//g')
declare -A reachable=()
queue=("${plain[@]}")
while ((${#queue[@]})); do
    package=${queue[0]}
    queue=("${queue[@]:1}")
    [[ -n ${reachable[$package]:-} ]] && continue
    reachable[$package]=1
    for next in ${dependencies[$package]:-}; do
        [[ -z ${reachable[$next]:-} ]] && queue+=("$next")
    done
done

# --- the build inputs, each with the file that stands for it ("" when not installed) -------------
inputs=() # "what<TAB>file"
add_input() { inputs+=("$1"$'\t'"$2"); }

# --- pkg-config modules -----------------------------------------------------------------------------
modules=$(cat $cmake_files | tr '\n' ' ' | grep -o 'pkg_check_modules([^)]*)' | sed 's/pkg_check_modules(//; s/)//' |
    tr ' \t' '\n\n' | grep -v -e '^$' -e REQUIRED -e IMPORTED_TARGET -e QUIET -e '^[A-Z0-9_]*$' | sort -u)
for module in $modules; do
    directory=$(pkg-config --variable=pcfiledir "$module" 2>/dev/null || true)
    add_input "pkg-config module $module" "${directory:+$directory/$module.pc}"
done
grep -q 'find_package(PkgConfig' $cmake_files && add_input "pkg-config" "$(command -v pkg-config || true)"

# --- Qt components ----------------------------------------------------------------------------------
components=$(grep -ho 'find_package(Qt6[^)]*COMPONENTS[^)]*)' $cmake_files | sed 's/.*COMPONENTS//; s/)//' | tr ' ' '\n' |
    grep -v '^$' | sort -u)
qt_cmake_dir=$(dirname "$(dpkg -L qt6-base-dev | grep '/cmake/Qt6/Qt6Config.cmake$' | head -1)")/..
for component in $components; do
    add_input "Qt6 component $component" "$qt_cmake_dir/Qt6$component/Qt6${component}Config.cmake"
done

# --- other CMake packages (PlasmaWaylandProtocols) ---------------------------------------------------
packages=$(grep -ho 'find_package([A-Za-z0-9_]*' $cmake_files | sed 's/find_package(//' |
    grep -v -e '^Qt6$' -e '^PkgConfig$' -e '^Threads$' | sort -u)
for package in $packages; do
    config=$(find /usr/lib/*/cmake /usr/lib/cmake /usr/share/cmake -maxdepth 2 -name "${package}Config.cmake" \
        2>/dev/null | head -1)
    add_input "CMake package $package" "$config"
done

# --- system headers ---------------------------------------------------------------------------------
include_dirs=(/usr/include /usr/include/"$(gcc -dumpmachine)" /usr/include/c++/*)
headers=$(grep -ho '#include <[^>]*>' $sources | sed 's/#include <\(.*\)>/\1/' | grep -v '^Q' | sort -u)
for header in $headers; do
    found=
    for directory in "${include_dirs[@]}"; do
        [[ -e $directory/$header ]] && { found=$directory/$header; break; }
    done
    add_input "header <$header>" "$found"
done

# --- each input's owner, asked of dpkg once for all ----------------------------------------------
declare -A owners=()
paths=()
for input in "${inputs[@]}"; do
    file=${input#*$'\t'}
    [[ -n $file && -e $file ]] && paths+=("$file" "$(readlink -f "$file")")
done
while IFS= read -r line; do
    owner=${line%%: *}
    owners[${line#*: }]=${owner%%[:,]*}
done < <(dpkg -S "${paths[@]}" 2>/dev/null || true)

failures=0
for input in "${inputs[@]}"; do
    what=${input%%$'\t'*}
    file=${input#*$'\t'}
    owner=
    if [[ -n $file && -e $file ]]; then
        owner=${owners[$file]:-${owners[$(readlink -f "$file")]:-}}
    fi
    if [[ -z $file || ! -e $file ]]; then
        echo "FAIL: $what is not installed"
    elif [[ -z $owner ]]; then
        echo "FAIL: $what: no installed package owns $file"
    elif [[ -z ${reachable[$owner]:-} ]]; then
        echo "FAIL: $what comes from package $owner, which scripts/install-deps.sh does not install without --tests"
    else
        echo "ok: $what ($owner)"
        continue
    fi
    failures=$((failures + 1))
done

echo
if ((failures)); then
    echo "$failures build input(s) not covered by the plain install"
    exit 1
fi
echo "every build input comes with scripts/install-deps.sh"
