#!/bin/bash
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
#
# The real program on a real (virtual) screen: a folder is dropped on its list
# from another program, a second start hands over a file, Execute is pressed by
# the keyboard, and files, tags, rows, report and the end are looked at.
#
#   workbench.sh NURV_WORKBENCH DRAG_SOURCE
set -euo pipefail

for program in xvfb-run openbox xdotool dbus-run-session sox flac metaflac; do
    command -v "$program" >/dev/null || { echo "skipped: no $program"; exit 77; }
done

if [[ -z ${NURV_ON_SCREEN:-} ]]; then
    export NURV_ON_SCREEN=1
    exec xvfb-run -a -s '-screen 0 1400x900x24' dbus-run-session -- "$BASH" "$0" "$@"
fi

workbench=$1
drag_source=$2
home=$(mktemp -d)
export HOME=$home XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_CACHE_HOME=$home/cache NURV_STATE=$home/state
export XDG_RUNTIME_DIR=$home/run NURV_SETTINGS=$home/settings.ini QT_QPA_PLATFORM=xcb
mkdir -m 700 "$XDG_RUNTIME_DIR"
started=()
finish() {
    for pid in "${started[@]}"; do kill -KILL "$pid" 2>/dev/null || true; done
    wait 2>/dev/null
    rm -rf "$home"
}
trap finish EXIT
fail() {
    echo "FAILED: $*" >&2
    # The screen tells more than a line can.
    [[ -z ${NURV_SCREEN_AT_FAILURE:-} ]] || import -window root "$NURV_SCREEN_AT_FAILURE" || true
    exit 1
}

# until_true SECONDS COMMAND...: polls, because neither the screen nor a file tells.
until_true() {
    local end=$((SECONDS + $1)); shift
    until "$@" >/dev/null 2>&1; do
        ((SECONDS < end)) || return 1
        sleep 0.1
    done
}
window() { xdotool search --onlyvisible --name "$1" | tail -n 1; }
has_window() { [[ -n $(window "$1") ]]; }

album="$home/Ré mineur & more"
mkdir -p "$album/deep"
sox -n -r 44100 -b 16 -c 2 "$album/b10.wav" synth 2 sine 440
sox -n -r 44100 -b 16 -c 2 "$album/deep/b2.wav" synth 2 sine 220
sox -n -r 44100 -b 16 -c 2 "$home/later.wav" synth 1 sine 330
printf 'RIFFxxxxWAVE no sound in here' >"$album/broken.wav"
printf 'fLaC no sound in here' >"$home/bad.flac"
printf '[General]\nencodeToSourceDirectory=1\ndecodeToSourceDirectory=1\nflacVerifyButton=1\n[window]\npage=encode\n' >"$NURV_SETTINGS"

openbox & started+=($!)
until_true 20 xdotool get_num_desktops || fail "no window manager"
"$workbench" & main=$!; started+=("$main")
until_true 30 has_window '^Nurv Audio Workbench$' || fail "no main window"
main_window=$(window '^Nurv Audio Workbench$')
xdotool windowmove --sync "$main_window" 300 40

# A real drag from another program onto the list.
"$drag_source" "$album" & source=$!; started+=("$source")
until_true 30 has_window '^drag source$' || fail "no drag source"
xdotool windowmove --sync "$(window '^drag source$')" 20 40
eval "$(xdotool getwindowgeometry --shell "$(window '^drag source$')")"
from_x=$((X + 80)) from_y=$((Y + 60))
eval "$(xdotool getwindowgeometry --shell "$main_window")"
xdotool mousemove "$from_x" "$from_y" mousedown 1
for step in 1 2 3 4 5 6 7 8; do
    xdotool mousemove $((from_x + (X + 200 - from_x) * step / 8)) $((from_y + (Y + 250 - from_y) * step / 8))
    sleep 0.1
done
xdotool mouseup 1
drop=0
wait "$source" || drop=$?
((drop == 0)) || fail "the drop was refused"

