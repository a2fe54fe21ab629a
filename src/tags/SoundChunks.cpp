// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/SoundChunks.h"

#include "base/NurvFailure.h"
#include "tags/Id3Tag.h"
#include "tags/MetadataFieldNames.h"
#include "tags/TrailingTags.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

using namespace Qt::StringLiterals;

namespace nurv::soundChunks {

namespace {

constexpr std::int64_t kHeadSize = 8;
constexpr std::int64_t kSizeUnknown = 0xFFFFFFFF;
constexpr std::int64_t kMostSound = std::int64_t{1} << 62; // sums of places and sizes stay numbers
constexpr int kMostChunks = 10'000;

// The form of the sound, what follows from the sound, and fillers.
constexpr std::array<std::string_view, 11> kWithoutMetadata = {"fmt ", "fact", "ds64", "JUNK", "junk", "PAD ",
                                                               "FLLR", "PEAK", "COMM", "FVER", "CHAN"};

bool isName(const QByteArray &name)
{
    return name.size() == 4 && std::all_of(name.begin(), name.end(), [](char character) {
               return character >= ' ' && character <= '~';
           });
}

bool isOf(const QByteArray &name, std::string_view other)
{
    return std::string_view(name.constData(), static_cast<std::size_t>(name.size())) == other;
}

bool isSound(const QByteArray &name)
{
    return name == "data" || name == "SSND";
}

/// Text of no stated encoding.
QString textOf(const QByteArray &bytes)
{
    const qsizetype zero = bytes.indexOf('\0');
    const QByteArray text = zero < 0 ? bytes : bytes.left(zero);
    return text.isValidUtf8() ? QString::fromUtf8(text) : QString::fromLatin1(text);
}

struct SoundChunk {
    QByteArray name;
    std::int64_t contents = 0; ///< where they start
    std::int64_t size = 0;     ///< of the contents, as the head tells it

    [[nodiscard]] std::int64_t end() const { return contents + size; }
};

class Walk {
public:
    Walk(const MetadataBytes &bytes, bool isBigEndian, MetadataCollector &found)
        : m_bytes(bytes), m_isBigEndian(isBigEndian), m_found(found)
    {
    }

    /// Reads the chunks from that place on. Returns where they end: at bytes that
    /// are none, or at the end.
    std::int64_t readFrom(std::int64_t position)
    {
        while (const std::optional<SoundChunk> chunk = chunkAt(position)) {
            if (++m_chunks > kMostChunks)
                throw NurvFailure(u"it has more than %1 chunks"_s.arg(kMostChunks));
            if (isSound(chunk->name)) {
                m_soundSize = chunk->size;
                if (soundReachesEnd(*chunk))
                    return m_bytes.size();
            } else if (chunk->end() > m_bytes.size()) {
                return position;
            } else {
                readChunk(*chunk);
            }
            position = next(*chunk);
        }
        return position;
    }

    /// Reads tags and whatever else stands there.
    void readRest(std::int64_t position)
    {
        const std::int64_t end = readTrailingTags(m_bytes, std::min(position, m_bytes.size()), m_found);
        if (position < end && !m_bytes.isZero(position, end - position))
            m_found.addChunk(QByteArray(), m_bytes.digest(position, end - position));
    }

    [[nodiscard]] bool hasSound() const { return m_soundSize.has_value(); }

    /// Where chunks start in the bytes that stood behind the sound; nothing when all of them are sound.
    [[nodiscard]] std::optional<std::int64_t> chunksBehindSound(const QByteArray &behind) const
    {
        if (!m_soundSize || *m_soundSize == kSizeUnknown || *m_soundSize == 0)
            return Walk(MetadataBytes(behind), m_isBigEndian, m_found).isChunkOrEnd(0) ? std::optional<std::int64_t>(0)
                                                                                       : std::nullopt;
        const std::int64_t place = m_frameSize > 0 ? (*m_soundSize - (m_isBigEndian ? 8 : 0)) % m_frameSize : 0;
        const bool hasPadding = (*m_soundSize & 1) != 0 && place < behind.size() && behind.at(place) == '\0';
        return std::clamp<std::int64_t>(place + (hasPadding ? 1 : 0), 0, behind.size());
    }

private:
    [[nodiscard]] std::optional<SoundChunk> chunkAt(std::int64_t position) const
    {
        const QByteArray head = m_bytes.peek(position, kHeadSize);
        if (head.size() < kHeadSize || !isName(head.left(4)))
            return std::nullopt;
        SoundChunk chunk{.name = head.left(4), .contents = position + kHeadSize, .size = number(head, 4)};
        if (chunk.size == kSizeUnknown && chunk.name == "data" && m_longSoundSize)
            chunk.size = *m_longSoundSize;
        return chunk;
    }

