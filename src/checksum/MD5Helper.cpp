// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/MD5Helper.h"

#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "files/FileDescriptor.h"

#include <QByteArray>
#include <QFile>

#include <openssl/evp.h>

#include <array>
#include <cerrno>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kBlockSize = 1'048'576;

void require(int answer)
{
    if (answer != 1)
        throw NurvFailure(u"MD5 digests are not available on this machine."_s);
}

struct Reading {
    bool wasStopped = false;
    qint64 bytes = 0;
    bool isMissing = false;
    QString failure = {};

    static Reading failed(int error)
    {
        return {.isMissing = error == ENOENT || error == ENOTDIR, .failure = systemErrorText(error)};
    }
};

bool isSameState(const struct stat &before, const struct stat &after)
{
    return before.st_size == after.st_size && before.st_mtim.tv_sec == after.st_mtim.tv_sec
           && before.st_mtim.tv_nsec == after.st_mtim.tv_nsec;
}

Reading feedFile(EVP_MD_CTX *context, const QString &path, MD5Helper::Kind kind, const std::function<bool()> &isStopped)
{
    const bool isAny = kind == MD5Helper::Kind::Any;
    const FileDescriptor file(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY | (isAny ? 0 : O_NONBLOCK)));
    struct stat before = {};
    if (!file.isOpen() || ::fstat(file.get(), &before) != 0)
        return Reading::failed(errno);
    if (!isAny && !S_ISREG(before.st_mode))
        return {.failure = S_ISDIR(before.st_mode) ? u"it is a folder"_s : u"it is no regular file"_s};
    // The kernel then reads further ahead; whether it listens does not matter.
    const bool isSmall = S_ISREG(before.st_mode) && before.st_size > 0 && before.st_size < kBlockSize;
    if (!isSmall)
        static_cast<void>(::posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL));
    QByteArray block(isSmall ? before.st_size : kBlockSize, Qt::Uninitialized);
    qint64 bytes = 0;
    for (;;) {
        if (isStopped && isStopped())
            return {.wasStopped = true};
        const ssize_t count = ::read(file.get(), block.data(), static_cast<size_t>(block.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return Reading::failed(errno);
        if (count == 0)
            break;
        require(EVP_DigestUpdate(context, block.constData(), static_cast<size_t>(count)));
        bytes += count;
    }
    struct stat after = {};
    if (S_ISREG(before.st_mode) && (::fstat(file.get(), &after) != 0 || !isSameState(before, after)))
        return {.bytes = bytes, .failure = u"it changed while it was read"_s};
    return {.bytes = bytes};
}

} // namespace

FileDigest MD5Helper::digestOf(const QString &path, Kind kind, const std::function<bool()> &isStopped)
{
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    require(context ? EVP_DigestInit_ex(context.get(), EVP_md5(), nullptr) : 0);
    const Reading reading = feedFile(context.get(), path, kind, isStopped);
    if (reading.wasStopped)
        return {};
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
    unsigned int length = 0;
    require(EVP_DigestFinal_ex(context.get(), digest.data(), &length));
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(digest.data()), length);
    return {.hexadecimal = QString::fromLatin1(bytes.toHex()), .bytes = reading.bytes, .isMissing = reading.isMissing, .failure = reading.failure};
}

QString MD5Helper::getMD5FromFile(const QString &path, const std::function<bool()> &isStopped)
{
    const FileDigest digest = digestOf(path, Kind::Any, isStopped);
    if (!digest.failure.isEmpty())
        qCWarning(checksumLog).noquote() << "Unable to read" << path << "for its digest:" << digest.failure;
    return digest.hexadecimal;
}

} // namespace nurv
