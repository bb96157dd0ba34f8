# Where the tests make their files; sourced, never run.
# shellcheck shell=bash

# can_run_in FOLDER: whether programs may run there.
can_run_in() {
    local program status=0
    program=$(mktemp "$1/browsersweep-probe.XXXXXX") || return
    say '#!/bin/sh' >"$program"
    chmod u+x "$program"
    "$program" || status=$?
    rm -f "$program"
    return "$status"
}

# quick_folder MEMORY: a folder for many small files: the one in memory, where there is one with room in
# which programs may run. On a disk that has just lost thousands of files, to make one takes a
# millisecond.
quick_folder() {
    local memory=$1 needed_kilobytes=$((3 << 20)) free
    free=$(df -Pk "$memory" 2>/dev/null | awk '{ free = $4 } END { print free + 0 }') || free=0
    if [ "$free" -gt "$needed_kilobytes" ] && can_run_in "$memory" 2>/dev/null; then
        say "$memory"
    else
        say /tmp
    fi
}
