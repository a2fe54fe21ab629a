// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaConversion.h"

#include "support/Bytes.h"
#include "support/InputFile.h"
#include "support/OutputFile.h"
#include "support/ToolError.h"
#include "support/WaveReader.h"
#include "tta/TtaReader.h"
#include "tta/TtaWriter.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <vector>

namespace nurv {

namespace {

constexpr uint16_t kFloat = 3;

/// Runs the work; a failure that says nothing of the file gets its name.
template<typename Work>
auto namingInput(const InputFile &input, const Work &work)
{
    try {
        return work();
    } catch (const ToolError &error) {
        if (error.kind() != ToolError::Kind::UnsupportedFormat)
            throw;
        throw ToolError(error.kind(), input.name() + ": " + error.what());
    }
}

/// "3, 5, 8-12", cut short after some ranges.
std::string listed(const std::vector<uint64_t> &numbers)
{
    constexpr int kMaxRanges = 20;
    std::string text;
    int ranges = 0;
    for (size_t start = 0, end; start < numbers.size(); start = end) {
        if (++ranges > kMaxRanges)
            return text + " ...";
        for (end = start + 1; end < numbers.size() && numbers[end] == numbers[end - 1] + 1;)
            ++end;
        text += (text.empty() ? "" : ", ") + std::to_string(numbers[start]);
        if (end - start > 1)
            text += "-" + std::to_string(numbers[end - 1]);
    }
    return text;
}

TtaHeader headerFor(const WaveFormat &format)
{
    if (!format.isIntegerPcm())
        throw ToolError(
            ToolError::Kind::UnsupportedFormat,
            (format.formatTag == kFloat ? "floating-point sound" : "WAV format " + std::to_string(format.formatTag))
                + std::string(" is not supported, only integer PCM"));
    TtaHeader header;
    header.channels = format.channels;
    header.bitsPerSample = format.bitsPerSample;
    header.sampleRateHz = format.sampleRateHz;
    header.check();
    return header;
}

} // namespace

bool looksLikeWave(InputFile &input)
{
    constexpr size_t kNameOffset = 8;
    const std::span<const uint8_t> head = input.peek(kNameOffset + 4);
    return head.size() > kNameOffset && startsWith(head, "RIFF") && startsWith(head.subspan(kNameOffset), "WAVE");
}

void encodeWaveToTta(InputFile &input, OutputFile &output, const TtaProgress &progress)
{
    WaveReader wave(input);
    const TtaHeader header = namingInput(input, [&] { return headerFor(wave.format()); });
    const auto inSamples = [&](uint64_t bytes) { return bytes / header.blockAlign(); };
    const std::optional<uint64_t> present = wave.payloadBytesPresent();
    // A pipe's header may be wrong: for showing progress alone it is good enough.
    const uint64_t expected = inSamples(present.value_or(wave.payloadBytesDeclared().value_or(0)));
    namingInput(input, [&] {
        TtaWriter writer(output, header, present ? std::optional(inSamples(*present)) : std::nullopt);
        std::vector<uint8_t> pcm(writer.frameBytes());
        while (const size_t count = wave.readPayload(pcm)) {
            writer.writeFrame(std::span(pcm).first(count));
            progress(inSamples(wave.payloadBytesRead()), expected);
        }
        writer.finish();
    });
}

void decodeTtaToWave(InputFile &input, OutputFile &output, const TtaProgress &progress)
{
    TtaReader reader(input);
    const TtaHeader &header = reader.header();
    output.write(
        canonicalWaveHeader({header.channels, header.sampleRateHz, header.bitsPerSample}, header.pcmByteCount()));
    // At once: some readers want no more.
    output.flush();
    for (uint64_t frame = 0; frame < header.frameCount(); ++frame) {
        const TtaFrameState state = reader.readFrame();
        if (state != TtaFrameState::Good)
            throw ToolError(ToolError::Kind::Damaged, input.name() + ": " + reader.describe(state));
        output.write(reader.pcm());
        output.flush();
        progress(frame + 1, header.frameCount());
    }
    if (header.pcmByteCount() % 2 != 0)
        output.write(std::array<uint8_t, 1>{});
}

std::string testTta(InputFile &input, const TtaProgress &progress)
{
    TtaReader reader(input);
    const uint64_t frames = reader.header().frameCount();
    std::string first;
    std::vector<uint64_t> damaged;
    for (uint64_t frame = 0; frame < frames; ++frame) {
        const TtaFrameState state = reader.readFrame();
        if (state != TtaFrameState::Good) {
            if (damaged.empty())
                first = reader.describe(state);
            damaged.push_back(frame + 1);
        }
        progress(frame + 1, frames);
    }
    if (damaged.size() < 2)
        return first;
    return first + "; " + std::to_string(damaged.size()) + " frames are not good: " + listed(damaged);
}

} // namespace nurv
