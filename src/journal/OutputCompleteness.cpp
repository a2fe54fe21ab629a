// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/OutputCompleteness.h"

#include "files/FileDescriptor.h"
#include "samples/SoundLength.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

std::optional<std::int64_t> framesOf(const SoundLength &length)
{
    // What the file holds counts before what it says of itself.
    return length.heldFrames ? length.heldFrames : length.declaredFrames;
}

FileDescriptor openForReading(const QByteArray &path)
{
    return FileDescriptor(::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
}

bool isEmptyFile(const QByteArray &path)
{
    struct stat facts = {};
    return ::lstat(path.constData(), &facts) == 0 && S_ISREG(facts.st_mode) && facts.st_size == 0;
}

/// The encoder writes the MD5 signature of the samples when it has seen the last one
/// (RFC 9639, section 8.2: it stands at the end of the first metadata block).
bool isUnsealedFlac(const QByteArray &path)
{
    constexpr std::size_t kSignatureAt = 4 + 4 + 18;
    std::array<unsigned char, kSignatureAt + 16> head{};
    const FileDescriptor file = openForReading(path);
    if (!file.isOpen() || ::read(file.get(), head.data(), head.size()) != static_cast<ssize_t>(head.size()))
        return false;
    constexpr std::array<unsigned char, 4> kMagic{'f', 'L', 'a', 'C'};
    return std::equal(kMagic.begin(), kMagic.end(), head.begin())
           && std::all_of(head.begin() + kSignatureAt, head.end(), [](unsigned char byte) { return byte == 0; });
}

/// Whether the file has its name while it is being made. Shorten, TTA and Monkey's Audio
/// files come from programs that name their output when it is complete.
bool isMadeUnderItsName(const QByteArray &path)
{
    constexpr std::array<const char *, 6> kExtensions{".wav", ".aif", ".aiff", ".flac", ".wv", ".m4a"};
    const QByteArray name = path.toLower();
    return std::any_of(kExtensions.begin(), kExtensions.end(),
                       [&name](const char *extension) { return name.endsWith(extension); });
}

} // namespace

bool isKnownToBeIncomplete(const QByteArray &output, const QByteArray &source)
{
    if (isEmptyFile(output) || isUnsealedFlac(output))
        return true;
    const std::optional<SoundLength> wanted = soundLength(QFile::decodeName(source));
    const std::optional<SoundLength> made = soundLength(QFile::decodeName(output));
    if (!wanted || !made)
        return wanted && isMadeUnderItsName(output);
    const std::optional<std::int64_t> wantedFrames = framesOf(*wanted);
    const std::optional<std::int64_t> madeFrames = framesOf(*made);
    return wantedFrames && madeFrames && *madeFrames < *wantedFrames;
}

} // namespace nurv
