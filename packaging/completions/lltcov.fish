# Completion of lltcov for fish: subcommands and options as lltcov itself tells them, and after "--"
# those of the command there.
function __lltcov_commands
    lltcov help 2>/dev/null | sed -n 's/^  \([a-z]*\) .*/\1/p'
end

function __lltcov_options
    set -l command (commandline -opc)[2]
    begin
        lltcov help $command
        and lltcov help
    end 2>/dev/null | awk 'NR == 1 { all = /SELECTION/; print }
        /^SELECTION:/ { on = all } /^The project/ { on = 0 } on' | grep -oE -- '-(o\>|-[a-z-]*)'
end

function __lltcov_complete_command
    set -l word (commandline -ct)
    set -l words (commandline -opc)
    set -l separator (contains -i -- -- $words)
    if test $separator -lt (count $words)
        complete -C "$words["(math $separator + 1)"..-1] $word"
    else
        test -n "$word"; and complete --do-complete="$word"
    end
end

complete -c lltcov -n 'test (count (commandline -opc)) = 1' -f -a '(__lltcov_commands) help'
complete -c lltcov -n 'test (count (commandline -opc)) = 2; and contains help (commandline -opc)' -f -a '(__lltcov_commands)'
complete -c lltcov -n 'string match -q -- "-*" (commandline -ct); and not contains -- -- (commandline -opc)' -f -a '(__lltcov_options)'
complete -c lltcov -n 'contains -- -- (commandline -opc)' -f -a '(__lltcov_complete_command)'
