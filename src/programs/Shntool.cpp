// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Shntool.h"

#include "programs/MonkeysAudio.h"
#include "programs/Shorten.h"
#include "programs/Wavpack.h"
#include "text/TextNumbers.h"

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace nurv::shntool {

namespace {

using namespace programOutput;

/// The oldest version of Monkey's Audio, in thousandths, that it reads itself.
constexpr int kOldestMonkeysAudio = 3990;

constexpr int kId3HeadSize = 10;

const QString kHere = u"./"_s;

/// The program that decodes the source for it; empty for what it reads itself.
QString decoderOf(const QString &source)
{
    // A device or a pipe must not be waited for.
    if (!QFileInfo(source).isFile())
        return {};
    QFile file(source);
    QByteArray head = file.open(QIODevice::ReadOnly) ? file.read(kId3HeadSize) : QByteArray();
    // It passes over a tag in front, of which 7 bits of each of 4 bytes tell the size (ID3v2.4.0, section 3.1).
    if (head.startsWith("ID3") && head.size() == kId3HeadSize) {
        qint64 size = kId3HeadSize;
        for (int at = 6; at < kId3HeadSize; ++at)
            size += qint64{head[at] & 0x7F} << 7 * (kId3HeadSize - 1 - at);
        head = file.seek(size) ? file.read(kId3HeadSize) : QByteArray();
    }
    if (head.startsWith("wvpk"))
        return wavpack::decoder().name;
    if (!head.startsWith("MAC ") || head.size() < 6)
        return {};
    const int version = static_cast<unsigned char>(head[4]) | static_cast<unsigned char>(head[5]) << 8;
    return version < kOldestMonkeysAudio ? monkeysAudio::program().name : QString();
}

ChunkReport parseShortenToWavAs(QStringView chunk, const QString &label)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = conversionResults(chunk)};
    if (text.contains(u'%')) {
        showFigure(report, text, label);
    } else {
        report.progress = -1.0;
        report.status = label + sixDecimals(-1.0) + u'%';
    }
    return report;
}

/// The program that encodes the word behind "-o" for it; empty for WAV.
QString encoderOf(const QString &format)
{
    if (format == u"shn")
        return shorten::program().name;
    if (format == u"aiff")
        return u"sox"_s;
    if (format == u"flac")
        return flac::program().name;
    // "cust ext=flac flac -5 -o %f -"
    return format.startsWith(u"cust ") ? format.section(u' ', 2, 2) : QString();
}

} // namespace

const ExternalProgram &program()
{
    static const ExternalProgram program{.name = u"shntool"_s,
                                         .isBundled = true,
                                         .package = {},
                                         .purpose = u"measures, splits, joins, trims and converts lossless files"_s,
                                         .isRequired = true,
                                         .placesWholeOutput = true,
                                         .startedBy = startedBy};
    return program;
}

QStringList startedBy(const QStringList &arguments)
{
    const QString mode = arguments.value(0);
    const qsizetype format = arguments.indexOf(u"-o"_s);
    const bool writes = format >= 0;
    static const QStringList readers{u"hash"_s, u"len"_s, u"info"_s, u"cmp"_s, u"cue"_s};
    static const QStringList editors{u"trim"_s, u"pad"_s, u"strip"_s, u"split"_s, u"join"_s};
    QStringList names;
    if (readers.contains(mode) || (writes && editors.contains(mode))) {
        // What is no file of sound, such as a word or a list of points, needs no decoder.
        for (const QString &word : arguments.sliced(1))
            names << decoderOf(word);
    } else if (writes && (mode == u"conv" || mode == u"fix")) {
        for (qsizetype source = mode == u"fix" ? format + 2 : arguments.size() - 1; source < arguments.size(); ++source)
            names << decoderOf(arguments.at(source));
    } else {
        return {};
    }
    if (writes && !readers.contains(mode))
        names << encoderOf(arguments.value(format + 1));
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}

QStringList toShortenArguments(const QString &source, const QString &outputFolder)
{
    return {u"conv"_s, u"-o"_s, u"shn"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-d"_s, outputFolder, source};
}

QStringList toFlacArguments(const flac::Encoding &encoding, const QString &source, const QString &outputFolder)
{
    const QString encoder = encoding.lax ? u"cust ext=flac flac --lax -o %f -"_s
                                         : u"cust ext=flac flac -"_s + QString::number(encoding.level) + u' '
                                               + (encoding.verify ? u" -V "_s : QString()) + u" -o %f -"_s;
    return {u"conv"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-d"_s, outputFolder, u"-o"_s, encoder, source};
}

QStringList fromShortenArguments(const QString &format, const QString &source, const QString &outputFolder)
{
    QStringList arguments{u"conv"_s, u"-o"_s};
    if (format == u"WAV")
        arguments << u"wav"_s;
    else if (format == u"AIFF")
        arguments << u"aiff"_s;
    return arguments << u"-P"_s << u"pct"_s << u"-O"_s << u"never"_s << u"-d"_s << outputFolder << source;
}

bool replacesExtension(const QString &extension)
{
    static const QStringList known{u"wav"_s, u"aiff"_s, u"shn"_s, u"flac"_s, u"ape"_s, u"tta"_s, u"wv"_s};
    return known.contains(extension);
}

QStringList hashArguments(const QString &path)
{
    return {u"hash"_s, path};
}

QStringList hashListArguments(const QStringList &names)
{
    QStringList arguments{u"hash"_s, u"-m"_s};
    // A name that begins with a dash would be taken for an option.
    for (const QString &name : names)
        arguments.append(name.startsWith(u'-') ? kHere + name : name);
    return arguments;
}

QString hashedName(const QString &argument)
{
    return argument.startsWith(kHere) ? argument.sliced(kHere.size()) : argument;
}

ProgramStage shortenToWav(const QString &source, const QString &wav)
{
    return {.name = program().name,
            .arguments = {u"conv"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"always"_s, u"-o"_s, u"wav"_s, u"-n"_s, wav, source},
            .parse = parseShortenToWav};
}

ProgramStage shortenToWavForOpus(const QString &source, const QString &wav)
{
    ProgramStage stage = shortenToWav(source, wav);
    stage.parse = labelled(parseShortenToWavAs, u"Decoding to Wav: "_s);
    return stage;
}

QString conversionResults(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    QString results;
    if (text.contains(u"Converting"_s))
        results += before(text, u": ");
    if (text.contains(u"ERROR"_s) || text.contains(u"OK"_s))
        results += text;
    results += text;
    return results;
}

ChunkReport parseToShorten(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = conversionResults(chunk), .repaintsTitle = true};
    if (text.contains(u'%'))
        showFigure(report, text, u"Encoding to SHN: "_s);
    return report;
}

ChunkReport parseToFlac(QStringView chunk, const QString &type)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = conversionResults(chunk), .repaintsTitle = true};
    if (text.contains(u'%')) {
        const QStringView percent = before(text, u"%");
        report.progress = leadingNumber(percent);
        report.status = u"Encoding %1 to Flac: %2%"_s.arg(type, percent);
    }
    return report;
}

ChunkReport parseFromShorten(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = text, .repaintsTitle = true};
    if (text.contains(u'%'))
        showFigure(report, text, u"Decoding SHN: "_s);
    return report;
}

ChunkReport parseShortenToWav(QStringView chunk)
{
    return parseShortenToWavAs(chunk, kToWav.toString());
}

} // namespace nurv::shntool
