# shellcheck shell=bash disable=SC2034
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# The packages of Debian 12 that the project needs, by purpose. Sourced by the
# scripts at the root of the tree.

readonly NURV_BUILD_PACKAGES=(
    build-essential ccache cmake ninja-build pkg-config
    libavcodec-dev libavformat-dev libavutil-dev libswresample-dev
    libgl-dev libicu-dev libssl-dev libtag1-dev qt6-base-dev qt6-svg-dev zlib1g-dev
)
readonly NURV_RUNTIME_PACKAGES=(
    atomicparsley ffmpeg flac genisoimage icedax lame opus-tools shntool sox wavpack
    dbus dbus-x11 fonts-noto-core hicolor-icon-theme libglib2.0-bin libqt6svg6
    qt6-image-formats-plugins qt6-qpa-plugins qt6-wayland
)
readonly NURV_TEST_PACKAGES=(
    appstream desktop-file-utils imagemagick libgmock-dev libgtest-dev man-db mediainfo openbox
    python3 python3-dbusmock python3-gi shellcheck xauth xdotool xvfb
)
# For those who change the sources: formatting, static checks, fuzzing.
readonly NURV_DEVELOPMENT_PACKAGES=(clang clang-format clang-tidy git)

# nurv_missing_packages PACKAGE...: prints those that are not installed.
nurv_missing_packages() {
    local -A installed=()
    local package state
    while read -r package state; do
        if [[ $state == ii* ]]; then
            installed[$package]=1
        fi
    done < <(dpkg-query --show --showformat='${Package} ${db:Status-Abbrev}\n' "$@" 2>/dev/null)
    for package in "$@"; do
        if [[ -z ${installed[$package]:-} ]]; then
            printf '%s\n' "$package"
        fi
    done
}

# nurv_install_missing PACKAGE...: names what is missing on standard error and
# installs it. Does nothing, quickly, when nothing is missing.
nurv_install_missing() {
    if ! command -v dpkg-query >/dev/null; then
        printf 'This is no Debian system: provide these packages yourself: %s\n' "$*" >&2
        return 0
    fi
    local -a missing
    mapfile -t missing < <(nurv_missing_packages "$@")
    if ((${#missing[@]} == 0)); then
        return 0
    fi
    printf 'Installing missing packages: %s\n' "${missing[*]}" >&2
    local -a as_root=(env)
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            printf 'There is no sudo here. Run this as root, then try again:\n  apt-get install %s\n' "${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo env)
    fi
    as_root+=(DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300)
    "${as_root[@]}" update >&2
    "${as_root[@]}" install --no-install-recommends "${missing[@]}" >&2
}
