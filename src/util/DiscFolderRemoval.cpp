// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/DiscFolderRemoval.h"

#include "base/SystemError.h"
#include "files/FileDescriptor.h"
#include "files/FolderStream.h"

#include <QFile>
#include <QRegularExpression>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using Fault = std::optional<QString>;

bool isOfDisc(const char *name)
{
    static const QRegularExpression pattern(u"^(AUDIO_(TS|PP)|ATS_\\d\\d_\\d)\\.(IFO|BUP|AOB)$"_s);
    return pattern.match(QString::fromLatin1(name)).hasMatch();
}

FileDescriptor openFolder(int parent, const char *name)
{
    return FileDescriptor(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

Fault removeEntry(int folder, const char *name, int flags)
{
    if (::unlinkat(folder, name, flags) == 0 || errno == ENOENT)
        return std::nullopt;
    if (errno == ENOTEMPTY || errno == EEXIST)
        return u"%1 holds something else"_s.arg(QString::fromLocal8Bit(name));
    return systemErrorText(errno);
}

/// Those of a disc in AUDIO_TS of the folder.
Fault removeFiles(int discFolder)
{
    const FileDescriptor folder = openFolder(discFolder, "AUDIO_TS");
    if (!folder.isOpen())
        return errno == ENOENT ? Fault() : systemErrorText(errno);
    const FolderStream stream(::fdopendir(::dup(folder.get())));
    if (!stream)
        return systemErrorText(errno);
    while (const dirent *const entry = ::readdir(stream.get())) {
        if (!isOfDisc(entry->d_name))
            continue;
        if (Fault fault = removeEntry(folder.get(), entry->d_name, 0))
            return fault;
    }
    return std::nullopt;
}

} // namespace

std::optional<QString> removeDiscFolder(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    const FileDescriptor folder = openFolder(AT_FDCWD, name.constData());
    if (!folder.isOpen())
        return errno == ENOENT ? Fault() : systemErrorText(errno);
    if (Fault fault = removeFiles(folder.get()))
        return fault;
    for (const char *const part : {"AUDIO_TS", "VIDEO_TS"}) {
        if (Fault fault = removeEntry(folder.get(), part, AT_REMOVEDIR))
            return fault;
    }
    return removeEntry(AT_FDCWD, name.constData(), AT_REMOVEDIR);
}

} // namespace nurv
