#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# Every shell script of the tree and the completion $1 parse, and shellcheck has no complaint about them.
set -euo pipefail

scripts=(run test .ci/run scripts/*.sh tests/*/*.sh "$1")
for script in "${scripts[@]}"; do
    bash -n "$script"
done
shellcheck --external-sources "${scripts[@]}"
