#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# Makes a tagged album of two tracks, encodes it with the command line given as
# $1, and checks the result with the tools themselves. The folder is kept.
set -euo pipefail

nurv=$1
folder=$(mktemp -d "${TMPDIR:-/tmp}/nurv-demo.XXXXXX")
album=$folder/album
output=$folder/flac
mkdir "$album" "$output"
# File names and titles go beyond ASCII, whatever the locale of the caller.
export LC_ALL=C.UTF-8
# The demonstration neither reads nor changes the user's settings.
export NURV_SETTINGS=$folder/settings.ini NURV_STATE=$folder/state

say() {
    printf '\n%s\n' "$*"
}

fail() {
    printf 'demo: %s\n' "$*" >&2
    exit 1
}

# make_track NAME TITLE NUMBER SOX-SYNTH...: 20 seconds of sound as WAV and, tagged
# and hardly compressed, as the FLAC file of the album.
make_track() {
    local name=$1 title=$2 number=$3
    shift 3
    sox -R -n -r 44100 -b 16 -c 2 "$folder/$name.wav" synth 20 "$@" fade h 0.5 20 1 gain -6
    flac --silent -0 "$folder/$name.wav" -o "$album/$name.flac"
    metaflac --no-utf8-convert --set-tag="TITLE=$title" --set-tag='ARTIST=The Sine Waves' \
        --set-tag='ALBUM=Bench Tests' --set-tag="TRACKNUMBER=$number" --set-tag='DATE=2026' \
        "$album/$name.flac"
}

say "Making an album in $album"
make_track '01 First Light' 'First Light' 1 sine 220-440 sine 330-660
make_track '02 Café at Noon' 'Café at Noon' 2 triangle 110 pinknoise
ls -1 "$album"

say "nurv encode --format flac --level 8 --verify --ffp --output-dir $output $album"
"$nurv" encode --format flac --level 8 --verify --ffp --output-dir "$output" "$album"

say "Checking the result"
list=$output/fingerprint.ffp.txt
[[ -f $list ]] || fail "$list is missing"
for name in '01 First Light' '02 Café at Noon'; do
    track=$output/$name.flac
    flac --test --silent "$track" || fail "$track does not decode"
    title=$(metaflac --no-utf8-convert --show-tag=TITLE "$track")
    [[ ${title#*=} == "${name#* }" ]] || fail "$track: the title is '${title#*=}'"
    md5=$(metaflac --show-md5sum "$track")
    grep --quiet --fixed-strings --line-regexp -- "$name.flac:$md5" "$list" || fail "$list lacks $name.flac"
    sound=$(sox "$folder/$name.wav" -t raw - | md5sum)
    [[ ${sound%% *} == "$md5" ]] || fail "$track does not hold the samples of its source"
    printf 'ok: %s (title, fingerprint, every sample)\n' "$name.flac"
done

say "$list"
cat "$list"
say "Kept in $folder:"
find "$folder" -type f | sort
