// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <QByteArray>
#include <QString>
#include <QtEndian>

#include <cstdint>
#include <memory>
#include <optional>

namespace nurv {

/// The bytes that metadata is read from: those of a file, or a run of bytes that stood
/// inside one. Positions are bytes.
///
/// All reading throws NurvFailure, whose reason is a sentence's end ("it breaks off in its
/// tags"), when the bytes are not there or the disk does not give them, and when more is asked for
/// than the metadata of one file may have. Copies share the file and what may still be read.
class MetadataBytes {
public:
    /// A regular file; links are followed.
    [[nodiscard]] static MetadataBytes ofFile(const QString &path);
    explicit MetadataBytes(QByteArray bytes);

    [[nodiscard]] std::int64_t size() const { return m_size; }
    /// Exactly these bytes. They count towards the limit of 128 MiB for a file.
    [[nodiscard]] QByteArray read(std::int64_t offset, std::int64_t length) const;
    /// As many of these bytes as there are, without counting them; at most `kMostPeeked`.
    [[nodiscard]] QByteArray peek(std::int64_t offset, std::int64_t length) const;
    /// A digest of exactly these bytes, whatever their number.
    [[nodiscard]] QByteArray digest(std::int64_t offset, std::int64_t length) const;
    /// Whether none of these bytes is anything but zero.
    [[nodiscard]] bool isZero(std::int64_t offset, std::int64_t length) const;

    static constexpr std::int64_t kMostPeeked = std::int64_t{64} << 10;

private:
    struct File {
        FileDescriptor descriptor;
        std::int64_t mayBeRead = 0;
    };

    MetadataBytes() = default;

    std::shared_ptr<File> m_file; ///< none: the bytes are in memory
    QByteArray m_bytes;
    std::int64_t m_size = 0;
};

/// A digest of bytes in memory, as `MetadataBytes::digest` gives it.
[[nodiscard]] QByteArray metadataDigest(const QByteArray &bytes);

/// Numbers at a place in bytes, which must hold them.
template<typename Number>
[[nodiscard]] Number littleEndianAt(const QByteArray &bytes, qsizetype offset)
{
    Q_ASSERT(offset >= 0 && offset + static_cast<qsizetype>(sizeof(Number)) <= bytes.size());
    return qFromLittleEndian<Number>(bytes.constData() + offset);
}

template<typename Number>
[[nodiscard]] Number bigEndianAt(const QByteArray &bytes, qsizetype offset)
{
    Q_ASSERT(offset >= 0 && offset + static_cast<qsizetype>(sizeof(Number)) <= bytes.size());
    return qFromBigEndian<Number>(bytes.constData() + offset);
}

} // namespace nurv
