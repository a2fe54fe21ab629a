// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConversionArguments.h"

#include "app/PathNames.h"

using namespace Qt::StringLiterals;

namespace nurv::conversionArguments {

QStringList encodeFlac(const FlacEncoding &encoding, const QString &source, const QString &output)
{
    QStringList arguments{encoding.lax ? u"--lax"_s : u"-%1"_s.arg(encoding.level)};
    if (encoding.keepForeignMetadata)
        arguments << u"--keep-foreign-metadata"_s;
    if (encoding.verify)
        arguments << u"-V"_s;
    if (encoding.overwrite)
        arguments << u"-f"_s;
    return arguments << source << u"-o"_s << output;
}

QStringList flacByShntool(const FlacEncoding &encoding, const QString &source, const QString &outputFolder)
{
    const QString encoder = encoding.lax ? u"cust ext=flac flac --lax -o %f -"_s
                                         : u"cust ext=flac flac -"_s + QString::number(encoding.level) + u' '
                                               + (encoding.verify ? u" -V "_s : QString()) + u" -o %f -"_s;
    return {u"conv"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-d"_s, outputFolder, u"-o"_s, encoder, source};
}

QStringList encodeShorten(const QString &source, const QString &outputFolder)
{
    return {u"conv"_s, u"-o"_s, u"shn"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-d"_s, outputFolder, source};
}

QStringList decodeFlac(const QString &format, bool keepForeignMetadata, bool throughErrors, const QString &source,
                       const QString &output)
{
    QStringList arguments{u"-d"_s};
    if (keepForeignMetadata)
        arguments << u"--keep-foreign-metadata"_s;
    if (throughErrors)
        arguments << u"-F"_s;
    if (format == u"AIFF")
        arguments << u"--force-aiff-format"_s;
    return arguments << source << u"-o"_s << output;
}

QString decodedExtension(const QString &format)
{
    return format == u"AIFF" ? u"aiff"_s : u"wav"_s;
}

QString shntoolOutput(const QString &source, const QString &outputFolder, const QString &extension)
{
    static const QStringList known{u"wav"_s, u"aiff"_s, u"shn"_s, u"flac"_s, u"ape"_s, u"tta"_s, u"wv"_s};
    if (known.contains(pathExtension(source)))
        return outputPath(outputFolder, source, extension);
    return joinPath(outputFolder, lastPathComponent(source) + u'.' + extension);
}

QStringList decodeShorten(const QString &format, const QString &source, const QString &outputFolder)
{
    QStringList arguments{u"conv"_s, u"-o"_s};
    if (format == u"WAV")
        arguments << u"wav"_s;
    else if (format == u"AIFF")
        arguments << u"aiff"_s;
    return arguments << u"-P"_s << u"pct"_s << u"-O"_s << u"never"_s << u"-d"_s << outputFolder << source;
}

} // namespace nurv::conversionArguments