    [[nodiscard]] bool isChunkOrEnd(std::int64_t position) const
    {
        const std::optional<SoundChunk> chunk = chunkAt(position);
        return chunk ? chunk->end() <= m_bytes.size() : position >= m_bytes.size();
    }

    [[nodiscard]] bool soundReachesEnd(const SoundChunk &sound) const
    {
        // A recorder that broke down, or a pipe, left no size.
        return sound.size > m_bytes.size() - sound.contents || (sound.size == 0 && !isChunkOrEnd(sound.contents));
    }

    /// The padding after an odd size, which some programs leave out.
    [[nodiscard]] std::int64_t next(const SoundChunk &chunk) const
    {
        const bool isPadded = (chunk.size & 1) != 0 && m_bytes.isZero(chunk.end(), 1);
        return chunk.end() + (isPadded ? 1 : 0);
    }

    [[nodiscard]] std::int64_t number(const QByteArray &bytes, qsizetype offset) const
    {
        return m_isBigEndian ? bigEndianAt<quint32>(bytes, offset) : littleEndianAt<quint32>(bytes, offset);
    }

    void readChunk(const SoundChunk &chunk)
    {
        noteForm(chunk);
        if (std::any_of(kWithoutMetadata.begin(), kWithoutMetadata.end(),
                        [&](std::string_view name) { return isOf(chunk.name, name); })
            || m_bytes.isZero(chunk.contents, chunk.size))
            return;
        if (chunk.name == "LIST" && !m_isBigEndian)
            readList(chunk);
        else if (chunk.name == "id3 " || chunk.name == "ID3 ")
            readId3(chunk);
        else if (m_isBigEndian && chunk.name == "NAME")
            addText(u"TITLE"_s, chunk);
        else if (m_isBigEndian && chunk.name == "AUTH")
            addText(u"ARTIST"_s, chunk);
        else if (m_isBigEndian && chunk.name == "(c) ")
            addText(u"COPYRIGHT"_s, chunk);
        else if (m_isBigEndian && chunk.name == "ANNO")
            addText(u"COMMENT"_s, chunk);
        else if (m_isBigEndian && chunk.name == "COMT")
            readComments(chunk);
        else
            addAsItIs(chunk.name, chunk);
    }

    /// What places in the file depend on.
    void noteForm(const SoundChunk &chunk)
    {
        const QByteArray start = m_bytes.peek(chunk.contents, std::min<std::int64_t>(chunk.size, 16));
        if (start.size() < 16 && chunk.name != "COMM")
            return;
        if (chunk.name == "ds64")
            m_longSoundSize = std::clamp<qint64>(littleEndianAt<qint64>(start, 8), 0, kMostSound);
        else if (chunk.name == "fmt ")
            m_frameSize = littleEndianAt<quint16>(start, 12);
        else if (chunk.name == "COMM" && start.size() >= 8)
            m_frameSize = std::int64_t{bigEndianAt<quint16>(start, 0)} * ((bigEndianAt<quint16>(start, 6) + 7) / 8);
    }

    void readList(const SoundChunk &list)
    {
        const QByteArray kind = m_bytes.peek(list.contents, std::min<std::int64_t>(list.size, 4));
        if (kind != "INFO") {
            addAsItIs(isName(kind) ? kind : list.name, list);
            return;
        }
        const QByteArray info = m_bytes.read(list.contents, list.size);
        for (qsizetype position = 4; position < info.size();) {
            const qsizetype room = info.size() - position - kHeadSize;
            const qint64 size = room < 0 ? 0 : number(info, position + 4);
            if (room < 0 || size > room) {
                if (info.mid(position).count('\0') != info.size() - position)
                    addAsItIs(kind, list);
                return;
            }
            m_found.addText(metadataFields::fromInfoChunk(info.mid(position, 4)),
                            textOf(info.mid(position + kHeadSize, size)));
            position += kHeadSize + size;
            if ((size & 1) != 0 && position < info.size() && info.at(position) == '\0')
                ++position;
        }
    }

