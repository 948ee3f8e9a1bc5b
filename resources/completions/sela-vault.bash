# Completion of sela-vault for bash.
_sela_vault() {
    local current=${COMP_WORDS[COMP_CWORD]} words='init publish albums ledger import --help'
    if ((COMP_CWORD > 1)); then
        case ${COMP_WORDS[1]} in
        publish) words='--passcode-file --decoy-passcode-file --covers' ;;
        ledger) words='--json' ;;
        import) words='--into --keep --prune' ;;
        *) return ;;
        esac
        [[ $current == -* ]] || words=
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o bashdefault -o default -F _sela_vault sela-vault
