#!/usr/bin/env bash
# usage: check_installed_example.sh PREFIX
# From the installed tree alone: the example stamps its image, each library script loads and prints nothing, the
# checker finds nothing in any of them, and every file that the manual page names is there.
set -euo pipefail

quorvane=$1/bin/quorvane
share=$1/share
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

image=$share/doc/quorvane/examples/firmware/firmware.elf
"$quorvane" -define input="$image" -define output="$work/stamped.elf" -define version=1.2.3 \
    -load "$share/doc/quorvane/examples/stamp.js"
if cmp -s "$image" "$work/stamped.elf"; then
    echo "FAILED: the stamped image is the same as before"
    exit 1
fi

count=0
for script in "$share"/quorvane/lib/*.js; do
    printed=$("$quorvane" -load "$script")
    if [ -n "$printed" ]; then
        echo "FAILED: $script prints when it is loaded: $printed"
        exit 1
    fi
    count=$((count + 1))
done
[ "$count" -gt 0 ] || { echo "FAILED: no library script is installed"; exit 1; }

"$1/bin/quorvane-check" --werror "$share"/quorvane/lib/*.js "$share"/doc/quorvane/examples/*.js

while read -r path; do
    [ -e "$1/${path#/usr/}" ] || { echo "FAILED: the manual names $path, which is not installed"; exit 1; }
done < <(zcat -f "$share"/man/man1/quorvane.1* | sed -n 's/^\.It Pa //p')
