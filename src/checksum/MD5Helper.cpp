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

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kBlockSize = 1'048'576;

void require(int answer)
{
    if (answer != 1)
        throw NurvFailure(u"MD5 digests are not available on this machine."_s);
}

void logUnread(const QString &path)
{
    qCWarning(checksumLog).noquote() << "Unable to read" << path << "for its digest:" << systemErrorText(errno);
}

/// Returns whether it came to the end, readable or not.
bool feedFile(EVP_MD_CTX *context, const QString &path, const std::function<bool()> &isStopped)
{
    const FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file.isOpen()) {
        logUnread(path);
        return true;
    }
    // The kernel then reads further ahead; whether it listens does not matter.
    static_cast<void>(::posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL));
    QByteArray block(kBlockSize, Qt::Uninitialized);
    for (;;) {
        if (isStopped && isStopped())
            return false;
        const ssize_t count = ::read(file.get(), block.data(), static_cast<size_t>(block.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            logUnread(path);
        if (count <= 0)
            return true;
        require(EVP_DigestUpdate(context, block.constData(), static_cast<size_t>(count)));
    }
}

} // namespace

QString MD5Helper::getMD5FromFile(const QString &path, const std::function<bool()> &isStopped)
{
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    require(context ? EVP_DigestInit_ex(context.get(), EVP_md5(), nullptr) : 0);
    if (!feedFile(context.get(), path, isStopped))
        return {};
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
    unsigned int length = 0;
    require(EVP_DigestFinal_ex(context.get(), digest.data(), &length));
    return QString::fromLatin1(QByteArray::fromRawData(reinterpret_cast<const char *>(digest.data()), length).toHex());
}

} // namespace nurv
