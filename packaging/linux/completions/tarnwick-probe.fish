# SPDX-License-Identifier: MIT
complete -c tarnwick-probe -f
complete -c tarnwick-probe -l format -x -a 'json prometheus openmetrics text waybar' -d 'What to print'
complete -c tarnwick-probe -l all -d 'Also the metrics that a node exporter has'
complete -c tarnwick-probe -l thresholds -r -F -d 'Settings file with the thresholds'
complete -c tarnwick-probe -l output -r -F -d 'Replace a file with each sample'
complete -c tarnwick-probe -l watch -d 'Draw the page of text again and again'
complete -c tarnwick-probe -l root -x -a '(__fish_complete_directories)' -d 'Read the machine recorded below a folder'
complete -c tarnwick-probe -l samples -x -d 'Samples to print'
complete -c tarnwick-probe -l interval -x -d 'Seconds between two samples'
complete -c tarnwick-probe -l limit -x -d 'Greatest number of rows of a process list'
complete -c tarnwick-probe -l home -x -a '(__fish_complete_directories)' -d 'Measure the volume that holds a folder'
complete -c tarnwick-probe -l help -d 'Print the options and end'
complete -c tarnwick-probe -l version -d 'Print the version and end'
