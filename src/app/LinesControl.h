// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Control.h"

namespace nurv {

/// The text with a line feed for each of its line ends, of whatever kind.
[[nodiscard]] QString withLineFeeds(QString text);

/// A text of several lines that the user writes, such as a track name in each, and what is
/// selected in it.
class LinesControl final : public Control {
    Q_OBJECT

public:
    explicit LinesControl(const QString &text = {});

    /// With a line feed at the end of each line.
    [[nodiscard]] const QString &text() const { return m_text; }
    /// Takes any line ends. In a window it is one step, which the user can undo.
    void setText(const QString &text);
    /// The lines that are not empty.
    [[nodiscard]] QStringList lines() const;

    /// For a text that is only read. Off at first; before it is shown.
    void setReadOnly(bool readOnly) { m_isReadOnly = readOnly; }
    [[nodiscard]] bool isReadOnly() const { return m_isReadOnly; }

    /// In characters of the text; the length is 0 when nothing is selected.
    [[nodiscard]] qsizetype selectionStart() const { return m_selectionStart; }
    [[nodiscard]] qsizetype selectionLength() const { return m_selectionLength; }
    /// Selects what of it there is. A text of another value has nothing selected.
    void setSelection(qsizetype start, qsizetype length);

private:
    QString m_text;
    qsizetype m_selectionStart = 0;
    qsizetype m_selectionLength = 0;
    bool m_isReadOnly = false;
};

} // namespace nurv
