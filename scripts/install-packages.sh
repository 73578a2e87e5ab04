#!/usr/bin/env bash
# install-packages.sh GROUP...   installs what is missing of these groups of packages.txt.
# Asks for nothing: works as root or where `sudo` needs no password, and otherwise prints the
# command to run and exits with 1. Touches neither network nor apt when nothing is missing.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

packages_of() {
    awk -v group="[$1]" '
        /^\[/ { inside = ($0 == group); found = found || inside; next }
        inside && NF && !/^#/ { print $1 }
        END { exit !found }' "$here/packages.txt" || {
        echo "install-packages: no group '$1' in scripts/packages.txt" >&2
        exit 1
    }
}

is_installed() {
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

if ! command -v dpkg-query >/dev/null; then
    echo "install-packages: this is not a Debian system; the packages needed are listed in" >&2
    echo "  $here/packages.txt" >&2
    exit 1
fi

missing=()
for group in "$@"; do
    names=$(packages_of "$group")
    for name in $names; do
        is_installed "$name" || missing+=("$name")
    done
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "Missing packages: ${missing[*]}"
if [ "$(id -u)" = 0 ]; then
    as_root=(env)
elif command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
    as_root=(sudo -n env)
else
    echo "They cannot be installed without root's rights. Please run this, then try again:" >&2
    echo "  sudo apt-get update && sudo apt-get install -y --no-install-recommends ${missing[*]}" >&2
    exit 1
fi
apt=("${as_root[@]}" DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300)
"${apt[@]}" update </dev/null
"${apt[@]}" install --no-install-recommends "${missing[@]}" </dev/null
