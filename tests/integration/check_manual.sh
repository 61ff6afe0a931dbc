#!/usr/bin/env bash
# usage: check_manual.sh PAGE...
# The manual pages are clean. Skipped (status 77) where mandoc is not installed.
set -uo pipefail

if ! command -v mandoc >/dev/null; then
    echo "skipped: mandoc is not installed (apt-get install mandoc)"
    exit 77
fi
mandoc -T lint -W warning "$@"
