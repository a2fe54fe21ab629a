// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "TtaSounds.h"

#include "tta/TtaBitWriter.h"
#include "tta/TtaCrc.h"
#include "tta/TtaFrameEncoder.h"

#include <QDataStream>
#include <QIODevice>

#include <cmath>
#include <numbers>
#include <random>

namespace nurv::test {

namespace {

/// From -1 to 1.
double valueAt(Sound sound, uint32_t frame, unsigned channel, double rate, std::mt19937 &random)
{
    const double time = frame / rate;
    const auto noise = [&] { return static_cast<double>(random()) / 2147483647.5 - 1.0; };
    const auto tone = [&](double hertz) { return std::sin(2 * std::numbers::pi * hertz * time); };
    switch (sound) {
    case Sound::Silence: return 0.0;
    case Sound::Square: return (frame / (50 + 7 * channel)) % 2 == 0 ? 0.5 : -0.5;
    case Sound::Noise: return noise();
    case Sound::FullScale: return (random() & 1) != 0 ? 1.0 : -1.0;
    case Sound::Sweep: return 0.9 * tone(20.0 + 4000.0 * time + 100.0 * channel);
    case Sound::Music: break;
    }
    const double beat = std::exp(-6.0 * std::fmod(time, 0.5));
    return 0.3 * tone(220.0) + 0.2 * tone(331.0 + channel) + 0.2 * beat * noise() + 0.05 * tone(3520.0);
}

void appendLittle(QByteArray &bytes, uint64_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8 * i));
}

void appendLittle(std::vector<uint8_t> &bytes, uint64_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

} // namespace

TtaHeader shapeOf(unsigned channels, unsigned bits, uint32_t samples, uint32_t rate)
{
    TtaHeader shape;
    shape.channels = static_cast<uint16_t>(channels);
    shape.bitsPerSample = static_cast<uint16_t>(bits);
    shape.sampleRateHz = rate;
    shape.sampleCount = samples;
    return shape;
}

std::vector<uint8_t> makePcm(Sound sound, const TtaHeader &shape)
{
    std::mt19937 random(7);
    const double top = std::ldexp(1.0, shape.bitsPerSample - 1) - 1;
    std::vector<uint8_t> pcm;
    pcm.reserve(shape.pcmByteCount());
    for (uint32_t frame = 0; frame < shape.sampleCount; ++frame) {
        for (unsigned channel = 0; channel < shape.channels; ++channel) {
            const double value = valueAt(sound, frame, channel, shape.sampleRateHz, random);
            int64_t sample = std::llround(value * top) - (value == -1.0);
            if (shape.bitsPerSample == 8)
                sample += 128;
            appendLittle(pcm, static_cast<uint64_t>(sample), shape.bitsPerSample / 8);
        }
    }
    return pcm;
}

QByteArray wavOf(const std::vector<uint8_t> &pcm, const TtaHeader &shape)
{
    const unsigned align = shape.channels * shape.bitsPerSample / 8U;
    QByteArray wav = "RIFF";
    appendLittle(wav, 36 + pcm.size() + pcm.size() % 2, 4);
    wav += "WAVEfmt ";
    appendLittle(wav, 16, 4);
    appendLittle(wav, 1, 2);
    appendLittle(wav, shape.channels, 2);
    appendLittle(wav, shape.sampleRateHz, 4);
    appendLittle(wav, uint64_t{shape.sampleRateHz} * align, 4);
    appendLittle(wav, align, 2);
    appendLittle(wav, shape.bitsPerSample, 2);
    wav += "data";
    appendLittle(wav, pcm.size(), 4);
    wav += toQt(pcm);
    if (pcm.size() % 2 != 0)
        wav += '\0';
    return wav;
}

std::vector<uint8_t> ttaOf(const std::vector<uint8_t> &pcm, const TtaHeader &shape)
{
    std::vector<uint8_t> frames;
    std::vector<uint8_t> table;
    TtaBitWriter writer(
        [&](std::span<const uint8_t> bytes) { frames.insert(frames.end(), bytes.begin(), bytes.end()); });
    const TtaFrameEncoder encoder(shape);
    size_t start = 0;
    for (uint64_t frame = 0; frame < shape.frameCount(); ++frame) {
        const size_t before = frames.size();
        const size_t count = size_t{shape.samplesInFrame(frame)} * shape.blockAlign();
        encoder.encode(writer, std::span(pcm).subspan(start, count));
        start += count;
        appendLittle(frames, ttaCrc(std::span(frames).subspan(before)), 4);
        appendLittle(table, frames.size() - before, 4);
    }
    appendLittle(table, ttaCrc(table), 4);
    const auto header = shape.toBytes();
    std::vector<uint8_t> file;
    file.reserve(header.size() + table.size() + frames.size());
    for (const std::span<const uint8_t> part :
         {std::span<const uint8_t>(header), std::span<const uint8_t>(table), std::span<const uint8_t>(frames)})
        file.insert(file.end(), part.begin(), part.end());
    return file;
}

QByteArray toQt(std::span<const uint8_t> bytes)
{
    return {reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

} // namespace nurv::test
