# Completion of quorvane(1) for bash.

_quorvane() {
    local cur=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    compopt -o filenames 2>/dev/null
    case $previous in
    -load)
        mapfile -t COMPREPLY < <(compgen -d -- "$cur"; compgen -f -X '!*.js' -- "$cur")
        return
        ;;
    -define)
        compopt +o filenames -o nospace 2>/dev/null
        return
        ;;
    esac
    # A value like output=fw.elf arrives as three words, since "=" parts words.
    if [[ $previous == '=' || $cur == '=' ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "${cur#=}")
        return
    fi
    case $cur in
    @*) mapfile -t COMPREPLY < <(compgen -P @ -f -- "${cur#@}") ;;
    -*)
        compopt +o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -W '-define -help -load -verbose' -- "$cur")
        ;;
    esac
}

complete -F _quorvane quorvane
