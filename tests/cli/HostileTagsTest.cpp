// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"

#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "TagBombs.h"

#include <QtEndian>

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

/// An AIFF file with that ID3 tag.
QByteArray aiffWith(const QByteArray &tag)
{
    QByteArray size(4, '\0');
    qToBigEndian(static_cast<quint32>(tag.size()), size.data());
    QByteArray aiff = aiffBytes({.seconds = 0.1}) + "ID3 " + size + tag + QByteArray(tag.size() % 2, '\0');
    qToBigEndian(static_cast<quint32>(aiff.size() - 8), aiff.data() + 4);
    return aiff;
}

QByteArray title(const QByteArray &text)
{
    return longId3Frame(4, "TIT2", '\3' + text);
}

/// The head of a PNG of 30,000 x 30,000 pixels in a picture frame.
QByteArray pictureBomb()
{
    return longId3Frame(4, "APIC",
                        QByteArray("\3image/png\0\3\0", 13)
                            + QByteArray::fromHex("89504e470d0a1a0a0000000d494844520000753000007530080600000000000000"));
}

QByteArray inflatingTag()
{
    static const QByteArray tag =
        longId3Tag(4, compressedId3Frame(4, "TIT2", compressedZeros(std::int64_t{1} << 30), 10));
    return tag;
}

QByteArray countlessFrames()
{
    return longId3Tag(4, longId3Frame(4, "TXXX", "\3").repeated(1'500'000));
}

QByteArray wavWith(const QByteArray &tag)
{
    QByteArray size(4, '\0');
    qToLittleEndian(static_cast<quint32>(tag.size()), size.data());
    QByteArray wav = wavBytes({.seconds = 0.1}) + "id3 " + size + tag + QByteArray(tag.size() % 2, '\0');
    qToLittleEndian(static_cast<quint32>(wav.size() - 8), wav.data() + 4);
    return wav;
}

QByteArray encoded(const TestFolder &folder, const QString &name)
{
    folder.makeFolder(u"plain"_s);
    const QString path = folder.path(u"plain/"_s + name);
    if (name.endsWith(u".ape")) {
        const QString wav = writeWav(folder.path(u"plain/a.wav"_s), {.seconds = 0.1});
        const QString mac = QString::fromLocal8Bit(qgetenv("NURV_TOOLS")) + u"/mac"_s;
        EXPECT_EQ(runProgram(mac, {wav, path, u"-c2000"_s}).exitStatus, 0);
    } else {
        writeByFfmpeg(path, {.seconds = 0.1});
    }
    return folder.read(u"plain/"_s + name);
}

/// Writes a file of sound, that of `name`, with a tag in front of it.
auto behindTag(QByteArray (*tag)(), const QString &name)
{
    return [tag, name](const TestFolder &folder, const QString &file) { folder.write(file, tag() + encoded(folder, name)); };
}

/// One way to overcome a reader of tags, and what becomes of it.
struct TagBomb {
    const char *name;
    QString file;
    QString format; ///< that it is converted to
    std::function<void(const TestFolder &, const QString &file)> write;
    bool deletes;   ///< so that all that it holds is read as well
    QString status;
    QString reason; ///< the start of it
};

void PrintTo(const TagBomb &bomb, std::ostream *stream)
{
    *stream << bomb.name;
}

const QString kInflates =
    u"its tags were not copied: its ID3 tag is not to be trusted: its compressed frames inflate to more than 32 MiB"_s;
const QString kCountless = u"its tags were not copied: its ID3 tag is not to be trusted: it has more than 10000 frames"_s;

