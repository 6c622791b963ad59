#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Creates a sysroot for the preset `aarch64` from Debian packages: headers and libraries for the build, and an agent for
# the tests. The packages are unpacked, not installed, because arm64 development packages conflict with the native ones.
# Usage: scripts/aarch64-sysroot.sh [DIRECTORY]
set -euo pipefail

root=$(dirname -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")")
# shellcheck source=scripts/common.sh
source "$root/scripts/common.sh"
# shellcheck source=scripts/packages.sh
source "$root/scripts/packages.sh"

sysroot=$(readlink -m -- "${1:-$root/build/aarch64-sysroot}")
state=$sysroot.apt
# Package database of the sysroot, for the tools of dpkg.
database=$sysroot/var/lib/dpkg
# Written last: marks a complete sysroot and lists its packages.
contents=$sysroot/contents

# Runs apt-get with a separate state. Only the sources and keys of the machine are used.
foreign_apt() {
    apt-get -q \
        -o APT::Architecture=arm64 -o APT::Architectures=arm64 -o APT::Sandbox::User=root \
        -o Dir::State="$state" -o Dir::State::status="$state/status" -o Dir::Cache="$state/cache" "$@"
}

unpack_packages() {
    local archive
    mkdir -p -- "$database/info" "$database/updates"
    echo 1 >"$database/info/format"
    printf '%s\n' "$(dpkg --print-architecture)" arm64 >"$database/arch"
    for archive in "$state"/cache/archives/*.deb; do
        dpkg -x "$archive" "$sysroot"
        record_package "$archive"
    done
}

# Records an unpacked package as installed in the database: the paths of its files, and the dependencies of programs
# that use its libraries. Usage: record_package ARCHIVE
record_package() {
    local archive=$1 name kind
    name=$(dpkg-deb --field "$archive" Package)
    if [[ $(dpkg-deb --field "$archive" Multi-Arch) == same ]]; then
        name+=:arm64
    fi
    { echo 'Status: install ok installed' && dpkg-deb --field "$archive" && echo; } >>"$database/status"
    dpkg-deb --fsys-tarfile "$archive" | tar --list | sed "\\:/$:d; s:^\\./:$sysroot/:" >"$database/info/$name.list"
    for kind in symbols shlibs; do
        dpkg-deb --info "$archive" "$kind" >"$database/info/$name.$kind" 2>/dev/null ||
            rm -- "$database/info/$name.$kind"
    done
}

# Absolute links of the packages would point outside the sysroot.
make_links_relative() {
    local link target
    while IFS= read -r -d '' link; do
        target=$(readlink -- "$link")
        ln -sfn -- "$(realpath -m --relative-to="$(dirname -- "$link")" -- "$sysroot$target")" "$link"
    done < <(find "$sysroot" -type l -lname '/*' -print0)
}

command -v apt-get >/dev/null || fail "apt-get is missing on this machine; it is required to create the sysroot"
if [[ -f $contents && -f $database/status && $(cat -- "$contents") == "${aarch64_sysroot_packages[*]}" ]]; then
    exit 0
fi
rm -rf -- "$sysroot" "$state"
mkdir -p -- "$sysroot" "$state/lists/partial" "$state/cache/archives/partial"
: >"$state/status"
run_logged "reading the arm64 package lists" "$root/build/log/aarch64-update.log" foreign_apt update
run_logged "downloading the arm64 packages" "$root/build/log/aarch64-download.log" \
    foreign_apt install --yes --download-only --no-install-recommends "${aarch64_sysroot_packages[@]}"
run_logged "unpacking the arm64 packages" "$root/build/log/aarch64-unpack.log" unpack_packages
make_links_relative
printf '%s' "${aarch64_sysroot_packages[*]}" >"$contents"
rm -rf -- "$state"
