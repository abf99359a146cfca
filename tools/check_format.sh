#!/usr/bin/env bash
# Checks the formatting of the sources with clang-format 14 and .clang-format. With --fix, formats them instead.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

folders=()
for folder in support platform core host draw cli tests bench fuzz; do
    if [ -d "$folder" ]; then folders+=("$folder"); fi
done

format=${CLANG_FORMAT:-clang-format-14}
if ! command -v "$format" >/dev/null; then format=clang-format; fi
# Other versions format differently with the same .clang-format.
if [[ $("$format" --version 2>/dev/null) != *"version 14."* ]]; then
    echo "check_format.sh: clang-format 14 is not installed; scripts/install-packages.sh installs it" >&2
    exit 1
fi

sources() {
    if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git ls-files -z --cached --others --exclude-standard -- "${folders[@]}"
    else
        find "${folders[@]}" -type f -print0
    fi
}

files=()
while IFS= read -r -d '' file; do
    case $file in *.h | *.cpp) if [ -f "$file" ]; then files+=("$file"); fi ;; esac
done < <(sources)
if [ ${#files[@]} -eq 0 ]; then
    echo "check_format.sh: found no sources" >&2
    exit 1
fi

if [ "${1:-}" = --fix ]; then
    "$format" -i "${files[@]}"
    echo "${#files[@]} files formatted"
else
    "$format" --dry-run -Werror "${files[@]}"
    echo "${#files[@]} files are formatted"
fi
