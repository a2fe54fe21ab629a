// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Control.h"

namespace nurv {

/// A line of text that the user writes.
class TextControl final : public Control {
    Q_OBJECT

public:
    explicit TextControl(QString text = {}) : m_text(std::move(text)) {}
    [[nodiscard]] const QString &text() const { return m_text; }
    void setText(const QString &text);
    /// What stands in the empty field; no value.
    [[nodiscard]] const QString &placeholder() const { return m_placeholder; }
    void setPlaceholder(const QString &text);

private:
    QString m_text;
    QString m_placeholder;
};

} // namespace nurv
