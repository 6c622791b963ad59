#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tests the Debian packages: with lintian; installed, used and purged in a root of their own (amd64); unpacked beside
# what they depend on (arm64). Usage: scripts/packages-test.sh [DIRECTORY]
# DIRECTORY holds the packages of both architectures; without it they are built. QUARNSNMP_SYSROOT names the sysroot
# that those of arm64 were built with, when it is another than the project's.
set -euo pipefail

root=$(dirname -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")")
# shellcheck source=scripts/common.sh
source "$root/scripts/common.sh"
# shellcheck source=scripts/packages.sh
source "$root/scripts/packages.sh"

names=(quarnsnmp quarnsnmp-tools quarnsnmp-simulator)
sysroot=${QUARNSNMP_SYSROOT:-$root/build/aarch64-sysroot}
work=$root/build/packages-test
debian=$work/amd64
agent_address=127.0.0.1
camera_pid=
agent_pid=

# Ends the processes that were started here.
stop_programs() {
    local pid attempt
    for pid in $agent_pid $camera_pid; do
        kill -TERM "$pid" 2>/dev/null || true
        for ((attempt = 0; attempt < 200; ++attempt)); do
            kill -0 "$pid" 2>/dev/null || break
            sleep 0.05
        done
        kill -KILL "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    done
    agent_pid=
    camera_pid=
}