# A second start hands its file to the first and ends.
second=0
timeout 30 "$workbench" "$home/later.wav" || second=$?
((second == 0)) || fail "the second start ended with $second"
[[ $(xdotool search --onlyvisible --name '^Nurv Audio Workbench$' | wc -l) -eq 1 ]] || fail "a second window"

all_encoded() { [[ -s "$album/b10.flac" && -s "$album/deep/b2.flac" && -s "$home/later.flac" ]]; }
execute() { xdotool windowactivate --sync "$main_window" key --clearmodifiers ctrl+Return; }
# The list fills on another thread; the key does nothing until it has.
for attempt in 1 2 3 4 5 6 7 8 9 10; do
    execute
    until_true 3 all_encoded && break
    ((attempt < 10)) || fail "not all files were encoded"
done
until_true 30 has_window '^Status' || fail "no status window for the failed job"
for file in "$album/b10" "$album/deep/b2" "$home/later"; do
    flac --silent --test "$file.flac" || fail "$file.flac does not decode"
    [[ $(flac --silent --decode --stdout --force-raw-format --endian=little --sign=signed "$file.flac" | md5sum) == \
       $(sox "$file.wav" -t raw -e signed -b 16 -L - | md5sum) ]] || fail "$file.flac sounds otherwise"
    [[ $(metaflac --show-sample-rate "$file.flac") == 44100 ]] || fail "$file.flac has another rate"
done

# A decoding that fails leaves a report.
xdotool windowactivate --sync "$main_window" key --clearmodifiers ctrl+1
timeout 30 "$workbench" "$home/bad.flac" || fail "the third start failed"
for attempt in 1 2 3 4 5 6 7 8 9 10; do
    execute
    until_true 3 has_window '^bad.flac' && break
    ((attempt < 10)) || fail "no output window with the report"
done

# The end: the list of jobs is empty, so nothing is asked.
xdotool windowactivate --sync "$main_window" key --clearmodifiers ctrl+q
until_true 20 bash -c "! kill -0 $main" || fail "it does not quit"
status=0
wait "$main" || status=$?
((status == 0)) || fail "it ended with $status"

# Ended from outside, it asks nothing either.
"$workbench" & main=$!; started+=("$main")
until_true 30 has_window '^Nurv Audio Workbench$' || fail "it does not start again"
kill -TERM "$main"
until_true 20 bash -c "! kill -0 $main" || fail "SIGTERM does not end it"
status=0
wait "$main" || status=$?
((status == 0)) || fail "after SIGTERM it ended with $status"

# Nor with a job running and a question on the screen; the programs end with it.
sox -n -r 96000 -b 24 -c 2 "$home/long.wav" synth 600 noise
sed -i 's/^page=.*/page=encode/' "$NURV_SETTINGS"
"$workbench" "$home/long.wav" & main=$!; started+=("$main")
until_true 30 has_window '^Nurv Audio Workbench$' || fail "it does not start a third time"
main_window=$(window '^Nurv Audio Workbench$')
flac_runs() { pgrep --parent "$main" --exact flac; }
for attempt in 1 2 3 4 5 6 7 8 9 10; do
    execute
    until_true 3 flac_runs && break
    ((attempt < 10)) || fail "the long job does not start"
done
encoder=$(flac_runs)
xdotool windowactivate --sync "$main_window" key --clearmodifiers ctrl+shift+o
until_true 20 has_window '^Choose a folder to add$' || fail "no folder dialog"
kill -0 "$encoder" || fail "the long job was too short"
kill -TERM "$main"
until_true 20 bash -c "! kill -0 $main" || fail "SIGTERM does not end it while it asks"
status=0
wait "$main" || status=$?
((status == 0)) || fail "after SIGTERM with a job it ended with $status"
! kill -0 "$encoder" 2>/dev/null || fail "its program still runs"
echo "passed"
