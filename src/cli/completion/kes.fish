# Completion of kes for fish: kes completion fish | source

function __kes_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    set -l kes (string replace -r -- '^~/' "$HOME/" $words[1])
    set -l answer (command $kes __complete -- $words[2..-1] $current 2>/dev/null)
    # A file behind "--option=" or "eeprom:" is completed alone, and that put in front again.
    set -l front '^(--[^=]*=|(text|chunks|eeprom|isp|kld):)'
    set -l head (string match -r -- $front $current)[1]
    set -l tail (string replace -r -- $front '' $current)
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
