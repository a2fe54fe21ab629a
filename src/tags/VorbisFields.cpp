// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/VorbisFields.h"

#include "base/NurvFailure.h"
#include "tags/TagEditStream.h"
#include "tags/TagLibTagsHelper.h"
#include "tags/TagLibText.h"
#include "text/PrintableText.h"
#include "text/Utf8Text.h"

#include <QString>

#include <flacfile.h>

#include <algorithm>
#include <cstdint>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr unsigned int kVorbisComment = 4;
constexpr unsigned int kNumberBytes = 4;

[[noreturn]] void failAsDamaged()
{
    throw NurvFailure(u"its FLAC metadata is damaged"_s);
}

/// The runs of bytes of a comment, each of which its size goes before.
class Runs {
public:
    explicit Runs(const TagLib::ByteVector &comment) : m_comment(comment) {}

    [[nodiscard]] unsigned int number()
    {
        const TagLib::ByteVector bytes = take(kNumberBytes);
        return bytes.toUInt(false);
    }
    [[nodiscard]] TagLib::ByteVector next() { return take(number()); }

private:
    [[nodiscard]] TagLib::ByteVector take(unsigned int size)
    {
        if (size > m_comment.size() - m_position)
            failAsDamaged();
        m_position += size;
        return m_comment.mid(m_position - size, size);
    }

    const TagLib::ByteVector &m_comment;
    unsigned int m_position = 0;
};

void refuseUnreadableFieldsOf(const TagLib::ByteVector &comment)
{
    Runs runs(comment);
    static_cast<void>(runs.next()); // the encoder's name
    const unsigned int count = runs.number();
    for (unsigned int i = 0; i < count; ++i) {
        const TagLib::ByteVector field = runs.next();
        const int equals = field.find('=');
        const QString name =
            QString::fromUtf8(qtBytes(field.mid(0, static_cast<unsigned int>(std::max(equals, 0)))));
        const bool isUtf8 = fromStrictUtf8(qtBytes(field)).has_value();
        if (isUtf8 && TagLibTagsHelper::isFlacFieldName(name))
            continue;
        const QString shown = printableLine(name);
        if (shown.isEmpty())
            throw NurvFailure(u"Its tags hold a field without a name, which would be lost."_s);
        throw NurvFailure((isUtf8 ? u"Its field %1 has a name of other characters than those of ASCII, or a \"~\" in it, "
                                    "and would be lost."_s
                                  : u"Its field %1 is not in UTF-8, as fields of FLAC files have to be, and would be "
                                    "lost."_s)
                              .arg(shown));
    }
}

} // namespace

void refuseUnreadableFields(TagLib::FLAC::File &file, TagEditStream &stream)
{
    auto position = static_cast<std::int64_t>(file.find("fLaC")) + kNumberBytes;
    for (bool isLast = position < kNumberBytes; !isLast;) {
        stream.seek(static_cast<TagEditStream::Offset>(position));
        const TagLib::ByteVector head = stream.readBlock(kNumberBytes);
        if (head.size() < kNumberBytes)
            failAsDamaged();
        const unsigned int number = head.toUInt(true);
        const unsigned int size = number & 0xffffffU;
        isLast = (number & 0x80000000U) != 0;
        position += kNumberBytes;
        if ((number >> 24 & 0x7fU) == kVorbisComment) {
            const TagLib::ByteVector comment = stream.readBlock(size);
            if (comment.size() < size)
                failAsDamaged();
            refuseUnreadableFieldsOf(comment);
        }
        position += size;
    }
}

} // namespace nurv
