# Completion of lltwrapper for fish: its own options, then those of the wrapped command.
function __lltwrapper_has_command
    # Each option of its own has a value.
    set -l words (commandline -opc)[2..-1]
    while string match -q -- '-*' "$words[1]"
        set words $words[3..-1]
    end
    test (count $words) -gt 0
end

function __lltwrapper_complete_command
    set -l words (commandline -opc)[2..-1]
    while string match -q -- '-*' "$words[1]"
        set words $words[3..-1]
    end
    complete -C "$words "(commandline -ct)
end

function __lltwrapper_complete_name
    set -l word (commandline -ct)
    test -n "$word"; and complete --do-complete="$word"
end

complete -c lltwrapper -f
complete -c lltwrapper -n 'not __lltwrapper_has_command' -o artool -x -a 'ar gcc-ar llvm-ar' -d 'name of the archiver'
complete -c lltwrapper -n 'not __lltwrapper_has_command' -o arsuffix -x -a .a -d 'suffix of archives'
complete -c lltwrapper -n 'not __lltwrapper_has_command' -o objsuffix -x -a .o -d 'suffixes of objects'
complete -c lltwrapper -n 'not __lltwrapper_has_command' -o binsuffix -x -d 'suffix of programs'
complete -c lltwrapper -n 'not __lltwrapper_has_command' -l version -d 'print the version'
complete -c lltwrapper -n 'not __lltwrapper_has_command' -l help -d 'print a short help'
complete -c lltwrapper -n 'not __lltwrapper_has_command' -a '(__lltwrapper_complete_name)'
complete -c lltwrapper -n __lltwrapper_has_command -a '(__lltwrapper_complete_command)'
