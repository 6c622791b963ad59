#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tests the Debian packages: checks them with lintian; installs, uses, upgrades and purges those of amd64 in a separate
# root file system; unpacks those of arm64 and checks their dependencies. Usage: scripts/packages-test.sh [DIRECTORY]
# DIRECTORY contains the packages of both architectures; by default they are built first. QUARNSNMP_SYSROOT is the
# sysroot of the arm64 packages, by default that of the project.
set -euo pipefail

root=$(dirname -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")")
# shellcheck source=scripts/common.sh
source "$root/scripts/common.sh"
# shellcheck source=scripts/packages.sh
source "$root/scripts/packages.sh"

names=(quarnsnmp quarnsnmp-tools quarnsnmp-simulator)
# The panel and the RTSP server show pictures. Their packages are not installed in the root, which has no libraries for
# them. The RTSP server needs hundreds of megabytes of libraries, so its package is made for amd64 only.
panel=quarnsnmp-panel
rtsp=quarnsnmp-rtsp
sysroot=${QUARNSNMP_SYSROOT:-$root/build/aarch64-sysroot}
work=$root/build/packages-test
debian=$work/amd64
agent_address=127.0.0.1
camera_pid=
agent_pid=
subagent_pid=

# Terminates camera and agents.
stop_programs() {
    local pid attempt
    for pid in $subagent_pid $agent_pid $camera_pid; do
        kill -TERM "$pid" 2>/dev/null || true
        for ((attempt = 0; attempt < 200; ++attempt)); do
            kill -0 "$pid" 2>/dev/null || break
            sleep 0.05
        done
        kill -KILL "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    done
    subagent_pid=
    agent_pid=
    camera_pid=
}

