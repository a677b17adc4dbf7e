#!/usr/bin/env bash
# Installs the Debian packages Corvane needs that are not there yet.
#   install-deps.sh          what building and running needs
#   install-deps.sh --tests  and the X servers and tools the tests use
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins
    libxcb1-dev libxcb-xtest0-dev libxcb-xkb-dev libxcb-randr0-dev libxcb-xinput-dev
    libxcb-keysyms1-dev libxkbcommon-dev
)
if [[ "${1:-}" == "--tests" ]]; then
    packages+=(xvfb xserver-xorg-core xserver-xorg-video-dummy x11-xserver-utils xdotool libxcb-shape0-dev xcompmgr picom)
fi

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
    [[ "$status" == "install ok installed" ]] || missing+=("$package")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[[ $(id -u) -eq 0 ]] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq "${missing[@]}"
