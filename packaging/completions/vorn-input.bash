# Completion of vorn-input for bash.
# shellcheck shell=bash

_vorn_input() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local commands='devices monitor learn check simulate timeline'
    local common='--help --log --color'
    local command='' word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case " $commands " in
        *" $word "*)
            command=$word
            break
            ;;
        esac
    done

    case $previous in
    --log)
        mapfile -t COMPREPLY < <(compgen -W 'trace debug info warn error off' -- "$current")
        return
        ;;
    --color)
        mapfile -t COMPREPLY < <(compgen -W 'auto always never' -- "$current")
        return
        ;;
    --profile | -p | --expectations | -e | --output | -o | --timeline | -t)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
        ;;
    --record)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return
        ;;
    --id | --duration | --commands | -c | --patience | --title | --from | --to)
        return
        ;;
    esac

    local options
    case $command in
    devices) options='--json' ;;
    monitor) options='--profile --id --raw --json --record --show-text --duration' ;;
    learn) options='--output --commands --yes --force --patience' ;;
    check) options='--json --strict' ;;
    simulate) options='--profile --expectations --json --raw --quiet --timeline' ;;
    timeline) options='--output --title --from --to' ;;
    *)
        mapfile -t COMPREPLY < <(compgen -W "$commands $common --version" -- "$current")
        return
        ;;
    esac
    case $current in
    -*) mapfile -t COMPREPLY < <(compgen -W "$options $common" -- "$current") ;;
    *)
        case $command in
        check | simulate | timeline)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            ;;
        esac
        ;;
    esac
}
complete -F _vorn_input vorn-input
