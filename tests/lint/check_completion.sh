#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# The bash completion $1 offers what fits at the place of the cursor.
set -euo pipefail

# shellcheck disable=SC1090
source "$1"

# expect WORDS COMMAND-LINE-WORD...: completing the last word offers WORDS.
expect() {
    local wanted=$1
    shift
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    COMPREPLY=()
    _nurv || true # compopt has nothing to set outside a completion
    if [[ ${COMPREPLY[*]} != "$wanted" ]]; then
        printf '%s: offers "%s", not "%s"\n' "$*" "${COMPREPLY[*]}" "$wanted" >&2
        exit 1
    fi
}

expect 'encode' nurv e
expect 'encode decode lossy checksum fix shntool util tags settings doctor recover --version --help' nurv ''
expect 'flac' nurv encode --format f
expect 'wav aiff' nurv decode --format ''
expect 'flac' nurv encode --format = fl
expect 'wav aiff' nurv decode --format =
expect 'scripts' nurv encode --output-dir = scr
expect 'fast high' nurv encode --mode ''
expect 'none one disc' nurv fix --md5 ''
expect '' nurv fix --beside
expect '--delete-originals --drop-metadata' nurv encode --d
expect '--keep-folders' nurv decode --keep-fol
expect '--skip-existing' nurv decode --s
expect '--beside-source' nurv decode --b
expect '--json' nurv doctor --js
expect '--dry-run' nurv recover --dr
expect 'rip dvda replaygain deemphasis rename --help' nurv util ''
expect 'show set import-cue --help' nurv tags ''
expect '--title' nurv tags set --ti
expect '--dry-run' nurv tags import-cue --dr
expect '' nurv recover ''
expect 'maxThreads' nurv settings maxT
expect 'on off' nurv settings warnOnDelete ''
expect 'delete trash' nurv settings trashOrDelete ''
expect '' nurv settings ffpExtension f
expect '--reset' nurv settings --re
expect 'maxThreads' nurv settings --reset maxT
expect '' nurv decode --verif
expect 'scripts' nurv decode --output-dir scr
expect 'LICENSE' nurv encode --format flac LICE
