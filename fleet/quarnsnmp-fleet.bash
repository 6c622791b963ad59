# shellcheck shell=bash
# Completion of quarnsnmp-fleet(1) for bash.

_quarnsnmp_fleet() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' index words
    local start='--base --port --camera --directory --hosts-file --targets-file --trap-to --module --version -h --help'
    COMPREPLY=()
    for ((index = 1; index < COMP_CWORD; ++index)); do
        case ${COMP_WORDS[index]} in
        status | control) command=${COMP_WORDS[index]} ;;
        --) command=camctl ;;
        esac
    done
    case $before in
    --directory)
        mapfile -t COMPREPLY < <(compgen -d -- "$word")
        return
        ;;
    --hosts-file | --targets-file | --module)
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    --camera)
        words=$(quarnsnmp-camera --list 2>/dev/null | cut -d ' ' -f 1)
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word"; compgen -f -X '!*.json' -- "$word")
        return
        ;;
    --base | --port | --trap-to | --interval | --select | --stagger) return ;;
    esac
    case $command in
    status) words='--directory --interval --json -h --help' ;;
    control) words='--directory --select --stagger -h --help --' ;;
    camctl) words='state set down up fail delay clear play' ;;
    *)
        words=$start
        [[ $word == -* ]] || words='status control'
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -F _quarnsnmp_fleet quarnsnmp-fleet
