// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>

// How failed expectations show Qt's texts. Included ahead of every test source
// by the build, so that all of a program's sources agree on it.

inline void PrintTo(const QByteArray &bytes, std::ostream *stream)
{
    *stream << '"' << bytes.left(4000).replace('\0', "\\0").replace('\b', "\\b").replace('\r', "\\r").toStdString()
            << '"';
}

inline void PrintTo(const QString &text, std::ostream *stream)
{
    PrintTo(text.toUtf8(), stream);
}
