// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Lame.h"

#include "programs/Shntool.h"
#include "text/TextNumbers.h"

using namespace Qt::StringLiterals;

namespace nurv::lame {

namespace {

using namespace programOutput;

/// Where the end of a figure has to stand at least, the least places before it where one is, and their number.
constexpr qsizetype kLeastPlace = 5;
constexpr qsizetype kBeforeEnd = 3;
constexpr qsizetype kFigureLength = 4;

QString label()
{
    return u"Encoding to MP3: "_s;
}

QStringView trimPunctuation(QStringView text)
{
    while (!text.isEmpty() && text.front().isPunct())
        text = text.sliced(1);
    while (!text.isEmpty() && text.back().isPunct())
        text.chop(1);
    return text;
}

ProgramStage shntoolStage(const Mp3Encoding &encoding, const QStringList &place, const QString &source)
{
    const QString encoder = u"cust ext=mp3 lame %1 %2 - %f"_s.arg(encoding.option()).arg(encoding.level);
    return {.name = shntool::program().name,
            .arguments = QStringList{u"conv"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-o"_s, encoder} + place
                         + QStringList{source},
            .parse = inSteps(parseByShntool),
            .stopsOnError = false};
}

} // namespace

const ExternalProgram &program()
{
    static const ExternalProgram program{.name = u"lame"_s, .package = u"lame"_s, .purpose = u"encodes MP3"_s, .leavesHalfMadeOutput = true};
    return program;
}

QString Mp3Encoding::option() const
{
    return type == u"CBR" ? u"-b"_s : u"-V"_s;
}

ProgramStage encoding(const Mp3Encoding &encoding, const QString &wav, const QString &output)
{
    return {.name = program().name,
            .arguments = {u"--brief"_s, encoding.option(), QString::number(encoding.level), wav, output},
            .parse = inSteps(parse),
            .stopsOnError = false,
            .replacesOutput = true};
}

ProgramStage encodingByShntool(const Mp3Encoding &encoding, const QString &source, const QString &folder)
{
    return shntoolStage(encoding, {u"-d"_s, folder}, source);
}

ProgramStage encodingByShntoolTo(const Mp3Encoding &encoding, const QString &source, const QString &output)
{
    return shntoolStage(encoding, {u"-n"_s, output}, source);
}

ChunkReport parseByShntool(QStringView chunk)
{
    ChunkReport report{.status = {}, .progress = {}, .results = shntool::conversionResults(chunk)};
    const QString text = trimBackspaces(chunk);
    if (text.contains(u'%'))
        showFigure(report, text, label());
    return report;
}

ChunkReport parse(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = text};
    const qsizetype end = text.indexOf(u"%)|"_s);
    if (end < kLeastPlace)
        return report;
    const QStringView figure = trimPunctuation(QStringView(text).sliced(end - kBeforeEnd, kFigureLength));
    showFigure(report, figure, label());
    return report;
}

} // namespace nurv::lame
