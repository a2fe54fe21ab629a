// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nurv {

/// Bytes that are read at any place, in any order.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    /// Reads what there is of `size` bytes at the offset, and returns how many that were.
    /// Throws NurvFailure when the system cannot read.
    [[nodiscard]] virtual std::size_t readAt(std::int64_t offset, void *bytes, std::size_t size) const = 0;
    [[nodiscard]] virtual std::int64_t size() const = 0;

    /// Reads all of the bytes, or tells that there are not as many.
    [[nodiscard]] bool readAll(std::int64_t offset, void *bytes, std::size_t size) const;
};

/// A regular file, open for reading. Never waits for a pipe's other end.
class RegularFile final : public ByteSource {
public:
    /// Throws NurvFailure, also for folders, pipes and devices.
    explicit RegularFile(const QString &path);

    [[nodiscard]] std::size_t readAt(std::int64_t offset, void *bytes, std::size_t size) const override;
    [[nodiscard]] std::int64_t size() const override { return m_size; }

    /// A name of the open file that stays right when another takes its path.
    [[nodiscard]] std::string lastingName() const;

private:
    FileDescriptor m_file;
    std::int64_t m_size = 0;
};

/// Bytes in memory, which the caller keeps.
class MemoryBytes final : public ByteSource {
public:
    explicit MemoryBytes(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    [[nodiscard]] std::size_t readAt(std::int64_t offset, void *bytes, std::size_t size) const override;
    [[nodiscard]] std::int64_t size() const override { return static_cast<std::int64_t>(m_bytes.size()); }

private:
    std::span<const std::uint8_t> m_bytes;
};

/// Where the file's own format begins: behind the ID3v2 tags that some programs put in
/// front of everything.
[[nodiscard]] std::int64_t offsetBehindTags(const ByteSource &source);

/// Whether nothing but tags of the kinds that programs put behind everything (ID3v1,
/// APEv2) and a little padding stands between the offset and the end.
[[nodiscard]] bool holdsOnlyTags(const ByteSource &source, std::int64_t from);

/// Whether nothing stands there, or a few zeros at most.
[[nodiscard]] bool holdsOnlyPadding(const ByteSource &source, std::int64_t from);

} // namespace nurv
