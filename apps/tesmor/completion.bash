# Completion of `tesmor` for bash.
_tesmor()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} words
    if [[ $COMP_CWORD -eq 1 ]]; then
        mapfile -t COMPREPLY < <(compgen -W "cameras demo devices focus fuse microscope move snap stack --help --version" -- "$word")
        return
    fi
    case $previous in
        --magnification) words="4 10 20 40 60 80 100" ;;
        --size) words="640x480 1280x960 1920x1440" ;;
        --unit) words="0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15" ;;
        --format) words="png tif jpg bmp" ;;
        --range) words="auto full" ;;
        --camera) words="virtual" ;;
        --channel | --time | --offset | --fps | --drift | --breathing | --seed | --slices | --spacing | --exposure | --gain) return ;;
        *)
            case ${COMP_WORDS[1]} in
                cameras) words="--json --help" ;;
                demo) words="--output --seed --magnification --offset --slices --spacing --size --planes --help" ;;
                devices) words="--json --help" ;;
                focus) words="--magnification --camera --exposure --gain --json --help" ;;
                fuse) words="--output --align --no-crop --each --skip-existing --format --channel --time --range --quiet --json --help" ;;
                microscope) words="--magnification --offset --size --fps --drift --breathing --seed --unit --help" ;;
                move) words="--virtual --json --help" ;;
                snap) words="--output --camera --exposure --gain --json --help" ;;
                stack) words="--output --slices --spacing --magnification --camera --exposure --gain --json --help" ;;
            esac
            ;;
    esac
    if [[ $previous = --output || $previous = -o || $previous = --planes || ( ${COMP_WORDS[1]} = fuse && $word != -* && $previous != --range && $previous != --format ) ]]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    else
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    fi
}
complete -F _tesmor tesmor
