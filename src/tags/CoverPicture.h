// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QSize>

#include <memory>
#include <utility>

namespace nurv {

/// A cover picture as it stands in a file, and what its decoder has found in those bytes. It is never
/// kept decoded: a few bytes make hundreds of megabytes of pixels. A plain value.
class CoverPicture {
public:
    /// `size` in pixels, `depth` in bits per pixel.
    CoverPicture(QByteArray bytes, QSize size, int depth) : m_bytes(std::move(bytes)), m_size(size), m_depth(depth) {}

    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }
    [[nodiscard]] QSize size() const { return m_size; }
    [[nodiscard]] int depth() const { return m_depth; }

private:
    QByteArray m_bytes;
    QSize m_size;
    int m_depth;
};

/// Two pictures are equal when they are the same object; none is a null pointer.
using AlbumArt = std::shared_ptr<const CoverPicture>;

} // namespace nurv
