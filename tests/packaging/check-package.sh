#!/usr/bin/env bash
# Installs a finished build into a staging folder and packs it with `cpack -G DEB`, then checks
# both: every file a user needs is there, the package holds exactly what `cmake --install`
# installs, with sane permissions and dependencies, and the installed program starts.
#   check-package.sh BUILD_DIR [--with-restart-helper]
set -euo pipefail
build=$(cd "$1" && pwd)
expect_restart=${2:-}

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
# Inside the build tree: /tmp may forbid running the staged binary.
scratch=$(mktemp -d "$build/package-check.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# --- cmake --install ------------------------------------------------------------------------------
DESTDIR=$scratch/stage cmake --install "$build" --prefix /usr >/dev/null
(cd "$scratch/stage" && find . ! -type d | sed 's|^\./||' | sort) >"$scratch/installed"

required=(
    usr/bin/corvane
    usr/share/applications/org.corvane.Corvane.desktop
    usr/share/metainfo/org.corvane.Corvane.metainfo.xml
    usr/share/icons/hicolor/scalable/apps/corvane.svg
    usr/share/corvane/help/overview.html
    usr/share/corvane/help/help.css
    usr/share/corvane/help/de/overview.html
    usr/share/corvane/translations/corvane_de.qm
    usr/share/doc/corvane/copyright
)
[[ $expect_restart == --with-restart-helper ]] && required+=(usr/bin/corvane-restart)
for file in "${required[@]}"; do
    grep -qxF "$file" "$scratch/installed" || fail "cmake --install puts no $file in place"
done

# The desktop entry launches what is installed, under the icon that is installed.
desktop=$scratch/stage/usr/share/applications/org.corvane.Corvane.desktop
# KWin's fake input needs the absolute path of the installed binary, and the interface named.
exec_path=$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$desktop")
icon_name=$(sed -n 's/^Icon=//p' "$desktop")
[[ $exec_path == /usr/bin/corvane ]] || fail "the desktop entry runs '$exec_path', not the installed /usr/bin/corvane"
grep -qxF "${exec_path#/}" "$scratch/installed" || fail "the desktop entry runs '$exec_path', which is not installed"
grep -qxF "X-KDE-Wayland-Interfaces=org_kde_kwin_fake_input" "$desktop" ||
    fail "the desktop entry does not ask KWin for its fake input"
grep -qxF "usr/share/icons/hicolor/scalable/apps/$icon_name.svg" "$scratch/installed" ||
    fail "the desktop entry shows icon '$icon_name', which is not installed"
if command -v desktop-file-validate >/dev/null; then
    desktop-file-validate "$desktop" || fail "desktop-file-validate rejects the desktop entry"
fi
if command -v appstreamcli >/dev/null; then
    appstreamcli validate --no-net "$scratch/stage/usr/share/metainfo/org.corvane.Corvane.metainfo.xml" >/dev/null ||
        fail "appstreamcli rejects the metainfo"
fi

# The help page links only to files that are installed beside it.
help=$scratch/stage/usr/share/corvane/help
for page in "$help/overview.html" "$help/de/overview.html"; do
    for link in $(grep -o '\(href\|src\)="[^"#:]*"' "$page" | sed 's/^[a-z]*="//; s/"$//'); do
        [[ -e $(dirname "$page")/$link ]] || fail "${page#"$scratch"/stage/} links to missing $link"
    done
    for anchor in $(grep -o 'href="#[^"]*"' "$page" | sed 's/^href="#//; s/"$//' | sort -u); do
        grep -q "id=\"$anchor\"" "$page" || fail "${page#"$scratch"/stage/} links to missing section #$anchor"
    done
    grep -q '<script' "$page" && fail "${page#"$scratch"/stage/} holds a script"
done

started=$("$scratch/stage/usr/bin/corvane" --version) || fail "the installed corvane does not start"
[[ $started == "corvane $version" ]] || fail "corvane --version says '$started', expected 'corvane $version'"

# --- cpack -G DEB ---------------------------------------------------------------------------------
(cd "$build" && cpack -G DEB -B "$scratch/cpack" >"$scratch/cpack.log" 2>&1) || {
    cat "$scratch/cpack.log"
    fail "cpack -G DEB failed"
}
arch=$(dpkg --print-architecture)
deb=$scratch/cpack/corvane_${version}_$arch.deb
if [[ ! -f $deb ]]; then
    fail "no $(basename "$deb"); cpack made: $(ls "$scratch/cpack")"
else
    dpkg-deb -c "$deb" | awk '$1 !~ /^d/ { sub(/^\.\//, "", $6); print $6 }' | sort >"$scratch/packaged"
    diff -u "$scratch/installed" "$scratch/packaged" >"$scratch/list.diff" || {
        cat "$scratch/list.diff"
        fail "the package differs from what cmake --install installs"
    }
    # Owned by root; programs executable, everything else plain data, nothing writable by others.
    while read -r mode owner file; do
        case $file in
        ./usr/bin/*) [[ $mode == -rwxr-xr-x ]] || fail "$file has mode $mode" ;;
        *) [[ $mode == -rw-r--r-- ]] || fail "$file has mode $mode" ;;
        esac
        [[ $owner == root/root ]] || fail "$file belongs to $owner"
    done < <(dpkg-deb -c "$deb" | awk '$1 !~ /^d/ { print $1, $2, $6 }')

    [[ $(dpkg-deb -f "$deb" Package) == corvane ]] || fail "package name $(dpkg-deb -f "$deb" Package)"
    [[ $(dpkg-deb -f "$deb" Version) == "$version" ]] || fail "package version $(dpkg-deb -f "$deb" Version)"
    [[ $(dpkg-deb -f "$deb" Section) == utils ]] || fail "package section $(dpkg-deb -f "$deb" Section)"
    description=$(dpkg-deb -f "$deb" Description)
    [[ $(sed -n 2p <<<"$description") == " $(head -1 <<<"$description")" ]] &&
        fail "the description repeats its summary line"
    depends=$(dpkg-deb -f "$deb" Depends)
    for needed in libc6 libqt6core6 libqt6gui6 libqt6widgets6 libxcb1 qt6-qpa-plugins; do
        [[ ", $depends," == *", $needed "* || ", $depends," == *", $needed,"* ]] ||
            fail "Depends lacks $needed: $depends"
    done
    [[ $depends == *-dev* ]] && fail "Depends names a development package: $depends"
fi

[[ $failures -eq 0 ]] && echo "package corvane $version: $(wc -l <"$scratch/installed") files, Depends: $depends"
exit $((failures > 0))
