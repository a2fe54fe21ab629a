// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/FlacMetadata.h"

#include "base/NurvFailure.h"
#include "tags/MetadataFieldNames.h"
#include "tags/SoundChunks.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kMarkSize = 4;
constexpr std::int64_t kBlockHeadSize = 4;
constexpr qsizetype kNumberSize = 4;
constexpr int kMostBlocks = 10'000;

enum BlockType { StreamInfo, Padding, Application, SeekTable, VorbisComment, CueSheet, Picture };

[[noreturn]] void failAsDamaged()
{
    throw NurvFailure(u"its FLAC metadata is damaged"_s);
}

/// Takes runs of bytes off the front of a block, each of which a size goes before.
class Sized {
public:
    explicit Sized(const QByteArray &bytes) : m_bytes(bytes) {}

    template<typename ReadNumber>
    [[nodiscard]] QByteArray take(const ReadNumber &readNumber)
    {
        const qint64 size = number(readNumber);
        if (size > m_bytes.size() - m_position)
            failAsDamaged();
        m_position += size;
        return m_bytes.mid(m_position - size, size);
    }

    template<typename ReadNumber>
    [[nodiscard]] quint32 number(const ReadNumber &readNumber)
    {
        if (m_bytes.size() - m_position < kNumberSize)
            failAsDamaged();
        m_position += kNumberSize;
        return readNumber(m_bytes, m_position - kNumberSize);
    }

private:
    const QByteArray &m_bytes;
    qsizetype m_position = 0;
};

void readPicture(const QByteArray &block, MetadataCollector &found)
{
    constexpr auto bigEndian = bigEndianAt<quint32>;
    Sized sized(block);
    static_cast<void>(sized.number(bigEndian)); // what it shows
    static_cast<void>(sized.take(bigEndian));   // its type
    static_cast<void>(sized.take(bigEndian));   // its description
    for (int i = 0; i < 4; ++i)
        static_cast<void>(sized.number(bigEndian)); // its measures
    found.addPicture(sized.take(bigEndian));
}

/// A field of a Vorbis comment. Pictures in fields are an older custom.
void addField(const QByteArray &entry, MetadataCollector &found)
{
    const qsizetype equals = entry.indexOf('=');
    const QString field = metadataFields::fromWords(QString::fromUtf8(entry.left(std::max<qsizetype>(equals, 0))));
    const QByteArray value = entry.mid(equals + 1);
    if (field == u"METADATA_BLOCK_PICTURE"_s)
        readPicture(QByteArray::fromBase64(value), found);
    else if (field == u"COVERART"_s)
        found.addPicture(QByteArray::fromBase64(value));
    else
        found.addText(field, QString::fromUtf8(value));
}

void readApplication(const QByteArray &block, MetadataCollector &found)
{
    const QByteArray name = block.left(4);
    const QByteArray contents = block.mid(4);
    if (name == "riff" || name == "aiff")
        soundChunks::readOneStored(contents, name == "aiff", found);
    else
        found.addChunk(name, metadataDigest(contents));
}

void readBlock(int type, const QByteArray &block, MetadataCollector &found)
{
    switch (type) {
    case Application: readApplication(block, found); break;
    case VorbisComment: readVorbisComment(block, found); break;
    case CueSheet: found.addChunk("CUESHEET", metadataDigest(block)); break;
    case Picture: readPicture(block, found); break;
    default: found.addChunk("block " + QByteArray::number(type), metadataDigest(block)); break;
    }
}

} // namespace

void readVorbisComment(const QByteArray &comment, MetadataCollector &found)
{
    constexpr auto littleEndian = littleEndianAt<quint32>;
    Sized sized(comment);
    static_cast<void>(sized.take(littleEndian)); // the encoder's name
    const quint32 count = sized.number(littleEndian);
    for (quint32 i = 0; i < count; ++i)
        addField(sized.take(littleEndian), found);
}

std::int64_t readFlacMetadata(const MetadataBytes &bytes, std::int64_t begin, MetadataCollector &found)
{
    std::int64_t position = begin + kMarkSize;
    for (int blocks = 0; blocks < kMostBlocks; ++blocks) {
        const QByteArray head = bytes.peek(position, kBlockHeadSize);
        if (head.size() < kBlockHeadSize)
            failAsDamaged();
        const auto number = bigEndianAt<quint32>(head, 0);
        const int type = static_cast<int>(number >> 24 & 0x7fU);
        const std::int64_t size = number & 0xffffffU;
        position += kBlockHeadSize;
        if (size > bytes.size() - position)
            failAsDamaged();
        if (type != StreamInfo && type != Padding && type != SeekTable)
            readBlock(type, bytes.read(position, size), found);
        position += size;
        if ((number & 0x80000000U) != 0)
            return position;
    }
    failAsDamaged();
}

} // namespace nurv
