// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TextControl.h"

namespace nurv {

void TextControl::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    announceValue();
}

void TextControl::setPlaceholder(const QString &text)
{
    if (m_placeholder == text)
        return;
    m_placeholder = text;
    Q_EMIT changed();
}

} // namespace nurv
