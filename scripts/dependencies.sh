# shellcheck shell=bash disable=SC2034
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# The packages of Debian 12 and 13 that the project needs, by purpose. Sourced by the
# scripts at the root of the tree.

# nurv_svg_plugins: the package that shows SVG icons. Debian 12 has them with the library.
nurv_svg_plugins() {
    case $(cat /etc/debian_version 2>/dev/null) in
    12 | 12.* | bookworm*) printf 'libqt6svg6\n' ;;
    *) printf 'qt6-svg-plugins\n' ;;
    esac
}

readonly NURV_BUILD_PACKAGES=(
    build-essential ccache cmake ninja-build pkg-config
    libavcodec-dev libavformat-dev libavutil-dev libflac-dev
    libgl-dev libicu-dev libiso9660-dev libssl-dev libswresample-dev libtag1-dev qt6-base-dev qt6-svg-dev zlib1g-dev
)
readonly NURV_RUNTIME_PACKAGES=(
    atomicparsley ffmpeg flac genisoimage icedax lame opus-tools sox wavpack
    dbus dbus-x11 fonts-noto-core hicolor-icon-theme libglib2.0-bin "$(nurv_svg_plugins)"
    qt6-image-formats-plugins qt6-qpa-plugins qt6-wayland
)
readonly NURV_TEST_PACKAGES=(
    7zip appstream cd-paranoia default-jre-headless desktop-file-utils fish git imagemagick libgmock-dev libgtest-dev libjmac-java
    man-db mediainfo openbox
    python3 python3-dbusmock python3-gi shellcheck shntool udftools xauth xdotool xvfb zsh
)
# For those who change the sources: formatting, static checks, fuzzing.
readonly NURV_DEVELOPMENT_PACKAGES=(clang clang-format clang-tidy)

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

# nurv_person_agrees: asks whether to install them, where somebody sits at the
# terminal. Enter alone means no.
nurv_person_agrees() {
    if [[ ${CI:-} == true || ! -t 0 || ! -t 2 ]]; then
        return 0
    fi
    local answer=
    printf 'Install them, and what they need, with apt-get? [y/N] ' >&2
    read -r answer || printf '\n' >&2
    [[ $answer == [yY] || $answer == [yY][eE][sS] ]]
}

# nurv_apt_get ARGUMENT...: runs it as root, without questions of its own.
nurv_apt_get() {
    local -a as_root=(env)
    if ((EUID != 0)); then
        as_root=(sudo env)
    fi
    "${as_root[@]}" DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300 "$@" >&2
}

# nurv_tell_removals PACKAGE...: names what apt-get would remove for the packages, if anything.
nurv_tell_removals() {
    local -a removed
    mapfile -t removed < <(
        apt-get --simulate --quiet --yes install --no-install-recommends "$@" 2>/dev/null </dev/null \
            | sed -n 's/^Remv \([^ ]*\).*/\1/p'
    )
    if ((${#removed[@]} > 0)); then
        printf 'Nothing was installed, because these packages would have been removed: %s\n' "${removed[*]}" >&2
    fi
}

# nurv_install_missing PACKAGE...: names what is missing on standard error and
# installs it, when a person who sits there agrees. Removes nothing. Does nothing,
# quickly, when nothing is missing.
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
    local command="apt-get install --no-install-recommends ${missing[*]}"
    if ((EUID != 0)) && ! command -v sudo >/dev/null; then
        printf 'There is no sudo here. Run this as root, then try again:\n  %s\n' "$command" >&2
        return 1
    fi
    printf 'These packages are missing: %s\n' "${missing[*]}" >&2
    if ! nurv_person_agrees; then
        printf 'Nothing was installed. To do it yourself, run this as root:\n  %s\n' "$command" >&2
        return 1
    fi
    printf 'Installing missing packages: %s\n' "${missing[*]}" >&2
    nurv_apt_get update || return
    nurv_apt_get install --no-remove --no-install-recommends "${missing[@]}" || {
        nurv_tell_removals "${missing[@]}"
        return 1
    }
}
