// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/NurvFailure.h"
#include "FuzzedFolder.h"
#include "tags/MetadataInventory.h"

#include <cstdlib>

using namespace Qt::StringLiterals;

/// What a file holds besides its sound, whatever it is. Nothing comes out of it that is
/// larger than what went in, but for what texts grow by in UTF-16.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace nurv;
    const QString path = fuzz::FuzzedFolder::instance().write(u"sound"_s, {data, size});
    try {
        const MetadataInventory found = MetadataInventory::of(path);
        qsizetype pictureBytes = 0;
        for (const QByteArray &picture : found.pictures)
            pictureBytes += picture.size();
        if (pictureBytes > static_cast<qsizetype>(size))
            std::abort();
        // All that a file has, its own copy has.
        if (metadataLost(found, found, u"copy.flac"_s))
            std::abort();
    } catch (const NurvFailure &failure) {
        if (failure.reason().isEmpty())
            std::abort();
    }
    return 0;
}
