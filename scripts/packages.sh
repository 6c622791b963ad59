# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Debian packages required by the commands of this project; to be sourced after common.sh.

# Required to build the module and the simulated camera, and to run them.
# shellcheck disable=SC2034 # used by the commands that source this file
run_packages=(
    g++ cmake ninja-build
    libsnmp-dev libboost-dev libboost-thread-dev libboost-system-dev nlohmann-json3-dev libcli11-dev libfmt-dev
    libcairo2-dev libturbojpeg0-dev fonts-dejavu-core
    snmpd snmp snmptrapd
)

# Additionally required by the tests.
# shellcheck disable=SC2034
test_packages=(
    git binutils valgrind strace
    libgtest-dev libgmock-dev libbenchmark-dev
    clang libclang-rt-14-dev clang-format clang-tidy shellcheck
    faketime smitools libxml2-utils
    prometheus prometheus-snmp-exporter
    icinga2-bin nagios4-core python3-pysnmp4
)

# Required to build and to run the RTSP server, and to watch its streams in its test.
# shellcheck disable=SC2034
rtsp_packages=(
    pkg-config libgstrtspserver-1.0-dev
    gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-plugins-bad
)
# shellcheck disable=SC2034
rtsp_test_packages=(ffmpeg)

# Required by the tests of the panel's page, and by its pictures in the documents.
# shellcheck disable=SC2034
page_packages=(chromium chromium-driver python3)

# Required to build for AArch64 and to emulate it.
# shellcheck disable=SC2034
aarch64_packages=(g++-aarch64-linux-gnu qemu-user-static)

# Required to build the Debian packages, and to test them.
# shellcheck disable=SC2034
package_packages=(dpkg-dev file)
# shellcheck disable=SC2034
package_test_packages=(lintian mmdebstrap systemd binutils)

# Required by the benchmarks, in addition to run_packages.
# shellcheck disable=SC2034
bench_packages=(binutils gnuplot-nox libgtest-dev libgmock-dev libbenchmark-dev valgrind)

# Content of the AArch64 sysroot, as packages of that architecture.
# shellcheck disable=SC2034
aarch64_sysroot_packages=(
    libc6-dev libstdc++-12-dev
    libsnmp-dev libboost-dev libboost-thread-dev libboost-system-dev nlohmann-json3-dev libcli11-dev libfmt-dev
    libcairo2-dev libturbojpeg0-dev
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
        fail "neither root nor sudo is available; as root, run: $*"
    fi
}

# Lists the systemd units that the named packages start and enable.
units_of() {
    local package
    for package in "$@"; do
        case $package in
        snmpd) echo snmpd.service ;;
        snmptrapd) echo snmptrapd.service snmptrapd.socket ;;
        prometheus | prometheus-snmp-exporter) echo "$package.service" ;;
        nagios4-core) echo nagios4.service ;;
        esac
    done
}

# Prevents packages from starting their services during installation. The project needs the programs only; an unwanted
# SNMP agent or trap receiver would listen on the machine's interfaces. The mask lasts until the next boot at most.
# (policy-rc.d would affect all services, and would remain after an interrupted installation.) Without systemd, a
# service runs until unmask_services() stops it. Services of packages that were already installed do not change.
# Usage: mask_services PACKAGE...
mask_services() {
    local units
    read -r -d '' -a units < <(units_of "$@") || true
    if ((${#units[@]} > 0)) && [[ -d /run/systemd/system ]]; then
        as_root systemctl mask --runtime --quiet -- "${units[@]}" 2>/dev/null || true
    fi
}

# Undoes mask_services() and disables the services, so that they do not start at the next boot.
unmask_services() {
    local package units
    read -r -d '' -a units < <(units_of "$@") || true
    if ((${#units[@]} > 0)) && [[ -d /run/systemd/system ]]; then
        as_root systemctl unmask --runtime --quiet -- "${units[@]}" || true
        as_root systemctl disable --quiet -- "${units[@]}" 2>/dev/null || true
        return
    fi
    for unit in "${units[@]}"; do
        script=${unit%.service}
        if [[ -x /etc/init.d/$script ]]; then
            as_root invoke-rc.d "$script" stop >/dev/null 2>&1 || true
            as_root update-rc.d "$script" disable >/dev/null 2>&1 || true
        fi
    done
}

apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install --yes --no-install-recommends -o DPkg::Lock::Timeout=300 -- "$@"
}

# Installs packages, and updates the package lists if that fails: they may be missing or outdated.
apt_install_or_update() {
    apt_install "$@" || { as_root apt-get update && apt_install "$@"; }
}

# Installs the missing ones of the named packages. Usage: ensure_packages LOG-FILE PACKAGE...
ensure_packages() {
    local log=$1 package
    local missing=()
    shift
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        fail "apt-get is missing on this machine; install the equivalents of these Debian 12 packages: $*"
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
        fail "packages are missing, and neither root nor sudo is available; as root, run: apt-get install ${missing[*]}"
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

# Prints the file with the Debian sources of this machine.
debian_sources() {
    local file
    for file in /etc/apt/sources.list.d/debian.sources /etc/apt/sources.list; do
        if [[ -s $file ]]; then
            printf '%s\n' "$file"
            return
        fi
    done
    fail "neither /etc/apt/sources.list nor sources.list.d/debian.sources contains Debian sources"
}

# Lists the dependencies of a package file, one per line, without versions. Usage: dependencies_of FILE
dependencies_of() {
    dpkg-deb --field "$1" Depends | sed 's/([^)]*)//g; s/,/\n/g' | tr -d ' ' | sort
}
