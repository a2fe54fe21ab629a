// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/TaggedSource.h"

#include "support/TestProgram.h"

#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

const QString kSourceTitle = u"Ночь “8½”"_s;
const QString kSourceArtist = u"Ensemble & Söhne"_s;

namespace {

/// An APEv2 tag as it stands at the end of a file: items and a footer.
QByteArray apeTag(const QList<std::pair<QByteArray, QString>> &items)
{
    const auto number = [](quint32 value) {
        QByteArray bytes(4, Qt::Uninitialized);
        qToLittleEndian(value, bytes.data());
        return bytes;
    };
    QByteArray body;
    for (const auto &[key, text] : items) {
        const QByteArray value = text.toUtf8();
        body += number(static_cast<quint32>(value.size())) + number(0) + key + '\0' + value;
    }
    return body + "APETAGEX" + number(2000) + number(static_cast<quint32>(body.size() + 32))
           + number(static_cast<quint32>(items.size())) + number(0) + QByteArray(8, '\0');
}

void runOrFail(const QString &program, const QStringList &arguments)
{
    const ProgramResult result = runProgram(program, arguments);
    ASSERT_EQ(result.exitStatus, 0) << qPrintable(program) << ' ' << result.errors.constData();
}

QString builtProgram(const QString &name)
{
    return QString::fromLocal8Bit(NURV_BUILT_PROGRAMS) + u'/' + name;
}

} // namespace

void makeTaggedSource(const QString &path, const QString &kind, const SoundShape &shape)
{
    const QStringList tags{u"-metadata"_s, u"title="_s + kSourceTitle, u"-metadata"_s, u"artist="_s + kSourceArtist};
    const QString wav = path + u".plain.wav"_s;
    if (kind == u"WAV") {
        writeWav(path, shape);
    } else if (kind == u"AIFF") {
        const QString codec = shape.bits == 8 ? u"pcm_s8"_s : u"pcm_s%1be"_s.arg(shape.bits);
        writeByFfmpeg(path, shape, QStringList{u"-c:a"_s, codec, u"-write_id3v2"_s, u"1"_s} + tags);
    } else if (kind == u"FLAC" && shape.bits == 8) {
        // FFmpeg's encoder makes 16 bits of them.
        runOrFail(u"flac"_s, {u"-s"_s, u"--tag=title="_s + kSourceTitle, u"--tag=artist="_s + kSourceArtist,
                              writeWav(wav, shape), u"-o"_s, path});
    } else if (kind == u"FLAC" || kind == u"M4A") {
        QStringList codec;
        if (kind == u"M4A")
            codec << u"-c:a"_s << u"alac"_s << u"-sample_fmt"_s << (shape.bits == 16 ? u"s16p"_s : u"s32p"_s);
        writeByFfmpeg(path, shape, codec + tags);
    } else if (kind == u"TTA") {
        writeByFfmpeg(path, shape);
    } else if (kind == u"WV") {
        runOrFail(u"wavpack"_s, {u"-q"_s, u"-w"_s, u"Title="_s + kSourceTitle, u"-w"_s, u"Artist="_s + kSourceArtist,
                                 writeWav(wav, shape), u"-o"_s, path});
    } else if (kind == u"SHN") {
        runOrFail(builtProgram(u"shorten"_s), {writeWav(wav, shape), path});
    } else if (kind == u"APE") {
        runOrFail(builtProgram(u"mac"_s), {writeWav(wav, shape), path, u"-c1000"_s});
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(apeTag({{"Title", kSourceTitle}, {"Artist", kSourceArtist}}));
    }
    ASSERT_TRUE(!QFile::exists(wav) || QFile::remove(wav));
}

} // namespace nurv::test
