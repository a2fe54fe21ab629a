// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ShortenTestSupport.h"

#include "shorten/ShortenCompression.h"
#include "shorten/ShortenDecoder.h"
#include "shorten/ShortenEncoder.h"
#include "shorten/ShortenSeekTable.h"
#include "support/InputFile.h"
#include "support/ToolError.h"
#include "support/WaveReader.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace nurv::shorten::test {

namespace {

constexpr unsigned kRateHz = 44100;

/// One value of -1 to 1.
double sample(Sound sound, size_t frame, unsigned channel, std::mt19937 &random)
{
    const auto t = static_cast<double>(frame) / kRateHz;
    const double noise = static_cast<double>(random()) / 2147483648.0 - 1.0;
    const auto tone = [&](double hz) { return std::sin(2 * std::numbers::pi * hz * t + channel); };
    switch (sound) {
    case Sound::Silence: return 0;
    case Sound::Square: return frame / 50 % 2 == 0 ? 1 : -1;
    case Sound::Alternation: return (frame + channel) % 2 == 0 ? 1 : -1;
    case Sound::Noise: return noise;
    case Sound::Sweep: return 0.9 * tone(20 + 4000 * t);
    case Sound::Music: return 0.3 * tone(220) + 0.2 * tone(331.5) + 0.1 * tone(1760) + 0.01 * noise;
    case Sound::Offset: return frame < 600 ? 0.25 : 0.25 + 0.002 * noise;
    case Sound::Bursts: return frame / 300 % 3 == 0 ? noise : 0;
    case Sound::Shifts: return 0.8 * tone(440);
    case Sound::Ramp: return static_cast<double>(frame % 2000) / 1000.0 - 1.0;
    }
    return 0;
}

} // namespace

Bytes fromHex(std::string_view digits)
{
    Bytes bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoul(std::string(digits.substr(i, 2)), nullptr, 16)));
    return bytes;
}

void append(Bytes &bytes, std::span<const uint8_t> more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

Bytes littleEndian(uint32_t value, size_t size)
{
    Bytes bytes;
    for (size_t i = 0; i < size; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
    return bytes;
}

void PrintTo(Sound sound, std::ostream *out)
{
    *out << "sound " << static_cast<int>(sound);
}

std::vector<int32_t> Wave::samples() const
{
    std::mt19937 random(seed);
    const double scale = bits == 8 ? 128 : 32768;
    std::vector<int32_t> values;
    values.reserve(frames * channels);
    for (size_t frame = 0; frame < frames; ++frame) {
        for (unsigned channel = 0; channel < channels; ++channel) {
            const double value =
                std::clamp(std::round(sample(sound, frame, channel, random) * scale), -scale, scale - 1);
            auto coded = static_cast<int32_t>(value);
            if (sound == Sound::Shifts)
                coded &= -(1 << (frame / 400 % (bits - 3)));
            values.push_back(coded);
        }
    }
    return values;
}

Bytes Wave::data() const
{
    Bytes bytes;
    for (const int32_t value : samples()) {
        if (bits == 8)
            bytes.push_back(static_cast<uint8_t>(value + 128));
        else
            append(bytes, littleEndian(static_cast<uint32_t>(value), 2));
    }
    return bytes;
}

Bytes Wave::file(std::span<const uint8_t> before, std::span<const uint8_t> after) const
{
    const Bytes contents = data();
    Bytes bytes = header(before, contents.size(), after.size());
    append(bytes, contents);
    append(bytes, after);
    return bytes;
}

Bytes Wave::header(std::span<const uint8_t> before, size_t dataBytes, size_t more) const
{
    const auto name = [](std::string_view text) { return Bytes(text.begin(), text.end()); };
    const unsigned blockAlign = channels * bits / 8;
    Bytes bytes = name("RIFF");
    append(bytes, littleEndian(static_cast<uint32_t>(36 + before.size() + dataBytes + more), 4));
    append(bytes, name("WAVEfmt "));
    append(bytes, littleEndian(16, 4));
    append(bytes, littleEndian(1, 2));
    append(bytes, littleEndian(channels, 2));
    append(bytes, littleEndian(kRateHz, 4));
    append(bytes, littleEndian(kRateHz * blockAlign, 4));
    append(bytes, littleEndian(blockAlign, 2));
    append(bytes, littleEndian(bits, 2));
    append(bytes, before);
    append(bytes, name("data"));
    append(bytes, littleEndian(static_cast<uint32_t>(dataBytes), 4));
    return bytes;
}

void PrintTo(const Wave &wave, std::ostream *out)
{
    PrintTo(wave.sound, out);
    *out << ", " << wave.frames << " frames, " << wave.channels << " channels, " << wave.bits << " bits";
}

Bytes chunk(std::string_view name, size_t size, int padByte)
{
    Bytes bytes(name.begin(), name.end());
    append(bytes, littleEndian(static_cast<uint32_t>(size), 4));
    for (size_t i = 0; i < size; ++i)
        bytes.push_back(static_cast<uint8_t>(i * 7 + 1));
    if (size % 2 != 0 && padByte >= 0)
        bytes.push_back(static_cast<uint8_t>(padByte));
    return bytes;
}

Bytes encoded(std::span<const uint8_t> wave, uint32_t blockSize, uint32_t meanCount, bool withSeekTable)
{
    InputFile input(wave);
    WaveReader reader(input);
    StreamHeader header = streamHeaderFor(reader.format(), input.name());
    header.blockSize = blockSize;
    header.meanCount = meanCount;
    Bytes stream;
    ShortenSeekTable table;
    ShortenEncoder encoder(
        header, [&stream](std::span<const uint8_t> bytes) { append(stream, bytes); }, withSeekTable ? &table : nullptr);
    const uint64_t size = encodeWave(reader, header, encoder);
    if (size != stream.size())
        throw std::logic_error("the encoder miscounts its bytes");
    if (withSeekTable)
        append(stream, table.finish(size));
    return stream;
}

Bytes decoded(std::span<const uint8_t> stream)
{
    Bytes restored;
    InputFile input(stream);
    ShortenDecoder decoder(input, [&restored](std::span<const uint8_t> bytes) { append(restored, bytes); });
    decoder.decodeHead();
    decoder.decodeRest();
    return restored;
}

std::string complaint(std::span<const uint8_t> stream, Bytes *restored)
{
    InputFile input(stream);
    ShortenDecoder decoder(input, [restored](std::span<const uint8_t> bytes) {
        if (restored)
            append(*restored, bytes);
    });
    try {
        decoder.decodeHead();
        decoder.decodeRest();
    } catch (const ToolError &error) {
        return error.what();
    }
    return {};
}

} // namespace nurv::shorten::test
