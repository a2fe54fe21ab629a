// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/InputFiles.h"

#include "app/PathNames.h"
#include "audio/CoreAudioHelper.h"
#include "base/SystemError.h"
#include "files/FileNames.h"

#include <QFile>

#include <optional>
#include <utility>

#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Why the argument cannot be worked on, or nothing.
std::optional<QString> obstacle(const QByteArray &path, bool &isFolder)
{
    struct stat status {};
    if (::stat(path.constData(), &status) != 0)
        return systemErrorText(errno);
    isFolder = S_ISDIR(status.st_mode);
    if (!isFolder && !S_ISREG(status.st_mode))
        return u"it is no regular file"_s;
    if (::access(path.constData(), R_OK) != 0)
        return systemErrorText(errno);
    return std::nullopt;
}

/// Why a file that is not taken cannot be what its name promises; nothing for a file of
/// another kind. Only MP4 files are taken by their contents.
std::optional<QString> damage(const QString &path)
{
    if (formatWord(path) != u"M4A")
        return std::nullopt;
    if (::access(QFile::encodeName(path).constData(), R_OK) != 0)
        return systemErrorText(errno);
    if (CoreAudioHelper::getFormatInfo(path))
        return std::nullopt;
    return u"damaged: no sound can be found in it"_s;
}

} // namespace

InputFiles collectInput(const QList<QByteArray> &arguments, const FileTest &isValid, const FileTest &isValidInFolder)
{
    InputFiles result;
    QList<std::pair<QString, QString>> refused;
    QStringList skipped;
    for (const QByteArray &argument : arguments) {
        const std::optional<QString> name = fileNameFromBytes(argument);
        if (!name) {
            result.refusals.append(u"%1: the name is not valid UTF-8"_s.arg(displayName(argument)));
            continue;
        }
        if (name->isEmpty()) {
            result.refusals.append(u"an empty name stands for no file"_s);
            continue;
        }
        bool isFolder = false;
        if (const std::optional<QString> reason = obstacle(argument, isFolder)) {
            result.refusals.append(u"%1: %2"_s.arg(*name, *reason));
            continue;
        }
        result.names.add(*name, absolutePath(*name), isFolder);
        const FileTest noteRefused = [&](const QString &path) {
            if (isFolder ? isValidInFolder(path) : isValid(path))
                return true;
            if (isSkippedName(path))
                return false;
            if (const std::optional<QString> reason = damage(path))
                refused.append({path, *reason});
            else if (!isFolder)
                refused.append({path, u"not a file of a kind that this command takes"_s});
            else
                skipped.append(path);
            return false;
        };
        collectFiles(*name, noteRefused, result.intake);
    }
    // Only now is it known how the files are called.
    for (const auto &[path, reason] : std::as_const(refused))
        result.refusals.append(u"%1: %2"_s.arg(result.names.nameOf(path), reason));
    for (const QString &path : std::as_const(skipped))
        result.skipped.append(u"%1: skipped, not of a kind that this command takes"_s.arg(result.names.nameOf(path)));
    for (const QString &name : std::as_const(result.intake.unreadableNames))
        result.refusals.append(u"%1: the name is not valid UTF-8"_s.arg(result.names.nameOf(name)));
    for (const QString &folder : std::as_const(result.intake.unreadableFolders))
        result.refusals.append(u"%1: the folder cannot be read"_s.arg(result.names.nameOf(folder)));
    for (const QString &file : std::as_const(result.intake.unreachableFiles))
        result.refusals.append(u"%1: the file cannot be reached"_s.arg(result.names.nameOf(file)));
    for (const QString &folder : std::as_const(result.intake.linkedFolders))
        result.skipped.append(u"%1: skipped, a link to a folder"_s.arg(result.names.nameOf(folder)));
    for (const QString &file : std::as_const(result.intake.temporaryFiles))
        result.skipped.append(u"%1: skipped, it has the name of a temporary file"_s.arg(result.names.nameOf(file)));
    // Told above by their names; the tab would tell the kinds alone.
    result.intake.badExtensions.clear();
    result.intake.unreadableNames.clear();
    result.intake.unreadableFolders.clear();
    result.intake.unreachableFiles.clear();
    result.intake.linkedFolders.clear();
    result.intake.temporaryFiles.clear();
    return result;
}

} // namespace nurv
