// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TrackNames.h"
#include "text/DecodeText.h"

#include <QByteArray>

#include <cstdint>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

} // namespace

/// A set list of any bytes: a name for each line at most, none longer than the text, no line end
/// in any; the first of them are those that are given when no more are wanted.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text =
        nurv::decodeText(QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    const QString names = nurv::trackNamesOfSetList(text);
    const QStringList lines = names.split(u'\n');
    require(lines.last().isEmpty());
    require(lines.size() <= text.size() + 1);
    for (const QString &line : lines) {
        require(line.size() <= text.size() || line == u"(blank)"_s);
        require(!line.contains(u'\r'));
    }
    require(nurv::trackNamesIn(names).size() <= lines.size() - 1);
    require(names.startsWith(nurv::trackNamesOfSetList(text, 1)));
    return 0;
}
