# Completion of Tarnwick's options in bash.
_tarnwick() {
  local current=$2 previous=$3
  case $previous in
    --open) mapfile -t COMPREPLY < <(compgen -W 'home audio claude tray notes' -- "$current") ;;
    --volume) mapfile -t COMPREPLY < <(compgen -W 'up down mute' -- "$current") ;;
    --brightness) mapfile -t COMPREPLY < <(compgen -W 'up down' -- "$current") ;;
    --listen) compopt -o filenames && mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    --snapshot) compopt -o filenames && mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    --sessions) mapfile -t COMPREPLY < <(compgen -W '--follow' -- "$current") ;;
    *)
      ((COMP_CWORD == 1)) || return 0
      mapfile -t COMPREPLY < <(compgen -W '--settings --open --close --toggle --next --volume --brightness
        --sessions --install-hooks --uninstall-hooks --hook --listen --demo --showcase --snapshot --help --version' -- "$current")
      ;;
  esac
}
complete -F _tarnwick Tarnwick tarnwick
