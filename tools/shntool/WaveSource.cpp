// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/WaveSource.h"

#include <algorithm>

namespace nurv {

namespace {

constexpr size_t kSkipBytes = size_t{256} * 1024;

} // namespace

size_t WaveSource::read(std::span<uint8_t> bytes)
{
    size_t done = 0;
    try {
        while (done < bytes.size() && !m_isAtEnd) {
            const size_t count = readSome(bytes.subspan(done));
            m_isAtEnd = count == 0;
            done += count;
        }
    } catch (const std::exception &error) {
        m_failure = error.what();
        m_isAtEnd = true;
    }
    return done;
}

uint64_t WaveSource::skip(uint64_t count)
{
    std::vector<uint8_t> bytes(static_cast<size_t>(std::min<uint64_t>(count, kSkipBytes)));
    uint64_t done = 0;
    while (done < count) {
        const size_t wanted = static_cast<size_t>(std::min<uint64_t>(count - done, bytes.size()));
        const size_t got = read(std::span(bytes).first(wanted));
        done += got;
        if (got < wanted)
            break;
    }
    return done;
}

bool WaveSource::finish()
{
    std::vector<uint8_t> bytes(kSkipBytes);
    while (read(bytes) == bytes.size()) {
    }
    return !m_failure;
}

void PieceSource::give(std::span<const uint8_t> bytes)
{
    // Optimising, GCC 14 warns falsely of an overflow inside an insert at the end.
    const size_t held = m_piece.size();
    m_piece.resize(held + bytes.size());
    std::copy(bytes.begin(), bytes.end(), m_piece.data() + held);
}

void PieceSource::giveAll(std::vector<uint8_t> &bytes)
{
    if (m_piece.empty())
        m_piece.swap(bytes);
    else
        give(bytes);
}

size_t PieceSource::readSome(std::span<uint8_t> bytes)
{
    while (m_taken == m_piece.size()) {
        m_piece.clear();
        m_taken = 0;
        if (m_fault)
            std::rethrow_exception(m_fault);
        try {
            if (!makePiece() && m_piece.empty())
                return 0;
        } catch (...) {
            m_fault = std::current_exception();
        }
    }
    const size_t count = std::min(bytes.size(), m_piece.size() - m_taken);
    std::copy_n(m_piece.begin() + static_cast<std::ptrdiff_t>(m_taken), count, bytes.begin());
    m_taken += count;
    return count;
}

} // namespace nurv
