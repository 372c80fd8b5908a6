# Completion of Tarnwick's options in fish.
for program in Tarnwick tarnwick
    complete -c $program -f
    complete -c $program -n __fish_is_first_arg -l settings -d 'Open the settings window'
    complete -c $program -n __fish_is_first_arg -l open -x -a 'home audio claude tray notes' -d 'Open the notch'
    complete -c $program -n __fish_is_first_arg -l close -d 'Close the notch'
    complete -c $program -n __fish_is_first_arg -l toggle -d 'Open or close the notch'
    complete -c $program -n __fish_is_first_arg -l next -d 'Go to the session that has waited longest'
    complete -c $program -n __fish_is_first_arg -l volume -x -a 'up down mute' -d 'Change the volume'
    complete -c $program -n __fish_is_first_arg -l brightness -x -a 'up down' -d 'Change the brightness'
    complete -c $program -n __fish_is_first_arg -l sessions -d 'Print the sessions as JSON'
    complete -c $program -n '__fish_contains_opt sessions' -l follow -d 'Print a line at each change'
    complete -c $program -n __fish_is_first_arg -l install-hooks -d 'Add the hooks to Claude Code'
    complete -c $program -n __fish_is_first_arg -l uninstall-hooks -d 'Remove the hooks again'
    complete -c $program -n __fish_is_first_arg -l hook -d 'Relay one hook event'
    complete -c $program -n __fish_is_first_arg -l listen -r -F -d 'Relay hook events of other machines'
    complete -c $program -n __fish_is_first_arg -l demo -d 'Play a short session'
    complete -c $program -n __fish_is_first_arg -l showcase -x -d 'Drive the demonstration'
    complete -c $program -n __fish_is_first_arg -l snapshot -x -a '(__fish_complete_directories)' -d 'Save pictures'
    complete -c $program -n __fish_is_first_arg -l help -d 'Show the options'
    complete -c $program -n __fish_is_first_arg -l version -d 'Show the version'
end
