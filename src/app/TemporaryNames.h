// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

namespace nurv {

/// What a file is that a job, or a program that it runs, has made for a while.
enum class TemporaryKind {
    None,          ///< the name says nothing of the kind
    Stage,         ///< "Nurv-<8 hex digits>-<8 letters or digits>.<extension>": between two stages of a job; ".nurv-tags-<6 letters or digits>": a file
                   ///< that tags are written into
    Part,          ///< ".nurv-<12 letters or digits>.part": a bundled program's output until it is complete
    PrivateFolder, ///< ".nurv-shntool-<6 letters or digits>": a folder in which shntool lets another program work
    Kept,          ///< ".nurv-....kept": a user's file that waits beside the output in its place
    Scratch,       ///< "<file>.tmp,fl-ac+en'c" of flac, "<file>.metadata_edit" of metaflac
};

/// What flac and metaflac append to the name of the file that they work on.
inline constexpr QStringView kFlacScratchSuffix = u".tmp,fl-ac+en'c";
inline constexpr QStringView kMetaflacScratchSuffix = u".metadata_edit";

/// What the name of a file or folder, without the folders above it, says.
[[nodiscard]] TemporaryKind temporaryKind(QStringView name);

} // namespace nurv
