// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <tbytevector.h>
#include <tstring.h>

namespace nurv {

// Texts and bytes of TagLib as those of Qt, and back.

[[nodiscard]] inline QString qtText(const TagLib::String &text)
{
    return QString::fromStdString(text.to8Bit(true));
}

[[nodiscard]] inline QByteArray qtBytes(const TagLib::ByteVector &bytes)
{
    return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

[[nodiscard]] inline TagLib::ByteVector byteVector(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<unsigned int>(bytes.size())};
}

} // namespace nurv
