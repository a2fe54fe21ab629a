// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Metaflac.h"

#include "text/TextNumbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv::metaflac {

namespace {

// The kernel's limit for one argument (MAX_ARG_STRLEN), its end mark included.
constexpr qsizetype kArgumentLimit = 128 * 1024;

} // namespace

const ExternalProgram &program()
{
    static const ExternalProgram program{.name = u"metaflac"_s,
                                         .package = u"flac"_s,
                                         .purpose = u"reads and writes the metadata of FLAC files"_s,
                                         .isRequired = true};
    return program;
}

QStringList showTagArguments(const QString &path, QStringView tagKey)
{
    return {u"--show-tag=%1"_s.arg(tagKey), path};
}

QStringList removeTagArguments(const QString &path, QStringView tagKey)
{
    return {u"--remove-tag=%1"_s.arg(tagKey), path};
}

QStringList setTagArguments(const QString &path, QStringView tagKey, const QString &tagValue)
{
    return {u"--set-tag=%1=%2"_s.arg(tagKey, tagValue), path};
}

QStringList showFormatArguments(const QString &path, const QString &formatSwitch)
{
    return {formatSwitch, path};
}

QStringList showDigestArguments(const QString &path)
{
    return {u"--show-md5"_s, path};
}

QStringList addReplayGainArguments(const QStringList &paths)
{
    return QStringList(u"--add-replay-gain"_s) + paths;
}

QStringList removeReplayGainArguments(const QStringList &paths)
{
    return QStringList(u"--remove-replay-gain"_s) + paths;
}

QString reasonOfFailure(QStringView text)
{
    QString reason;
    for (const QStringView line : text.split(u'\n')) {
        const QString trimmed = trimWhitespaceAndNewlines(line);
        if (trimmed.contains(u"ERROR"_s))
            reason = trimmed;
    }
    return reason;
}

bool canBeStartedWith(const QStringList &arguments)
{
    return std::all_of(arguments.begin(), arguments.end(),
                       [](const QString &argument) { return argument.toUtf8().size() < kArgumentLimit; });
}

void setEnvironment(ChildEnvironment &environment)
{
    // It converts values between the locale's encoding and UTF-8; in any other locale it
    // would replace the characters that the locale lacks.
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
}

QString valueInOutput(const QString &output, QStringView tagKey)
{
    const QString trimmed = trimWhitespaceAndNewlines(output);
    // Messages come in the same stream, before the tag, and they hold "=" too.
    const QString start = tagKey.toString() + u'=';
    if (!trimmed.startsWith(start, Qt::CaseInsensitive) && !trimmed.contains(u'\n' + start, Qt::CaseInsensitive))
        return u""_s;
    return trimmed.mid(trimmed.lastIndexOf(u'=') + 1);
}

bool tellsOfError(QStringView output)
{
    return output.contains(u"FLAC__METADATA_CHAIN");
}

} // namespace nurv::metaflac
