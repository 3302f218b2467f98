# Bash completion for tov: commands, their options, request kinds and the
# fixed values of options; files everywhere else.
_tov() {
    local current previous command
    current=${COMP_WORDS[COMP_CWORD]}
    previous=${COMP_WORDS[COMP_CWORD-1]}
    command=${COMP_WORDS[1]}

    local commands="check explain eval batch test graph"
    if [[ $COMP_CWORD -eq 1 ]]; then
        COMPREPLY=($(compgen -W "$commands --help --version" -- "$current"))
        return
    fi

    case $previous in
        --format)
            case $command in
                test) COMPREPLY=($(compgen -W "text json junit" -- "$current")) ;;
                graph) COMPREPLY=($(compgen -W "dot mermaid" -- "$current")) ;;
                *) COMPREPLY=($(compgen -W "text json" -- "$current")) ;;
            esac
            return
            ;;
        --log)
            COMPREPLY=($(compgen -W "off console" -- "$current") $(compgen -d -- "$current"))
            return
            ;;
        --rules | --dm)
            COMPREPLY=($(compgen -f -X '!*.json' -- "$current") $(compgen -d -- "$current"))
            return
            ;;
        --jobs | -j | --max-input-size | --type | --attribute)
            return
            ;;
    esac

    local common="--help --log --max-input-size"
    local options
    case $command in
        check) options="--rules --dm --strict --format $common" ;;
        explain) options="--rules --dm --format $common" ;;
        eval) options="--rules --dm --format $common" ;;
        batch) options="--rules --dm --jobs --format $common" ;;
        test) options="--verbose --format $common" ;;
        graph) options="--rules --dm --type --attribute --format $common" ;;
    esac
    if [[ $current == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$current"))
    elif [[ $command == eval && $COMP_CWORD -eq 2 ]]; then
        COMPREPLY=($(compgen -W "edit edit-before-resolution save save-before-resolution link options" -- "$current"))
    else
        COMPREPLY=($(compgen -f -- "$current"))
    fi
}
complete -o filenames -F _tov tov