# Usage: archive PACKAGE ARCHITECTURE
archive() {
    local found=("$packages/$1"_*_"$2".deb)
    [[ -f ${found[0]} && ${#found[@]} == 1 ]] || fail "not one package $1 for $2 in $packages"
    printf '%s\n' "${found[0]}"
}

archives() {
    local name
    for name in "${names[@]}"; do
        archive "$name" "$1"
    done
}

# Usage: field PACKAGE ARCHITECTURE FIELD
field() {
    dpkg-deb --field "$(archive "$1" "$2")" "$3"
}

# The packages that a package needs, one a line, without versions.
dependencies() {
    field "$1" "$2" Depends | sed 's/([^)]*)//g; s/,/\n/g' | tr -d ' ' | sort
}

# In the root of the test, as root there.
inside() {
    chroot "$debian" /usr/bin/env --ignore-environment PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C HOME=/root \
        DEBIAN_FRONTEND=noninteractive "$@"
}

# Repeats a command until it succeeds. Usage: await WHAT LOG COMMAND...
await() {
    local what=$1 log=$2 deadline=$((SECONDS + 20))
    shift 2
    until "$@" >/dev/null 2>&1; do
        if ((SECONDS >= deadline)); then
            cat -- "$log" >&2
            fail "$what did not happen within 20 seconds; see above"
        fi
        sleep 0.1
    done
}

# A build that is packed again makes the same packages.
test_repetition() {
    local again=$packages/again deb
    run_logged "packing the build 'release' again" "$root/build/log/packages-again.log" \
        env --chdir="$root/build/release" cpack -B "$again"
    for deb in "$again"/*.deb; do
        cmp -- "$deb" "$packages/${deb##*/}" || fail "${deb##*/} is not the same when it is made again"
    done
    rm -r -- "$again"
}

test_lintian() {
    local debs
    mapfile -t debs < <(archives amd64 && archives arm64)
    lintian --allow-root --fail-on error,warning -- "${debs[@]}" || fail "lintian has found something; see above"
}

# The version is that of the latest change, and of the commands that install the packages.
test_version() {
    local name version
    version=$(sed -n '1s/^quarnsnmp (\([^)]*\)) .*/\1/p' "$root/packaging/changelog")
    for name in "${names[@]}"; do
        [[ $(field "$name" amd64 Version) == "$version" ]] ||
            fail "$name is version $(field "$name" amd64 Version), but packaging/changelog begins with '$version'"
        grep -qF "./${name}_${version}_amd64.deb" "$root/docs/install.md" ||
            fail "docs/install.md does not install version $version of $name"
    done
}

# Both architectures have the same files, and depend on the same packages.
test_architectures() {
    local name
    for name in "${names[@]}"; do
        [[ $(field "$name" arm64 Architecture) == arm64 ]] || fail "$name says that it is not for arm64"
        diff <(dpkg-deb --fsys-tarfile "$(archive "$name" amd64)" | tar --list | sort) \
            <(dpkg-deb --fsys-tarfile "$(archive "$name" arm64)" | tar --list | sort) ||
            fail "the packages $name of amd64 (<) and arm64 (>) have different files"
        diff <(dependencies "$name" amd64) <(dependencies "$name" arm64) ||
            fail "the packages $name of amd64 (<) and arm64 (>) depend on different packages"
    done
}

# Unpacks the packages of arm64 into a root whose package database is that of the sysroot. Nothing of it can run there.
test_arm64() {
    local arm64=$work/arm64 file debs programs=0
    mkdir -p -- "$arm64/var/lib"
    cp -a -- "$sysroot/var/lib/dpkg" "$arm64/var/lib/"
    mapfile -t debs < <(archives arm64)
    run_logged "unpacking the packages of arm64" "$work/arm64.log" dpkg --root="$arm64" --unpack "${debs[@]}"
    run_logged "checking what the packages of arm64 depend on" "$work/arm64.log" \
        dpkg --root="$arm64" --simulate --configure "${names[@]}"
    for file in "$arm64"/usr/bin/* "$arm64"/usr/lib/quarnsnmp/*; do
        [[ $(LC_ALL=C readelf --file-header "$file" 2>/dev/null) == *'Machine: '*AArch64* ]] ||
            fail "$file is no program or library for AArch64"
        programs=$((programs + 1))
    done
    ((programs == 5)) || fail "the packages of arm64 have $programs programs and libraries; expected 5"
}

# Makes a root with Debian's agent and SNMP programs, with what the packages depend on, and with nothing else, so that a
# dependency that is not declared is missed. It is kept: only another list of packages needs another root.
make_root() {
    local base=$root/build/packages-root name wanted sources
    sources=$(debian_sources)
    wanted=$(for name in "${names[@]}"; do dependencies "$name" amd64; done | sort -u | paste -sd ,),snmp
    if [[ ! -f $base.tar || $(cat -- "$base.contents" 2>/dev/null) != "$wanted" ]]; then
        run_logged "making a root of Debian" "$root/build/log/packages-root.log" \
            mmdebstrap --variant=minbase --dpkgopt=force-unsafe-io \
            --include="$wanted" bookworm "$base.tar" "$sources"
        printf '%s' "$wanted" >"$base.contents"
    fi
    mkdir -p -- "$debian"
    tar --extract --numeric-owner --preserve-permissions --directory "$debian" --file "$base.tar"
    if [[ -n ${QUARNSNMP_OWN_MOUNTS:-} ]]; then
        mount -t proc proc "$debian/proc"
    fi
}

# The file that says where this machine has Debian from.
debian_sources() {
    local file
    for file in /etc/apt/sources.list.d/debian.sources /etc/apt/sources.list; do
        if [[ -s $file ]]; then
            printf '%s\n' "$file"
            return
        fi
    done
    fail "neither /etc/apt/sources.list nor sources.list.d/debian.sources says where Debian is"
}

# What is ours in the configuration: a port that is free, and who may do what on this machine.
prepare_agent() {
    local port
    for ((port = 20161; port < 20261; ++port)); do
        udp_port_in_use "$port" || break
    done
    agent_address=127.0.0.1:$port
    sed -i "s/^agentaddress .*/agentaddress udp:$agent_address/" "$debian/etc/snmp/snmpd.conf"
    echo 'rwcommunity private 127.0.0.1 -V quarnsnmp' >"$debian/etc/snmp/snmpd.conf.d/local.conf"
    # Every request to start, stop or restart a service is noted and refused.
    printf '#!/bin/sh\necho "$*" >>/services\nexit 101\n' >"$debian/usr/sbin/policy-rc.d"
    chmod 755 -- "$debian/usr/sbin/policy-rc.d"
}

# All that is in the root, but what dpkg and the agent write down for themselves.
contents_of_root() {
    local others='\./(proc|var/(agentx|cache|log|lib/(dpkg|snmp)))'
    (cd -- "$debian" &&
        find . -regextype posix-extended -regex "$others" -prune -o -printf '%M %u %g %p %l\n' | sort)
}

# Usage: expect_no_requests WHO
expect_no_requests() {
    [[ ! -e $debian/services ]] || fail "$1 wanted to start or stop a service: $(cat -- "$debian/services")"
}

test_installation() {
    mkdir -- "$debian/debs"
    archives amd64 | xargs cp -t "$debian/debs"
    run_logged "the installation" "$work/install.log" inside sh -c 'dpkg --install /debs/*.deb'
    rm -r -- "$debian/debs"
    expect_no_requests "the installation"
    if grep -v '^#' "$debian/etc/snmp/snmpd.conf.d/quarnsnmp.conf" | grep .; then
        fail "the agent's configuration is not all comments as it is installed; see above"
    fi
    if find "$debian/etc/systemd" -name 'quarnsnmp*' | grep .; then
        fail "the camera's service is enabled as it is installed; see above"
    fi
}

# The manuals that are installed have the options and commands that the programs tell of, and no others.
test_manuals() {
    local program
    for program in quarnsnmp-camera quarnsnmp-camctl; do
        diff <(help_of "$program" | sort -u) \
            <(zcat -- "$debian/usr/share/man/man1/$program.1.gz" | grep -E '^\.It (Fl|Cm) ' |
                grep -oE 'Fl -[a-z]+|^\.It Cm [a-z]+' | sed 's/^Fl -/--/; s/.* //' | sort -u) ||
            fail "'$program --help' (<) and its manual (>) have different options or commands"
    done
}

# The options of a program and its commands, and the commands and their options.
help_of() {
    local program=$1 command
    inside "$program" --help | grep -oE '^ +(-h,)?--[a-z]+' | grep -oE -- '--[a-z]+'
    for command in $(inside "$program" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'); do
        echo "$command"
        inside "$program" "$command" --help | grep -oE '^ +(-h,)?--[a-z]+' | grep -oE -- '--[a-z]+'
    done
}

# systemd does not run in the root, so its own checker reads the unit, with the program where it is seen from here.
test_unit() {
    local unit=$work/quarnsnmp-camera.service
    sed "s:^ExecStart=:&$debian:" "$debian/lib/systemd/system/quarnsnmp-camera.service" >"$unit"
    run_logged "the check of the unit" "$work/unit.log" systemd-analyze verify --man=no "$unit"
    [[ ! -s $work/unit.log ]] || fail "systemd says of the unit: $(cat -- "$work/unit.log")"
    run_logged "the check of the unit's rights" "$work/unit-security.log" \
        systemd-analyze security --offline=true --threshold=20 "$unit"
}

# The command that a unit in the root starts. Usage: command_of UNIT
command_of() {
    sed -n 's/^ExecStart=//p' "$debian/lib/systemd/system/$1.service"
}

# Starts camera and agent as their units do.
start_programs() {
    local directory command
    for directory in run var/lib; do
        inside install -d -m 0700 -o Debian-snmp -g Debian-snmp "/$directory/quarnsnmp-camera"
    done
    read -r -a command < <(command_of quarnsnmp-camera)
    # Otherwise the camera finds its files from where its program is, and that in /proc.
    [[ -e $debian/proc/self/exe ]] || command+=(--camera /usr/share/quarnsnmp/cameras/dome.json)
    setpriv --pdeathsig TERM \
        chroot --userspec=Debian-snmp:Debian-snmp "$debian" "${command[@]}" >"$work/camera.log" 2>&1 &
    camera_pid=$!
    await "the start of the camera" "$work/camera.log" inside quarnsnmp-camctl state
    read -r -a command < <(command_of snmpd)
    setpriv --pdeathsig TERM chroot "$debian" "${command[@]}" >"$work/agent.log" 2>&1 &
    agent_pid=$!
    await "an answer with the model's name" "$work/agent.log" get modelName.0
}

# Usage: get OBJECT
get() {
    inside snmpget -v2c -c private -m QUARN-NTCIP-1205-MIB -Oqv -t 1 -r 0 "$agent_address" "$1" | grep -v '^No Such'
}

test_use() {
    local walk=$work/walk arc object
    # As docs/install.md says.
    inside sed -i -E 's/^#(view|dlmod)/\1/' /etc/snmp/snmpd.conf.d/quarnsnmp.conf
    start_programs
    [[ $(get modelName.0) == 'QN-4000 Dome' ]] || fail "the model's name is '$(get modelName.0)'"
    for arc in nema quarn; do
        inside snmpwalk -v2c -c private -m QUARN-NTCIP-1205-MIB "$agent_address" "$arc"
    done >"$walk"
    # An object without a name shows as numbers below another one's.
    if grep -vE '^QUARN-[A-Z0-9-]+::[A-Za-z]+\.[0-9]+ = ' "$walk"; then
        fail "the walk has something that is not an object with a name; see above"
    fi
    for object in rangePanLeftLimit.0 relayStatesState.2; do
        grep -q "::$object = " "$walk" || fail "there is no $object in the walk, which is in $walk"
    done
    inside ptzctl --host "$agent_address" --community private pan to 90 >"$work/ptzctl.log" 2>&1 ||
        fail "ptzctl: $(cat -- "$work/ptzctl.log")"
    await "the pan to 90 degrees" "$work/ptzctl.log" camera_is_at 90000
    stop_programs
}

# Usage: camera_is_at THOUSANDTHS-OF-A-DEGREE
camera_is_at() {
    inside quarnsnmp-camctl state | tr -d ' \n' | grep -qE "\"pan\":\{[^}]*\"position\":$1[,}]"
}

# What removing leaves is the configuration, and what purging leaves is nothing. Usage: test_removal CONTENTS-BEFORE
test_removal() {
    local link=/etc/systemd/system/multi-user.target.wants/quarnsnmp-camera.service
    # As systemctl enable does.
    inside mkdir -p "${link%/*}"
    inside ln -s /lib/systemd/system/quarnsnmp-camera.service "$link"
    run_logged "removing" "$work/remove.log" inside dpkg --remove "${names[@]}"
    [[ ! -L $debian$link ]] || fail "removing leaves the service enabled"
    [[ -f $debian/etc/snmp/snmpd.conf.d/quarnsnmp.conf ]] || fail "removing takes the agent's configuration away"
    run_logged "purging" "$work/purge.log" inside dpkg --purge "${names[@]}"
    expect_no_requests "removing"
    # A directory of systemd's own, and the sockets' directory, which systemd removes when the service ends.
    inside rmdir --ignore-fail-on-non-empty "${link%/*}"
    inside rmdir /run/quarnsnmp-camera
    diff "$1" <(contents_of_root) || fail "purging does not leave what was there before (<); see above"
}

packages=$(readlink -m -- "${1:-$root/build/packages}")
if (($# == 0)); then
    "$root/scripts/packages-build.sh"
    test_repetition
fi
if ((EUID != 0)); then
    as_root env QUARNSNMP_SYSROOT="$sysroot" "$0" "$packages"
    exit
fi
# What is mounted in a namespace of this command's own is gone when it ends.
if [[ -z ${QUARNSNMP_OWN_MOUNTS:-} ]] && unshare --mount true 2>/dev/null; then
    exec env QUARNSNMP_OWN_MOUNTS=yes unshare --mount "$0" "$packages"
fi
ensure_packages "$root/build/log/packages.log" "${package_test_packages[@]}"
rm -rf -- "$work"
mkdir -p -- "$work"
trap stop_programs EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP
test_lintian
test_version
test_architectures
test_arm64
make_root
prepare_agent
contents_of_root >"$work/before"
test_installation
test_manuals
test_unit
test_use
test_removal "$work/before"
if [[ -n ${QUARNSNMP_OWN_MOUNTS:-} ]]; then
    umount "$debian/proc"
fi
rm -rf -- "$debian" "$work/arm64"
echo "the packages of amd64 and arm64 are in order"
