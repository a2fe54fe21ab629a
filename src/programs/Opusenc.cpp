// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Opusenc.h"

#include <QList>

using namespace Qt::StringLiterals;

namespace nurv::opusenc {

const ExternalProgram &program()
{
    static const ExternalProgram program{
        .name = u"opusenc"_s, .package = u"opus-tools"_s, .purpose = u"encodes Opus"_s, .leavesHalfMadeOutput = true};
    return program;
}

std::optional<QString> OpusEncoding::modeWord() const
{
    if (type == u"CBR")
        return u"hard-cbr"_s;
    if (type == u"VBR Constrained")
        return u"cvbr"_s;
    if (type == u"VBR")
        return u"vbr"_s;
    return std::nullopt;
}

std::optional<QString> OpusEncoding::frameSizeWord() const
{
    for (const double known : {2.5, 5.0, 10.0, 20.0, 40.0, 60.0}) {
        if (frameSize == known)
            return QString::number(known);
    }
    return std::nullopt;
}

ProgramStage encoding(const OpusEncoding &encoding, const Texts &texts, const QString &input, const QString &output)
{
    QStringList arguments{u"--"_s + encoding.modeWord().value(), u"--bitrate"_s, QString::number(encoding.bitRate),
                          u"--framesize"_s, encoding.frameSizeWord().value()};
    if (texts.title)
        arguments << u"--title"_s << *texts.title;
    if (texts.artist)
        arguments << u"--artist"_s << *texts.artist;
    return {.name = program().name,
            .arguments = arguments << input << output,
            .parse = [](const QString &chunk) { return ChunkReport{.status = {}, .progress = {}, .results = chunk}; },
            .stopsOnError = false,
            .replacesOutput = true};
}

} // namespace nurv::opusenc
