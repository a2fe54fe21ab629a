#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# The manual page $1 formats without a warning and is not empty.
set -euo pipefail

page=$(mktemp)
warnings=$(mktemp)
trap 'rm -f "$page" "$warnings"' EXIT
MANWIDTH=80 man --warnings --local-file "$1" >"$page" 2>"$warnings"
cat "$warnings"
grep --quiet SYNOPSIS "$page"
[[ ! -s $warnings ]]
