# Completion of quorvane(1) for fish.

function __quorvane_indirect
    __fish_complete_path (string replace -r '^@' '' -- (commandline -ct)) | string replace -r '^' '@'
end

complete -c quorvane -f
complete -c quorvane -o define -x -d 'Define a global variable: name=value'
complete -c quorvane -o help -d 'Print options help'
complete -c quorvane -o load -x -a '(__fish_complete_suffix .js)' -d 'Load a script file'
complete -c quorvane -o verbose -d 'Produce verbose output'
complete -c quorvane -n 'string match -q "@*" -- (commandline -ct)' -a '(__quorvane_indirect)'
