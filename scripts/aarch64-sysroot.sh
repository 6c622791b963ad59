#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes a sysroot for AArch64 from Debian's packages, for the preset `aarch64`: headers and libraries to build with, and
# an agent to load the module. The packages are unpacked and not installed, because arm64's development packages cannot
# be installed beside the native ones. Usage: scripts/aarch64-sysroot.sh [DIRECTORY]
set -euo pipefail

root=$(dirname -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")")
# shellcheck source=scripts/common.sh
source "$root/scripts/common.sh"
# shellcheck source=scripts/packages.sh
source "$root/scripts/packages.sh"

sysroot=$(readlink -m -- "${1:-$root/build/aarch64-sysroot}")
state=$sysroot.apt
# Of the packages in the sysroot, for dpkg's tools.
database=$sysroot/var/lib/dpkg
# The file that is written last says that the sysroot is complete, and with what.
contents=$sysroot/contents

# An apt of its own: nothing of the machine's package state is read or changed but its sources and keys.
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
        note_package "$archive"
    done
}

# Enters an unpacked package into the database, as installed: where its files are here, and what a program that uses its
# libraries depends on. Usage: note_package ARCHIVE
note_package() {
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

# Absolute links of the packages would lead out of the sysroot.
make_links_relative() {
    local link target
    while IFS= read -r -d '' link; do
        target=$(readlink -- "$link")
        ln -sfn -- "$(realpath -m --relative-to="$(dirname -- "$link")" -- "$sysroot$target")" "$link"
    done < <(find "$sysroot" -type l -lname '/*' -print0)
}

command -v apt-get >/dev/null || fail "this machine has no apt-get, which the sysroot is made with"
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
