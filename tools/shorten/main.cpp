// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenCompression.h"
#include "shorten/ShortenDecoder.h"
#include "shorten/ShortenEncoder.h"
#include "shorten/ShortenOptions.h"
#include "shorten/ShortenSeekTable.h"
#include "support/InputFile.h"
#include "support/OutputFile.h"
#include "support/ToolError.h"
#include "support/ToolMain.h"
#include "support/WaveReader.h"

#include <optional>

namespace {

using namespace nurv;
using namespace nurv::shorten;

constexpr const char *kHelp = "Usage: shorten [-v 2] [-b FRAMES] [-m MEANS] [IN [OUT]]\n"
                              "       shorten -x [IN [OUT]]\n"
                              "\n"
                              "Compresses WAV files (8 or 16 bits, 1 to 8 channels) to Shorten files, or restores\n"
                              "them. IN and OUT are '-' or missing for standard input and standard output.\n"
                              "\n"
                              "  -x          restore the file that a Shorten file (versions 0 to 3) was made of\n"
                              "  -v 2|3      3, the default: append a seek table where OUT is a named file;\n"
                              "              2: never append one\n"
                              "  -b FRAMES   block size, 1 to 65535 sample frames (256)\n"
                              "  -m MEANS    block means to remember, 0 to 32768 (4)\n"
                              "  --help      show this text\n"
                              "  --version   show the version\n"
                              "\n"
                              "The exit status is 0, or 1 when anything failed. Then a named OUT is as it was\n"
                              "before; standard output got what could be restored.\n";

void compress(const ShortenOptions &options)
{
    InputFile input(options.input);
    OutputFile output(options.output, input);
    WaveReader wave(input);
    StreamHeader header = streamHeaderFor(wave.format(), input.name());
    header.blockSize = options.blockSize;
    header.meanCount = options.meanCount;
    std::optional<ShortenSeekTable> table;
    if (options.wantsSeekTable && !output.isStandardOutput() && ShortenSeekTable::canDescribe(header))
        table.emplace();
    ShortenEncoder encoder(
        header, [&output](std::span<const uint8_t> bytes) { output.write(bytes); }, table ? &*table : nullptr);
    const uint64_t streamBytes = encodeWave(wave, header, encoder);
    input.checkEnd();
    if (table)
        output.write(table->finish(streamBytes));
    output.commit();
}

void restore(const ShortenOptions &options)
{
    InputFile input(options.input);
    OutputFile output(options.output, input);
    ShortenDecoder decoder(input, [&output](std::span<const uint8_t> bytes) { output.write(bytes); });
    decoder.decodeHead();
    // Whoever wants the header alone can have it, and close the pipe.
    output.flush();
    try {
        decoder.decodeRest();
    } catch (const ToolError &) {
        // What could be restored may be all that is left of a recording.
        output.flush();
        throw;
    }
    input.drainPipe();
    output.commit();
}

int run(std::span<const std::string> arguments)
{
    const ShortenOptions options = ShortenOptions::parse(arguments);
    if (options.isDecoding)
        restore(options);
    else
        compress(options);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    return toolMain({.name = "shorten", .help = kHelp}, argc, argv, run);
}
