// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFrameCoder.h"
#include "ape/ApeLinearPredictor.h"
#include "ape/ApeResidualCoding.h"

// The loops over a frame's blocks. Local to the source that includes it, which is
// compiled for certain instructions: no function of the standard library may be
// instantiated here, another source could end up with it.

namespace nurv {
namespace {

/// The filters of a level, in the encoder's order.
template<class... Filters>
struct FilterChain {
    template<ApeSums kSums>
    int32_t encode(int32_t value)
    {
        return value;
    }

    template<ApeSums kSums>
    int32_t decode(int32_t residual)
    {
        return residual;
    }
};

template<class First, class... Rest>
struct FilterChain<First, Rest...> {
    template<ApeSums kSums>
    int32_t encode(int32_t value)
    {
        return rest.template encode<kSums>(first.template encode<kSums>(value));
    }

    template<ApeSums kSums>
    int32_t decode(int32_t residual)
    {
        return first.template decode<kSums>(rest.template decode<kSums>(residual));
    }

    First first;
    FilterChain<Rest...> rest;
};

/// Everything adaptive about a channel.
template<class Chain>
struct Channel {
    ResidualScale scale;
    LinearPredictor predictor;
    Chain filters;
};

/// The parts of a channel that the loops keep in locals, put back at the end: the
/// compiler need not fear that a store into the filters changes them.
template<class Chain>
class ChannelInUse {
public:
    explicit ChannelInUse(Channel<Chain> &channel)
        : m_channel(channel), m_scale(channel.scale), m_predictor(channel.predictor)
    {
    }
    ~ChannelInUse()
    {
        m_channel.scale = m_scale;
        m_channel.predictor = m_predictor;
    }
    ChannelInUse(const ChannelInUse &) = delete;
    ChannelInUse &operator=(const ChannelInUse &) = delete;

    template<bool kHasSide, ApeSums kSums>
    void encode(ApeRangeEncoder &coder, int32_t value, int32_t side)
    {
        const int32_t predicted = m_predictor.template encode<kHasSide, kSums>(value, side);
        encodeResidual(coder, m_scale, m_channel.filters.template encode<kSums>(predicted));
    }

    template<bool kHasSide, ApeSums kSums>
    int32_t decode(ApeRangeDecoder &coder, int32_t side)
    {
        const int32_t residual = decodeResidual(coder, m_scale);
        const int32_t predicted = m_channel.filters.template decode<kSums>(residual);
        return m_predictor.template decode<kHasSide, kSums>(predicted, side);
    }

private:
    Channel<Chain> &m_channel;
    ResidualScale m_scale;
    LinearPredictor m_predictor;
};

template<class Chain>
class FrameCoder final : public ApeFrameCoder {
public:
    void start() override
    {
        m_difference = {};
        m_middle = {};
        m_lastMiddle = 0;
    }

    void encodeStereo(ApeRangeEncoder &coder, const int32_t *samples, size_t blocks) override
    {
        constexpr ApeSums kSums = ApeSums::Wrapping;
        ApeRangeEncoder local = coder;
        {
            ChannelInUse difference(m_difference);
            ChannelInUse middle(m_middle);
            int32_t lastX = m_lastMiddle;
            for (size_t i = 0; i < blocks; ++i) {
                const int32_t y = samples[2 * i + 1] - samples[2 * i];
                const int32_t x = samples[2 * i] + y / 2;
                difference.template encode<true, kSums>(local, y, lastX);
                middle.template encode<true, kSums>(local, x, y);
                lastX = x;
            }
            m_lastMiddle = lastX;
        }
        coder = local;
    }

    void encodeMono(ApeRangeEncoder &coder, const int32_t *samples, size_t blocks) override
    {
        constexpr ApeSums kSums = ApeSums::Wrapping;
        ApeRangeEncoder local = coder;
        {
            ChannelInUse middle(m_middle);
            for (size_t i = 0; i < blocks; ++i)
                middle.template encode<false, kSums>(local, samples[i], 0);
        }
        coder = local;
    }

    void decodeStereo(ApeRangeDecoder &coder, int32_t *samples, size_t blocks, ApeSums sums) override
    {
        if (sums == ApeSums::Wide)
            decodeStereoWith<ApeSums::Wide>(coder, samples, blocks);
        else
            decodeStereoWith<ApeSums::Wrapping>(coder, samples, blocks);
    }

    void decodeMono(ApeRangeDecoder &coder, int32_t *samples, size_t blocks, ApeSums sums) override
    {
        if (sums == ApeSums::Wide)
            decodeMonoWith<ApeSums::Wide>(coder, samples, blocks);
        else
            decodeMonoWith<ApeSums::Wrapping>(coder, samples, blocks);
    }

private:
    template<ApeSums kSums>
    void decodeStereoWith(ApeRangeDecoder &coder, int32_t *samples, size_t blocks)
    {
        ApeRangeDecoder local = coder;
        {
            ChannelInUse difference(m_difference);
            ChannelInUse middle(m_middle);
            int32_t lastX = m_lastMiddle;
            for (size_t i = 0; i < blocks; ++i) {
                const int32_t y = difference.template decode<true, kSums>(local, lastX);
                lastX = middle.template decode<true, kSums>(local, y);
                samples[2 * i] = wrappedSubtract(lastX, y / 2);
                samples[2 * i + 1] = wrappedAdd(samples[2 * i], y);
            }
            m_lastMiddle = lastX;
        }
        coder = local;
    }

    template<ApeSums kSums>
    void decodeMonoWith(ApeRangeDecoder &coder, int32_t *samples, size_t blocks)
    {
        ApeRangeDecoder local = coder;
        {
            ChannelInUse middle(m_middle);
            for (size_t i = 0; i < blocks; ++i)
                samples[i] = middle.template decode<false, kSums>(local, 0);
        }
        coder = local;
    }

    /// Right minus left, predicted with the middle of the block before as its side.
    Channel<Chain> m_difference;
    /// Left plus half the difference, predicted with the difference; or the only channel.
    Channel<Chain> m_middle;
    int32_t m_lastMiddle = 0;
};

/// `Filter<order, shift>` is one of the filter classes.
template<template<int, int> class Filter>
ApeFrameCoder *newFrameCoder(ApeLevel level)
{
    switch (level) {
    case ApeLevel::Fast: return new FrameCoder<FilterChain<>>;
    case ApeLevel::Normal: return new FrameCoder<FilterChain<Filter<16, 11>>>;
    case ApeLevel::High: return new FrameCoder<FilterChain<Filter<64, 11>>>;
    case ApeLevel::ExtraHigh: return new FrameCoder<FilterChain<Filter<256, 13>, Filter<32, 10>>>;
    case ApeLevel::Insane: return new FrameCoder<FilterChain<Filter<1280, 15>, Filter<256, 13>, Filter<16, 11>>>;
    }
    return nullptr;
}

} // namespace
} // namespace nurv
