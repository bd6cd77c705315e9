# Completion of `tesmor-drive` for bash.
_tesmor_drive()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} words
    if [[ $COMP_CWORD -eq 1 ]]; then
        mapfile -t COMPREPLY < <(compgen -W "gcode indi list sangaboard usb --help --version" -- "$word")
        return
    fi
    local all="--unit --gear --reverse --backlash --limit --position --settle --dry-run --help"
    case $previous in
        --port) words=$(compgen -G "/dev/serial/by-id/*"; compgen -G "/dev/tty[UA]*[0-9]") ;;
        --baud) words="9600 115200 230400 250000" ;;
        --axis) words="X Y Z" ;;
        --unit) words="0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15" ;;
        --device | --serial | --ack-endpoint | --steps-per-mm | --feed | --server | --gear | --backlash | --limit | --position | --settle) return ;;
        *)
            case ${COMP_WORDS[1]} in
                usb) words="--device --serial --ack-endpoint $all" ;;
                gcode) words="--port --steps-per-mm --baud --feed --axis $all" ;;
                sangaboard) words="--port --baud --axis $all" ;;
                indi) words="--device --server $all" ;;
            esac
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _tesmor_drive tesmor-drive
