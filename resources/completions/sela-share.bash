# Completion of sela-share for bash.
_sela_share() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local words=
    case $previous in
    --appearance) words='light dark' ;;
    --contrast) words='normal high' ;;
    --tap | --tap-now)
        # In rows and sections a colon ends a word, so these stop before it.
        words="addButton albumButton cancelButton backButton $(echo button{0..9}) row showChildButton"
        ;;
    --screen) words='375x667' ;;
    --scale) words='1 2 3' ;;
    --type | --wait) return ;;
    *)
        [[ $current != -* ]] || words='--headless --appearance --contrast --screen --scale --paste --quiet --verbose --tap
            --tap-now --type --wait --snapshot --tree --help --version'
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o bashdefault -o default -F _sela_share sela-share
