// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolbox/ToolSettings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kBestFlacLevel = 8;
constexpr int kMostBitRate = 2048;
/// Leaves room for the longest names of folders that people give.
constexpr qsizetype kLongestEndingBytes = 64;

QStringList words(const QString &text)
{
    return text.split(u' ');
}

Setting text(const QString &key, const QString &standard, const QString &meaning,
             const std::function<QString(const QString &)> &objection)
{
    return {.key = key, .kind = Setting::Kind::Text, .standard = standard, .meaning = meaning, .objection = objection};
}

bool hasControlCharacters(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar character) {
        return character.category() == QChar::Other_Control || character == QChar::LineSeparator
               || character == QChar::ParagraphSeparator;
    });
}

/// Of the names of fingerprint lists, which are "fingerprint." or a folder's name and the ending.
QString objectionToEnding(const QString &ending)
{
    if (ending.trimmed().isEmpty())
        return u"must not be empty"_s;
    if (ending.contains(u'/'))
        return u"must not contain \"/\": it is the end of a name, not a path"_s;
    if (ending.startsWith(u'.'))
        return u"must not begin with a dot: one is put before it"_s;
    if (hasControlCharacters(ending))
        return u"must be one line of plain text"_s;
    if (ending.startsWith(u' ') || ending.endsWith(u' '))
        return u"must not begin or end with a blank"_s;
    if (ending.toUtf8().size() > kLongestEndingBytes)
        return u"is too long for a file name"_s;
    return {};
}

QString objectionToPattern(const QString &pattern)
{
    QString rest = pattern.trimmed();
    if (rest.isEmpty())
        return u"must not be empty"_s;
    if (rest.remove(u'/').isEmpty())
        return u"must have more than slashes: those at its ends are left out"_s;
    if (hasControlCharacters(pattern))
        return u"must be one line"_s;
    return {};
}

Setting surroundOrder()
{
    Setting setting{.key = u"incomingSurroundOrder"_s,
                    .kind = Setting::Kind::Choice,
                    .standard = u"L R C LFE LS RS (STANDARD)"_s,
                    .meaning = u"Order of the channels that is assumed for sound of six channels"_s};
    setting.choices = {{u"standard"_s, setting.standard},
                       {u"film"_s, u"L C R LS RS LFE (FILM)"_s},
                       {u"dts"_s, u"L R LS RS C LFE (DTS)"_s},
                       {u"aac"_s, u"C L R LS RS LFE (AAC)"_s}};
    return setting;
}

} // namespace

std::vector<Setting> decodeSettings()
{
    return {Setting::onOff(u"decodeToSourceDirectory"_s, 0, u"Decode: write beside the source"_s)};
}

std::vector<Setting> encodeSettings()
{
    return {Setting::choice(u"encodeOutputFormat"_s, 2, words(u"shn wv flac tta ape m4a"_s), u"Encode: the output format"_s),
            Setting::number(u"encodeFlacLevel"_s, 5, 0, kBestFlacLevel, u"Encode: FLAC's compression level"_s),
            Setting::onOff(u"flacVerifyButton"_s, 0, u"Encode: let flac verify while it encodes"_s),
            Setting::onOff(u"flacKeepForeignMetadataButton"_s, 0, u"Encode: keep foreign metadata in FLAC files"_s),
            Setting::onOff(u"flacGenerateFFPButton"_s, 0, u"Encode: write a list of fingerprints after FLAC files"_s),
            Setting::onOff(u"encodeToSourceDirectory"_s, 0, u"Encode: write beside the source"_s)};
}

std::vector<Setting> checksumSettings()
{
    return {text(u"ffpExtension"_s, u"ffp.txt"_s, u"What the names of fingerprint lists end in"_s, objectionToEnding),
            Setting::onOff(u"checksumFileUsesOutputDirName"_s, false, u"Name checksum lists after their folder"_s),
            Setting::onOff(u"checksumAnyList"_s, 0, u"Checksum: understand lists of other programs"_s)};
}

std::vector<Setting> shntoolSettings()
{
    return {text(u"shntoolNamesFormat"_s, u"%number. %name %time"_s,
                 u"SHNtool: a line of a set list; %number, %name and %time stand for those of a track"_s, objectionToPattern),
            Setting::choice(u"shntoolCommandOption"_s, 0, words(u"len info cmp trim pad strip split join cue"_s),
                            u"SHNtool: the command"_s),
            Setting::choice(u"shntoolLenOption"_s, 0, words(u"normal fileset disc"_s), u"SHNtool: the kind of length report"_s),
            Setting::choice(u"shntoolOutputFormat"_s, 1, words(u"shn flac aiff wav"_s), u"SHNtool: the output format"_s),
            Setting::onOff(u"shntoolPreview"_s, 1, u"SHNtool: show what will be made before the start"_s)};
}

std::vector<Setting> fixSettings()
{
    return {Setting::choice(u"fixOutputFormat"_s, 1, words(u"shn flac aiff wav"_s), u"Fix SBE: the output format"_s),
            Setting::number(u"fixFlacLevel"_s, 4, 0, kBestFlacLevel, u"Fix SBE: FLAC's compression level"_s)};
}

std::vector<Setting> utilSettings()
{
    return {Setting::onOff(u"utilRenamePreview"_s, 1, u"Util: show old and new names before files are renamed"_s)};
}

std::vector<Setting> tagsSettings()
{
    return {Setting::onOff(u"tagsPreview"_s, 1, u"Tags: show what will change before it is written"_s)};
}

std::vector<Setting> lossySettings()
{
    return {Setting::number(u"lossySliderLevel"_s, 3, 0, 9, u"Lossy: MP3 quality with VBR; 0 is the best"_s),
            Setting::number(u"lossyStepperLevel"_s, 88, 0, 127, u"Lossy: AAC quality with VBR; 127 is the best"_s),
            Setting::number(u"lossyComboLevel"_s, 160, 6, kMostBitRate, u"Lossy: bit rate in kbit/s"_s),
            Setting::choice(u"opusFrameSizeIndex"_s, 3, words(u"2.5ms 5ms 10ms 20ms 40ms 60ms"_s),
                            u"Lossy: length of an Opus frame"_s),
            Setting::onOff(u"encodeLossyToSourceDirectory"_s, 0, u"Lossy: write beside the source"_s),
            surroundOrder()};
}

} // namespace nurv
