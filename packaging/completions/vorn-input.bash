# Completion of vorn-input for bash.
# shellcheck shell=bash

# _vorn_input_files SUFFIX: folders, and files that end so; all files if it is empty.
_vorn_input_files() {
    compopt -o filenames
    local pattern='!*'
    [ -z "$1" ] || pattern="!*$1"
    mapfile -t COMPREPLY < <(compgen -d -- "$current"; compgen -f -X "$pattern" -- "$current")
}

_vorn_input_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current")
}

_vorn_input() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local commands='devices monitor learn check compile simulate drive timeline explain help'
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

    # Behind the dashes is another program with options of its own.
    if [[ $command = drive && " ${COMP_WORDS[*]:1:COMP_CWORD-1} " = *' -- '* ]]; then
        _vorn_input_files ''
        [ "$previous" != -- ] || mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -c -- "$current")
        return
    fi

    # Values of options.
    case $command:$previous in
    *:--log) _vorn_input_words 'trace debug info warn error off' ;;
    *:--color) _vorn_input_words 'auto always never' ;;
    monitor:--profile | monitor:-p | simulate:--profile | simulate:-p | drive:--profile | drive:-p | \
        explain:--profile | explain:-p)
        _vorn_input_files .toml
        ;;
    learn:--output | learn:-o) _vorn_input_files .toml ;;
    compile:--output | compile:-o) _vorn_input_files .cpp ;;
    compile:--header) _vorn_input_files .h ;;
    compile:--name) ;;
    timeline:--output | timeline:-o | simulate:--timeline | simulate:-t | drive:--timeline | drive:-t)
        _vorn_input_files .svg
        ;;
    simulate:--expectations | simulate:-e | drive:--expectations | drive:-e) _vorn_input_files '' ;;
    simulate:--junit | drive:--junit) _vorn_input_files .xml ;;
    monitor:--record)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        ;;
    monitor:--id | monitor:--duration) ;;
    drive:--tolerance | drive:--timeout) ;;
    learn:--commands | learn:-c | learn:--patience) ;;
    timeline:--title | timeline:--from | timeline:--to | timeline:--session) ;;
    timeline:--pattern | explain:--pattern) ;;
    *) false ;;
    esac && return

    local options
    case $command in
    devices) options='--json' ;;
    monitor) options='--profile --id --raw --state --json --record --show-text --duration' ;;
    learn) options='--output --commands --yes --force --patience' ;;
    check) options='--json --strict' ;;
    compile) options='--output --header --name --strict --force' ;;
    simulate) options='--profile --expectations --json --raw --quiet --timeline --junit --force' ;;
    drive)
        options='--profile --expectations --json --raw --quiet --timeline --junit --force --virtual-time'
        options+=' --tolerance --timeout'
        ;;
    timeline) options='--output --force --session --title --from --to --pattern --rotated' ;;
    explain) options='--profile --pattern --rotated --json --silent' ;;
    help) options='' ;;
    *)
        _vorn_input_words "$commands $common --version"
        return
        ;;
    esac
    case $command:$current in
    *:-*) _vorn_input_words "$options $common" ;;
    help:*) _vorn_input_words "$commands" ;;
    check:* | compile:*) _vorn_input_files .toml ;;
    simulate:* | drive:* | timeline:* | explain:*) _vorn_input_files '' ;;
    esac
}
complete -F _vorn_input vorn-input
