// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Id3v2Scan.h"

#include "base/NurvFailure.h"
#include "text/PrintableText.h"

#include <id3v2extendedheader.h>
#include <id3v2frame.h>
#include <id3v2header.h>
#include <id3v2synchdata.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <new>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using TagLib::ByteVector;

/// Gives the head of a frame, as TagLib itself understands it, to this file.
class FrameAccess : public TagLib::ID3v2::Frame {
public:
    using Header = TagLib::ID3v2::Frame::Header;
};
using FrameHeader = FrameAccess::Header;

constexpr int kMostFrames = 10'000;
constexpr int kMostDepth = 4;
constexpr std::int64_t kMiB = std::int64_t{1} << 20;
constexpr std::int64_t kMostInflated = 32 * kMiB;
// Compressed bytes may stand for nothing at all, again and again.
constexpr std::int64_t kMostInflatedFrom = 64 * kMiB;
// Of a frame, before and from version 2.3 on.
constexpr unsigned int kOldHeadSize = 6;
constexpr unsigned int kHeadSize = 10;
constexpr unsigned int kDataLengthSize = 4;
constexpr unsigned int kChapterTimesSize = 16;

[[noreturn]] void refuse(const QString &reason)
{
    throw NurvFailure(u"its ID3 tag is not to be trusted: %1"_s.arg(reason));
}

