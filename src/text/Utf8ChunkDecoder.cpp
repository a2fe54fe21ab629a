// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/Utf8ChunkDecoder.h"

#include "text/Utf8Text.h"

#include <optional>
#include <utility>

namespace nurv {

QString Utf8ChunkDecoder::decode(const QByteArray &chunk)
{
    const auto decodeHoldingBack = [this](QByteArray bytes) -> std::optional<QString> {
        const qsizetype cut = cutSequenceLength(bytes);
        const QByteArray rest = bytes.last(cut);
        bytes.chop(cut);
        const std::optional<QString> text = fromStrictUtf8(bytes);
        if (text)
            m_held = rest;
        return text;
    };

    const QByteArray held = std::exchange(m_held, {});
    std::optional<QString> text = decodeHoldingBack(held + chunk);
    // A chunk that is whole in itself must not suffer for a tail that never came.
    if (!text && !held.isEmpty())
        text = decodeHoldingBack(chunk);
    return text.value_or(QString());
}

} // namespace nurv
