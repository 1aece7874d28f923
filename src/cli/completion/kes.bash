# Completion of kes for bash: source <(kes completion bash)

_kes() {
    local rest=${COMP_LINE:0:COMP_POINT} word i
    local -a words=()
    # Bash splits words at "=" and ":" too; what stands together on the line is one word.
    for ((i = 0; i <= COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if [[ ${#words[@]} -eq 0 || $rest == [[:blank:]]* ]]; then
            words+=("")
            rest=${rest#"${rest%%[![:blank:]]*}"}
        fi
        # The last word ends at the cursor.
        [[ $rest == "$word"* ]] || word=$rest
        rest=${rest#"$word"}
        words[${#words[@]} - 1]+=$word
    done
    local head=${words[-1]%"$word"}
    [[ $word == [=:] ]] && head=${words[-1]}
    # Without the marks that quote, as far as a word can be read without running it.
    words=("${words[@]//[\"\'\\]/}")

    local line
    local -a answer=()
    mapfile -t answer < <("${words[0]/#\~\//$HOME/}" __complete -- "${words[@]:1}" 2>/dev/null)
    COMPREPLY=()
    case ${answer[0]-} in
        :files) return ;;  # nothing more: "complete -o default" takes over
        :folders) compopt +o default -o dirnames ;;
        *)
            compopt +o default
            for line in "${answer[@]}"; do
                line=${line%%$'\t'*}
                COMPREPLY+=("${line#"$head"}")
            done
            # The path of a device follows its prefix at once.
            [[ ${COMPREPLY[0]-} == *: ]] && compopt -o nospace
            ;;
    esac
}

complete -o default -F _kes kes