# Usage: archive PACKAGE ARCHITECTURE
archive() {
    local found=("$packages/$1"_*_"$2".deb)
    [[ -f ${found[0]} && ${#found[@]} == 1 ]] || fail "expected exactly one package $1 for $2 in $packages"
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

# Lists the dependencies of a package, one per line, without versions.
dependencies() {
    dependencies_of "$(archive "$1" "$2")"
}

# Runs a command as root in the root file system of the test.
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

# Packing the same build again must produce identical packages.
test_repetition() {
    local again=$packages/again deb
    run_logged "packing the build 'release' again" "$root/build/log/packages-again.log" \
        env --chdir="$root/build/release" cpack -B "$again"
    for deb in "$again"/*.deb; do
        cmp -- "$deb" "$packages/${deb##*/}" || fail "${deb##*/} differs when it is built again"
    done
    rm -r -- "$again"
}

test_lintian() {
    local debs
    mapfile -t debs < <(archives amd64 && archives arm64 && archive "$panel" amd64 && archive "$panel" arm64 &&
        archive "$rtsp" amd64)
    lintian --allow-root --fail-on error,warning -- "${debs[@]}" || fail "lintian reports problems; see above"
}

# The version must be that of the latest changelog entry and of the commands in docs/install.md.
test_version() {
    local name version
    version=$(sed -n '1s/^quarnsnmp (\([^)]*\)) .*/\1/p' "$root/packaging/changelog")
    for name in "${names[@]}" "$panel" "$rtsp"; do
        [[ $(field "$name" amd64 Version) == "$version" ]] ||
            fail "$name is version $(field "$name" amd64 Version), but packaging/changelog starts with '$version'"
        grep -qF "./${name}_${version}_amd64.deb" "$root/docs/install.md" ||
            fail "docs/install.md does not install version $version of $name"
    done
}

# The panel must have its program and its scene, and depend on the fonts that it draws with.
test_panel() {
    local file
    dependencies "$panel" amd64 | grep -x fonts-dejavu-core >/dev/null || fail "$panel does not depend on its fonts"
    for file in ./usr/bin/quarnsnmp-panel ./usr/share/quarnsnmp/scenes/intersection.json \
        ./lib/systemd/system/quarnsnmp-panel.service; do
        dpkg-deb --fsys-tarfile "$(archive "$panel" amd64)" | tar --list | grep -x "$file" >/dev/null || fail "$panel lacks $file"
    done
}

# The RTSP server must depend on the elements of its pipelines, which it loads at run time.
test_rtsp() {
    local package
    for package in gstreamer1.0-plugins-{base,good,bad} libgstrtspserver-1.0-0; do
        dependencies "$rtsp" amd64 | grep -x "$package" >/dev/null || fail "$rtsp does not depend on $package"
    done
    dpkg-deb --fsys-tarfile "$(archive "$rtsp" amd64)" | tar --list | grep -x './usr/bin/quarnsnmp-rtsp' >/dev/null ||
        fail "$rtsp lacks its program"
}

# Both architectures must have the same files and dependencies.
test_architectures() {
    local name
    for name in "${names[@]}" "$panel"; do
        [[ $(field "$name" arm64 Architecture) == arm64 ]] || fail "$name is not for arm64"
        diff <(dpkg-deb --fsys-tarfile "$(archive "$name" amd64)" | tar --list | sort) \
            <(dpkg-deb --fsys-tarfile "$(archive "$name" arm64)" | tar --list | sort) ||
            fail "the packages $name of amd64 (<) and arm64 (>) have different files"
        diff <(dependencies "$name" amd64) <(dependencies "$name" arm64) ||
            fail "the packages $name of amd64 (<) and arm64 (>) have different dependencies"
    done
}

# Unpacks the arm64 packages into a root with the package database of the sysroot. Their programs are not run.
test_arm64() {
    local arm64=$work/arm64 file debs programs=0
    mkdir -p -- "$arm64/var/lib"
    cp -a -- "$sysroot/var/lib/dpkg" "$arm64/var/lib/"
    mapfile -t debs < <(archives arm64 && archive "$panel" arm64)
    run_logged "unpacking the packages of arm64" "$work/arm64.log" dpkg --root="$arm64" --unpack "${debs[@]}"
    run_logged "checking the dependencies of the arm64 packages" "$work/arm64.log" \
        dpkg --root="$arm64" --simulate --configure "${names[@]}" "$panel"
    for file in "$arm64"/usr/bin/* "$arm64"/usr/lib/quarnsnmp/*; do
        [[ $(LC_ALL=C readelf --file-header "$file" 2>/dev/null) == *'Machine: '*AArch64* ]] ||
            fail "$file is not a program or library for AArch64"
        programs=$((programs + 1))
    done
    ((programs == 9)) || fail "the packages of arm64 have $programs programs and libraries; expected 9"
}

# Creates a Debian root file system with the SNMP programs, logrotate, and the declared dependencies of the packages
# only, so that an undeclared dependency causes a failure. It is kept until the list of packages changes.
make_root() {
    local base=$root/build/packages-root name wanted sources
    sources=$(debian_sources)
    wanted=$(for name in "${names[@]}"; do dependencies "$name" amd64; done | sort -u | paste -sd ,),snmp,logrotate
    if [[ ! -f $base.tar || $(cat -- "$base.contents" 2>/dev/null) != "$wanted" ]]; then
        run_logged "creating a Debian root file system" "$root/build/log/packages-root.log" \
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

# Configures a free port, and policy-rc.d.
prepare_agent() {
    local port
    for ((port = 20161; port < 20261; ++port)); do
        udp_port_in_use "$port" || break
    done
    agent_address=127.0.0.1:$port
    sed -i "s/^agentaddress .*/agentaddress udp:$agent_address/" "$debian/etc/snmp/snmpd.conf"
    # Records and refuses all requests to start, stop or restart a service.
    printf '#!/bin/sh\necho "$*" >>/services\nexit 101\n' >"$debian/usr/sbin/policy-rc.d"
    chmod 755 -- "$debian/usr/sbin/policy-rc.d"
}

# Lists the files in the root, except state files of dpkg and of the agent.
contents_of_root() {
    local others='\./(proc|var/(agentx|cache|log|lib/(dpkg|snmp)))'
    (cd -- "$debian" &&
        find . -regextype posix-extended -regex "$others" -prune -o -printf '%M %u %g %p %l\n' | sort)
}

# Usage: expect_no_requests WHO
expect_no_requests() {
    [[ ! -e $debian/services ]] || fail "$1 requested to start or stop a service: $(cat -- "$debian/services")"
}

test_installation() {
    mkdir -- "$debian/debs"
    archives amd64 | xargs cp -t "$debian/debs"
    run_logged "the installation" "$work/install.log" inside sh -c 'dpkg --install /debs/*.deb'
    rm -r -- "$debian/debs"
    expect_no_requests "the installation"
    if grep -v '^#' "$debian/etc/snmp/snmpd.conf.d/quarnsnmp.conf" | grep .; then
        fail "the installed agent configuration has active lines; see above"
    fi
    if find "$debian/etc/systemd" -name 'quarnsnmp*' | grep .; then
        fail "the installation enables a service; see above"
    fi
}

# The manuals must describe exactly the options and commands in the help texts of the programs.
test_manuals() {
    local program
    for program in quarnsnmp-camera quarnsnmp-camctl quarnsnmp-core-check; do
        diff <(help_of "$program" | sort -u) \
            <(zcat -- "$debian/usr/share/man/man1/$program.1.gz" | grep -E '^\.It (Fl|Cm) ' |
                grep -oE 'Fl -[a-z]+|^\.It Cm [a-z]+' | sed 's/^Fl -/--/; s/.* //' | sort -u) ||
            fail "'$program --help' (<) and its manual (>) have different options or commands"
    done
}

# Lists the options and commands of a program, and the options of each command.
help_of() {
    local program=$1 command
    inside "$program" --help | grep -oE '^ +(-h,)?--[a-z]+' | grep -oE -- '--[a-z]+'
    for command in $(inside "$program" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'); do
        echo "$command"
        inside "$program" "$command" --help | grep -oE '^ +(-h,)?--[a-z]+' | grep -oE -- '--[a-z]+'
    done
}

# systemd does not run in the root, so systemd-analyze checks copies of the units and of the agent's drop-in. They start
# the programs of the root, and of the panel's package, from outside.
test_units() {
    local units=$work/units unit
    mkdir -- "$units"
    dpkg-deb --extract "$(archive "$panel" amd64)" "$work/panel"
    cp -r -t "$units" "$debian"/lib/systemd/system/{quarnsnmp-camera.service,{snmpd,quarnsnmp-agent}.service{,.d}} \
        "$debian"/lib/systemd/system/quarnsnmp-{camera,simulated-agent}@.service \
        "$work/panel/lib/systemd/system/quarnsnmp-panel.service"
    for unit in quarnsnmp-camera quarnsnmp-simulated-agent; do
        mv -- "$units/$unit@.service" "$units/$unit@127.1.0.1.service"
    done
    sed -i "s:^ExecStart=:&$debian:" \
        "$units"/{quarnsnmp-{camera,agent,{camera,simulated-agent}@127.1.0.1},snmpd}.service
    sed -i "s:^ExecStart=:&$work/panel:" "$units/quarnsnmp-panel.service"
    for unit in quarnsnmp-{camera,agent,{camera,simulated-agent}@127.1.0.1,panel} snmpd; do
        run_logged "the check of the unit $unit" "$work/$unit-unit.log" \
            systemd-analyze verify --man=no "$units/$unit.service"
        [[ ! -s $work/$unit-unit.log ]] ||
            fail "systemd-analyze reports problems of the unit $unit: $(cat -- "$work/$unit-unit.log")"
    done
    for unit in quarnsnmp-{camera,agent,{camera,simulated-agent}@127.1.0.1,panel}; do
        run_logged "the check of the security of the unit $unit" "$work/unit-security.log" \
            systemd-analyze security --offline=true --threshold=20 "$units/$unit.service"
    done
}

# Prints the command of a unit in the root. Usage: command_of UNIT
command_of() {
    sed -n 's/^ExecStart=//p' "$debian/lib/systemd/system/$1.service"
}

# Prints the environment of a unit in the root, with that of its drop-ins. Usage: environment_of UNIT
environment_of() {
    cat -- "$debian/lib/systemd/system/$1.service" "$debian/lib/systemd/system/$1.service.d"/*.conf 2>/dev/null |
        sed -n 's/^Environment=//p'
}

# Starts camera and agent with the commands of their units, and waits until a command succeeds.
# Usage: start_programs COMMAND...
start_programs() {
    local directory command environment
    for directory in run var/lib; do
        inside install -d -m 0700 -o Debian-snmp -g Debian-snmp "/$directory/quarnsnmp-camera"
    done
    read -r -a command < <(command_of quarnsnmp-camera)
    # The camera derives the path of its files from its program in /proc. Without /proc, name the file.
    [[ -e $debian/proc/self/exe ]] || command+=(--camera /usr/share/quarnsnmp/cameras/dome.json)
    setpriv --pdeathsig TERM \
        chroot --userspec=Debian-snmp:Debian-snmp "$debian" "${command[@]}" >"$work/camera.log" 2>&1 &
    camera_pid=$!
    await "the start of the camera" "$work/camera.log" inside quarnsnmp-camctl state
    read -r -a command < <(command_of snmpd)
    mapfile -t environment < <(environment_of snmpd)
    setpriv --pdeathsig TERM chroot "$debian" env "${environment[@]}" "${command[@]}" >"$work/agent.log" 2>&1 &
    agent_pid=$!
    await "a response of the agent" "$work/agent.log" "$@"
}

# Succeeds if the agent responds, also without the module.
responds() {
    inside snmpget -v2c -c private -m '' -t 1 -r 0 "$agent_address" .1.3.6.1.2.1.1.3.0
}

# Usage: get OBJECT
get() {
    inside snmpget -v2c -c private -m QUARN-NTCIP-1205-MIB -Oqv -t 1 -r 0 "$agent_address" "$1" | grep -v '^No Such'
}

# Runs the commands in docs/install.md that enable the module. The file with the community must be private.
enable_module() {
    local commands permissions
    commands=$(sed -n '/^\*\*Enable\.\*\*/,/^\*\*Check\.\*\*/{/snmpd\.conf\.d/{/^[a-z]/p}}' "$root/docs/install.md")
    [[ $commands == *dlmod*local.conf* ]] || fail "docs/install.md has no commands that enable the module"
    inside sh -e -c "umask 022; $commands"
    permissions=$(inside stat --format='%a %U %G' /etc/snmp/snmpd.conf.d/local.conf)
    [[ $permissions == '640 root Debian-snmp' ]] ||
        fail "the commands in docs/install.md create local.conf with $permissions"
}

test_use() {
    local walk=$work/walk arc object
    enable_module
    start_programs get modelName.0
    [[ $(get modelName.0) == 'QN-4000 Dome' ]] || fail "the model's name is '$(get modelName.0)'"
    for arc in nema quarn; do
        inside snmpwalk -v2c -c private -m QUARN-NTCIP-1205-MIB "$agent_address" "$arc"
    done >"$walk"
    # snmpwalk prints an object without a name as numbers below a named one.
    if grep -vE '^QUARN-[A-Z0-9-]+::[A-Za-z]+\.[0-9]+ = ' "$walk"; then
        fail "the walk returns objects without a name; see above"
    fi
    for object in rangePanLeftLimit.0 relayStatesState.2; do
        grep -q "::$object = " "$walk" || fail "$object is missing in the walk, see $walk"
    done
    inside ptzctl --host "$agent_address" --community private pan to 90 >"$work/ptzctl.log" 2>&1 ||
        fail "ptzctl: $(cat -- "$work/ptzctl.log")"
    await "the pan to 90 degrees" "$work/ptzctl.log" camera_is_at 90000
    test_core_check
    test_log
    test_rotation
    test_module_upgrade
    stop_programs
    test_isolation
}

# Usage: commands_of_document HEADING; prints the commands of docs/install.md between a bold word and the next one that
# change files below /etc/snmp.
commands_of_document() {
    sed -n "/^\\*\\*$1\\.\\*\\*/,/^\\*\\*/{/^[a-z].*\\/etc\\/snmp/p}" "$root/docs/install.md"
}

# Starts the agent with the module with the command of its unit, as the agent's user.
start_subagent() {
    local command environment
    inside install -d -m 0700 -o Debian-snmp -g Debian-snmp /run/quarnsnmp-agent
    read -r -a command < <(command_of quarnsnmp-agent)
    mapfile -t environment < <(environment_of quarnsnmp-agent)
    setpriv --pdeathsig TERM chroot --userspec=Debian-snmp:Debian-snmp "$debian" env "${environment[@]}" "${command[@]}" \
        >"$work/subagent.log" 2>&1 &
    subagent_pid=$!
}

# The commands in docs/install.md must move the module into quarnsnmp-agent.service and back. The keys of the other
# agent must stay as they are.
test_isolation() {
    local there back keys=$debian/var/lib/snmp/snmpd.conf
    there=$(commands_of_document 'Switch over')
    back=$(commands_of_document 'Switch back')
    [[ $there == *master* && $back == *dlmod* ]] || fail "docs/install.md has no commands that switch over and back"
    inside sh -e -c "$there"
    start_programs responds
    start_subagent
    await "a response of the isolated module" "$work/subagent.log" get modelName.0
    grep -q libquarnsnmp_Morvek "/proc/$subagent_pid/maps" || fail "the isolated agent has not loaded the module"
    if grep libquarnsnmp "/proc/$agent_pid/maps"; then
        fail "after the commands in docs/install.md, the agent loads the module, too; see above"
    fi
    inside ptzctl --host "$agent_address" --community private pan to 45 >"$work/ptzctl.log" 2>&1 ||
        fail "ptzctl: $(cat -- "$work/ptzctl.log")"
    await "the pan to 45 degrees" "$work/ptzctl.log" camera_is_at 45000
    kill -HUP "$agent_pid"
    await "a response after the reload of the agent" "$work/agent.log" get modelName.0
    cp -- "$keys" "$work/keys"
    stop_subagent
    cmp -- "$keys" "$work/keys" || fail "the isolated agent overwrites the keys of the other one"
    stop_programs
    inside sh -e -c "$back"
    start_programs get modelName.0
    stop_programs
    inside rm -rf /run/quarnsnmp-agent /run/agentx
}

stop_subagent() {
    kill -TERM "$subagent_pid"
    wait "$subagent_pid" || fail "the isolated agent does not end cleanly; see $work/subagent.log"
    subagent_pid=
}

# The check of the core library must pass with the stand-in and the camera, as the agent's user.
test_core_check() {
    chroot --userspec=Debian-snmp:Debian-snmp "$debian" \
        quarnsnmp-core-check /usr/lib/quarnsnmp/libzorva-core.so >"$work/core-check.log" 2>&1 ||
        fail "quarnsnmp-core-check reports failures, see $work/core-check.log"
}

# Usage: lines_of TEXT; counts the lines of the agent's log with a text.
lines_of() {
    grep -cF -- "$1" "$work/agent.log" || true
}

# Usage: logs_more TEXT COUNT
logs_more() {
    (($(lines_of "$1") > $2))
}

# Reloads the agent. The module that it loads then must log TEXT at its start, and not that of the former module.
# Usage: expect_module WHAT FORMER-TEXT TEXT
expect_module() {
    local former count
    [[ $(get modelName.0) == 'QN-4000 Dome' ]] || fail "$1: the agent does not respond before its reload"
    former=$(lines_of "$2")
    count=$(lines_of "$3")
    kill -HUP "$agent_pid"
    await "$1: the reload" "$work/agent.log" logs_more "$3" "$count"
    await "$1: a response after the reload" "$work/agent.log" get modelName.0
    [[ $(lines_of "$2") == "$former" ]] || fail "$1: the agent has loaded the former module again"
}

# An agent that runs must survive an upgrade of the module and the way back, and serve each module after a reload.
test_module_upgrade() {
    local newer=$work/newer-module module='no zorva API focuses' upgraded='NO zorva API focuses'
    local file=$newer/usr/lib/quarnsnmp/libquarnsnmp_Morvek.so
    dpkg-deb --raw-extract "$(archive quarnsnmp amd64)" "$newer"
    sed -i "s/^Version: .*/&+upgrade/" "$newer/DEBIAN/control"
    LC_ALL=C sed -i "s/$module/$upgraded/g" "$file"
    run_logged "packing a newer module" "$work/upgrade.log" \
        dpkg-deb --root-owner-group --build "$newer" "$debian/newer.deb"
    cp -- "$(archive quarnsnmp amd64)" "$debian/older.deb"
    run_logged "the upgrade of the module" "$work/upgrade.log" inside dpkg --install /newer.deb
    expect_module "the upgrade" "$module" "$upgraded"
    run_logged "the way back" "$work/upgrade.log" inside dpkg --install /older.deb
    expect_module "the way back" "$upgraded" "$module"
    rm -r -- "$newer" "$debian/newer.deb" "$debian/older.deb"
}

# Reading must not fill the log. A refused value shows that the log is on.
test_log() {
    # Without -Ir, snmpset itself would refuse the value.
    local set=(snmpset -v2c -c private -m QUARN-NTCIP-1205-MIB -Ir -t 5 "$agent_address")
    get rangePanLeftLimit.0 >/dev/null || fail "there is no rangePanLeftLimit.0"
    if inside "${set[@]}" rangeTrueNorthOffset.0 i 1 >/dev/null 2>&1; then
        fail "the agent accepts a value that is out of range"
    fi
    grep -q 'SNMP error .* can only be 0 or 65535' "$work/agent.log" || fail "a refused value is not in the agent's log"
    if grep 'SNMP info ' "$work/agent.log"; then
        fail "the agent's log has lines of the level 'info'; see above"
    fi
}

# A log file of the agent must be rotated without a loss, as the agent's user.
test_rotation() {
    local directory=/var/log/quarnsnmp
    inside install -d -o Debian-snmp -g Debian-snmp -m 0750 "$directory"
    inside sh -c "echo line >$directory/agent.log && chown Debian-snmp: $directory/agent.log"
    run_logged "rotating a log file" "$work/rotation.log" \
        inside logrotate --force --state "$directory/state" /etc/logrotate.d/quarnsnmp-simulator
    [[ $(<"$debian$directory/agent.log.1") == line && ! -s $debian$directory/agent.log ]] ||
        fail "logrotate has not rotated the log file; see $work/rotation.log"
    rm -rf -- "${debian:?}$directory"
}

# Usage: camera_is_at THOUSANDTHS-OF-A-DEGREE
camera_is_at() {
    inside quarnsnmp-camctl state | tr -d ' \n' | grep -qE "\"pan\":\{[^}]*\"position\":$1[,}]"
}

# An upgrade must restart the camera if it runs, and nothing else. The root has no systemd, so a recorder replaces
# systemctl.
test_upgrade() {
    local newer=$work/newer version
    version=$(field quarnsnmp-simulator amd64 Version)
    dpkg-deb --raw-extract "$(archive quarnsnmp-simulator amd64)" "$newer"
    sed -i "s/^Version: .*/&+upgrade/" "$newer/DEBIAN/control"
    run_logged "packing an upgrade" "$work/upgrade.log" dpkg-deb --root-owner-group --build "$newer" "$debian/newer.deb"
    [[ ! -e $debian/usr/bin/systemctl ]] || fail "the root contains systemctl"
    printf '#!/bin/sh\necho "$*" >>/services\n' >"$debian/usr/bin/systemctl"
    chmod 755 -- "$debian/usr/bin/systemctl"
    mv -- "$debian/usr/sbin/policy-rc.d" "$work/"
    mkdir -p -- "$debian/run/systemd/system"
    run_logged "the upgrade" "$work/upgrade.log" inside dpkg --install /newer.deb
    # shellcheck disable=SC2016 # for dpkg-query
    [[ $(inside dpkg-query --show --showformat='${Version}' quarnsnmp-simulator) == "$version+upgrade" ]] ||
        fail "the upgrade is not installed"
    diff <(printf '%s\n' '--system daemon-reload' 'try-restart quarnsnmp-camera.service') "$debian/services" ||
        fail "the upgrade makes other requests of systemd (>) than expected (<); see above"
    mv -- "$work/policy-rc.d" "$debian/usr/sbin/"
    rm -r -- "$debian/services" "$debian/usr/bin/systemctl" "$debian/newer.deb" "$debian/run/systemd" "$newer"
}

# Removal must keep the configuration only, and a purge nothing. Usage: test_removal CONTENTS-BEFORE
test_removal() {
    local link=/etc/systemd/system/multi-user.target.wants/quarnsnmp-camera.service
    # Same as systemctl enable.
    inside mkdir -p "${link%/*}"
    inside ln -s /lib/systemd/system/quarnsnmp-camera.service "$link"
    run_logged "the removal" "$work/remove.log" inside dpkg --remove "${names[@]}"
    [[ ! -L $debian$link ]] || fail "the service is still enabled after removal"
    [[ -f $debian/etc/snmp/snmpd.conf.d/quarnsnmp.conf ]] || fail "removal deletes the agent's configuration"
    run_logged "the purge" "$work/purge.log" inside dpkg --purge "${names[@]}"
    expect_no_requests "the removal"
    # A directory that belongs to systemd, and the sockets' directory, which systemd removes when the service stops.
    inside rmdir --ignore-fail-on-non-empty "${link%/*}"
    inside rmdir /run/quarnsnmp-camera
    # docs/install.md creates this file, and no package.
    rm -- "$debian/etc/snmp/snmpd.conf.d/local.conf"
    diff "$1" <(contents_of_root) || fail "the purge does not restore the initial state (<); see above"
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
# Mounts in a private namespace disappear when this command exits.
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
test_panel
test_rtsp
test_architectures
test_arm64
make_root
prepare_agent
contents_of_root >"$work/before"
test_installation
test_manuals
test_units
test_use
test_upgrade
test_removal "$work/before"
if [[ -n ${QUARNSNMP_OWN_MOUNTS:-} ]]; then
    umount "$debian/proc"
fi
rm -rf -- "$debian" "$work/arm64"
echo "The packages of amd64 and arm64 pass all tests."
