// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/TagsObject.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace nurv {

class UserPrompts;

/// Names in a cue sheet: those of the album and of whoever performs it, and the titles of its tracks. GUI thread.
class CueSheetTagImporter {
public:
    struct Names {
        TagsObject album; ///< album and artist, as far as they are there
        QStringList titles;
        int trackLines = 0; ///< that begin a track, of sound or data, however its number is written
    };

    explicit CueSheetTagImporter(UserPrompts &prompts) : m_prompts(prompts) {}

    /// The path of one file; nothing when the user cancels.
    [[nodiscard]] std::optional<QString> chooseCueFile();
    /// Asks for a cue sheet and posts NURVTrackNamesEnteredNotification with the titles. Returns album and artist;
    /// nothing when the user cancels, or when the file cannot be read, which the user is told.
    [[nodiscard]] std::optional<TagsObject> loadTagsFromCueSheet();

    /// The names in a file of any encoding. Nothing, and `problem`, when it cannot be read. Logs what failed.
    [[nodiscard]] static std::optional<Names> read(const QString &path, QString *problem);
    [[nodiscard]] static Names namesIn(const QString &text);

private:
    UserPrompts &m_prompts;
};

} // namespace nurv
