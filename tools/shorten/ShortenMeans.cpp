// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenMeans.h"

#include <algorithm>

namespace nurv::shorten {

ShortenMeans::ShortenMeans(const StreamHeader &header)
    : m_means(std::max<uint32_t>(header.meanCount, 1), startMean(header.fileType)),
      m_sum(int64_t{startMean(header.fileType)} * static_cast<int64_t>(m_means.size())),
      m_isConstant(header.meanCount == 0), m_isRounded(header.version >= 2)
{
}

int32_t ShortenMeans::level(unsigned shift) const
{
    if (m_isConstant)
        return m_means.front();
    const auto count = static_cast<int64_t>(m_means.size());
    const int64_t mean = (m_sum + (m_isRounded ? count / 2 : 0)) / count;
    return static_cast<int32_t>(m_isRounded ? mean >> shift : mean);
}

void ShortenMeans::add(int64_t sum, uint32_t frames, unsigned shift)
{
    if (m_isConstant)
        return;
    int64_t mean = (sum + (m_isRounded ? frames / 2 : 0)) / frames;
    if (m_isRounded)
        mean *= int64_t{1} << shift;
    // 32 bits are enough, except for the nonsense of damaged streams.
    const auto kept = static_cast<int32_t>(mean);
    m_sum += int64_t{kept} - m_means[m_oldest];
    m_means[m_oldest] = kept;
    m_oldest = (m_oldest + 1) % m_means.size();
}

} // namespace nurv::shorten
