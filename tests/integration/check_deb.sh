#!/usr/bin/env bash
# usage: check_deb.sh CPACK BUILD_FOLDER
# The Debian package, unpacked into an empty root, does its job, asks for the libraries that it needs, and lintian,
# where it is installed, finds no error in it. Skipped (status 77) without the tools of Debian.
set -euo pipefail

if ! command -v dpkg-shlibdeps >/dev/null; then
    echo "skipped: dpkg-dev is not installed (apt-get install dpkg-dev)"
    exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

umask 077 # the permissions in the package are not those of its builder
"$1" -G DEB -B "$work" --config "$2/CPackConfig.cmake"
package=$(echo "$work"/quorvane_*.deb)

dpkg-deb -x "$package" "$work/root"
"$(dirname "$0")/check_installed_example.sh" "$work/root/usr"

depends=$(dpkg-deb -f "$package" Depends)
[[ $depends == *libqt6core6* ]] || { echo "FAILED: depends on: $depends"; exit 1; }
version=$(dpkg-deb -f "$package" Version)
zcat "$work/root/usr/share/doc/quorvane/changelog.gz" | grep -q "^quorvane ($version) " ||
    { echo "FAILED: the changelog of the package says nothing of version $version"; exit 1; }
closed=$(find "$work/root/usr" ! -perm -o=r)
[ -z "$closed" ] || { echo "FAILED: not for everybody to read: $closed"; exit 1; }

if command -v lintian >/dev/null; then
    lintian --fail-on error --allow-root "$package"
fi
