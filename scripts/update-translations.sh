#!/usr/bin/env bash
# Brings the translation sources (resources/translations/*.ts) up to date with the tr() texts of
# the sources: new texts are added as unfinished, texts no longer used are dropped, existing
# translations are kept. Fill the unfinished ones in with Qt Linguist
# (/usr/lib/qt6/bin/linguist resources/translations/corvane_de.ts) or an editor.
#   update-translations.sh          updates the .ts files in place
#   update-translations.sh --check  changes nothing; fails and lists the texts that a .ts file
#                                   lacks a finished translation for
set -euo pipefail
cd "$(dirname "$0")/.."

lupdate=/usr/lib/qt6/bin/lupdate
[[ -x $lupdate ]] || lupdate=$(command -v lupdate6 || command -v lupdate)

folders=()
for folder in app controls core hotkeys overlay platform toolkit tools; do
    [[ -d $folder ]] && folders+=("$folder")
done

# Line numbers would make every edit elsewhere a change here: the class is context enough.
update() { "$lupdate" -silent -no-obsolete -locations none -source-language en "${folders[@]}" -ts "$@"; }

if [[ "${1:-}" != --check ]]; then
    update resources/translations/*.ts
    grep -c -H 'type="unfinished"' resources/translations/*.ts | sed 's/:/: unfinished: /' || true
    exit 0
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0
for ts in resources/translations/*.ts; do
    copy=$scratch/$(basename "$ts")
    cp "$ts" "$copy"
    update "$copy"
    # An unfinished message prints its source text; lupdate writes one element per line.
    missing=$(awk '/<source>/ { source = $0 } /type="unfinished"/ { print source }' "$copy" |
        sed 's/^ *<source>//; s/<\/source>$//')
    if [[ -n $missing ]]; then
        echo "$ts lacks translations for:"
        printf '    %s\n' "$missing"
        failures=1
    fi
done
[[ $failures -eq 0 ]] && echo "every text has its translation"
exit $failures
