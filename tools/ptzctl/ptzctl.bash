# shellcheck shell=bash
# Completion of ptzctl(1) for bash.

# Completions of each path of commands: the path, a colon, the words.
_ptzctl_words() {
    local axis places
    cat <<'WORDS'
: status pan tilt zoom focus iris stop auto relay preset inputs limits timeouts reboot get set encode decode watch traps check probe
stop: pan tilt zoom focus iris all
auto: focus iris
auto focus: on off
auto iris: on off
relay: on off
preset: go store
timeouts: pan tilt zoom focus iris all
encode: pan tilt zoom focus iris
decode: pan tilt zoom focus iris
WORDS
    for axis in 'pan left right' 'tilt down up' 'zoom out in' 'focus near far' 'iris close open'; do
        read -r axis places <<<"$axis"
        printf '%s\n' "$axis: to by $places stop" "encode $axis: to by $places stop"
    done
}

# Options of single commands.
_ptzctl_own_options() {
    case $1 in
    reboot) echo '-y --yes' ;;
    get) echo '--list' ;;
    watch) echo '--interval --count' ;;
    traps) echo '--count --engine' ;;
    check)
        echo '--writes --moves --preset --disruptive -y --yes --read-community --ask --camera --rule --skip
            --list-rules --junit --html'
        ;;
    probe) echo '-w --warning --critical --power --voltage --input --unreadable' ;;
    esac
}

# Values of an option. Fails for an option without a value, and prints nothing for one with any value.
_ptzctl_values() {
    case $1 in
    --byte-order) echo 'low high' ;;
    -v | --snmp-version) echo '2c 3' ;;
    -l | --level) echo 'noAuthNoPriv authNoPriv authPriv' ;;
    --unreadable) echo 'unknown critical' ;;
    -H | --host | --hosts-file | -s | --speed | -t | --timeout | -c | -C | --community | -u | --user | -a | --auth | -x | --privacy | \
        --interval | --count | --engine | --preset | --read-community | --camera | --junit | --html | \
        -w | --warning | --critical | --power | --voltage | --input) ;;
    --rule | --skip) "${COMP_WORDS[0]}" check --list-rules 2>/dev/null | sed 1d | cut -d ' ' -f 1 ;;
    --disruptive) "${COMP_WORDS[0]}" check --list-rules 2>/dev/null | sed -n 's/^\([^ ]*\)  *disruptive .*/\1/p' ;;
    *) return 1 ;;
    esac
}

_ptzctl() {
    local word=${COMP_WORDS[COMP_CWORD]} path='' values index
    local options='-H --host --hosts-file -s --speed -j --json --no-before --verbose -t --timeout --byte-order -v --snmp-version -c -C --community
        -u --user -l --level -a --auth -x --privacy -h --help -V --version'
    COMPREPLY=()
    if [[ ${COMP_WORDS[COMP_CWORD - 1]} == --hosts-file ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
    fi
    if values=$(_ptzctl_values "${COMP_WORDS[COMP_CWORD - 1]}"); then
        mapfile -t COMPREPLY < <(compgen -W "$values" -- "$word")
        return
    fi
    for ((index = 1; index < COMP_CWORD; ++index)); do
        if _ptzctl_values "${COMP_WORDS[index]}" >/dev/null; then
            ((++index))
        elif [[ ${COMP_WORDS[index]} != -* && ! ${COMP_WORDS[index]} =~ ^[0-9] ]]; then
            path+=${path:+ }${COMP_WORDS[index]}
        fi
    done
    if [[ $word == -* ]]; then
        values="$options $(_ptzctl_own_options "${path%% *}")"
    elif [[ $path == get* || $path == set ]]; then
        values=$("${COMP_WORDS[0]}" get --list 2>/dev/null | cut -d ' ' -f 1)
    else
        values=$(_ptzctl_words | sed -n "s/^$path: *//p")
    fi
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$word")
}

complete -F _ptzctl ptzctl