const TagBomb kBombs[] = {
    {"FrameThatInflatesInAiff", u"bomb.aiff"_s, u"flac"_s,
     [](const TestFolder &folder, const QString &file) { folder.write(file, aiffWith(inflatingTag())); }, true,
     u"complete"_s, kInflates},
    {"FrameThatInflatesInWav", u"bomb.wav"_s, u"flac"_s,
     [](const TestFolder &folder, const QString &file) { folder.write(file, wavWith(inflatingTag())); }, true,
     u"complete"_s, u"a tag (TITLE) is not in the output"_s},
    {"FrameThatInflatesInApe", u"bomb.ape"_s, u"flac"_s, behindTag(inflatingTag, u"a.ape"_s), true,
     u"complete"_s, u"a tag (TITLE) is not in the output"_s},
    {"FrameThatInflatesInTta", u"bomb.tta"_s, u"flac"_s, behindTag(inflatingTag, u"a.tta"_s), false,
     u"complete"_s, kInflates},
    {"FrameThatInflatesInWavPack", u"bomb.wv"_s, u"m4a"_s, behindTag(inflatingTag, u"a.wv"_s), true,
     u"error"_s, u"the source cannot be decoded"_s},
    {"FrameThatInflatesInFlac", u"bomb.flac"_s, u"m4a"_s, behindTag(inflatingTag, u"a.flac"_s), false,
     u"complete"_s, kInflates},
    {"CountlessFramesInAiff", u"bomb.aiff"_s, u"m4a"_s,
     [](const TestFolder &folder, const QString &file) { folder.write(file, aiffWith(countlessFrames())); }, true,
     u"complete"_s, kCountless},
    {"CountlessFramesInTta", u"bomb.tta"_s, u"flac"_s, behindTag(countlessFrames, u"a.tta"_s), false,
     u"complete"_s, kCountless},
    {"HugePictureInAiff", u"bomb.aiff"_s, u"flac"_s,
     [](const TestFolder &folder, const QString &file) {
         folder.write(file, aiffWith(longId3Tag(4, title("bomb") + pictureBomb())));
     },
     true, u"complete"_s, u"its picture was not copied: it is too large, or does not tell its size"_s},
    {"LargeBlocksInFlac", u"bomb.flac"_s, u"m4a"_s,
     [](const TestFolder &folder, const QString &file) { writeSparseFlacWithSound(folder, file, 100); }, true,
     u"complete"_s, u"its tags were not copied: its tags are not to be trusted: they have more than 64 MiB"_s},
    {"CountlessBoxesInMpeg4", u"bomb.m4a"_s, u"flac"_s,
     [](const TestFolder &folder, const QString &file) {
         writeByFfmpeg(folder.path(u"plain.m4a"_s), {.seconds = 0.1}, {u"-c:a"_s, u"alac"_s});
         folder.write(file, withCountlessBoxes(folder.read(u"plain.m4a"_s)));
     },
     true, u"error"_s, u"Unable to open the file for reading"_s}};

class HostileTags : public ::testing::TestWithParam<TagBomb> {
protected:
    const TestFolder folder;
};

} // namespace

TEST_P(HostileTags, EndNoBatch)
{
    const TagBomb &bomb = GetParam();
    folder.makeFolder(u"in"_s);
    folder.makeFolder(u"out"_s);
    bomb.write(folder, u"in/"_s + bomb.file);
    const QStringList healthy{u"h1"_s, u"h2"_s, u"h3"_s};
    for (const QString &name : healthy)
        folder.write(u"in/%1.aiff"_s.arg(name), aiffWith(longId3Tag(4, title(name.toUtf8()))));
    QStringList arguments{u"encode"_s, u"--json"_s, u"--jobs=1"_s, u"--format"_s, bomb.format,
                          u"--output-dir"_s, folder.path(u"out"_s)};
    if (bomb.deletes)
        arguments += {u"--delete-originals"_s, u"--yes"_s};
    const MeasuredResult result = runMeasured(folder, arguments << folder.path(u"in"_s));
    EXPECT_EQ(result.exitStatus, 1) << result.errors.constData();
    EXPECT_LT(result.processorSeconds, 60);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LT(result.peakBytes, qint64{300} << 20);
#endif
    QStringList complete;
    for (const QJsonObject &job : jsonLines(result.output)) {
        const QString name = job[u"title"_s].toString();
        if (name == bomb.file) {
            EXPECT_EQ(job[u"status"_s].toString(), bomb.status);
            EXPECT_TRUE(job[u"reason"_s].toString().startsWith(bomb.reason)) << qPrintable(job[u"reason"_s].toString());
        } else if (job[u"status"_s].toString() == u"complete" && job[u"reason"_s].toString().isEmpty()) {
            complete.append(name);
        }
    }
    EXPECT_TRUE(folder.exists(u"in/"_s + bomb.file)) << "nothing that was lost is deleted";
    EXPECT_EQ(complete, (QStringList{u"h1.aiff"_s, u"h2.aiff"_s, u"h3.aiff"_s}));
    for (const QString &name : healthy)
        EXPECT_EQ(ffprobeTags(folder.path(u"out/%1.%2"_s.arg(name, bomb.format))).value(u"title"_s), name);
    EXPECT_TRUE(processesMentioning(folder.path()).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Bombs, HostileTags, ::testing::ValuesIn(kBombs),
                         [](const auto &bomb) { return std::string(bomb.param.name); });
