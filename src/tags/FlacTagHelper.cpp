// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/FlacTagHelper.h"

#include "app/PathNames.h"
#include "app/TemporaryNames.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "engine/NSTaskWrapperSync.h"
#include "files/FileStatus.h"
#include "process/ResourceFolder.h"
#include "programs/Metaflac.h"
#include "text/TextNumbers.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QString runMetaflac(const QStringList &arguments)
{
    NSTaskWrapperSync task(programPath(metaflac::program().name), arguments);
    metaflac::setEnvironment(task.environment());
    return task.runTask();
}

/// metaflac puts a new file in the place of a link: it gets what the link leads to.
QString fileOf(const QString &path)
{
    const QString target = isLink(path) ? QFileInfo(path).canonicalFilePath() : QString();
    return target.isEmpty() ? path : target;
}

/// Right before and after it writes: metaflac works in a file of a fixed name beside its target, wherever a link of
/// that name leads.
void writeByMetaflac(const QString &path, const QStringList &arguments)
{
    const QString scratch = path + kMetaflacScratchSuffix.toString();
    if (isThere(scratch))
        throw NurvFailure(u"%1 is there already, and has the name of a temporary file of metaflac"_s.arg(
            lastPathComponent(scratch)));
    const bool wasThere = statusOf(path).has_value();
    runMetaflac(arguments);
    const std::optional<struct stat> now = statusOf(path);
    if (!wasThere)
        return;
    if (!now || !S_ISREG(now->st_mode) || isLink(path))
        throw NurvFailure(u"%1 is no file any more after metaflac has worked on it"_s.arg(lastPathComponent(path)));
}

} // namespace

QString FlacTagHelper::tagForFile(const QString &path, QStringView tagKey)
{
    return metaflac::valueInOutput(runMetaflac(metaflac::showTagArguments(path, tagKey)), tagKey);
}

TagsObject FlacTagHelper::tagsForFile(const QString &path)
{
    TagsObject tags;
    tags.setTitleText(tagForFile(path, kTitle));
    tags.setArtistText(tagForFile(path, kArtist));
    tags.setDateText(tagForFile(path, kDate));
    tags.setAlbumText(tagForFile(path, kAlbum));
    tags.setDiscText(tagForFile(path, kDiscNumber));
    tags.setTrackText(tagForFile(path, kTrackNumber));
    tags.setCommentText(tagForFile(path, kComment));
    tags.setGenreText(tagForFile(path, kGenre));
    tags.setComposerText(tagForFile(path, kComposer));
    return tags;
}

void FlacTagHelper::removeTagForFile(const QString &path, QStringView tagKey)
{
    const QString file = fileOf(path);
    writeByMetaflac(file, metaflac::removeTagArguments(file, tagKey));
}

void FlacTagHelper::writeTagForFile(const QString &path, QStringView tagKey, const std::optional<QString> &tagValue,
                                    bool writeEmptyTags)
{
    const QString value = tagValue.value_or(QString());
    if (value.isEmpty() && !writeEmptyTags)
        return;
    const QString file = fileOf(path);
    const QStringList setArguments = metaflac::setTagArguments(file, tagKey, value);
    // A run of a command line that is too long could not start, and the removal before it would lose the old value.
    if (!metaflac::canBeStartedWith(setArguments)) {
        qCWarning(tagsLog, "%s is too long for a command line and keeps its old value: %s",
                  qUtf8Printable(tagKey.toString()), qUtf8Printable(path));
        return;
    }
    removeTagForFile(file, tagKey);
    writeByMetaflac(file, setArguments);
}

void FlacTagHelper::writeTagsForFile(const QString &path, const TagsObject &tagObject, bool writeEmptyTags)
{
    writeTagForFile(path, kTitle, tagObject.titleText(), writeEmptyTags);
    writeTagForFile(path, kArtist, tagObject.artistText(), writeEmptyTags);
    writeTagForFile(path, kDate, tagObject.dateText(), writeEmptyTags);
    writeTagForFile(path, kAlbum, tagObject.albumText(), writeEmptyTags);
    writeTagForFile(path, kDiscNumber, tagObject.discText(), writeEmptyTags);
    writeTagForFile(path, kTrackNumber, tagObject.trackText(), writeEmptyTags);
    writeTagForFile(path, kGenre, tagObject.genreText(), writeEmptyTags);
    writeTagForFile(path, kComposer, tagObject.composerText(), writeEmptyTags);
    writeTagForFile(path, kComment, tagObject.commentText(), writeEmptyTags);
}

AudioFormatObject FlacTagHelper::getFormatInfo(const QString &path)
{
    const auto show = [&path](const QString &formatSwitch) {
        return trimWhitespaceAndNewlines(runMetaflac(metaflac::showFormatArguments(path, formatSwitch)));
    };
    AudioFormatObject format;
    format.sampleRate = leadingInteger(show(u"--show-sample-rate"_s));
    format.channels = leadingInteger(show(u"--show-channels"_s));
    format.bitsPerChannel = leadingInteger(show(u"--show-bps"_s));
    format.totalSamples = leadingInteger64(show(u"--show-total-samples"_s));
    return format;
}

} // namespace nurv
