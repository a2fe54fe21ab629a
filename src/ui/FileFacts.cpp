// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FileFacts.h"

#include "app/PathNames.h"
#include "files/FileStatus.h"
#include "text/HumanUnits.h"
#include "text/PrintableText.h"

#include <QCoreApplication>
#include <QStringList>

#include <cmath>

using namespace Qt::StringLiterals;

namespace nurv {

FileFacts FileFacts::read(const QString &path, const std::optional<FileFacts> &known)
{
    const std::optional<struct stat> status = statusOf(path);
    if (!status)
        return {};
    if (known && known->status && isSameFile(*known->status, *status) && isUntouched(*known->status, *status))
        return *known;
    return {.status = status, .sound = S_ISREG(status->st_mode) ? soundLength(path) : std::nullopt};
}

std::optional<double> FileFacts::seconds() const
{
    if (!sound || sound->sampleRateHz <= 0)
        return std::nullopt;
    const std::optional<std::int64_t> frames = sound->heldFrames       ? sound->heldFrames
                                               : sound->declaredFrames ? sound->declaredFrames
                                                                       : sound->roughFrames;
    if (!frames || *frames < 0)
        return std::nullopt;
    return static_cast<double>(*frames) / sound->sampleRateHz;
}

namespace fileFactWords {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("fileFactWords", text);
}

/// "24/96": bits and kilohertz; of a lossy sound "44.1 kHz".
QString shape(const SoundLength &sound)
{
    const QString kilohertz = QString::number(sound.sampleRateHz / 1000.0, 'g', 6);
    return sound.bitsPerSample > 0 ? u"%1/%2"_s.arg(QString::number(sound.bitsPerSample), kilohertz)
                                   : tr("%1 kHz").arg(kilohertz);
}

} // namespace

QString clock(double seconds)
{
    const qint64 whole = std::llround(seconds);
    const QChar zero(u'0');
    const QString behind = u"%1:%2"_s.arg(whole / 60 % 60, whole >= 3600 ? 2 : 1, 10, zero).arg(whole % 60, 2, 10, zero);
    return whole >= 3600 ? u"%1:%2"_s.arg(whole / 3600).arg(behind) : behind;
}

QString line(const QString &path, const FileFacts &facts)
{
    if (!facts.status)
        return tr("no longer there");
    QStringList parts;
    if (const QString kind = pathExtension(path).toUpper(); !kind.isEmpty())
        parts.append(printableLine(kind));
    if (facts.sound && facts.sound->sampleRateHz > 0)
        parts.append(shape(*facts.sound));
    if (facts.sound && facts.sound->channels > 0)
        parts.append(tr("%1 ch").arg(facts.sound->channels));
    if (const std::optional<double> seconds = facts.seconds())
        parts.append(clock(*seconds));
    parts.append(sizeText(facts.bytes()));
    return parts.join(u" · "_s);
}

} // namespace fileFactWords

} // namespace nurv
