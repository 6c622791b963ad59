# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# The Debian packages that the commands of this project need; to be sourced after common.sh.

# To build the module and the simulated camera, and to run them in an agent.
# shellcheck disable=SC2034 # used by the commands that source this file
run_packages=(
    g++ cmake ninja-build
    libsnmp-dev libboost-dev libboost-thread-dev libboost-system-dev nlohmann-json3-dev libcli11-dev libfmt-dev
    snmpd snmp snmptrapd
)

# What the tests need beyond that.
# shellcheck disable=SC2034
test_packages=(
    git binutils valgrind strace
    libgtest-dev libgmock-dev libbenchmark-dev
    clang libclang-rt-14-dev clang-format clang-tidy shellcheck
    faketime smitools
    prometheus prometheus-snmp-exporter
)

# To build for AArch64 and to run that here.
# shellcheck disable=SC2034
aarch64_packages=(g++-aarch64-linux-gnu qemu-user-static)

# What makes the Debian packages, and what they are tested with.
# shellcheck disable=SC2034
package_packages=(dpkg-dev file)
# shellcheck disable=SC2034
package_test_packages=(lintian mmdebstrap systemd binutils)

# What the benchmarks need beyond what is needed to run the module.
# shellcheck disable=SC2034
bench_packages=(binutils libgtest-dev libgmock-dev libbenchmark-dev valgrind)

# What the sysroot for AArch64 holds, as packages of that architecture.
# shellcheck disable=SC2034
aarch64_sysroot_packages=(
    libc6-dev libstdc++-12-dev
    libsnmp-dev libboost-dev libboost-thread-dev libboost-system-dev nlohmann-json3-dev libcli11-dev libfmt-dev
    libgtest-dev libgmock-dev libfaketime
    snmpd snmp
)

is_installed() {
    [[ $(dpkg-query --show --showformat='${db:Status-Abbrev}' -- "$1" 2>/dev/null) == 'ii '* ]]
}

# Runs a command as root.
as_root() {
    if ((EUID == 0)); then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo -- "$@"
    else
        fail "neither root nor sudo; as root, run: $*"
    fi
}

# The systemd units that the named packages start and enable; nothing for packages without any.
units_of() {
    local package
    for package in "$@"; do
        case $package in
        snmpd) echo snmpd.service ;;
        snmptrapd) echo snmptrapd.service snmptrapd.socket ;;
        prometheus | prometheus-snmp-exporter) echo "$package.service" ;;
        esac
    done
}

# A package starts and enables its service when it is installed. Here its program is a tool: on a machine where nobody
# wanted an SNMP agent, one would be left listening, and a trap receiver on all interfaces. A mask that lasts until the
# next boot at most keeps systemd from starting them. (A policy-rc.d would do so too, but it holds for all services, and
# if the installation were interrupted it would stay.) Without systemd, a service runs until it is stopped right after
# the installation. The services of packages that were there before are left alone.
# Usage: mask_services PACKAGE...
mask_services() {
    local units
    read -r -d '' -a units < <(units_of "$@") || true
    if ((${#units[@]} > 0)) && [[ -d /run/systemd/system ]]; then
        as_root systemctl mask --runtime --quiet -- "${units[@]}" 2>/dev/null || true
    fi
}

# Undoes mask_services() and keeps the services of these packages from being started at the next boot.
unmask_services() {
    local package units
    read -r -d '' -a units < <(units_of "$@") || true
    if ((${#units[@]} > 0)) && [[ -d /run/systemd/system ]]; then
        as_root systemctl unmask --runtime --quiet -- "${units[@]}" || true
        as_root systemctl disable --quiet -- "${units[@]}" 2>/dev/null || true
        return
    fi
    for package in "$@"; do
        if [[ -n $(units_of "$package") && -x /etc/init.d/$package ]]; then
            as_root invoke-rc.d "$package" stop >/dev/null 2>&1 || true
            as_root update-rc.d "$package" disable >/dev/null 2>&1 || true
        fi
    done
}

apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install --yes --no-install-recommends -o DPkg::Lock::Timeout=300 -- "$@"
}

# The lists of a fresh machine are empty and those of an old one may be outdated; either makes the first attempt fail.
apt_install_or_update() {
    apt_install "$@" || { as_root apt-get update && apt_install "$@"; }
}

# Installs those of the named packages that are missing. Usage: ensure_packages LOG-FILE PACKAGE...
ensure_packages() {
    local log=$1 package
    local missing=()
    shift
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        fail "this machine has no apt-get; it needs what these packages of Debian 12 hold: $*"
    fi
    for package in "$@"; do
        if ! is_installed "$package"; then
            missing+=("$package")
        fi
    done
    if ((${#missing[@]} == 0)); then
        return
    fi
    if ((EUID != 0)) && ! command -v sudo >/dev/null; then
        fail "packages are missing, and this is neither root nor sudo; as root, run: apt-get install ${missing[*]}"
    fi
    printf '    installing %s\n' "${missing[*]}"
    mask_services "${missing[@]}"
    local installed=yes
    (run_logged "the installation of packages" "$log" apt_install_or_update "${missing[@]}") || installed=no
    unmask_services "${missing[@]}"
    if [[ $installed == no ]]; then
        exit 1
    fi
}
