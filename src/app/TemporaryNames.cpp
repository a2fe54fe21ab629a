// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TemporaryNames.h"

#include "files/PrivateFolderName.h"

#include <algorithm>

namespace nurv {

namespace {

constexpr QStringView kStagePrefix = u"Nurv-";
constexpr QStringView kHiddenPrefix = u".nurv-";
constexpr QStringView kPartSuffix = u".part";
constexpr QStringView kKeptSuffix = u".kept";
constexpr QStringView kTagsPrefix = u"tags-";
constexpr qsizetype kTagsLetters = 6;
constexpr qsizetype kPartLetters = 12;
constexpr qsizetype kStageDigits = 8;

bool isHexDigit(QChar character)
{
    return (character >= u'0' && character <= u'9') || (character >= u'a' && character <= u'f');
}

bool isPlain(QChar character)
{
    return (character >= u'0' && character <= u'9') || (character >= u'a' && character <= u'z')
           || (character >= u'A' && character <= u'Z');
}

bool consistsOf(QStringView text, qsizetype length, bool (*isOne)(QChar))
{
    return text.size() == length && std::all_of(text.begin(), text.end(), isOne);
}

bool isStageName(QStringView name)
{
    const qsizetype point = kStagePrefix.size() + kStageDigits + 1 + kStageDigits;
    if (!name.startsWith(kStagePrefix) || name.size() < point + 2 || name[point] != u'.')
        return false;
    const QStringView middle = name.sliced(kStagePrefix.size(), point - kStagePrefix.size());
    return middle[kStageDigits] == u'-' && consistsOf(middle.first(kStageDigits), kStageDigits, isHexDigit)
           && consistsOf(middle.sliced(kStageDigits + 1), kStageDigits, isPlain);
}

bool isPrivateFolderName(QStringView name)
{
    constexpr QLatin1StringView kPrefix(kPrivateFolderPrefix.data(), kPrivateFolderPrefix.size());
    return name.startsWith(kPrefix) && consistsOf(name.sliced(kPrefix.size()), kPrivateFolderLetters, isPlain);
}

} // namespace

TemporaryKind temporaryKind(QStringView name)
{
    if (isStageName(name))
        return TemporaryKind::Stage;
    if (name.endsWith(kFlacScratchSuffix) || name.endsWith(kMetaflacScratchSuffix))
        return TemporaryKind::Scratch;
    if (!name.startsWith(kHiddenPrefix))
        return TemporaryKind::None;
    const QStringView rest = name.sliced(kHiddenPrefix.size());
    if (rest.startsWith(kTagsPrefix) && consistsOf(rest.sliced(kTagsPrefix.size()), kTagsLetters, isPlain))
        return TemporaryKind::Stage;
    if (rest.endsWith(kKeptSuffix))
        return TemporaryKind::Kept;
    if (rest.endsWith(kPartSuffix) && consistsOf(rest.chopped(kPartSuffix.size()), kPartLetters, isPlain))
        return TemporaryKind::Part;
    return isPrivateFolderName(name) ? TemporaryKind::PrivateFolder : TemporaryKind::None;
}

} // namespace nurv
