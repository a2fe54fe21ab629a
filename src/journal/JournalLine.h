// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>

#include <initializer_list>
#include <optional>

namespace nurv {

// A journal is a text of lines: words with a blank between them, then the checksum of
// what stands before it. Paths are bytes, and any byte may be in a word.
//
//     begun 17 1764000000123456789 5f0c1a2b

/// The line of these words, with its end.
[[nodiscard]] QByteArray journalLine(std::initializer_list<QByteArrayView> words);

/// The words of a line that has lost its end; nothing when it is damaged.
[[nodiscard]] std::optional<QList<QByteArray>> journalWords(QByteArrayView line);

} // namespace nurv
