#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# Validates the metainfo file. There is no homepage to name: a newer appstreamcli warns of
# that, and an older one does not know the warning and refuses to be told about it.
# usage: check_metainfo.sh FILE
set -euo pipefail

validate=(appstreamcli validate --no-net)
told=$("${validate[@]}" "$1" 2>&1) || true
if [[ $told == *url-homepage-missing* ]]; then
    validate+=(--override=url-homepage-missing=info)
fi
exec "${validate[@]}" "$1"
