#!/bin/sh
# install-packages.sh GROUP...: installs what is missing of these groups of packages.txt.
set -eu
here=$(dirname "$0")
missing=
for group in "$@"; do
    for package in $(sed -n "s/^$group  *\([^ ]*\).*/\1/p" "$here/packages.txt"); do
        state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
        [ "$state" = installed ] || missing="$missing $package"
    done
done
[ -n "$missing" ] || exit 0

echo "Installing Debian packages:$missing"
as_root=
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "Not root, and there is no sudo. As root, run: apt-get install$missing" >&2
        exit 1
    fi
    as_root=sudo
fi
$as_root apt-get update -q
# shellcheck disable=SC2086 # a list of words
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends $missing
