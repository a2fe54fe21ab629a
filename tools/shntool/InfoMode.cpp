// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/InfoMode.h"

#include "shntool/AudioFormat.h"
#include "shntool/ModeRun.h"
#include "shntool/ShortenSeekability.h"
#include "shntool/WaveHeaderReader.h"

#include <array>
#include <cstdio>

namespace nurv {

namespace {

std::string plural(uint64_t count)
{
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string hexNumber(unsigned number)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%04x", number);
    return text.data();
}

std::string ratioText(double ratio)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%0.4f", ratio);
    return text.data();
}

const char *yesOrNo(bool value)
{
    return value ? "yes" : "no";
}

/// A line of the page, values in one column.
std::string line(const std::string &name, const std::string &value)
{
    constexpr size_t kColumn = 30;
    const std::string label = name + ':';
    return label + std::string(label.size() < kColumn ? kColumn - label.size() : 0, ' ') + value + '\n';
}

std::string cdLines(const WaveInfo &info)
{
    const bool isCd = info.isCdQuality();
    const auto ofCds = [isCd](const std::string &value) { return isCd ? value : std::string("n/a"); };
    return "CD-quality properties:\n" + line("  CD quality", yesOrNo(isCd))
           + line("  Cut on sector boundary", ofCds(yesOrNo(info.endsOnSector())))
           + line("  Sector misalignment", ofCds(plural(info.dataBytes() % kSectorBytes)))
           + line("  Long enough to be burned",
                  ofCds(info.isTooShort()
                            ? "no -- needs to be at least " + std::to_string(kShortestTrackBytes) + " bytes"
                            : "yes"));
}

std::string extraText(const WaveInfo &info)
{
    if (info.extraBytes() == 0)
        return "no";
    const std::string extra = std::to_string(info.extraBytes());
    if (info.dataBytes() % 2 == 0)
        return "yes (" + extra + " bytes)";
    return "yes (" + extra + " or " + std::to_string(info.bytesBehindData()) + " bytes)";
}

std::string padByteText(const WaveInfo &info)
{
    switch (info.padByte()) {
    case WaveInfo::PadByte::Present: return "yes";
    case WaveInfo::PadByte::Missing: return "no";
    case WaveInfo::PadByte::Unknown: return "unknown";
    case WaveInfo::PadByte::NotNeeded: break;
    }
    return "n/a";
}

std::string problemLines(const WaveInfo &info)
{
    const auto ofFile = [&](const std::string &value) {
        return info.canTellTruncation() ? value : std::string("unknown");
    };
    const uint64_t missing = info.missingBytes();
    const uint64_t junk = info.junkBytes();
    return "Possible problems:\n"
           + line("  File contains ID3v2 tag",
                  info.id3Bytes > 0 ? "yes (" + std::to_string(info.id3Bytes) + " bytes)" : "no")
           + line("  Data chunk block-aligned", yesOrNo(info.isBlockAligned()))
           + line("  Inconsistent header", yesOrNo(info.isInconsistent()))
           + line("  File probably truncated", ofFile(missing > 0 ? "yes (missing " + plural(missing) + ")" : "no"))
           + line("  Junk appended to file", ofFile(junk > 0 ? "yes (" + plural(junk) + ")" : "no"))
           + line("  Odd data size has pad byte", padByteText(info));
}

} // namespace

int InfoMode::execute()
{
    bool isGood = true;
    while (const std::optional<std::string> name = run().names.next()) {
        const std::optional<WaveInfo> info = run().files.examine(*name);
        if (info)
            show(*info);
        else
            isGood = false;
    }
    return isGood ? 0 : 1;
}

void InfoMode::show(const WaveInfo &info) const
{
    const WaveHeader &header = info.header;
    std::string text = std::string(79, '-') + '\n';
    text += line("File name", info.fileName);
    text += line("Handled by", std::string(info.format->name) + " format module");
    text += line("Length", run().lengthOf(info));
    text += line("WAVE format", hexNumber(header.formatTag) + " (" + waveFormatName(header.formatTag) + ")");
    text += line("Channels", std::to_string(header.channels));
    text += line("Bits/sample", std::to_string(header.bitsPerSample));
    text += line("Samples/sec", std::to_string(header.samplesPerSecond));
    text += line("Average bytes/sec", std::to_string(header.bytesPerSecond));
    text += line("Rate (calculated)", std::to_string(header.calculatedRate()));
    text += line("Block align", std::to_string(header.blockAlign));
    text += line("Header size", std::to_string(header.bytes.size()) + " bytes");
    text += line("Data size", plural(info.dataBytes()));
    text += line("Chunk size", std::to_string(header.chunkBytes) + " bytes");
    text += line("Total size (chunk size + 8)", std::to_string(info.totalBytes()) + " bytes");
    text += line("Actual file size", std::to_string(info.actualBytes));
    text += line("File is compressed", yesOrNo(info.format->isCompressed));
    text += line("Compression ratio", ratioText(info.ratio()));
    text += cdLines(info);
    text += "WAVE properties:\n";
    text += line("  Non-canonical header", yesOrNo(!header.isCanonical()));
    text += line("  Extra RIFF chunks", extraText(info));
    text += problemLines(info);
    if (info.format->name == "shn")
        text += "Extra shn-specific info:\n" + line("  Seekable", shortenSeekability(info.fileName));
    run().messages.print(text);
}

} // namespace nurv
