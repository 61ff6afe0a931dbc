#!/usr/bin/env bash
# usage: check_completion.sh FOLDER
# The completion for bash offers what it should. FOLDER is where the completions stand.
set -uo pipefail
source "$1/quorvane.bash" && source "$1/quorvane-check.bash" || exit 1

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
touch stamp.js 'with blank.js' image.elf options.txt
mkdir tools

status=0
offers() { # expected (joined by "|"), then the words so far, the last of which is completed
    COMP_WORDS=("$program" "${@:2}")
    COMP_CWORD=$(($# - 1))
    "_${program//-/_}"
    local found
    found=$(printf '%s\n' "${COMPREPLY[@]}" | sort | paste -sd '|')
    [ "$found" = "$1" ] || { status=1; echo "FAILED: $program ${*:2} : offers '$found', not '$1'"; }
}

export LC_ALL=C
program=quorvane
offers '-define|-help|-load|-verbose' -
offers '-load' -lo
offers 'stamp.js|tools|with blank.js' -load ''
offers 'with blank.js' -load w
offers '@options.txt' @op
offers '' -define ''
offers 'image.elf' -define input = im
offers '' st
program=quorvane-check
offers '--|--help|--json|--listing|--version|--werror' -
offers 'stamp.js|tools|with blank.js' --json ''
offers '' -- -
exit $status
