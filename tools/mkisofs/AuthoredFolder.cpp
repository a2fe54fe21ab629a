// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mkisofs/AuthoredFolder.h"

#include "dvda/DiscNames.h"
#include "dvda/DvdAudioFormat.h"
#include "support/InputFile.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>

#include <sys/stat.h>

namespace nurv {

namespace {

namespace fs = std::filesystem;

/// The largest table is AUDIO_PP.IFO, of 128 KiB.
constexpr uint64_t kMostTableBytes = uint64_t{1} << 20;

[[noreturn]] void refuse(const std::string &path, const std::string &why)
{
    throw ToolError(ToolError::Kind::InvalidInput, path + ": " + why);
}

/// Links are not followed.
std::optional<struct stat> statusOf(const std::string &path)
{
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0)
        return status;
    if (errno != ENOENT)
        failRead(path, errno);
    return std::nullopt;
}

bool isFolder(const std::string &path)
{
    const std::optional<struct stat> status = statusOf(path);
    return status && S_ISDIR(status->st_mode);
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
    return names;
}

} // namespace

uint64_t AuthoredFolder::File::sectors() const
{
    return bytes / kDiscSectorBytes;
}

AuthoredFolder::AuthoredFolder(const std::string &path) : m_path(path)
{
    examine();
    for (const char *name :
         {discNames::kSimpleManager, discNames::kManager, discNames::kManagerCopy, discNames::kTitleSet})
        addFile(name);
    unsigned aobs = 0;
    while (aobs < discNames::kMostAobs && statusOf(pathOf(discNames::aob(aobs + 1))))
        addFile(discNames::aob(++aobs));
    addFile(discNames::kTitleSetCopy);
    if (aobs == 0)
        refuse(pathOf(discNames::aob(1)), "it is missing");
    if (namesIn(m_path + '/' + discNames::kAudioFolder).size() != m_files.size())
        refuse(m_path + '/' + discNames::kAudioFolder, "an AOB is missing between others");
    checkPair(discNames::kManager, discNames::kManagerCopy);
    checkPair(discNames::kTitleSet, discNames::kTitleSetCopy);
}

std::string AuthoredFolder::pathOf(const std::string &name) const
{
    return m_path + '/' + discNames::kAudioFolder + '/' + name;
}

std::vector<uint8_t> AuthoredFolder::read(const std::string &name) const
{
    InputFile file(pathOf(name));
    if (file.size().value_or(0) > kMostTableBytes)
        refuse(pathOf(name), "it is too large for a table");
    std::vector<uint8_t> bytes(static_cast<size_t>(file.size().value_or(0)));
    file.readExactly(bytes);
    return bytes;
}

/// What does not belong there would be on the disc, and nobody would have looked whether it got there.
void AuthoredFolder::examine()
{
    for (const std::string &name : namesIn(m_path)) {
        const std::string path = m_path + '/' + name;
        if (name == discNames::kVideoFolder && isFolder(path)) {
            if (!namesIn(path).empty())
                refuse(path, "it is not empty, and images of video discs are not made");
            m_hasVideo = true;
        } else if (name != discNames::kAudioFolder || !isFolder(path)) {
            refuse(path, "it does not belong into a DVD-Audio folder");
        }
    }
    const std::string audio = m_path + '/' + discNames::kAudioFolder;
    if (!isFolder(audio))
        refuse(audio, "it is missing");
    for (const std::string &name : namesIn(audio)) {
        if (!discNames::isOfDisc(name))
            refuse(pathOf(name), "it does not belong to a disc with one title set");
    }
}

void AuthoredFolder::addFile(const std::string &name)
{
    const std::string path = pathOf(name);
    const std::optional<struct stat> status = statusOf(path);
    if (!status)
        refuse(path, "it is missing");
    if (!S_ISREG(status->st_mode))
        refuse(path, "it is no regular file");
    const auto bytes = static_cast<uint64_t>(status->st_size);
    if (bytes == 0 || bytes % kDiscSectorBytes != 0)
        refuse(path, "its size is no whole number of sectors");
    m_files.push_back({name, bytes});
}

void AuthoredFolder::checkPair(const char *table, const char *copy) const
{
    if (read(table) != read(copy))
        refuse(pathOf(copy), std::string("it is no copy of ") + table);
}

} // namespace nurv
