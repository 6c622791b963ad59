#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the Debian packages for amd64 and arm64 in build/packages. Usage: scripts/packages-build.sh
set -euo pipefail

root=$(dirname -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")")
# shellcheck source=scripts/common.sh
source "$root/scripts/common.sh"
# shellcheck source=scripts/packages.sh
source "$root/scripts/packages.sh"

output=$root/build/packages

# Builds and packs a preset. Usage: pack PRESET
pack() {
    local work=$output/$1
    # Not the settings of an earlier build for a camera's own library.
    run_logged "configuring the build '$1'" "$root/build/log/$1-configure.log" \
        env --chdir="$root" cmake --fresh --preset "$1"
    build_preset "$root" "$1"
    run_logged "packing the build '$1'" "$root/build/log/$1-packages.log" \
        env --chdir="$root/build/$1" cpack -B "$work"
    mv -- "$work"/*.deb "$output/"
    rm -r -- "$work"
}

if [[ $(dpkg --print-architecture) != amd64 ]]; then
    fail "packages can be built on amd64 only, because the preset 'release' builds for this machine"
fi
ensure_packages "$root/build/log/packages.log" \
    "${run_packages[@]}" "${rtsp_packages[@]}" "${aarch64_packages[@]}" "${package_packages[@]}"
"$root/scripts/aarch64-sysroot.sh"
rm -rf -- "$output"
mkdir -p -- "$output"
pack release
pack aarch64
