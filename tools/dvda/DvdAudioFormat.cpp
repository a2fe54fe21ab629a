// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/DvdAudioFormat.h"

#include <array>
#include <stdexcept>

namespace nurv {

namespace {

/// The most that a player takes from the disc.
constexpr uint64_t kMostBitsPerSecond = 9'600'000;
constexpr uint8_t kNoGroup2 = 0x0F;

struct RateCode {
    uint32_t hertz;
    uint8_t code;
    uint32_t accessUnitFrames;
};
constexpr std::array kRates{RateCode{48000, 0x0, 40}, RateCode{96000, 0x1, 80}, RateCode{192000, 0x2, 160},
                            RateCode{44100, 0x8, 40}, RateCode{88200, 0x9, 80}, RateCode{176400, 0xA, 160}};

/// What discs and other programs write for these kinds of sound.
struct DivisionOfKind {
    unsigned bits;
    unsigned channels;
    PackDivision first;
    PackDivision other;
};
constexpr std::array kDivisions{
    DivisionOfKind{16, 1, {1984, 11, 0}, {2000, 16, 0}},   DivisionOfKind{16, 2, {1984, 11, 0}, {2000, 16, 0}},
    DivisionOfKind{16, 6, {1968, 10, 17}, {1992, 10, 14}}, DivisionOfKind{24, 1, {1980, 15, 0}, {2004, 12, 0}},
    DivisionOfKind{24, 2, {1980, 15, 0}, {2004, 12, 0}},   DivisionOfKind{24, 6, {1980, 15, 0}, {1980, 16, 20}},
};

const RateCode *codeOf(uint32_t hertz)
{
    for (const RateCode &rate : kRates) {
        if (rate.hertz == hertz)
            return &rate;
    }
    return nullptr;
}

const RateCode &codeOf(const DvdAudioFormat &format)
{
    if (const RateCode *rate = codeOf(format.sampleRateHz))
        return *rate;
    throw std::logic_error("a disc has no such sample rate");
}

/// The code for both groups of channels, which are of one kind.
uint8_t inBothGroups(const DvdAudioFormat &format, uint8_t code)
{
    return static_cast<uint8_t>(code << 4 | (format.isMultichannel() ? code : kNoGroup2));
}

} // namespace

uint32_t DvdAudioFormat::accessUnitFrames() const
{
    return codeOf(*this).accessUnitFrames;
}

uint8_t DvdAudioFormat::sizesByte() const
{
    return inBothGroups(*this, bitsPerSample == 16 ? 0 : 2);
}

uint8_t DvdAudioFormat::ratesByte() const
{
    return inBothGroups(*this, codeOf(*this).code);
}

uint8_t DvdAudioFormat::channelAssignment() const
{
    constexpr uint8_t kMono = 0;
    constexpr uint8_t kStereo = 1;
    constexpr uint8_t kFrontAndSurroundThenRest = 20;
    return channels == 1 ? kMono : channels == 2 ? kStereo : kFrontAndSurroundThenRest;
}

std::string DvdAudioFormat::text() const
{
    return std::to_string(sampleRateHz) + " Hz, " + std::to_string(bitsPerSample) + " bits, " + std::to_string(channels)
           + (channels == 1 ? " channel" : " channels");
}

std::optional<std::string> objectionTo(const DvdAudioFormat &format)
{
    if (format.bitsPerSample != 16 && format.bitsPerSample != 24)
        return "it has " + std::to_string(format.bitsPerSample) + " bits per sample; a disc takes 16 or 24";
    if (codeOf(format.sampleRateHz) == nullptr) {
        return "it has a sample rate of " + std::to_string(format.sampleRateHz)
               + " Hz; a disc takes 44100, 48000, 88200, 96000, 176400 and 192000";
    }
    if (format.channels != 1 && format.channels != 2 && format.channels != 6)
        return "it has " + std::to_string(format.channels) + " channels; a disc takes 1, 2 or 6";
    const uint64_t bitsPerSecond = uint64_t{format.sampleRateHz} * format.bitsPerSample * format.channels;
    if (bitsPerSecond > kMostBitsPerSecond) {
        return format.text() + " are " + std::to_string(bitsPerSecond) + " bits a second; a disc takes at most "
               + std::to_string(kMostBitsPerSecond);
    }
    return std::nullopt;
}

PackDivision fullPack(const DvdAudioFormat &format, bool isFirstOfTitle)
{
    for (const DivisionOfKind &kind : kDivisions) {
        if (kind.bits == format.bitsPerSample && kind.channels == format.channels)
            return isFirstOfTitle ? kind.first : kind.other;
    }
    throw std::logic_error("a disc has no such sound");
}

uint64_t packsOfTrack(const DvdAudioFormat &format, uint64_t frames, bool isFirstOfTitle)
{
    const uint64_t bytes = (frames + frames % 2) * format.bytesPerFrame();
    const uint64_t others = fullPack(format, false).audioBytes;
    const uint64_t inFirst = isFirstOfTitle ? fullPack(format, true).audioBytes : others;
    return bytes <= inFirst ? 1 : 1 + (bytes - inFirst + others - 1) / others;
}

} // namespace nurv
