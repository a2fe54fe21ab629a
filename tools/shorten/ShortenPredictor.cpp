// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenPredictor.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace nurv::shorten {

namespace {

/// Codes, of 21 bits at most, whose sum stays within 32 bits.
constexpr size_t kSumStep = 2048;

constexpr uint32_t fold(int32_t value)
{
    return (static_cast<uint32_t>(value) << 1) ^ static_cast<uint32_t>(value >> 31);
}

/// The sum of the codes without their low-order bits: the zeros that the Rice codes write.
uint64_t sumShifted(std::span<const uint32_t> codes, unsigned codeBits)
{
    uint64_t sum = 0;
    for (size_t start = 0; start < codes.size(); start += kSumStep) {
        uint32_t part = 0;
        // By iterators: the check of an index would keep the loop from being vectorised.
        for (const uint32_t code : codes.subspan(start, std::min(codes.size() - start, kSumStep)))
            part += code >> codeBits;
        sum += part;
    }
    return sum;
}

uint64_t cost(std::span<const uint32_t> codes, unsigned codeBits)
{
    return codes.size() * (codeBits + 1) + sumShifted(codes, codeBits);
}

/// Where `leastCost` is the least: next to the logarithm of the mean.
unsigned likelyCodeBits(uint64_t sum, size_t count)
{
    const auto width = static_cast<unsigned>(std::bit_width(sum / count));
    return std::max(width, 2U) - 1;
}

/// What codes with that sum cannot take less than: cutting off low-order bits
/// loses less than 1 of every quotient.
uint64_t leastCost(uint64_t sum, size_t count)
{
    const unsigned codeBits = likelyCodeBits(sum, count);
    return count * codeBits + (sum >> codeBits);
}

} // namespace

ShortenPredictor::ShortenPredictor(uint32_t maxBlockSize)
{
    m_codes.fill(std::vector<uint32_t>(maxBlockSize));
}

ShortenPredictor::Choice ShortenPredictor::choose(std::span<const int32_t> samples, int32_t level)
{
    computeCodes(samples, level);
    Choice best;
    best.bits = std::numeric_limits<uint64_t>::max();
    for (size_t order = 0; order < kOrders; ++order) {
        const std::span<const uint32_t> codes(m_codes[order].data(), samples.size());
        const uint64_t sum = sumShifted(codes, 0);
        if (leastCost(sum, codes.size()) >= best.bits)
            continue;
        // The cost has a single minimum.
        unsigned codeBits = likelyCodeBits(sum, codes.size());
        uint64_t bits = cost(codes, codeBits);
        const int step = codeBits > 1 && cost(codes, codeBits - 1) <= bits ? -1 : 1;
        for (;;) {
            const unsigned next = codeBits + static_cast<unsigned>(step);
            const uint64_t nextBits = next < 1 ? std::numeric_limits<uint64_t>::max() : cost(codes, next);
            if (nextBits >= bits)
                break;
            codeBits = next;
            bits = nextBits;
        }
        if (bits < best.bits)
            best = {Function{static_cast<uint32_t>(order)}, codeBits, bits, codes};
    }
    return best;
}

void ShortenPredictor::computeCodes(std::span<const int32_t> samples, int32_t level)
{
    const int32_t *const x = samples.data();
    const auto count = static_cast<std::ptrdiff_t>(samples.size());
    uint32_t *const codes0 = m_codes[0].data();
    uint32_t *const codes1 = m_codes[1].data();
    uint32_t *const codes2 = m_codes[2].data();
    uint32_t *const codes3 = m_codes[3].data();
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        codes0[i] = fold(x[i] - level);
        codes1[i] = fold(x[i] - x[i - 1]);
        codes2[i] = fold(x[i] - 2 * x[i - 1] + x[i - 2]);
        codes3[i] = fold(x[i] - 3 * (x[i - 1] - x[i - 2]) - x[i - 3]);
    }
}

} // namespace nurv::shorten
