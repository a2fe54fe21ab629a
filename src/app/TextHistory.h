// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <deque>
#include <optional>

namespace nurv {

/// The one stretch by which two texts differ.
struct TextChange {
    qsizetype start = 0; ///< in UTF-16 units, never within a pair
    QString removed;
    QString inserted;

    [[nodiscard]] bool isEmpty() const { return removed.isEmpty() && inserted.isEmpty(); }
    [[nodiscard]] QString appliedTo(const QString &text) const;
    [[nodiscard]] TextChange reversed() const { return {start, inserted, removed}; }
};

/// What to do to `before` so that it is `after`: the stretch between their common beginning and end.
[[nodiscard]] TextChange changeBetween(QStringView before, QStringView after);

/// The steps in which a text came to be what it is, each with a name, to undo and redo them.
/// Characters that are typed one behind the other on a line are one step, and so are those
/// that are deleted one after the other. The oldest steps are forgotten when there are a thousand,
/// or when all hold 64 million characters.
class TextHistory {
public:
    /// Notes a step; those that were undone cannot be redone any more. A change that is empty is none.
    void add(const QString &name, const TextChange &change);
    /// The same for what the user types: may join the step before.
    void addTyping(const QString &name, const TextChange &change);

    /// The name of the step that would be undone; nothing without one.
    [[nodiscard]] std::optional<QString> undoName() const;
    [[nodiscard]] std::optional<QString> redoName() const;
    /// What to do to the text, which is then one step back. Only while there is a name.
    [[nodiscard]] TextChange undo();
    [[nodiscard]] TextChange redo();

private:
    struct Step {
        QString name;
        TextChange change;
        bool isOpen = false; ///< typing may join it
    };

    void append(Step step);
    void forgetOldest();

    std::deque<Step> m_steps;
    std::size_t m_done = 0; ///< how many of them are in the text
    qsizetype m_characters = 0;
};

} // namespace nurv
