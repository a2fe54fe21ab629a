# shellcheck shell=bash
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# Building, for the scripts at the root of the tree, which run in that folder.

# nurv_quietly COMMAND...: runs it with its output in a log, which is shown on
# standard error when the command fails.
nurv_quietly() {
    local log status=0
    log=$(mktemp)
    "$@" >"$log" 2>&1 </dev/null || status=$?
    if ((status != 0)); then
        cat "$log" >&2
    fi
    rm -f "$log"
    return "$status"
}

# nurv_build_products: the two programs and the resource folder, preset release.
# A build folder that was configured with tests keeps them; they are not built.
nurv_build_products() {
    if [[ ! -f build/release/build.ninja ]]; then
        cmake --preset release -DNURV_BUILD_TESTS=OFF -DNURV_BUILD_BENCH=OFF || return
    fi
    cmake --build --preset release --target products
}
