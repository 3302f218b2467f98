# Bash completion for tov: commands, their options, request kinds and the
# fixed values of options; files everywhere else.
_tov() {
    local current previous command
    current=${COMP_WORDS[COMP_CWORD]}
    previous=${COMP_WORDS[COMP_CWORD-1]}
    command=${COMP_WORDS[1]}

    local commands="check explain eval batch test graph serve workbench"
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
        --rules | --dm | --suite)
            COMPREPLY=($(compgen -f -X '!*.json' -- "$current") $(compgen -d -- "$current"))
            return
            ;;
        --token-file | --decision-log)
            COMPREPLY=($(compgen -f -- "$current"))
            return
            ;;
        --listen)
            if [[ $command == workbench ]]; then
                COMPREPLY=($(compgen -W "127.0.0.1:0 127.0.0.1:8490 [::1]:0" -- "$current"))
            else
                COMPREPLY=($(compgen -W "127.0.0.1:8480 0.0.0.0:8480 [::1]:8480" -- "$current"))
            fi
            return
            ;;
        --jobs | -j | --max-input-size | --type | --attribute | --threads | --max-body-size | \
            --max-header-size | --max-connections | --read-timeout | --write-timeout | \
            --idle-timeout | --grace | --allow-host)
            return
            ;;
    esac

    local common="--help --log --max-input-size"
    local options
    case $command in
        check) options="--rules --dm --strict --format $common" ;;
        explain) options="--rules --dm --format $common" ;;
        eval) options="--rules --dm --format --trace $common" ;;
        batch) options="--rules --dm --jobs --format $common" ;;
        test) options="--verbose --format --coverage --coverage-min --strict $common" ;;
        graph) options="--rules --dm --type --attribute --format $common" ;;
        serve) options="--rules --dm --listen --threads --watch --token-file --allow-host
            --decision-log --grace --max-body-size --max-header-size --max-connections
            --read-timeout --write-timeout --idle-timeout $common" ;;
        workbench) options="--rules --dm --suite --listen --open --write --no-token --allow-host
            --max-body-size $common" ;;
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
