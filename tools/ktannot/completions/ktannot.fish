# Completion of ktannot for fish.
set -l commands migrate inspect check version
set -l none "not __fish_seen_subcommand_from $commands"

complete -c ktannot -n $none -f -a migrate -d 'Write one drawing for each view'
complete -c ktannot -n $none -f -a inspect -d 'Show what documents hold'
complete -c ktannot -n $none -f -a check -d 'Read everything and report every problem'
complete -c ktannot -n $none -f -a version -d 'Tell the version of tool and library'
complete -c ktannot -n $none -l version -d 'Tell the version'
complete -c ktannot -s h -l help -d 'Show options and examples'

set -l migrate '__fish_seen_subcommand_from migrate'
complete -c ktannot -n $migrate -s o -l output -x -a '(__fish_complete_directories)' -d 'Folder for the results'
complete -c ktannot -n $migrate -l files-from -r -d 'List of more inputs'
complete -c ktannot -n $migrate -s 0 -d 'Entries of the list end with NUL'
complete -c ktannot -n $migrate -l base -x -a '(__fish_complete_directories)' -d 'Folder that results mirror'
complete -c ktannot -n $migrate -l shard -x -d 'One of N parts of the inputs'
complete -c ktannot -n $migrate -l resume -d 'Go on where an earlier run ended'
complete -c ktannot -n $migrate -l view -x -d 'Number of the only view'
complete -c ktannot -n $migrate -l dry-run -d 'Write no results'
complete -c ktannot -n $migrate -l format -x -a 'svg json' -d 'What is written'
complete -c ktannot -n $migrate -l accept -x -a 'view-metadata known-metadata other-metadata all' \
    -d 'Legacy metadata that may be dropped'
complete -c ktannot -n $migrate -l head-size -x -d 'Size of leader heads in millimetres'
complete -c ktannot -n $migrate -l raster-dir -x -a '(__fish_complete_directories)' -d 'Where pictures are looked up'
complete -c ktannot -n $migrate -l text -x -a 'text outlines' -d 'How text is drawn'
complete -c ktannot -n $migrate -l background -x -a 'white' -d 'Colour of the page'
complete -c ktannot -n $migrate -l picture-background -x -a 'none black' -d 'What is drawn beneath pictures'
complete -c ktannot -n $migrate -s j -l jobs -x -d 'Documents worked on at the same time'
complete -c ktannot -n $migrate -l report -r -d 'Write a report for programs'
complete -c ktannot -n $migrate -l force -d 'Replace drawings that are there already'
complete -c ktannot -n $migrate -l skip-existing -d 'Keep drawings that are there already'
complete -c ktannot -n $migrate -s q -l quiet -d 'Tell only what went wrong'
complete -c ktannot -n $migrate -s v -l verbose -d 'Name every drawing'
complete -c ktannot -n $migrate -l progress -x -a 'auto none plain json' -d 'How progress is told'
complete -c ktannot -n $migrate -l time-limit -x -d 'Seconds that one document may take'
complete -c ktannot -n $migrate -l isolate -x -a 'auto off' -d 'Work in processes'
complete -c ktannot -n $migrate -l log-file -r -d 'Append the log to a file'

complete -c ktannot -n '__fish_seen_subcommand_from migrate inspect check' -l memory-limit -x \
    -d 'Memory that reading one document may take'
complete -c ktannot -n '__fish_seen_subcommand_from inspect check' -l json -d 'One line of JSON for each document'
complete -c ktannot -n '__fish_seen_subcommand_from inspect' -l color -x -a 'auto always never' -d 'When to use colours'