bool isFrameId(const ByteVector &id, unsigned int version)
{
    if (id.size() != (version < 3 ? 3U : 4U))
        return false;
    // Some programs leave names of three characters in tags of version 3.
    const auto end = version == 3 && id[3] == '\0' ? id.end() - 1 : id.end();
    return std::all_of(id.begin(), end, [](char character) {
        return (character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9');
    });
}

/// Takes a text that ends with a zero off the front; without a zero nothing is taken.
void skipText(const ByteVector &data, unsigned int &position)
{
    const int end = data.find(ByteVector(1, '\0'), position);
    if (end >= static_cast<int>(position))
        position = static_cast<unsigned int>(end) + 1;
}

class Scan {
public:
    explicit Scan(const TagLib::ID3v2::Header &header)
        : m_version(header.majorVersion()), m_isUnsynchronised(header.unsynchronisation())
    {
    }

    void scanFrames(const ByteVector &data, unsigned int position, int depth)
    {
        if (depth > kMostDepth)
            refuse(u"it has frames inside of frames"_s);
        while (position < data.size() && data[static_cast<int>(position)] != '\0') {
            const unsigned int size = scanFrame(data.mid(position), depth);
            if (size == 0) {
                noteEnd(data.mid(position), depth);
                return;
            }
            position += size;
        }
    }

    /// The name of the frame that TagLib stopped at.
    [[nodiscard]] const std::optional<QString> &unread() const { return m_unread; }

private:
    /// TagLib stops before what `rest` begins with.
    void noteEnd(const ByteVector &rest, int depth)
    {
        if (depth > 0)
            return;
        const unsigned int idSize = m_version < 3 ? 3 : 4;
        m_unread = printableLine(QString::fromLatin1(rest.data(), static_cast<qsizetype>(std::min(idSize, rest.size()))));
    }

    /// The frame at the front of `data`. Returns its size with its head, or 0 where TagLib stops.
    unsigned int scanFrame(ByteVector data, int depth)
    {
        const FrameHeader header(data, m_version);
        const unsigned int headSize = m_version < 3 ? kOldHeadSize : kHeadSize;
        if (!isFrameId(header.frameID(), m_version) || header.frameSize() > data.size()
            || header.frameSize() <= (header.dataLengthIndicator() ? kDataLengthSize : 0))
            return 0;
        if (++m_frames > kMostFrames)
            refuse(u"it has more than %1 frames"_s.arg(kMostFrames));
        if (m_version > 3 && (m_isUnsynchronised || header.unsynchronisation())) {
            const ByteVector decoded = TagLib::ID3v2::SynchData::decode(data.mid(headSize, header.frameSize()));
            data = data.mid(0, headSize) + decoded;
        }
        const bool namesLength = header.compression() || header.dataLengthIndicator();
        const std::int64_t length = namesLength
            ? std::int64_t{TagLib::ID3v2::SynchData::toUInt(data.mid(headSize, kDataLengthSize))}
            : std::int64_t{header.frameSize()};
        const unsigned int start = headSize + (namesLength ? kDataLengthSize : 0);
        if (header.compression()) {
            if (length > kMostInflated)
                refuseInflation();
            countInflated(data.mid(start));
        } else if (length > header.frameSize()) {
            refuse(u"a frame claims more bytes than it has"_s);
        }
        scanChapter(header, data.mid(start, static_cast<unsigned int>(length)), depth);
        return header.frameSize() + headSize;
    }

    /// Chapters and their tables have frames of their own.
    void scanChapter(const FrameHeader &header, const ByteVector &fields, int depth)
    {
        const bool isChapter = header.frameID() == "CHAP";
        if (!isChapter && header.frameID() != "CTOC")
            return;
        if (header.compression())
            refuse(u"it has a compressed chapter"_s);
        unsigned int position = 0;
        skipText(fields, position);
        if (isChapter) {
            position += kChapterTimesSize;
        } else {
            const auto children = static_cast<unsigned char>(position + 1 < fields.size()
                                                                 ? fields[static_cast<int>(position) + 1]
                                                                 : '\0');
            position += 2;
            for (int i = 0; i < children; ++i)
                skipText(fields, position);
        }
        scanFrames(fields, position, depth + 1);
    }

    [[noreturn]] static void refuseInflation()
    {
        refuse(u"its compressed frames inflate to more than %1 MiB"_s.arg(kMostInflated / kMiB));
    }

    /// Inflates, as TagLib would, to nowhere. What cannot be inflated costs TagLib nothing either.
    void countInflated(const ByteVector &compressed)
    {
        z_stream stream = {};
        if (::inflateInit(&stream) != Z_OK)
            throw std::bad_alloc();
        stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(compressed.data()));
        stream.avail_in = compressed.size();
        std::array<Bytef, 64 * 1024> room;
        int result = Z_OK;
        bool isTooMuch = false;
        while (result == Z_OK && !isTooMuch) {
            stream.next_out = room.data();
            stream.avail_out = static_cast<uInt>(room.size());
            const uInt before = stream.avail_in;
            result = ::inflate(&stream, Z_NO_FLUSH);
            m_inflated += static_cast<std::int64_t>(room.size() - stream.avail_out);
            m_inflatedFrom += before - stream.avail_in;
            isTooMuch = m_inflated > kMostInflated || m_inflatedFrom > kMostInflatedFrom;
            if (stream.avail_out != 0)
                break;
        }
        ::inflateEnd(&stream);
        if (isTooMuch)
            refuseInflation();
    }

    unsigned int m_version;
    bool m_isUnsynchronised;
    std::optional<QString> m_unread;
    int m_frames = 0;
    std::int64_t m_inflated = 0;
    std::int64_t m_inflatedFrom = 0;
};

/// The whole tag. Throws NurvFailure when TagLib may not have it.
Scan scanned(const ByteVector &header, const ByteVector &contents)
{
    const TagLib::ID3v2::Header tag(header);
    const bool isDecodedWhole = tag.unsynchronisation() && tag.majorVersion() <= 3;
    const ByteVector data = isDecodedWhole ? TagLib::ID3v2::SynchData::decode(contents) : contents;
    unsigned int position = 0;
    if (tag.extendedHeader()) {
        TagLib::ID3v2::ExtendedHeader extended;
        extended.setData(data);
        if (extended.size() <= data.size())
            position = extended.size();
    }
    Scan scan(tag);
    scan.scanFrames(data, position, 0);
    return scan;
}

} // namespace

std::optional<QString> reasonToRefuseId3v2(const ByteVector &header, const ByteVector &contents)
{
    try {
        static_cast<void>(scanned(header, contents));
    } catch (const NurvFailure &failure) {
        return failure.reason();
    }
    return std::nullopt;
}

std::optional<QString> firstUnreadId3v2Frame(const ByteVector &header, const ByteVector &contents)
{
    try {
        return scanned(header, contents).unread();
    } catch (const NurvFailure &) {
        return std::nullopt;
    }
}

} // namespace nurv
