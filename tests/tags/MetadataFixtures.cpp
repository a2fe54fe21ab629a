// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "MetadataFixtures.h"

#include "support/AudioFixtures.h"
#include "support/TestProgram.h"

#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

QString bundled(const QString &name)
{
    return qEnvironmentVariable("NURV_TOOLS") + u'/' + name;
}

QByteArray bigEndian(quint32 number)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

} // namespace

void run(const QString &program, const QStringList &arguments)
{
    const ProgramResult result = runProgram(program, arguments);
    EXPECT_EQ(result.exitStatus, 0) << qPrintable(program) << ' ' << qPrintable(arguments.join(u' ')) << ": "
                                    << result.output.constData() << result.errors.constData();
}

QString addFlacTags(const QString &path, const Fields &fields, const QString &picture)
{
    QStringList arguments;
    for (const auto &[name, value] : fields)
        arguments << u"--set-tag=%1=%2"_s.arg(name, value);
    if (!picture.isEmpty())
        arguments << u"--import-picture-from="_s + picture;
    run(u"metaflac"_s, arguments << path);
    return path;
}

QString addWavPackTags(const QString &path, const Fields &fields, const QString &picture)
{
    QStringList arguments{u"-q"_s};
    for (const auto &[name, value] : fields)
        arguments << u"-w"_s << name + u'=' + value;
    if (!picture.isEmpty())
        arguments << u"--write-binary-tag"_s << u"Cover Art (Front)=@"_s + picture;
    run(u"wvtag"_s, arguments << path);
    return path;
}

QString addMp4Tags(const QString &path, const Fields &options)
{
    QStringList arguments{path, u"--overWrite"_s};
    for (const auto &[option, value] : options)
        arguments << option << value;
    run(u"AtomicParsley"_s, arguments);
    return path;
}

QString writeTaggedAiff(const QString &path, const Fields &fields, const QString &picture, int id3Version)
{
    const QString plain = path + u".plain.aiff"_s;
    writeAiff(plain, {.seconds = 0.5});
    QStringList arguments{u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, plain};
    if (!picture.isEmpty())
        arguments << u"-i"_s << picture << u"-map"_s << u"0"_s << u"-map"_s << u"1"_s << u"-c:v"_s << u"copy"_s
                  << u"-disposition:v"_s << u"attached_pic"_s;
    for (const auto &[name, value] : fields)
        arguments << u"-metadata"_s << name + u'=' + value;
    arguments << u"-write_id3v2"_s << u"1"_s << u"-id3v2_version"_s << QString::number(id3Version) << path;
    run(u"ffmpeg"_s, arguments);
    QFile::remove(plain);
    return path;
}

void copyApeTag(const QString &wavPack, const QString &path)
{
    QFile source(wavPack);
    QFile target(path);
    ASSERT_TRUE(source.open(QIODevice::ReadOnly) && target.open(QIODevice::Append));
    const QByteArray bytes = source.readAll();
    const qsizetype tag = bytes.indexOf("APETAGEX");
    ASSERT_GT(tag, 0);
    target.write(bytes.mid(tag));
}

QString encodeMonkeysAudio(const QString &wav, const QString &path)
{
    run(bundled(u"mac"_s), {wav, path, u"-c2000"_s});
    return path;
}

QString encodeShorten(const QString &wav, const QString &path)
{
    run(bundled(u"shorten"_s), {wav, path});
    return path;
}

QString encodeTta(const QString &wav, const QString &path)
{
    run(bundled(u"ttaenc"_s), {u"-e"_s, u"-o"_s, path, wav});
    return path;
}

QByteArray aiffChunk(const char *fourCharacters, const QByteArray &contents)
{
    return QByteArray(fourCharacters, 4) + bigEndian(static_cast<quint32>(contents.size())) + contents
           + QByteArray(contents.size() % 2, '\0');
}

QByteArray withAiffChunks(QByteArray aiff, const QByteArray &chunks)
{
    aiff += chunks;
    qToBigEndian(static_cast<quint32>(aiff.size() - 8), aiff.data() + 4);
    return aiff;
}

QByteArray id3Frame(const QByteArray &id, const QByteArray &contents, int flags)
{
    EXPECT_LT(contents.size(), 128) << "where sizes of both versions are the same";
    const auto flagByte = static_cast<char>(flags);
    return id + bigEndian(static_cast<quint32>(contents.size())) + QByteArray(1, '\0') + flagByte + contents;
}

QByteArray id3Tag(int version, const QByteArray &frames, int flags)
{
    const QByteArray contents = frames + QByteArray(20, '\0');
    const auto size = static_cast<quint32>(contents.size());
    QByteArray head("ID3\0\0\0", 6);
    head[3] = static_cast<char>(version);
    head[5] = static_cast<char>(flags);
    return head + bigEndian((size & 0x3f80U) << 1 | (size & 0x7fU)) + contents;
}

QByteArray id3v1Tag(const QByteArray &title, const QByteArray &artist, const QByteArray &album, const QByteArray &year,
                    const QByteArray &comment, int track, int genre)
{
    const auto field = [](const QByteArray &text, qsizetype size) { return text.left(size).leftJustified(size, '\0'); };
    return "TAG" + field(title, 30) + field(artist, 30) + field(album, 30) + field(year, 4) + field(comment, 28)
           + QByteArray(1, '\0') + static_cast<char>(track) + static_cast<char>(genre);
}

} // namespace nurv::test
