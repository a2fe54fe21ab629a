// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/PairsControl.h"

#include <QMap>
#include <QString>

#include <optional>

namespace nurv {

class UserPrompts;

/// The modal panel with eight rows of a name and a value: fields of Vorbis comments, which only FLAC files take. GUI
/// thread.
class NURVCustomTagsPanel {
public:
    using Tags = QMap<QString, QString>;
    static constexpr int kRows = 8;

    explicit NURVCustomTagsPanel(UserPrompts &prompts) : m_prompts(prompts) {}

    /// Shows the panel and collects its rows.
    void runPanel();
    /// Takes the tags over and shows them in the order of their names, as far as there are rows.
    void fillTags(const Tags &tags);
    /// The tags become those of the rows, also of blank ones: those have an empty name. Of rows with equal names the
    /// last counts.
    void fillTagsDictionary();
    /// The text without white space at its ends.
    [[nodiscard]] static QString stringValue(const QString &text);
    /// Empties the rows.
    void clearTags();

    /// Nothing until there was something to collect.
    [[nodiscard]] const std::optional<Tags> &customTagDictionary() const { return m_customTagDictionary; }
    void setCustomTagDictionary(std::optional<Tags> tags) { m_customTagDictionary = std::move(tags); }

    // Of rows 1 to 8; a row that is not there has an empty text and takes none.
    [[nodiscard]] QString customTagNameText(int row) const;
    [[nodiscard]] QString customTagValueText(int row) const;
    void setValue(const QString &name, const QString &value, int row);

    /// The rows, for a view.
    [[nodiscard]] PairsControl &rows() { return m_rows; }

private:
    UserPrompts &m_prompts;
    PairsControl m_rows{kRows};
    std::optional<Tags> m_customTagDictionary;
};

} // namespace nurv
