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
    local expected=$1
    shift
    COMP_WORDS=("$program" "$@")
    COMP_CWORD=$#
    "_${program//-/_}"
    local found
    found=$(printf '%s\n' "${COMPREPLY[@]}" | sort | paste -sd '|')
    if [ "$found" != "$expected" ]; then
        echo "FAILED: $program $* : offers '$found', not '$expected'"
        status=1
    fi
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
