// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "FuzzedChoices.h"
#include "FuzzedFolder.h"
#include "tags/Id3v2Scan.h"
#include "tags/TagLibFile.h"

#include <apetag.h>
#include <id3v2header.h>
#include <id3v2tag.h>
#include <xiphcomment.h>

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

using namespace nurv;

constexpr unsigned int kMostFrames = 10'000;
constexpr unsigned int kMostFields = 10'000;
constexpr unsigned int kMostInflated = 32U << 20;
constexpr unsigned int kHeaderSize = 10;

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

/// What TagLib has made of a tag that it was given.
void checkFrames(const TagLib::ID3v2::Tag *tag, std::size_t size)
{
    if (tag == nullptr)
        return;
    require(tag->frameList().size() <= kMostFrames);
    std::size_t total = 0;
    for (const TagLib::ID3v2::Frame *frame : tag->frameList())
        total += frame->size();
    require(total <= kMostInflated + size);
}

template<typename File, typename Check>
void open(const QString &path, const Check &check)
{
    tagLibFile::OpenFile<File> opened(path, TagEditStream::Access::Read);
    const std::optional<QString> reason = opened.stream().readingFailure();
    require(!reason || !reason->isEmpty());
    if (opened.isValid() && !reason)
        check(opened.file());
}

void openAs(unsigned kind, const QString &path, std::size_t size)
{
    const auto looksAtFrames = [size](auto &file) { checkFrames(file.ID3v2Tag(), size); };
    const auto looksAtFields = [](auto &file) {
        if (file.APETag() != nullptr)
            require(file.APETag()->itemListMap().size() <= kMostFields);
    };
    switch (kind) {
    case 1: open<TagLib::MPEG::File>(path, looksAtFrames); break;
    case 2: open<TagLib::RIFF::AIFF::File>(path, [size](auto &file) { checkFrames(file.tag(), size); }); break;
    case 3:
        open<TagLib::FLAC::File>(path, [size](auto &file) {
            checkFrames(file.ID3v2Tag(), size);
            if (file.xiphComment() != nullptr)
                require(file.xiphComment()->fieldCount() <= kMostFields);
        });
        break;
    case 4: open<TagLib::TrueAudio::File>(path, looksAtFrames); break;
    case 5: open<TagLib::APE::File>(path, looksAtFields); break;
    default: open<TagLib::WavPack::File>(path, looksAtFields); break;
    }
}

} // namespace

/// The scan alone, over any tag; or a file of any kind, as TagLib reads it behind its guard: what
/// gets through is of few frames and fields, and not much larger than the file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::FuzzedChoices choices({data, size});
    const unsigned kind = choices.small() % 7;
    const auto rest = choices.rest();
    if (kind != 0) {
        openAs(kind, fuzz::FuzzedFolder::instance().write(u"tagged"_s, rest), rest.size());
        return 0;
    }
    const TagLib::ByteVector bytes(reinterpret_cast<const char *>(rest.data()), static_cast<unsigned int>(rest.size()));
    const std::optional<QString> reason =
        reasonToRefuseId3v2(bytes.mid(0, kHeaderSize), bytes.mid(std::min(kHeaderSize, bytes.size())));
    require(!reason || !reason->isEmpty());
    return 0;
}
