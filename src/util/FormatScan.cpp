// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/FormatScan.h"

#include "app/PathNames.h"
#include "audio/CoreAudioHelper.h"
#include "tags/FlacTagHelper.h"

#include <cmath>
#include <optional>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

std::optional<AudioFormatObject> formatOf(const QString &path)
{
    const QString word = formatWord(path);
    if (word == u"FLAC")
        return FlacTagHelper::getFormatInfo(path);
    return isAiff(word) ? std::nullopt : CoreAudioHelper::getFormatInfo(path);
}

bool areAlike(const AudioFormatObject &left, const AudioFormatObject &right)
{
    return left.sampleRate == right.sampleRate && left.bitsPerChannel == right.bitsPerChannel
           && left.channels == right.channels;
}

} // namespace

FormatScan FormatScan::of(const QStringList &paths, const std::function<bool()> &isUnwanted)
{
    FormatScan scan;
    for (const QString &path : paths) {
        if (isUnwanted()) {
            scan.ending = Ending::GivenUp;
            break;
        }
        const std::optional<AudioFormatObject> format = formatOf(path);
        if (!format) {
            scan.ending = Ending::Refused;
            break;
        }
        scan.formats.push_back(*format);
        if (!areAlike(scan.formats.front(), *format)) {
            scan.ending = Ending::Mismatch;
            break;
        }
    }
    return scan;
}

QString parseTimeAsString(double seconds)
{
    constexpr double kMinute = 60.0;
    constexpr int kTwoDigits = 10;
    const double minutes = std::floor(seconds / kMinute);
    const int rest = static_cast<int>(seconds - kMinute * minutes);
    return u"%1:%2%3"_s.arg(QString::number(static_cast<qint64>(minutes)), rest < kTwoDigits ? u"0"_s : QString(),
                            QString::number(rest));
}

QString parseSizeFromTimeAsString(double seconds, int sampleRate, int bitDepth, int channels)
{
    constexpr double kBitsPerMegabyte = 8000000.0;
    const double bits = seconds * sampleRate * bitDepth * channels;
    return u"%1 MB"_s.arg(bits / kBitsPerMegabyte, 0, 'f', 2);
}

} // namespace nurv
