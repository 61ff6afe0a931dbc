#!/usr/bin/env bash
# usage: check_installed_example.sh PREFIX
# From the installed tree alone: the example stamps its image, each library script loads and prints nothing, the
# checker finds nothing in any of them, and every file that the manual page names is there.
set -euo pipefail

fail() { echo "FAILED: $*"; exit 1; }
share=$1/share
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

image=$share/doc/quorvane/examples/firmware/firmware.elf
"$1/bin/quorvane" -define input="$image" -define output="$work/stamped.elf" -define version=1.2.3 \
    -load "$share/doc/quorvane/examples/stamp.js"
! cmp -s "$image" "$work/stamped.elf" || fail "the stamped image is the same as before"
for script in "$share"/quorvane/lib/*.js; do
    [ -z "$("$1/bin/quorvane" -load "$script")" ] || fail "$script prints when it is loaded"
done
"$1/bin/quorvane-check" --werror "$share"/quorvane/lib/*.js "$share"/doc/quorvane/examples/*.js
while read -r path; do
    [ -e "$1/${path#/usr/}" ] || fail "the manual names $path, which is not installed"
done < <(zcat -f "$share"/man/man1/quorvane.1* | sed -n 's/^\.It Pa //p')
