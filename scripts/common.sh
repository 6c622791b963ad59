# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Common functions of the commands of this project; to be sourced.

# Exits with a one-line error message.
fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# Runs a command with its output in a file. On failure, prints the last lines and exits.
# Usage: run_logged WHAT FILE COMMAND...
run_logged() {
    local what=$1 log=$2
    shift 2
    mkdir -p -- "$(dirname -- "$log")"
    if ! "$@" >"$log" 2>&1; then
        tail -n 40 -- "$log" >&2
        fail "$what failed; the last lines of its output are above, the full output is in $log"
    fi
}

# Configures and builds a preset. Usage: build_preset ROOT PRESET [COMMAND-PREFIX...]
build_preset() {
    local root=$1 preset=$2
    shift 2
    # cmake looks for presets in the current directory only.
    run_logged "configuring the build '$preset'" "$root/build/log/$preset-configure.log" \
        env --chdir="$root" "$@" cmake --preset "$preset"
    run_logged "the build '$preset'" "$root/build/log/$preset-build.log" \
        env --chdir="$root" "$@" cmake --build --preset "$preset"
}

# Tests whether a port is in use, on any local address. Usage: port_in_use PORT STATES TABLE...
# STATES is a pattern for the states of sockets that use a port.
port_in_use() {
    local suffix states=$2 table address state
    printf -v suffix ':%04X' "$1"
    shift 2
    for table in "$@"; do
        [[ -r $table ]] || continue
        while read -r _ address _ state _; do
            # shellcheck disable=SC2053 # the states are a pattern
            if [[ $address == *"$suffix" && $state == $states ]]; then
                return 0
            fi
        done <"$table"
    done
    return 1
}

# Usage: udp_port_in_use PORT
udp_port_in_use() {
    port_in_use "$1" '*' /proc/net/udp /proc/net/udp6
}

# Tests whether a program listens at a TCP port. Usage: tcp_port_in_use PORT
tcp_port_in_use() {
    port_in_use "$1" 0A /proc/net/tcp /proc/net/tcp6
}
