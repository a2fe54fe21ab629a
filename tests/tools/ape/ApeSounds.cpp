// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ApeSounds.h"

#include "ape/ApeDecoder.h"
#include "ape/ApeEncoder.h"
#include "support/InputFile.h"
#include "support/OutputFile.h"
#include "support/TestFolder.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// From -1 to 1.
double valueAt(Sound sound, size_t block, unsigned channel, const PcmShape &shape, std::mt19937 &random)
{
    const double time = static_cast<double>(block) / shape.rate;
    const auto noise = [&] { return static_cast<double>(random()) / 2147483647.5 - 1.0; };
    const auto tone = [&](double hertz) { return std::sin(2 * std::numbers::pi * hertz * time); };
    switch (sound) {
    case Sound::Silence: return 0.0;
    case Sound::Square: return (block / (50 + 7 * channel)) % 2 == 0 ? 1.0 : -1.0;
    case Sound::Alternation: return (block + channel) % 2 == 0 ? 1.0 : -1.0;
    case Sound::Noise: return noise();
    case Sound::Bursts: return block / 1000 % 3 == 0 ? noise() : 0.0;
    case Sound::Sweep: return tone(20.0 + 9000.0 * time + 100.0 * channel);
    case Sound::OneChannel: return channel == 1 ? 0.5 * tone(440) + 0.01 * noise() : 0.0;
    case Sound::EqualChannels:
    case Sound::Music: break;
    }
    const double beat = std::exp(-6.0 * std::fmod(time, 0.5));
    return 0.3 * tone(220.0) + 0.2 * tone(331.0 + channel) + 0.2 * beat * noise() + 0.05 * tone(3520.0);
}

void appendLittle(QByteArray &bytes, uint64_t value, unsigned count)
{
    for (unsigned i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8 * i));
}

} // namespace

std::vector<int32_t> makeSamples(Sound sound, const PcmShape &shape, size_t blocks)
{
    std::mt19937 random(7);
    const double top = std::ldexp(1.0, static_cast<int>(shape.bits) - 1) - 1;
    std::vector<int32_t> samples;
    samples.reserve(blocks * shape.channels);
    for (size_t block = 0; block < blocks; ++block) {
        for (unsigned channel = 0; channel < shape.channels; ++channel) {
            const double value = valueAt(sound, block, channel, shape, random);
            samples.push_back(static_cast<int32_t>(std::lround(value * top)) - (value == -1.0));
            if (sound == Sound::EqualChannels)
                samples.back() = samples[block * shape.channels];
        }
    }
    return samples;
}

std::vector<int32_t> referenceSamples(char set, const PcmShape &shape)
{
    const int blocks = set == 'A' ? 100000 : 20000;
    std::vector<int32_t> samples;
    uint32_t state = 1;
    for (int i = 0; i < blocks; ++i) {
        for (int channel = 0; channel < static_cast<int>(shape.channels); ++channel) {
            state = state * 1664525 + 1013904223;
            const int tooth = i * (37 + 5 * channel) % 4096 - 2048;
            const int noise = static_cast<int>(state >> 24) - 128;
            if (set == 'B')
                samples.push_back(static_cast<int32_t>(state) >> (32 - shape.bits));
            else if (shape.bits == 8)
                samples.push_back((tooth >> 5) + (noise >> 4));
            else
                samples.push_back((shape.bits == 16 ? 8 : 1024) * tooth + noise);
        }
    }
    return samples;
}

QByteArray pcmOf(const std::vector<int32_t> &samples, const PcmShape &shape)
{
    QByteArray pcm;
    pcm.reserve(static_cast<qsizetype>(samples.size() * shape.bits / 8));
    for (const int32_t sample : samples)
        appendLittle(pcm, static_cast<uint32_t>(shape.bits == 8 ? sample + 128 : sample), shape.bits / 8);
    return pcm;
}

QByteArray wavOf(const QByteArray &pcm, const PcmShape &shape)
{
    const unsigned align = shape.channels * shape.bits / 8;
    const auto size = static_cast<uint64_t>(pcm.size());
    QByteArray wav = "RIFF";
    appendLittle(wav, 36 + size, 4);
    wav += "WAVEfmt ";
    appendLittle(wav, 16, 4);
    appendLittle(wav, 1, 2);
    appendLittle(wav, shape.channels, 2);
    appendLittle(wav, shape.rate, 4);
    appendLittle(wav, uint64_t{shape.rate} * align, 4);
    appendLittle(wav, align, 2);
    appendLittle(wav, shape.bits, 2);
    wav += "data";
    appendLittle(wav, size, 4);
    return wav + pcm;
}

QByteArray wavOf(Sound sound, const PcmShape &shape, size_t blocks)
{
    return wavOf(pcmOf(makeSamples(sound, shape, blocks), shape), shape);
}

std::span<const uint8_t> bytesOf(const QByteArray &bytes)
{
    return {reinterpret_cast<const uint8_t *>(bytes.constData()), static_cast<size_t>(bytes.size())};
}

QByteArray encoded(const QByteArray &wav, ApeLevel level, ApeInstructionSet set)
{
    const TestFolder folder;
    InputFile input(bytesOf(wav));
    ApeEncoder encoder(input, level, set);
    OutputFile output(folder.path(u"x.ape"_s).toStdString(), input);
    encoder.encode(output);
    output.commit();
    return folder.read(u"x.ape"_s);
}

QByteArray decoded(const QByteArray &ape, ApeInstructionSet set)
{
    InputFile input(bytesOf(ape));
    ApeDecoder decoder(input, set);
    QByteArray wav;
    decoder.decode([&](std::span<const uint8_t> bytes) {
        wav.append(reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    });
    return wav;
}

bool isSame(const QByteArray &left, const QByteArray &right)
{
    return left == right;
}

} // namespace nurv::test
