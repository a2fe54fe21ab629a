// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Mp4Fixtures.h"

#include "support/AudioFixtures.h"
#include "support/TestProgram.h"

#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

constexpr SoundShape kShortSound = {.seconds = 0.5};

/// What stands before the boxes that a box holds.
qsizetype prefixSize(const QByteArray &type)
{
    return type == "meta" ? 4 : 0;
}

} // namespace

QString writeM4a(const TestFolder &folder, const QString &name, const QString &codec,
                 const QStringList &encoderArguments)
{
    return writeByFfmpeg(folder.path(name), kShortSound,
                         QStringList{u"-c:a"_s, codec, u"-fflags"_s, u"+bitexact"_s} + encoderArguments);
}

QByteArray bigEndian32(quint32 number)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

QByteArray bigEndian64(quint64 number)
{
    QByteArray bytes(8, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

QByteArray boxBytes(const QByteArray &type, const QByteArray &contents)
{
    return bigEndian32(static_cast<quint32>(contents.size() + 8)) + type + contents;
}

QByteArray longBoxBytes(const QByteArray &type, const QByteArray &contents)
{
    return bigEndian32(1) + type + bigEndian64(static_cast<quint64>(contents.size() + 16)) + contents;
}

QList<TestBox> boxesOf(const QByteArray &bytes)
{
    QList<TestBox> boxes;
    for (qsizetype at = 0; at < bytes.size();) {
        if (bytes.size() - at < 8) {
            ADD_FAILURE() << "no box at " << at;
            break;
        }
        quint64 size = qFromBigEndian<quint32>(bytes.constData() + at);
        const QByteArray type = bytes.mid(at + 4, 4);
        qsizetype head = 8;
        if (size == 1) {
            size = qFromBigEndian<quint64>(bytes.constData() + at + 8);
            head = 16;
        } else if (size == 0) {
            size = static_cast<quint64>(bytes.size() - at);
        }
        if (size < static_cast<quint64>(head) || size > static_cast<quint64>(bytes.size() - at)) {
            ADD_FAILURE() << "wrong size of " << type.constData();
            break;
        }
        boxes.append({type, bytes.mid(at + head, static_cast<qsizetype>(size) - head)});
        at += static_cast<qsizetype>(size);
    }
    return boxes;
}

QByteArrayList typesOf(const QByteArray &bytes)
{
    QByteArrayList types;
    for (const TestBox &box : boxesOf(bytes))
        types.append(box.type);
    return types;
}

QByteArray contentsAt(const QByteArray &bytes, const QByteArrayList &path)
{
    QByteArray contents = bytes;
    for (const QByteArray &type : path) {
        bool isFound = false;
        for (const TestBox &box : boxesOf(contents)) {
            if (box.type != type || isFound)
                continue;
            isFound = true;
            contents = box.contents.mid(prefixSize(type));
        }
        if (!isFound)
            return {};
    }
    return contents;
}

QByteArray edited(const QByteArray &bytes, const QByteArrayList &path,
                  const std::function<QByteArray(const QByteArray &contents)> &edit)
{
    if (path.isEmpty())
        return edit(bytes);
    QByteArray result;
    bool isFound = false;
    for (const TestBox &box : boxesOf(bytes)) {
        QByteArray contents = box.contents;
        if (box.type == path.first() && !isFound) {
            isFound = true;
            const qsizetype prefix = prefixSize(box.type);
            contents = contents.left(prefix) + edited(contents.mid(prefix), path.mid(1), edit);
        }
        result += boxBytes(box.type, contents);
    }
    EXPECT_TRUE(isFound) << path.first().constData();
    return result;
}

QByteArrayList itemsOf(const QByteArray &file)
{
    QByteArrayList items;
    for (const TestBox &box : boxesOf(contentsAt(file, kItemsPath)))
        items.append(boxBytes(box.type, box.contents));
    return items;
}

QByteArray itemBytes(const QByteArray &type, quint32 valueType, const QByteArray &value)
{
    return boxBytes(type, boxBytes("data", bigEndian32(valueType) + bigEndian32(0) + value));
}

QByteArray withItems(const QByteArray &file, const QByteArray &items)
{
    return edited(file, kItemsPath, [&items](const QByteArray &contents) { return contents + items; });
}

QList<quint64> chunkOffsets(const QByteArray &file)
{
    QList<quint64> offsets;
    for (const TestBox &box : boxesOf(contentsAt(file, kSampleTablePath))) {
        const qsizetype width = box.type == "stco" ? 4 : 8;
        if (box.type != "stco" && box.type != "co64")
            continue;
        for (qsizetype at = 8; at + width <= box.contents.size(); at += width) {
            const char *const place = box.contents.constData() + at;
            offsets.append(width == 4 ? qFromBigEndian<quint32>(place) : qFromBigEndian<quint64>(place));
        }
    }
    EXPECT_FALSE(offsets.isEmpty());
    return offsets;
}

QByteArray withChunkOffsets(const QByteArray &file, const std::function<quint64(quint64 offset)> &map)
{
    static const QByteArrayList kOnTheWay{"moov", "trak", "mdia", "minf", "stbl"};
    QByteArray result;
    for (const TestBox &box : boxesOf(file)) {
        QByteArray contents = box.contents;
        if (kOnTheWay.contains(box.type))
            contents = withChunkOffsets(contents, map);
        for (qsizetype at = 8; box.type == "stco" && at + 4 <= contents.size(); at += 4) {
            char *const place = contents.data() + at;
            qToBigEndian(static_cast<quint32>(map(qFromBigEndian<quint32>(place))), place);
        }
        result += boxBytes(box.type, contents);
    }
    return result;
}

QByteArray packetsOf(const QString &path)
{
    const ProgramResult result = runProgram(
        u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_packets"_s, u"-show_data_hash"_s, u"md5"_s, u"-show_entries"_s,
                       u"packet=stream_index,pts,dts,duration,size,data_hash"_s, u"-of"_s, u"csv"_s, path});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(result.errors.isEmpty()) << result.errors.constData();
    EXPECT_FALSE(result.output.isEmpty());
    return result.output;
}

QByteArray withLongOffsets(const QByteArray &file, qint64 shift)
{
    const QList<quint64> offsets = chunkOffsets(file);
    return edited(file, kSampleTablePath, [&](const QByteArray &contents) {
        QByteArray result;
        for (const TestBox &box : boxesOf(contents)) {
            if (box.type != "stco") {
                result += boxBytes(box.type, box.contents);
                continue;
            }
            QByteArray table = bigEndian32(0) + bigEndian32(static_cast<quint32>(offsets.size()));
            for (const quint64 offset : offsets)
                table += bigEndian64(offset + static_cast<quint64>(shift));
            result += boxBytes("co64", table);
        }
        return result;
    });
}

} // namespace nurv::test
