# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# What the commands of this project have in common; to be sourced.

# Ends the command with one line that says why.
fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# Runs a command with its output in a file; a failure ends this command with the last lines of it.
# Usage: run_logged WHAT FILE COMMAND...
run_logged() {
    local what=$1 log=$2
    shift 2
    mkdir -p -- "$(dirname -- "$log")"
    if ! "$@" >"$log" 2>&1; then
        tail -n 40 -- "$log" >&2
        fail "$what failed; its last lines are above, all of them are in $log"
    fi
}

# Configures and builds a preset. Usage: build_preset ROOT PRESET [COMMAND-PREFIX...]
build_preset() {
    local root=$1 preset=$2
    shift 2
    # cmake finds presets in the current directory only.
    run_logged "configuring the build '$preset'" "$root/build/log/$preset-configure.log" \
        env --chdir="$root" "$@" cmake --preset "$preset"
    run_logged "the build '$preset'" "$root/build/log/$preset-build.log" \
        env --chdir="$root" "$@" cmake --build --preset "$preset"
}

# Whether a process has bound a UDP port. Any local address counts: most of the time it is all of them.
udp_port_in_use() {
    local suffix table address
    printf -v suffix ':%04X' "$1"
    for table in /proc/net/udp /proc/net/udp6; do
        [[ -r $table ]] || continue
        while read -r _ address _; do
            if [[ $address == *"$suffix" ]]; then
                return 0
            fi
        done <"$table"
    done
    return 1
}
