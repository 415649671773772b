# SPDX-License-Identifier: MIT
# What bash offers after tarnwick-probe.
_tarnwick_probe() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local word
    COMPREPLY=()
    case $previous in
        --root | --home)
            compopt -o filenames
            while IFS= read -r word; do
                COMPREPLY+=("$word")
            done < <(compgen -A directory -- "$current")
            ;;
        --format) COMPREPLY=($(compgen -W "json prometheus openmetrics text waybar" -- "$current")) ;;
        --thresholds | --output)
            compopt -o filenames
            while IFS= read -r word; do
                COMPREPLY+=("$word")
            done < <(compgen -A file -- "$current")
            ;;
        --samples | --interval | --limit) ;;
        *)
            while IFS= read -r word; do
                COMPREPLY+=("$word")
            done < <(compgen -W "--format --all --thresholds --output --watch --root --samples --interval --limit --home --help --version" -- "$current")
            ;;
    esac
}
complete -F _tarnwick_probe tarnwick-probe