    /// Comments with a date, which belong to a marker or to the whole file.
    void readComments(const SoundChunk &chunk)
    {
        constexpr qsizetype kCommentHeadSize = 8; // date, marker, size
        const QByteArray comments = m_bytes.read(chunk.contents, chunk.size);
        qsizetype position = 2;
        const int count = comments.size() < 2 ? 0 : bigEndianAt<quint16>(comments, 0);
        for (int i = 0; i < count; ++i) {
            if (comments.size() - position < kCommentHeadSize) {
                addAsItIs(chunk.name, chunk);
                return;
            }
            const qsizetype size = bigEndianAt<quint16>(comments, position + 6);
            position += kCommentHeadSize;
            m_found.addText(u"COMMENT"_s, textOf(comments.mid(position, size)));
            position += size + (size & 1);
        }
    }

    void readId3(const SoundChunk &chunk)
    {
        try {
            readId3v2(MetadataBytes(m_bytes.read(chunk.contents, chunk.size)), 0, m_found);
        } catch (const NurvFailure &) {
            // Not to be understood, but to be compared.
            addAsItIs(chunk.name, chunk);
        }
    }

    void addText(const QString &field, const SoundChunk &chunk)
    {
        m_found.addText(field, textOf(m_bytes.read(chunk.contents, chunk.size)));
    }

    void addAsItIs(const QByteArray &name, const SoundChunk &chunk)
    {
        m_found.addChunk(name, m_bytes.digest(chunk.contents, chunk.size));
    }

    const MetadataBytes m_bytes;
    bool m_isBigEndian;
    MetadataCollector &m_found;
    std::optional<std::int64_t> m_soundSize;     ///< as its head tells it
    std::optional<std::int64_t> m_longSoundSize; ///< of RF64
    std::int64_t m_frameSize = 0;
    int m_chunks = 0;
};

bool isBigEndianForm(const QByteArray &bytes)
{
    return bytes.startsWith("FORM");
}

} // namespace

bool isForm(const QByteArray &bytes)
{
    const QByteArray kind = bytes.mid(8, 4);
    if (isBigEndianForm(bytes))
        return kind == "AIFF" || kind == "AIFC";
    return (bytes.startsWith("RIFF") || bytes.startsWith("RF64") || bytes.startsWith("BW64")) && kind == "WAVE";
}

void readFile(const MetadataBytes &bytes, std::int64_t begin, MetadataCollector &found)
{
    Walk walk(bytes, isBigEndianForm(bytes.peek(begin, kFormSize)), found);
    walk.readRest(walk.readFrom(begin + kFormSize));
}

void readStored(const QByteArray &before, const QByteArray &behind, MetadataCollector &found)
{
    if (!isForm(before)) {
        for (const QByteArray &bytes : {before, behind}) {
            if (bytes.count('\0') != bytes.size())
                found.addChunk(QByteArray(), metadataDigest(bytes));
        }
        return;
    }
    const bool isBigEndian = isBigEndianForm(before);
    Walk walk(MetadataBytes(before), isBigEndian, found);
    const std::int64_t end = walk.readFrom(kFormSize);
    if (!walk.hasSound())
        walk.readRest(end);
    if (const std::optional<std::int64_t> place = walk.chunksBehindSound(behind)) {
        Walk rest(MetadataBytes(behind), isBigEndian, found);
        rest.readRest(rest.readFrom(*place));
    }
}

void readOneStored(const QByteArray &chunk, bool isBigEndian, MetadataCollector &found)
{
    if (isForm(chunk) || isSound(chunk.left(4)))
        return;
    Walk walk(MetadataBytes(chunk), isBigEndian, found);
    walk.readRest(walk.readFrom(0));
}

} // namespace nurv::soundChunks
