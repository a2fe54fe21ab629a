// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/InputFiles.h"

#include "platform/FileNames.h"
#include "platform/SystemError.h"

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

} // namespace

InputFiles collectInput(const QList<QByteArray> &arguments, const FileTest &isValid, const FileTest &isValidInFolder)
{
    InputFiles result;
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
        const FileTest noteRefused = [&](const QString &path) {
            if (isFolder ? isValidInFolder(path) : isValid(path))
                return true;
            if (!isFolder)
                result.refusals.append(u"%1: not a file of a kind that this command takes"_s.arg(*name));
            else if (!isSkippedName(path))
                result.skipped.append(u"%1: skipped, not of a kind that this command takes"_s.arg(path));
            return false;
        };
        collectFiles(absolutePath(*name), noteRefused, result.intake);
    }
    for (const QString &name : std::as_const(result.intake.unreadableNames))
        result.refusals.append(u"%1: the name is not valid UTF-8"_s.arg(name));
    for (const QString &folder : std::as_const(result.intake.unreadableFolders))
        result.refusals.append(u"%1: the folder cannot be read"_s.arg(folder));
    for (const QString &file : std::as_const(result.intake.unreachableFiles))
        result.refusals.append(u"%1: the file cannot be reached"_s.arg(file));
    // Told above by their names; the tab would tell the kinds alone.
    result.intake.badExtensions.clear();
    result.intake.unreadableNames.clear();
    result.intake.unreadableFolders.clear();
    result.intake.unreachableFiles.clear();
    return result;
}

} // namespace nurv
