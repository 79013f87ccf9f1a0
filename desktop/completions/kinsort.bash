# bash completion for kinsort
_kinsort() {
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command=${COMP_WORDS[1]}
    local word options= operands=()
    COMPREPLY=()
    [[ $current == = ]] && current=
    [[ $before == = ]] && before=${COMP_WORDS[COMP_CWORD-2]}
    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W 'plan sort open undo redo history recover settings script integrate host help completion --help --version' -- "$current")
        return
    fi
    for word in "${COMP_WORDS[@]:2:COMP_CWORD-2}"; do
        case "$command $word" in
        'settings get' | 'settings set' | 'settings unset' | 'settings list' | 'settings export' | 'settings import' | 'script run' | 'script check' | 'host listen') command+=" $word" ;;
        esac
    done
    case $before in
    --to | -t | --other-tab | --cwd | --other) operands=(-d) ;;
    --files-from | -f | --select) operands=(-f) ;;
    --min-score | --threads | -j) ;;
    --set | --class) ;;
    --on-conflict) operands=(-W 'ask skip replace keep-both') ;;
    --durability) operands=(-W 'journal content') ;;
    --type) operands=(-W 'string dword binary') ;;
    *)
        case $command in
        plan) options='--to --files-from --scores --min-score --threads --json --quiet --help' operands=(-f) ;;
        sort) options='--to --copy --move --on-conflict --dry-run --files-from --scores --min-score --threads --durability --json --quiet --help' operands=(-f) ;;
        open) options='--to --other-tab --copy --move --files-from --no-wait --quiet --help' operands=(-f) ;;
        undo) options='--notify --json --quiet --help' ;;
        redo) options='--notify --json --quiet --help' ;;
        history) options='--json --help' ;;
        recover) options='--finish --undo --leave --json --quiet --help' ;;
        settings) options='--type --json --quiet --help' operands=(-W 'get set unset list export import') ;;
        'settings get') options='--json --quiet --help' ;;
        'settings set') options='--type --quiet --help' operands=(-f) ;;
        'settings unset') options='--quiet --help' ;;
        'settings list') options='--json --quiet --help' ;;
        'settings export') options='--json --quiet --help' ;;
        'settings import') options='--quiet --help' operands=(-f) ;;
        script) options='--select --cwd --other --set --yes --no --trace --dry-run --json --help' operands=(-W 'run check') ;;
        'script run') options='--select --cwd --other --set --yes --no --trace --dry-run --help' operands=(-f) ;;
        'script check') options='--json --help' operands=(-f) ;;
        integrate) options='--remove --dry-run --quiet --help' operands=(-W 'menu kde nemo nautilus caja thunar') ;;
        host) options='--class --open --json --quiet --help' operands=(-W 'listen') ;;
        'host listen') options='--class --open --json --quiet --help' ;;
        help) options='--help' operands=(-W 'plan sort open undo redo history recover settings script integrate host help completion') ;;
        completion) options='--help' operands=(-W 'bash zsh fish') ;;
        esac
        [[ $current == -* ]] && operands=(-W "$options")
        ;;
    esac
    [[ ${operands[0]-} == -[df] ]] && compopt -o filenames
    ((${#operands[@]})) && mapfile -t COMPREPLY < <(compgen "${operands[@]}" -- "$current")
}
complete -F _kinsort kinsort
