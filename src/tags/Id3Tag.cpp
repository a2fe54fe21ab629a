// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Id3Tag.h"

#include "base/NurvFailure.h"
#include "tags/MetadataFieldNames.h"

#include <QStringDecoder>

#include <id3v1genres.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kHeaderSize = 10;
constexpr int kUtf16 = 1;
constexpr int kUtf16BigEndian = 2;
constexpr int kUtf8 = 3;

[[noreturn]] void failAsDamaged()
{
    throw NurvFailure(u"its ID3 tag is damaged"_s);
}

/// 7 bits in each of the 4 bytes.
quint32 synchsafeAt(const QByteArray &bytes, qsizetype offset)
{
    const auto number = bigEndianAt<quint32>(bytes, offset);
    return (number >> 24 & 0x7fU) << 21 | (number >> 16 & 0x7fU) << 14 | (number >> 8 & 0x7fU) << 7 | (number & 0x7fU);
}

/// Without the zeros that keep the bytes from looking like the start of an MPEG frame.
QByteArray withoutUnsynchronisation(const QByteArray &bytes)
{
    QByteArray plain;
    plain.reserve(bytes.size());
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        plain.append(bytes.at(i));
        if (bytes.at(i) == '\xff' && i + 1 < bytes.size() && bytes.at(i + 1) == '\0')
            ++i;
    }
    return plain;
}

