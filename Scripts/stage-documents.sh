#!/usr/bin/env bash
# Copies the pages for users with their pictures, schemas and examples to a folder of a package.
#
#   Scripts/stage-documents.sh FOLDER
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
documents=$1

put() # SOURCE TARGET [MODE]
{
    install -D -m "${3:-644}" "$1" "$documents/$2"
}

# In the tree, the examples to read and those to run are in two folders.
for page in UserGuide Scripting Formats DataSets Configuration Recipes Logs Support Problems; do
    put "$root/Docs/$page.md" "$page.md"
    sed -i 's|](\.\./Examples/|](Programs/|g' "$documents/$page.md"
done
for file in "$root"/Docs/Pictures/*.png "$root"/Docs/Schemas/*.json "$root"/Docs/Examples/*.json; do
    put "$file" "${file#"$root"/Docs/}"
done
for file in snip.sh snip.py; do
    put "$root/Examples/$file" "Programs/$file" 755
done
for file in snip.ps1 snip_Linux.cpp; do
    put "$root/Examples/$file" "Programs/$file"
done
