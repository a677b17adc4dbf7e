#!/usr/bin/env bash
# Installs the Debian packages Corvane needs that are not there yet.
#   install-deps.sh          what building and running needs (scripts/check-build-deps.sh,
#                            run by the test suite, checks that it covers every build input)
#   install-deps.sh --tests  and the X servers and tools the tests and benchmarks use
#   install-deps.sh --list   prints the plain list and installs nothing
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins qt6-svg-dev qt6-tools-dev qt6-l10n-tools
    libxcb1-dev libxcb-xtest0-dev libxcb-xkb-dev libxcb-randr0-dev libxcb-xinput-dev
    libxcb-keysyms1-dev libxcb-shape0-dev libxkbcommon-dev x11proto-dev
    libwayland-dev wayland-protocols plasma-wayland-protocols qt6-wayland
)
case "${1:-}" in
--list)
    printf '%s\n' "${packages[@]}"
    exit 0
    ;;
--tests)
    packages+=(xvfb xserver-xorg-core xserver-xorg-video-dummy x11-xserver-utils x11-utils xdotool xcompmgr picom keynav
        dbus at-spi2-core python3-pyatspi trayer imagemagick appstream desktop-file-utils dpkg-dev
        sway grim wayland-utils kwin-wayland python3-dbus python3-gi)
    ;;
esac

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
