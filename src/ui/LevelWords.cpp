// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/LevelWords.h"

#include <QCoreApplication>

#include <array>

using namespace Qt::StringLiterals;

namespace nurv::levelWords {

namespace {

QString word(const char *text)
{
    return QCoreApplication::translate("LevelWords", text);
}

QString withWord(int level, const char *text)
{
    return u"%1 – %2"_s.arg(QString::number(level), word(text));
}

} // namespace

QString flac(int level)
{
    if (level <= 0)
        return withWord(level, QT_TRANSLATE_NOOP("LevelWords", "fastest"));
    if (level < 5)
        return withWord(level, QT_TRANSLATE_NOOP("LevelWords", "faster"));
    if (level == 5)
        return withWord(level, QT_TRANSLATE_NOOP("LevelWords", "normal"));
    return level < 8 ? withWord(level, QT_TRANSLATE_NOOP("LevelWords", "smaller"))
                     : withWord(level, QT_TRANSLATE_NOOP("LevelWords", "smallest"));
}

QString monkeysAudio(int level)
{
    constexpr std::array kNames{QT_TRANSLATE_NOOP("LevelWords", "fast"), QT_TRANSLATE_NOOP("LevelWords", "normal"),
                                QT_TRANSLATE_NOOP("LevelWords", "high"), QT_TRANSLATE_NOOP("LevelWords", "extra high"),
                                QT_TRANSLATE_NOOP("LevelWords", "insane")};
    const int place = level / 1000 - 1;
    if (level % 1000 != 0 || place < 0 || place >= static_cast<int>(kNames.size()))
        return QString::number(level);
    return withWord(level, kNames[static_cast<std::size_t>(place)]);
}

QString mp3(int quality)
{
    if (quality <= 0)
        return withWord(quality, QT_TRANSLATE_NOOP("LevelWords", "best"));
    if (quality <= 2)
        return withWord(quality, QT_TRANSLATE_NOOP("LevelWords", "very good"));
    if (quality <= 5)
        return withWord(quality, QT_TRANSLATE_NOOP("LevelWords", "good"));
    return quality < 9 ? withWord(quality, QT_TRANSLATE_NOOP("LevelWords", "smaller"))
                       : withWord(quality, QT_TRANSLATE_NOOP("LevelWords", "smallest"));
}

} // namespace nurv::levelWords
