// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Shntool.h"

#include "programs/ShntoolModes.h"

#include "text/TextNumbers.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace nurv::shntool {

namespace {

/// The text with every figure in percent taken out, also those in names.
QString withoutPercent(const QString &text)
{
    QString rest;
    rest.reserve(text.size());
    qsizetype digits = 0; // at the end of `rest`
    for (const QChar character : text) {
        if (character == u'%' && digits > 0) {
            rest.chop(digits);
            digits = 0;
            continue;
        }
        digits = character >= u'0' && character <= u'9' ? digits + 1 : 0;
        rest += character;
    }
    return rest;
}

/// The number that ends right before the place.
double numberBefore(QStringView text, qsizetype place)
{
    qsizetype start = place;
    while (start > 0 && ((text[start - 1] >= u'0' && text[start - 1] <= u'9') || text[start - 1] == u'.'))
        --start;
    return leadingNumber(text.mid(start, place - start));
}

} // namespace

QStringList fixArguments(const QString &format, int level, const QString &outputFolder, const QStringList &sources)
{
    QStringList arguments{u"fix"_s,   u"-P"_s, u"pct"_s,     u"-O"_s, u"never"_s,
                          u"-k"_s, u"-d"_s, outputFolder, u"-o"_s};
    if (format == u"FLAC") {
        arguments << u"cust"_s << u"ext=flac"_s << u"{"_s << u"flac"_s << u"-s"_s << u'-' + QString::number(level)
                  << u"-o"_s << u"%f"_s << u"-"_s << u"}"_s;
    } else {
        arguments << format;
    }
    return arguments + sources;
}

QStringList fixedNames(const QString &source, const QString &format)
{
    return editedNames(source, u"-fixed"_s, format.toLower());
}

FixReport parseFixing(QStringView chunk)
{
    const QString piece = trimBackspaces(chunk);
    FixReport report{.text = withoutPercent(piece), .fileName = {}, .progress = {}};
    if (piece.contains(kFixing) || piece.contains(u") --> ["_s)) {
        const QStringView path = QStringView(piece).sliced(piece.indexOf(u'[') + 1);
        const qsizetype end = path.indexOf(kFixingPathEnd);
        report.fileName = QFileInfo((end < 0 ? path : path.first(end)).toString()).completeBaseName();
    }
    if (const qsizetype percent = piece.indexOf(u'%'); percent >= 0)
        report.progress = numberBefore(piece, percent);
    return report;
}

QString reasonOfFailedFixing(QStringView output)
{
    const QString kWarning = u"shntool [fix]: warning: "_s;
    const QString kError = u"shntool [fix]: error: "_s;
    QString warning;
    QString reason;
    for (const QStringView line : output.split(u'\n')) {
        // A figure may stand before it.
        if (const qsizetype at = line.indexOf(kWarning); at >= 0 && warning.isEmpty())
            warning = line.sliced(at + kWarning.size()).trimmed().toString();
        if (const qsizetype at = line.indexOf(kError); at >= 0)
            reason = line.sliced(at + kError.size()).trimmed().toString();
    }
    // These two say less than what stands above them.
    const bool isVague = reason.contains(u"see above"_s) || reason == u"failed to fix files";
    return isVague && !warning.isEmpty() ? warning : reason;
}

} // namespace nurv::shntool
