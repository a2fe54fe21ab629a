// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/AudioFormat.h"

#include "support/Bytes.h"

#include <algorithm>
#include <array>

namespace nurv {

namespace {

using By = AudioFormat::By;

constexpr AudioFormat codec(std::string_view name, std::string_view description, std::string_view decoder,
                            std::string_view decoderArguments, std::string_view encoder,
                            std::string_view encoderArguments, std::string_view magic)
{
    return {.name = name,
            .extension = encoder.empty() ? std::string_view() : name,
            .description = description,
            .reads = By::Program,
            .writes = encoder.empty() ? By::Nobody : By::Program,
            .decoder = decoder,
            .decoderArguments = decoderArguments,
            .encoder = encoder,
            .encoderArguments = encoderArguments,
            .isCompressed = true,
            .magic = magic};
}

constexpr AudioFormat aiff()
{
    AudioFormat format = codec("aiff", "Audio Interchange File Format", "sox", "-t aiff %f -t wav -", "sox",
                               "-t wav - -t aiff %f", "FORM");
    format.isCompressed = false;
    return format;
}

constexpr AudioFormat alac()
{
    AudioFormat format = codec("alac", "Apple Lossless Audio Codec", "alac", "%f", "", "", "ftypM4A ");
    format.magicOffset = 4;
    return format;
}

constexpr AudioFormat output(std::string_view name, std::string_view description)
{
    return {.name = name, .description = description, .writes = By::Itself};
}

constexpr std::array kFormats{
    AudioFormat{.name = "wav",
                .extension = "wav",
                .description = "RIFF WAVE file format",
                .reads = By::Itself,
                .writes = By::Itself,
                .magic = "RIFF"},
    aiff(),
    codec("shn", "Shorten low complexity waveform coder", "shorten", "-x %f -", "shorten", "- %f", "ajkg"),
    codec("flac", "Free Lossless Audio Codec", "flac", "-c -d -s %f", "flac", "-s -o %f -", "fLaC"),
    codec("ape", "Monkey's Audio Compressor", "mac", "%f - -d", "mac", "- %f -c2000", "MAC "),
    alac(),
    codec("tak", "(T)om's lossless (A)udio (K)ompressor", "takc", "-d -silent %f -", "takc", "-e -silent -ihs - %f",
          "tBaK"),
    codec("ofr", "OptimFROG Lossless WAVE Audio Coder", "ofr", "--decode %f --output -", "ofr",
          "--encode - --output %f", "OFR "),
    codec("tta", "TTA Lossless Audio Codec", "ttaenc", "-d -o - %f", "ttaenc", "-e -o %f -", "TTA1"),
    codec("als", "MPEG-4 Audio Lossless Coding", "mp4als", "-x %f -", "mp4als", "- %f", std::string_view("ALS\0", 4)),
    codec("wv", "WavPack Hybrid Lossless Audio Compression", "wvunpack", "-q -y %f -o -", "wavpack", "-q -y - -o %f",
          "wvpk"),
    codec("lpac", "Lossless Predictive Audio Compression", "lpac", "-x %f -", "", "", "LPAC"),
    codec("la", "Lossless Audio Compresser", "la", "-cout %f", "", "", "LA0"),
    codec("mkw", "MKW Audio Compression format", "mkwcon", "-x -q %f -", "mkwcon", "-e -q - %f", "MKW "),
    codec("bonk", "Bonk lossy/lossless audio compressor", "bonk", "decode -o /dev/stdout %f", "bonk",
          "encode -o %f /dev/stdin", std::string_view("\0BONK", 5)),
    codec("kxs", "Kexis lossless WAV file compressor", "kexis", "-x -s %f", "", "", "KXS"),
    output("cust", "Custom output format module"),
    output("term", "Sends output to the terminal"),
    output("null", "Sends output to /dev/null"),
};

} // namespace

std::span<const AudioFormat> audioFormats()
{
    return kFormats;
}

const AudioFormat *audioFormatNamed(std::string_view name)
{
    const auto found = std::ranges::find(kFormats, name, &AudioFormat::name);
    return found == kFormats.end() ? nullptr : &*found;
}

const AudioFormat *audioFormatOf(std::span<const uint8_t> firstBytes)
{
    if (startsWith(firstBytes, "RF64"))
        return kFormats.data();
    for (const AudioFormat &format : kFormats) {
        if (!format.magic.empty() && firstBytes.size() > format.magicOffset
            && startsWith(firstBytes.subspan(format.magicOffset), format.magic)) {
            return &format;
        }
    }
    return nullptr;
}

} // namespace nurv
