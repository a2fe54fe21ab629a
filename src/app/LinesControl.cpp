// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/LinesControl.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

QString withLineFeeds(QString text)
{
    text.replace(u"\r\n"_s, u"\n"_s);
    // The last two are no characters: documents of Qt keep their own ends of lines apart by them.
    for (const QChar lineEnd : {QChar(u'\r'), QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator),
                                QChar(0xFDD0), QChar(0xFDD1)})
        text.replace(lineEnd, u'\n');
    return text;
}

LinesControl::LinesControl(const QString &text) : m_text(withLineFeeds(text)) {}

void LinesControl::setText(const QString &text)
{
    const QString changed = withLineFeeds(text);
    if (m_text == changed)
        return;
    m_text = changed;
    m_selectionStart = 0;
    m_selectionLength = 0;
    announceValue();
}

QStringList LinesControl::lines() const
{
    return m_text.split(u'\n', Qt::SkipEmptyParts);
}

void LinesControl::setSelection(qsizetype start, qsizetype length)
{
    m_selectionStart = std::clamp(start, qsizetype{0}, m_text.size());
    m_selectionLength = std::clamp(length, qsizetype{0}, m_text.size() - m_selectionStart);
}

} // namespace nurv
