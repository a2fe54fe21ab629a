// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/SampleStream.h"

#include "samples/ApeSampleStream.h"
#include "samples/ByteSource.h"
#include "samples/CodecHeaders.h"
#include "samples/DecodedSampleStream.h"
#include "samples/PcmSampleStream.h"
#include "samples/ShortenSampleStream.h"

#include <utility>

namespace nurv {

std::unique_ptr<SampleStream> SampleStream::open(const QString &path)
{
    auto file = std::make_unique<RegularFile>(path);
    const std::int64_t start = offsetBehindTags(*file);
    if (PcmHeader::isAt(*file, start))
        return std::make_unique<PcmSampleStream>(std::move(file), start);
    if (ShortenSampleStream::isAt(*file, start))
        return std::make_unique<ShortenSampleStream>(std::move(file));
    const auto header = CodecHeader::read(*file, start);
    if (header && header->kind == CodecHeader::Kind::MonkeysAudio && header->version >= ApeSampleStream::kVersion)
        return std::make_unique<ApeSampleStream>(std::move(file));
    return std::make_unique<DecodedSampleStream>(std::move(file), start);
}

} // namespace nurv
