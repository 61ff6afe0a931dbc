#!/usr/bin/env bash
# usage: check_deb.sh CPACK BUILD_FOLDER
# The Debian package, unpacked into an empty root, does its job, asks for the libraries that it needs, everybody may
# read its files, and lintian finds no error in it.
set -euo pipefail

fail() { echo "FAILED: $*"; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
umask 077 # the permissions in the package are not those of its builder
"$1" -G DEB -B "$work" --config "$2/CPackConfig.cmake"
package=$(echo "$work"/quorvane_*.deb)
lintian --fail-on error --allow-root "$package"
dpkg-deb -x "$package" "$work/root"
"$(dirname "$0")/check_installed_example.sh" "$work/root/usr"
[[ $(dpkg-deb -f "$package" Depends) == *libqt6core6* ]] || fail "it does not ask for Qt"
version=$(dpkg-deb -f "$package" Version)
zcat "$work/root/usr/share/doc/quorvane/changelog.gz" | grep -q "^quorvane ($version) " ||
    fail "the changelog of the package says nothing of version $version"
[ -z "$(find "$work/root/usr" ! -perm -o=r)" ] || fail "not for everybody to read"
