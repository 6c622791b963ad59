#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tests ./run: the commands that it prints, an answer of its agent, the agent's sockets, and the clean-up at the end.
# Usage: scripts/run-test.sh
set -euo pipefail

root=$(dirname -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")")
# shellcheck source=scripts/common.sh
source "$root/scripts/common.sh"

work=$(mktemp -d "${TMPDIR:-/tmp}/quarnsnmp-run-test.XXXXXX")
log=$work/log
run_pid=
agents=()
panel_pid=

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

# Starts ./run and waits until it shows the logs. The time includes a build. Usage: start_run ARGUMENT...
start_run() {
    mkdir -p -- "$work/tmp"
    : >"$log"
    TMPDIR=$work/tmp "$root/run" --port "$agent_port" --trap-port "$trap_port" --panel-port "$panel_port" "$@" \
        >"$log" 2>&1 &
    run_pid=$!
    local deadline=$((SECONDS + 1800))
    until grep -q 'Press Ctrl-C to stop' "$log"; do
        kill -0 "$run_pid" 2>/dev/null || fail_with_output "./run has exited"
        ((SECONDS < deadline)) || fail_with_output "./run does not start its programs"
        sleep 0.1
    done
}

# Sets `agents` to the PIDs of a number of agents, the one that serves managers first. Usage: find_agents COUNT
find_agents() {
    local pid
    agents=()
    for pid in $(<"/proc/$run_pid/task/$run_pid/children"); do
        if [[ $(readlink "/proc/$pid/exe") == */snmpd ]]; then
            agents+=("$pid")
        fi
    done
    ((${#agents[@]} == $1)) || fail "./run has ${#agents[@]} agents as children; expected $1"
    agent_pid=${agents[0]}
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

# One socket for requests, and one for each destination of traps: the user and the panel. All are on 127.0.0.1.
test_sockets() {
    local opened requests
    opened=$(sockets "$agent_pid")
    printf -v requests 'udp 0100007F:%04X' "$agent_port"
    grep -qx "$requests" <<<"$opened" || fail "the agent has no socket $requests, but: $opened"
    if grep -v '^udp 0100007F:' <<<"$opened"; then
        fail "the agent opens sockets on other addresses than 127.0.0.1, or not of UDP; see above"
    fi
    (($(wc -l <<<"$opened") == 3)) || fail "the agent does not open three sockets, but: $opened"
}

# The panel must listen on the loopback interface only, at its port and for traps, and show the camera.
test_panel() {
    local pid opened page
    for pid in $(<"/proc/$run_pid/task/$run_pid/children"); do
        if [[ $(readlink "/proc/$pid/exe") == */quarnsnmp-panel ]]; then
            panel_pid=$pid
        fi
    done
    [[ -n $panel_pid ]] || fail "./run has no panel as a child"
    opened=$(sockets "$panel_pid")
    if grep -v -e '^tcp 0100007F:' -e '^udp 0100007F:' <<<"$opened"; then
        fail "the panel opens sockets on other addresses than 127.0.0.1; see above"
    fi
    (($(wc -l <<<"$opened") == 2)) || fail "the panel opens other sockets than one for pages and one for traps: $opened"
    exec {page}<>"/dev/tcp/127.0.0.1/$panel_port"
    printf 'GET /api/cameras HTTP/1.0\r\nHost: localhost\r\n\r\n' >&"$page"
    grep -q '"name":"dome".*"status":"up"' <&"$page" || fail "the panel does not show the camera"
    exec {page}>&-
    grep -q "http://127.0.0.1:$panel_port/" "$log" || fail_with_output "./run does not print the address of the panel"
}

# The printed stream must have a picture.
test_rtsp() {
    local stream
    stream=$(sed -n 's/^Video systems: \(rtsp:[^ ]*\) .*/\1/p' "$log")
    [[ -n $stream ]] || fail_with_output "./run does not print the address of the stream"
    [[ $(ffprobe -v error -rtsp_transport tcp -show_entries stream=codec_name -of csv=p=0 "$stream") == h264 ]] ||
        fail "$stream is not an H.264 stream"
}

test_answer() {
    local model
    model=$(snmpget -v2c -c public -m '' -Oqv "127.0.0.1:$agent_port" .1.3.6.1.4.1.99999.1.1.2.0.0)
    [[ $model == '"QN-4000 Dome"' ]] || fail "the agent answers '$model' instead of the model's name"
}

# Prints the lines that ./run prints below a heading. Usage: below HEADING
below() {
    sed -n "/^$1/,/^\$/s/^  //p" "$log"
}

# Each command must run as printed, in any directory. Some run until they are interrupted.
test_commands() {
    local printed command status
    printed=$(sed -n '/^The camera/,/^The module/s/^  //p' "$log")
    (($(wc -l <<<"$printed") >= 10)) || fail_with_output "./run prints too few commands"
    while read -r command; do
        status=0
        env --chdir=/ timeout --signal=INT 2 bash -uc "$command" >"$work/output" 2>&1 </dev/null || status=$?
        if [[ $command == *" traps "* || $command == *" play "* ]] && ((status == 124)); then
            status=0
        fi
        if ((status != 0)); then
            cat -- "$work/output" >&2
            fail "a command that ./run prints exits with status $status: $command"
        fi
    done <<<"$printed"
}

# Below the last heading, ./run prints the variable that finds the camera.
test_variable() {
    local printed state
    printed=$(below 'The examples')
    [[ $printed == 'export QUARNSNMP_CAMERA_DIR='* ]] || fail_with_output "./run does not export the camera's directory"
    state=$(eval "$printed" && "$root/build/release/bin/quarnsnmp-camctl" state)
    grep -q '"QN-4000 Dome"' <<<"$state" || fail "after '$printed', the control program does not find the camera"
}

# The simulated dome has no stepper motors.
test_errors_of_start() {
    local expected
    printf -v expected 'no zorva API %s\n' 'focuses' 'zoom steppers'
    [[ $(below 'Normal in the log') == "${expected%$'\n'}" ]] ||
        fail_with_output "./run does not list the two services that the dome does not have"
    if grep -q '^Other errors' "$log"; then
        fail_with_output "./run reports errors of a healthy camera"
    fi
}

# The module must be in the second agent only, and that one must not be on any network.
test_isolation() {
    local opened
    grep -q libquarnsnmp_Morvek "/proc/${agents[1]}/maps" || fail "./run --isolated has no agent with the module"
    if grep libquarnsnmp "/proc/$agent_pid/maps"; then
        fail "./run --isolated loads modules into the agent that serves managers; see above"
    fi
    opened=$(sockets "${agents[1]}")
    [[ -z $opened ]] || fail "the agent with the module opens sockets of a network: $opened"
}

test_end() {
    local status=0 pid
    kill -TERM "$run_pid"
    wait "$run_pid" || status=$?
    run_pid=
    ((status == 0)) || fail_with_output "./run exits with status $status"
    for pid in "${agents[@]}"; do
        [[ ! -e /proc/$pid ]] || fail "./run leaves an agent behind"
    done
    [[ ! -e /proc/$panel_pid ]] || fail "./run leaves its panel behind"
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
panel_port=$agent_port
while tcp_port_in_use "$panel_port"; do
    panel_port=$((panel_port + 1))
done
start_run --rtsp
find_agents 1
test_answer
test_sockets
test_panel
test_rtsp
test_errors_of_start
test_commands
test_variable
test_end
start_run --isolated
find_agents 2
test_answer
test_sockets
test_isolation
test_panel
test_errors_of_start
test_commands
test_end
echo "./run passes all tests."
