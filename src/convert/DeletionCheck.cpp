// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DeletionCheck.h"

#include "app/PathNames.h"
#include "convert/FileFacts.h"
#include "platform/FileDescriptor.h"

#include <QFile>
#include <QtEndian>

#include <cerrno>
#include <cstdint>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qint64 kHeaderSize = 12;
constexpr qint64 kChunkHeadSize = 8;
/// Bytes after the last chunk that some writers leave as padding.
constexpr qint64 kMostPadding = 64 * 1024;
constexpr int kMostChunks = 10'000;
constexpr std::uint32_t kSizeIn64BitChunk = 0xFFFFFFFF;

bool isChunkName(const QByteArray &name)
{
    for (const char character : name) {
        if (character < ' ' || character > '~')
            return false;
    }
    return true;
}

/// The chunks of a RIFF, RF64 or AIFF file (EBU Tech 3306 for the 64-bit sizes).
class ChunkWalk {
public:
    explicit ChunkWalk(const QString &path) : m_file(path) {}

    /// What is wrong with the sizes; nothing for a sound file and for other kinds.
    std::optional<QString> findDisagreement()
    {
        if (!m_file.open(QIODevice::ReadOnly))
            return u"it cannot be read any more"_s;
        const QByteArray header = m_file.read(kHeaderSize);
        const QByteArray magic = header.left(4);
        m_isBigEndian = magic == "FORM";
        const bool isWave = (magic == "RIFF" || magic == "RF64") && header.mid(8) == "WAVE";
        if (!isWave && !(m_isBigEndian && header.mid(8).startsWith("AIF")))
            return std::nullopt;
        return walk();
    }

private:
    std::optional<QString> walk()
    {
        qint64 position = kHeaderSize;
        for (int chunks = 0; position < m_file.size(); ++chunks) {
            if (chunks == kMostChunks)
                return u"it has more parts than a sound file"_s;
            const qint64 left = m_file.size() - position;
            m_file.seek(position);
            const QByteArray head = m_file.read(kChunkHeadSize);
            if (head.size() < kChunkHeadSize || !isChunkName(head.left(4)))
                return left > kMostPadding ? std::optional(u"it holds more than its header says"_s) : std::nullopt;
            const qint64 size = sizeOf(head);
            if (size > left - kChunkHeadSize)
                return u"it holds less than its header says"_s;
            position += kChunkHeadSize + size + (size & 1);
        }
        return std::nullopt;
    }

    qint64 sizeOf(const QByteArray &head)
    {
        const char *const field = head.constData() + 4;
        const std::uint32_t size = m_isBigEndian ? qFromBigEndian<quint32>(field) : qFromLittleEndian<quint32>(field);
        if (head.startsWith("ds64")) {
            const QByteArray sizes = m_file.read(16);
            if (sizes.size() == 16)
                m_dataSize = qFromLittleEndian<qint64>(sizes.constData() + 8);
        }
        if (size == kSizeIn64BitChunk && head.startsWith("data") && m_dataSize)
            return *m_dataSize >= 0 ? *m_dataSize : size;
        return size;
    }

    QFile m_file;
    bool m_isBigEndian = false;
    std::optional<qint64> m_dataSize; ///< from the ds64 chunk
};

/// Leaves the reason of a failure in errno.
bool flush(const QString &path, int flags)
{
    int error = 0;
    {
        const FileDescriptor file(::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC));
        if (!file.isOpen() || ::fsync(file.get()) != 0)
            error = errno;
    }
    errno = error;
    return error == 0;
}

} // namespace

std::optional<QString> reasonToKeepSource(const QString &source, const QString &output)
{
    const std::optional<struct stat> sourceFacts = factsOf(source);
    const std::optional<struct stat> outputFacts = factsOf(output);
    if (!outputFacts || !S_ISREG(outputFacts->st_mode) || outputFacts->st_size == 0)
        return u"there is no output"_s;
    if (sourceFacts && isSameFile(*sourceFacts, *outputFacts))
        return u"it is the output itself"_s;
    return ChunkWalk(source).findDisagreement();
}

bool flushFileToDisk(const QString &path)
{
    return flush(path, O_RDONLY);
}

bool flushFolderToDisk(const QString &path)
{
    // Some file systems keep folders by themselves.
    return flush(path, O_RDONLY | O_DIRECTORY) || errno == EINVAL || errno == ENOTSUP;
}

bool flushToDisk(const QString &path)
{
    return flushFileToDisk(path) && flushFolderToDisk(folderOf(path));
}

} // namespace nurv
