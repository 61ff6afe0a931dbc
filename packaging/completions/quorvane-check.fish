# Completion of quorvane-check(1) for fish.

complete -c quorvane-check -f -a '(__fish_complete_suffix .js)'
complete -c quorvane-check -l json -d 'Print the findings as JSON'
complete -c quorvane-check -l listing -d 'Print the bytecode of each file'
complete -c quorvane-check -l werror -d 'Count warnings as errors'
complete -c quorvane-check -l help -d 'Print the options'
complete -c quorvane-check -l version -d 'Print the version'
