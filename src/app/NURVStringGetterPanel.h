// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/TextControl.h"

#include <QString>

#include <optional>

namespace nurv {

class UserPrompts;

/// The modal panel that asks for a line of text. GUI thread.
class NURVStringGetterPanel {
public:
    /// `option` answers it on the command line.
    explicit NURVStringGetterPanel(UserPrompts &prompts, QString option = QStringLiteral("text"));

    /// What the user has confirmed, which may be empty; nothing when the panel was cancelled. A message
    /// and a text that are not given stay as they were. The panel has its own title, unless it was told
    /// by `setTitle` that it may have another: then `title` is shown.
    [[nodiscard]] std::optional<QString> runPanel(const QString &title, const std::optional<QString> &message,
                                                  const std::optional<QString> &initialString);

    void setTitle(const QString &title) { m_title = title; }
    [[nodiscard]] const QString &message() const { return m_message; }
    void setMessage(const QString &message) { m_message = message; }
    /// What the field holds, as the user types it.
    [[nodiscard]] const QString &enteredText() const { return m_field.text(); }
    void setEnteredText(const QString &text) { m_field.setText(text); }

private:
    UserPrompts &m_prompts;
    QString m_option;
    std::optional<QString> m_title;
    QString m_message;
    TextControl m_field;
};

} // namespace nurv
