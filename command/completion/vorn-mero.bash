# bash completion for vorn-mero: the command itself tells what can stand where

_vorn_mero() {
    local i
    for ((i = 1; i < COMP_CWORD; ++i)); do
        if [[ ${COMP_WORDS[i]} == -- ]] && declare -F _command_offset >/dev/null; then
            _command_offset $((i + 1))
            return
        fi
    done
    mapfile -t COMPREPLY < <("${COMP_WORDS[0]}" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o bashdefault -o default -F _vorn_mero vorn-mero