bool isFrameId(const QByteArray &id, qsizetype length)
{
    return id.size() == length && std::all_of(id.begin(), id.end(), [](char character) {
               return (character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9');
           });
}

QString decoded(int encoding, QByteArrayView bytes)
{
    switch (encoding) {
    case kUtf16: return QStringDecoder(QStringDecoder::Utf16).decode(bytes);
    case kUtf16BigEndian: return QStringDecoder(QStringDecoder::Utf16BE).decode(bytes);
    case kUtf8: return QString::fromUtf8(bytes);
    default: return QString::fromLatin1(bytes);
    }
}

/// Takes the text off the front of the bytes, with the zero that ends it.
QString takeText(int encoding, QByteArrayView &bytes)
{
    const bool isWide = encoding == kUtf16 || encoding == kUtf16BigEndian;
    const qsizetype width = isWide ? 2 : 1;
    qsizetype end = 0;
    while (end + width <= bytes.size() && (bytes.at(end) != '\0' || (isWide && bytes.at(end + 1) != '\0')))
        end += width;
    QString text = decoded(encoding, bytes.first(std::min(end, bytes.size())));
    bytes = bytes.sliced(std::min(end + width, bytes.size()));
    return text;
}

/// All texts of the bytes, with zero characters between them.
QString allTexts(int encoding, QByteArrayView bytes)
{
    QString texts;
    while (!bytes.isEmpty()) {
        texts += takeText(encoding, bytes);
        texts += u'\0';
    }
    return texts;
}

/// What the number of a genre of the old list stands for; also "(4)(17)Remainder".
QString namedGenres(const QString &genre)
{
    const auto named = [](const QString &text) {
        bool isNumber = false;
        const int number = text.toInt(&isNumber);
        const QString name = isNumber ? QString::fromStdString(TagLib::ID3v1::genre(number).to8Bit(true)) : QString();
        return name.isEmpty() ? text : name;
    };
    QStringView rest = genre;
    QString names;
    while (rest.startsWith(u'(') && !rest.startsWith(u"((")) {
        const qsizetype end = rest.indexOf(u')');
        if (end < 0)
            break;
        const QString number = rest.sliced(1, end - 1).toString();
        const QString name = named(number);
        if (name == number)
            break;
        names += name + u'\0';
        rest = rest.sliced(end + 1);
    }
    return names + named(rest.toString());
}

class TagReader {
public:
    TagReader(const QByteArray &header, QByteArray frames, MetadataCollector &found)
        : m_version(header.at(3)), m_isUnsynchronised((header.at(5) & 0x80) != 0), m_frames(std::move(frames)),
          m_found(found)
    {
        if (m_isUnsynchronised && m_version < 4)
            m_frames = withoutUnsynchronisation(m_frames);
        const bool hasFlag40 = (header.at(5) & 0x40) != 0;
        if (hasFlag40 && m_version == 2)
            throw NurvFailure(u"its ID3 tag is compressed"_s);
        if (hasFlag40)
            skipExtendedHeader();
    }

    void read()
    {
        while (m_position < m_frames.size() && m_frames.at(m_position) != '\0')
            readFrame();
        if (m_frames.size() - m_position != m_frames.mid(m_position).count('\0'))
            failAsDamaged();
        addRecordingDate();
    }

private:
    void skipExtendedHeader()
    {
        if (m_frames.size() < 4)
            failAsDamaged();
        const qint64 size = m_version == 3 ? qint64{bigEndianAt<quint32>(m_frames, 0)} + 4 : synchsafeAt(m_frames, 0);
        if (size > m_frames.size())
            failAsDamaged();
        m_position = size;
    }

    [[nodiscard]] qsizetype frameSize(qsizetype headSize) const
    {
        if (m_version == 2)
            return bigEndianAt<quint32>(m_frames, m_position + 2) & 0xffffffU;
        const qsizetype plain = bigEndianAt<quint32>(m_frames, m_position + 4);
        if (m_version == 3)
            return plain;
        // Some programs write the sizes of 2.3 here.
        const qsizetype synchsafe = synchsafeAt(m_frames, m_position + 4);
        const auto leadsOn = [&](qsizetype size) {
            const qsizetype next = m_position + headSize + size;
            return next == m_frames.size()
                   || (next < m_frames.size() && (m_frames.at(next) == '\0' || isFrameId(m_frames.mid(next, 4), 4)));
        };
        return synchsafe == plain || leadsOn(synchsafe) || !leadsOn(plain) ? synchsafe : plain;
    }

    void readFrame()
    {
        const qsizetype idSize = m_version == 2 ? 3 : 4;
        const qsizetype headSize = m_version == 2 ? 6 : 10;
        const QByteArray id = m_frames.mid(m_position, idSize);
        if (!isFrameId(id, idSize) || m_frames.size() - m_position < headSize)
            failAsDamaged();
        const qsizetype size = frameSize(headSize);
        if (size > m_frames.size() - m_position - headSize)
            failAsDamaged();
        const int flags = m_version == 2 ? 0 : bigEndianAt<quint16>(m_frames, m_position + 8) & 0xff;
        const QByteArray contents = m_frames.mid(m_position + headSize, size);
        m_position += headSize + size;
        const QByteArray name = m_version == 2 ? metadataFields::id3FrameOfVersion2(id) : id;
        if (const std::optional<QByteArray> plain = plainContents(contents, flags))
            addFrame(name, *plain);
        else
            m_found.addBytes(metadataFields::fromId3Frame(name), contents);
    }

    /// Nothing for a frame that is compressed or encrypted.
    [[nodiscard]] std::optional<QByteArray> plainContents(QByteArray contents, int flags) const
    {
        if (m_version == 3) {
            if ((flags & 0xc0) != 0)
                return std::nullopt;
            return (flags & 0x20) != 0 ? contents.mid(1) : contents;
        }
        if (m_version != 4)
            return contents;
        if ((flags & 0x0c) != 0)
            return std::nullopt;
        if ((flags & 0x40) != 0)
            contents = contents.mid(1);
        if ((flags & 0x01) != 0)
            contents = contents.mid(4);
        return m_isUnsynchronised || (flags & 0x02) != 0 ? withoutUnsynchronisation(contents) : contents;
    }

    void addFrame(const QByteArray &id, const QByteArray &frame)
    {
        QByteArrayView contents = frame;
        if (contents.isEmpty())
            return;
        const int encoding = static_cast<unsigned char>(contents.at(0));
        const QString field = metadataFields::fromId3Frame(id);
        if (id == "TXXX" || id == "WXXX") {
            contents = contents.sliced(1);
            const QString name = metadataFields::fromWords(takeText(encoding, contents));
            const QString value = allTexts(id == "TXXX" ? encoding : 0, contents);
            m_found.addText(name.isEmpty() ? QString::fromLatin1(id) : name, value);
        } else if (id == "TCON") {
            QString genres;
            for (const QString &genre : allTexts(encoding, contents.sliced(1)).split(u'\0'))
                genres += namedGenres(genre) + u'\0';
            m_found.addText(field, genres);
        } else if (id == "TYER" || id == "TDAT" || id == "TIME") {
            contents = contents.sliced(1);
            m_dates[id == "TYER" ? 0 : id == "TDAT" ? 1 : 2] = takeText(encoding, contents).trimmed();
        } else if (id.startsWith('T')) {
            m_found.addText(field, allTexts(encoding, contents.sliced(1)));
        } else if (id == "COMM" || id == "USLT") {
            addComment(field, encoding, frame);
        } else if (id == "APIC") {
            addPicture(encoding, frame);
        } else if (id.startsWith('W')) {
            m_found.addText(field, takeText(0, contents));
        } else if (id == "UFID" || id == "PRIV") {
            const QString owner = takeText(0, contents);
            m_found.addBytes(field + u' ' + owner, contents.toByteArray());
        } else {
            m_found.addBytes(field, frame);
        }
    }

    void addComment(const QString &field, int encoding, const QByteArray &contents)
    {
        QByteArrayView texts = QByteArrayView(contents).sliced(std::min<qsizetype>(4, contents.size())); // the language before it
        const QString description = metadataFields::fromWords(takeText(encoding, texts));
        // One vendor keeps fields of its own in comments.
        m_found.addText(description.startsWith(u"ITUN"_s) ? description : field, allTexts(encoding, texts));
    }

    void addPicture(int encoding, const QByteArray &contents)
    {
        QByteArrayView rest = QByteArrayView(contents).sliced(1);
        const auto skip = [&rest](qsizetype count) { rest = rest.sliced(std::min(count, rest.size())); };
        if (m_version == 2)
            skip(3);
        else
            takeText(0, rest);
        skip(1); // what it shows
        takeText(encoding, rest);
        m_found.addPicture(rest.toByteArray());
    }

    /// 2.3 has year, day and time in frames of their own.
    void addRecordingDate()
    {
        const auto &[year, day, time] = m_dates;
        if (year.isEmpty()) {
            m_found.addText(u"TDAT"_s, day);
            m_found.addText(u"TIME"_s, time);
            return;
        }
        QString date = year;
        if (day.size() == 4) {
            date += u'-' + day.mid(2) + u'-' + day.left(2);
            if (time.size() == 4)
                date += u'T' + time.left(2) + u':' + time.mid(2);
        }
        m_found.addText(u"DATE"_s, date);
    }

    int m_version;
    bool m_isUnsynchronised;
    QByteArray m_frames;
    qsizetype m_position = 0;
    std::array<QString, 3> m_dates; ///< year, day and time
    MetadataCollector &m_found;
};

} // namespace

std::int64_t id3v2SizeAt(const MetadataBytes &bytes, std::int64_t offset)
{
    const QByteArray header = bytes.peek(offset, kHeaderSize);
    if (header.size() < kHeaderSize || !header.startsWith("ID3") || header.at(3) == '\xff' || header.at(4) == '\xff'
        || (bigEndianAt<quint32>(header, 6) & 0x80808080U) != 0)
        return 0;
    const bool hasFooter = header.at(3) >= 4 && (header.at(5) & 0x10) != 0;
    return kHeaderSize + synchsafeAt(header, 6) + (hasFooter ? kHeaderSize : 0);
}

void readId3v2(const MetadataBytes &bytes, std::int64_t offset, MetadataCollector &found)
{
    if (id3v2SizeAt(bytes, offset) == 0)
        failAsDamaged();
    const QByteArray header = bytes.read(offset, kHeaderSize);
    if (header.at(3) < 2 || header.at(3) > 4)
        throw NurvFailure(u"its ID3 tag has an unknown version"_s);
    TagReader(header, bytes.read(offset + kHeaderSize, synchsafeAt(header, 6)), found).read();
}

} // namespace nurv
