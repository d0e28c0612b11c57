# shellcheck shell=bash
# Completion for qel. Subcommands and options are those that its help lists.

_qel_subcommands() { qel "$@" --help 2>/dev/null | awk '/^Subcommands:/ { on = 1; next } on && NF { print $1 }'; }
_qel_options() { qel "$@" --help 2>/dev/null | grep -oE '^  -[^ ]+' | grep -oE -- '-{1,2}[a-z][a-z-]*'; }

_qel() {
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} word names path=() choices=
    COMPREPLY=()
    names=$(_qel_subcommands)
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        grep -qxF -- "$word" <<<"$names" || continue
        path+=("$word")
        names=$(_qel_subcommands "${path[@]}")
    done
    case $before:$current in
        --codepage:*) choices='932 1252 65001' ;;
        --printer:*) choices="PDF $(lpstat -e 2>/dev/null)" ;;
        --theme:*) choices='light dark print' ;;
        --log:*) choices='x y xy' ;;
        --legend:*) choices='inside none' ;;
        --format:*) [[ ${path[0]} == plot ]] && choices='png svg pdf' ;;
        *:-*) choices=$(_qel_options "${path[@]}") ;;
        *) choices=$names ;; # none: names of files
    esac
    mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$current")
}
complete -o bashdefault -o default -F _qel qel
