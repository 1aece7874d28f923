# Completion of kes for fish: kes completion fish | source

function __kes_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    set -l kes (string replace -r -- '^~/' "$HOME/" $words[1])
    set -l answer (command $kes __complete -- $words[2..-1] $current 2>/dev/null)
    # A file behind "--option=" is completed alone, and "--option=" put in front again.
    set -l head (string match -r -- '^--[^=]*=' $current)
    set -l tail (string replace -r -- '^--[^=]*=' '' $current)
    switch "$answer[1]"
        case :files
            printf '%s\n' "$head"(__fish_complete_path $tail)
        case :folders
            printf '%s\n' "$head"(__fish_complete_directories $tail)
        case '*'
            printf '%s\n' $answer
    end
end

complete -c kes -f -a '(__kes_complete)'
