# Completion of quorvane-check(1) for bash.

_quorvane_check() {
    local cur=${COMP_WORDS[COMP_CWORD]} word options='-- --help --json --listing --version --werror'
    COMPREPLY=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $word == -- ]] && options=
    done
    if [[ $cur == -* && -n $options ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
        return
    fi
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -d -- "$cur"; compgen -f -X '!*.js' -- "$cur")
}

complete -F _quorvane_check quorvane-check
