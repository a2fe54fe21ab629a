// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/DiscFolder.h"

#include "dvda/DiscNames.h"
#include "dvda/DiscTables.h"
#include "files/FileDescriptor.h"
#include "support/Bytes.h"
#include "support/SignalPause.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

namespace fs = std::filesystem;

constexpr mode_t kFolderMode = 0777;

enum class Thing { Nothing, Folder, File, Other };

Thing thingAt(const std::string &path)
{
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        if (errno == ENOENT)
            return Thing::Nothing;
        failWrite(path, errno);
    }
    return S_ISDIR(status.st_mode) ? Thing::Folder : S_ISREG(status.st_mode) ? Thing::File : Thing::Other;
}

[[noreturn]] void refuse(const std::string &path, const std::string &why)
{
    throw ToolError(ToolError::Kind::Write, path + " " + why);
}

[[noreturn]] void refuseForeign(const std::string &path)
{
    refuse(path, "is nothing that this program made, and stays; name another folder with -o");
}

std::vector<std::string> namesIn(const std::string &folder)
{
    std::vector<std::string> names;
    std::error_code error;
    fs::directory_iterator entries(folder, error);
    for (; !error && entries != fs::directory_iterator(); entries.increment(error))
        names.push_back(entries->path().filename().string());
    if (error)
        failRead(folder, error.value());
    std::sort(names.begin(), names.end());
    return names;
}

/// Whether the table of all titles names this program.
bool isOwnManager(const std::string &path)
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    std::array<uint8_t, discTables::kProviderOffset + sizeof discTables::kProvider> head{};
    if (!file.isOpen() || readSome(file.get(), head) != static_cast<ssize_t>(head.size()))
        return false;
    return startsWith(head, "DVDAUDIO-AMG")
           && startsWith(std::span(head).subspan(discTables::kProviderOffset), discTables::kProvider);
}

void makeFolder(const std::string &path)
{
    if (::mkdir(path.c_str(), kFolderMode) != 0)
        failWrite(path, errno);
}

/// A new folder that nobody takes for a disc.
std::string makeWorkFolder(const std::string &base)
{
    std::random_device random;
    for (;;) {
        const std::string path = base + "/.nurv-dvda-" + std::to_string(random());
        if (::mkdir(path.c_str(), kFolderMode) == 0)
            return path;
        if (errno != EEXIST)
            failWrite(path, errno);
    }
}

/// Files of a disc, the one without which it is none first.
void removeDisc(const std::string &folder)
{
    ::unlink((folder + '/' + discNames::kManager).c_str());
    std::error_code ignored;
    for (const auto &entry : fs::directory_iterator(folder, ignored)) {
        if (discNames::isOfDisc(entry.path().filename().string()))
            ::unlink(entry.path().c_str());
    }
    ::rmdir(folder.c_str());
}

bool renameTo(const std::string &from, const std::string &to, unsigned flags)
{
    return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags) == 0;
}

/// A folder to a name that nothing has. A file system that does not know the flag renames over an empty folder at most.
void moveToFreeName(const std::string &from, const std::string &to)
{
    if (!renameTo(from, to, RENAME_NOREPLACE) && !(errno == EINVAL && renameTo(from, to, 0)))
        failWrite(to, errno);
}

std::string withoutSlashes(std::string name)
{
    while (name.size() > 1 && name.back() == '/')
        name.pop_back();
    return name;
}

std::string parentOf(const std::string &name)
{
    const size_t slash = name.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : name.substr(0, slash);
}

} // namespace

DiscFolder::DiscFolder(const std::string &name) : m_name(withoutSlashes(name))
{
    switch (thingAt(m_name)) {
    case Thing::Nothing:
        m_isNew = true;
        m_base = parentOf(m_name);
        break;
    case Thing::Folder:
        m_base = m_name;
        examine();
        break;
    default: refuse(m_name, "is no folder, or a link to one; name the folder itself with -o");
    }
    if (::faccessat(AT_FDCWD, m_base.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        failWrite(m_name, errno);
}

void DiscFolder::examine()
{
    for (const std::string &name : namesIn(m_name)) {
        const std::string path = m_name + '/' + name;
        const bool isFolder = thingAt(path) == Thing::Folder;
        if (isFolder && name == discNames::kAudioFolder)
            m_hasAudio = true;
        else if (isFolder && name == discNames::kVideoFolder && namesIn(path).empty())
            m_hasVideo = true;
        else
            refuseForeign(path);
    }
    if (m_hasAudio)
        examineAudio();
}

void DiscFolder::examineAudio() const
{
    const std::string folder = m_name + '/' + discNames::kAudioFolder;
    const std::vector<std::string> names = namesIn(folder);
    for (const std::string &name : names) {
        if (!discNames::isOfDisc(name) || thingAt(folder + '/' + name) != Thing::File)
            refuseForeign(folder + '/' + name);
    }
    if (!names.empty() && !isOwnManager(folder + '/' + discNames::kManager))
        refuseForeign(folder);
}

void DiscFolder::commit(Files files) const
{
    // A power cut must leave one disc or the other.
    if (m_hasAudio) {
        for (const auto &[name, file] : files)
            file->flush();
    }
    const SignalPause pause;
    const std::string work = makeWorkFolder(m_base);
    try {
        if (m_isNew)
            makeWhole(work, files);
        else
            makeAudio(work, files);
    } catch (...) {
        removeDisc(work + '/' + discNames::kAudioFolder);
        ::rmdir((work + '/' + discNames::kVideoFolder).c_str());
        removeDisc(work);
        throw;
    }
}

void DiscFolder::makeWhole(const std::string &work, Files &files) const
{
    const std::string audio = work + '/' + discNames::kAudioFolder;
    makeFolder(audio);
    makeFolder(work + '/' + discNames::kVideoFolder);
    for (auto &[name, file] : files)
        file->moveTo(audio + '/' + name);
    moveToFreeName(work, m_name);
}

void DiscFolder::makeAudio(const std::string &work, Files &files) const
{
    const std::string audio = m_name + '/' + discNames::kAudioFolder;
    const std::string video = m_name + '/' + discNames::kVideoFolder;
    for (auto &[name, file] : files)
        file->moveTo(work + '/' + name);
    if (!m_hasVideo)
        makeFolder(video);
    try {
        if (m_hasAudio)
            replaceAudio(work);
        else
            moveToFreeName(work, audio);
    } catch (...) {
        if (!m_hasVideo)
            ::rmdir(video.c_str());
        throw;
    }
}

/// What was found in it may have changed meanwhile.
void DiscFolder::replaceAudio(const std::string &work) const
{
    const std::string audio = m_name + '/' + discNames::kAudioFolder;
    examineAudio();
    if (renameTo(work, audio, RENAME_EXCHANGE)) {
        removeDisc(work);
        return;
    }
    if (errno != EINVAL)
        failWrite(audio, errno);
    removeDisc(audio);
    moveToFreeName(work, audio);
}

} // namespace nurv
