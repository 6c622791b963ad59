#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tests ./run: an answer of its agent, the agent's sockets, and the clean-up at the end. Usage: scripts/run-test.sh
set -euo pipefail

root=$(dirname -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")")
# shellcheck source=scripts/common.sh
source "$root/scripts/common.sh"

work=$(mktemp -d "${TMPDIR:-/tmp}/quarnsnmp-run-test.XXXXXX")
log=$work/log
run_pid=

clean_up() {
    if [[ -n $run_pid ]]; then
        kill -TERM "$run_pid" 2>/dev/null || true
        wait "$run_pid" 2>/dev/null || true
    fi
    rm -rf -- "$work"
}

# Exits with a message and the end of the output of ./run. Usage: fail_with_output MESSAGE
fail_with_output() {
    tail -n 20 -- "$log" >&2
    fail "$1; the last lines of the output of ./run are above"
}

# Sets `port` to a UDP port that is not in use. Usage: choose_port FIRST
choose_port() {
    for ((port = $1; port < $1 + 100; ++port)); do
        udp_port_in_use "$port" || return 0
    done
    fail "no free UDP port from $1"
}

# Starts ./run and waits until it shows the logs. The time includes a build.
start_run() {
    mkdir -- "$work/tmp"
    : >"$log"
    TMPDIR=$work/tmp "$root/run" --port "$agent_port" --trap-port "$trap_port" >"$log" 2>&1 &
    run_pid=$!
    local deadline=$((SECONDS + 1800))
    until grep -q 'Press Ctrl-C to stop' "$log"; do
        kill -0 "$run_pid" 2>/dev/null || fail_with_output "./run has exited"
        ((SECONDS < deadline)) || fail_with_output "./run does not start its programs"
        sleep 0.1
    done
}

# Prints the PID of the agent.
agent() {
    local pid
    for pid in $(<"/proc/$run_pid/task/$run_pid/children"); do
        if [[ $(readlink "/proc/$pid/exe") == */snmpd ]]; then
            echo "$pid"
        fi
    done
}

# Prints kind and local address, in the kernel's notation, of each network socket of a process. Usage: sockets PID
sockets() {
    local descriptor target table
    for descriptor in "/proc/$1/fd"/*; do
        target=$(readlink "$descriptor") || continue
        [[ $target == socket:* ]] || continue
        for table in tcp tcp6 udp udp6 raw raw6; do
            [[ -r /proc/$1/net/$table ]] || continue
            awk -v table="$table" -v "inode=${target//[^0-9]/}" '$10 == inode { print table, $2 }' "/proc/$1/net/$table"
        done
    done
}

# One socket for requests and one that sends traps, both on 127.0.0.1.
test_sockets() {
    local opened requests
    opened=$(sockets "$agent_pid")
    printf -v requests 'udp 0100007F:%04X' "$agent_port"
    grep -qx "$requests" <<<"$opened" || fail "the agent has no socket $requests, but: $opened"
    if grep -v '^udp 0100007F:' <<<"$opened"; then
        fail "the agent opens sockets on other addresses than 127.0.0.1, or not of UDP; see above"
    fi
    (($(wc -l <<<"$opened") == 2)) || fail "the agent opens more sockets than expected: $opened"
}

test_answer() {
    local model
    model=$(snmpget -v2c -c public -m '' -Oqv "127.0.0.1:$agent_port" .1.3.6.1.4.1.99999.1.1.2.0.0)
    [[ $model == '"QN-4000 Dome"' ]] || fail "the agent answers '$model' instead of the model's name"
}

test_end() {
    local status=0
    kill -TERM "$run_pid"
    wait "$run_pid" || status=$?
    run_pid=
    ((status == 0)) || fail_with_output "./run exits with status $status"
    [[ ! -e /proc/$agent_pid ]] || fail "./run leaves its agent behind"
    if find "$work/tmp" -mindepth 1 | grep .; then
        fail "./run leaves files behind; see above"
    fi
}

trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP
choose_port 21161
agent_port=$port
choose_port $((agent_port + 1))
trap_port=$port
start_run
agent_pid=$(agent)
[[ $agent_pid =~ ^[0-9]+$ ]] || fail "./run has ${agent_pid:-no} agent as a child; expected one"
test_answer
test_sockets
test_end
echo "./run passes all tests."
