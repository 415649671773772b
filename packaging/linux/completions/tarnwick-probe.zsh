#compdef tarnwick-probe
# SPDX-License-Identifier: MIT
_arguments \
    '--format[what to print]:format:(json prometheus openmetrics text waybar)' \
    '--all[also the metrics that a node exporter has]' \
    '--thresholds[settings file with the thresholds]:file:_files' \
    '--output[replace a file with each sample]:file:_files' \
    '--watch[draw the page of text again and again]' \
    '--root[read the machine recorded below a folder]:folder:_directories' \
    '--samples[samples to print]:number' \
    '--interval[time between two samples]:seconds' \
    '--limit[greatest number of rows of a process list]:number' \
    '--home[measure the volume that holds a folder]:folder:_directories' \
    '(- *)--help[print the options and end]' \
    '(- *)--version[print the version and end]'
