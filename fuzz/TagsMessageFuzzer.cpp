// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "FuzzedChoices.h"
#include "tags/TagsMessage.h"

#include <cstdlib>

namespace {

using namespace nurv;

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

/// What was taken, once more as a message: the same as a message of that message.
template<typename Take, typename Put>
void goThrough(const QByteArray &bytes, const Take &take, const Put &put)
{
    const auto again = [&](const QByteArray &message) {
        TagsMessageReader reader(message);
        TagsMessageWriter writer;
        (writer.*put)(take(reader));
        return writer.bytes();
    };
    const QByteArray first = again(bytes);
    // Nothing is made of what was not there.
    require(first.size() <= bytes.size());
    require(again(first) == first);
}

void checkEdits(const TagEditStream::Edits &edits, std::int64_t fileLength)
{
    for (const TagEditStream::Piece &piece : edits.pieces) {
        const std::int64_t room = piece.isNew ? static_cast<std::int64_t>(edits.newBytes.size()) : fileLength;
        require(piece.offset >= 0 && piece.length > 0 && piece.length <= room && piece.offset <= room - piece.length);
    }
}

} // namespace

/// The answers of a process that a file may have taken over.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::FuzzedChoices choices({data, size});
    const unsigned kind = choices.small() % 4;
    const std::int64_t fileLength = choices.large();
    const auto rest = choices.rest();
    const QByteArray bytes(reinterpret_cast<const char *>(rest.data()), static_cast<qsizetype>(rest.size()));
    try {
        if (kind == 0) {
            goThrough(
                bytes, [](TagsMessageReader &reader) { return reader.takeRecord(); }, &TagsMessageWriter::putRecord);
        } else if (kind == 1) {
            goThrough(
                bytes, [](TagsMessageReader &reader) { return reader.takeInventory(); },
                &TagsMessageWriter::putInventory);
        } else if (kind == 2) {
            goThrough(
                bytes,
                [fileLength](TagsMessageReader &reader) {
                    TagEditStream::Edits edits = reader.takeEdits(fileLength);
                    checkEdits(edits, fileLength);
                    return edits;
                },
                &TagsMessageWriter::putEdits);
        } else {
            TagsMessageReader reader(bytes);
            static_cast<void>(reader.takeNumber(1));
            require(reader.takeText().size() <= bytes.size() / 2);
            require(reader.takeBytes().size() <= bytes.size());
            reader.expectEnd();
        }
    } catch (const DamagedMessage &failure) {
        require(!failure.reason().isEmpty());
    }
    return 0;
}
