# Completion of ktannot for bash.
_ktannot() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command='' index
    for ((index = 1; index < COMP_CWORD; index++)); do
        case ${COMP_WORDS[index]} in
            migrate | inspect | check | version)
                command=${COMP_WORDS[index]}
                break
                ;;
        esac
    done

    local words=''
    case $previous in
        --format) words='svg json pdf png' ;;
        --text) words='text outlines' ;;
        --picture-background) words='none black' ;;
        --accept) words='view-metadata known-metadata other-metadata all' ;;
        --progress) words='auto none plain json' ;;
        --sandbox) words='auto off require' ;;
        --isolate) words='auto off' ;;
        --color) words='auto always never' ;;
        -o | --output | --raster-dir | --base)
            mapfile -t COMPREPLY < <(compgen -d -- "$word")
            return
            ;;
        --background | --dpi | --head-size | -j | --jobs | --memory-limit | --shard | --view | --time-limit) return ;;
        *)
            case $command in
                '') words='migrate inspect check version -h --help --version' ;;
                migrate)
                    words='-h --help -o --output --format --accept --head-size --raster-dir --text -j --jobs --report
                        --background --picture-background --dpi
                        --force --skip-existing --memory-limit -q --quiet -v --verbose --log-file
                        --files-from -0 --base --shard --view --dry-run
                        --progress --time-limit --isolate --resume --sandbox --durable'
                    ;;
                inspect) words='-h --help --json --memory-limit --color' ;;
                check) words='-h --help --json --memory-limit' ;;
                version) words='-h --help' ;;
            esac
            [[ -z $command || $word == -* ]] || words=''
            ;;
    esac

    if [[ -n $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}
complete -o filenames -o bashdefault -F _ktannot ktannot
