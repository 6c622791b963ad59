#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks Markdown files: lines have at most 120 columns outside tables and code blocks, and each link has a target.
# Usage: scripts/check-documents.sh FILE...
set -euo pipefail

export LC_ALL=C.UTF-8
status=0

complain() {
    printf '%s\n' "$1" >&2
    status=1
}

# Prints a file with its code blocks emptied, so that line numbers stay the same.
without_code() {
    # shellcheck disable=SC2016 # backquotes on purpose
    sed -E '/^ *```/,/^ *```/s/.*//' -- "$1"
}

# Prints the anchors of a file's headings, in the form that common viewers generate.
anchors() {
    without_code "$1" | sed -nE 's/^#+ +//p' | sed -E 's/[^[:alnum:] _-]//g; s/ /-/g; s/.*/\L&/'
}

check_widths() {
    local number
    while IFS= read -r number; do
        complain "$1:$number: more than 120 columns"
    done < <(without_code "$1" | sed -nE '/^ *\|/d; /^.{121}/=')
}

# Checks the file and the heading of each relative link. Links to other sites are not checked.
check_links() {
    local link file anchor
    while IFS= read -r link; do
        file=${link%%#*}
        file=${file:+$(dirname -- "$1")/$file}
        file=${file:-$1}
        if [[ ! -e $file ]]; then
            complain "$1: no file for the link '$link'"
        elif [[ $link == *'#'* ]]; then
            anchor=${link#*#}
            anchors "$file" | grep -Fx -- "$anchor" >/dev/null || complain "$1: no heading for the link '$link'"
        fi
    done < <(without_code "$1" | grep -oE '\]\([^) ]+\)' | sed -E 's/^\]\((.*)\)$/\1/' | grep -vE '^[a-z]+:' || true)
}

for document in "$@"; do
    check_widths "$document"
    check_links "$document"
done
exit "$status"
