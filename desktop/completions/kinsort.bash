# bash completion for kinsort
_kinsort() {
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} verb=${COMP_WORDS[1]}
    COMPREPLY=()
    [[ $current == = ]] && current=
    [[ $before == = ]] && before=${COMP_WORDS[COMP_CWORD-2]}
    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W 'plan sort open undo redo history recover settings script integrate host help completion --help --version' -- "$current")
        return
    fi
    compopt -o filenames 2>/dev/null
    case $before in
    --to | -t)
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return ;;
    --other-tab)
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return ;;
    --on-conflict)
        mapfile -t COMPREPLY < <(compgen -W 'ask skip replace keep-both' -- "$current")
        return ;;
    --files-from | -f)
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return ;;
    --min-score)
        return ;;
    --threads | -j)
        return ;;
    --durability)
        mapfile -t COMPREPLY < <(compgen -W 'journal content' -- "$current")
        return ;;
    --type)
        mapfile -t COMPREPLY < <(compgen -W 'string dword binary' -- "$current")
        return ;;
    --select)
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return ;;
    --cwd)
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return ;;
    --other)
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return ;;
    --set)
        return ;;
    --class)
        return ;;
    esac
    case $verb in
    plan)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--to --files-from --scores --min-score --threads --json --quiet --help' -- "$current")
        else
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
        fi ;;
    sort)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--to --copy --move --on-conflict --dry-run --files-from --scores --min-score --threads --durability --json --quiet --help' -- "$current")
        else
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
        fi ;;
    open)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--to --other-tab --copy --move --files-from --no-wait --quiet --help' -- "$current")
        else
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
        fi ;;
    undo)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--notify --json --quiet --help' -- "$current")
        fi ;;
    redo)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--notify --json --quiet --help' -- "$current")
        fi ;;
    history)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--json --help' -- "$current")
        fi ;;
    recover)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--finish --undo --leave --json --quiet --help' -- "$current")
        fi ;;
    settings)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--type --json --quiet --help' -- "$current")
        elif ((COMP_CWORD == 2)); then
            mapfile -t COMPREPLY < <(compgen -W 'get set unset list export import' -- "$current")
        elif [[ ${COMP_WORDS[2]} == @(set|import) ]]; then
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
        fi ;;
    script)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--select --cwd --other --set --yes --no --trace --dry-run --json --help' -- "$current")
        elif ((COMP_CWORD == 2)); then
            mapfile -t COMPREPLY < <(compgen -W 'run check' -- "$current")
        elif [[ ${COMP_WORDS[2]} == @(run|check) ]]; then
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
        fi ;;
    integrate)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--remove --dry-run --quiet --help' -- "$current")
        else
            mapfile -t COMPREPLY < <(compgen -W 'menu kde nemo nautilus caja thunar' -- "$current")
        fi ;;
    host)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--class --open --json --quiet --help' -- "$current")
        elif ((COMP_CWORD == 2)); then
            mapfile -t COMPREPLY < <(compgen -W 'listen' -- "$current")
        fi ;;
    help)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--help' -- "$current")
        else
            mapfile -t COMPREPLY < <(compgen -W 'plan sort open undo redo history recover settings script integrate host help completion' -- "$current")
        fi ;;
    completion)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--help' -- "$current")
        else
            mapfile -t COMPREPLY < <(compgen -W 'bash zsh fish' -- "$current")
        fi ;;
    esac
}
complete -F _kinsort kinsort
