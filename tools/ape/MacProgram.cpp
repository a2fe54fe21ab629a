// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/MacProgram.h"

#include "ape/ApeEncoder.h"
#include "ape/ApeError.h"
#include "ape/ApeProgress.h"
#include "ape/MacOptions.h"
#include "support/InputFile.h"
#include "support/OutputFile.h"
#include "support/ToolMain.h"

#include <cstdio>
#include <cstdlib>

namespace nurv {

namespace {

constexpr ToolText kText = {.name = "mac", .help = R"(Usage: mac IN.wav OUT.ape -cLEVEL    compress
       mac IN.ape OUT.wav -d         decompress
       mac IN.ape -v                 verify

Compresses WAV files (8, 16 or 24 bits, mono or stereo) to Monkey's Audio files
without loss, and gives them back byte for byte.

  -cLEVEL    compress: -c1000 (fast), -c2000 (normal), -c3000 (high),
             -c4000 (extra high) or -c5000 (insane)
  -d         decompress; a file that fails a checksum gives no output
  -v         decompress, compare all checksums and write nothing
  --help     show this text
  --version  show the version

IN or OUT may be - for standard input or output; there is no progress then.
An existing OUT is replaced once the new file is complete.
)"};

void encode(const MacOptions &options, ApeProgress &progress)
{
    InputFile input(options.input);
    ApeEncoder encoder(input, options.level);
    OutputFile output(options.output, input);
    progress.start("Compressing...", encoder.expectedBlocks());
    encoder.encode(output, [&](size_t blocks) { progress.add(blocks); });
    output.commit();
}

void decode(const MacOptions &options, InputFile &input, ApeSource &source, ApeProgress &progress)
{
    OutputFile output(options.output, input);
    progress.start("Decompressing...", source.totalBlocks());
    const auto onBlocks = [&](size_t blocks) {
        progress.add(blocks);
        // A frame may take a second.
        output.checkReader();
    };
    source.decode(
        [&](std::span<const uint8_t> bytes) {
            output.write(bytes);
            // Whoever only wants to see the header is done as soon as it is there, and what
            // comes before some damage may be all that is left of a recording.
            output.flush();
        },
        onBlocks);
    input.drainPipe();
    output.commit();
}

void verify(InputFile &input, ApeSource &source, ApeProgress &progress)
{
    progress.start("Verifying...", source.totalBlocks());
    source.decode([](std::span<const uint8_t>) {}, [&](size_t blocks) { progress.add(blocks); });
    input.drainPipe();
}

int run(const MacOptions &options, const std::function<std::unique_ptr<ApeSource>(InputFile &)> &open)
{
    const bool isPipe = options.input == "-" || options.output == "-";
    ApeProgress progress(isPipe ? ApeProgress::Output::None : ApeProgress::Output::StandardError);
    if (options.action == MacOptions::Action::Encode) {
        encode(options, progress);
    } else {
        InputFile input(options.input);
        const std::unique_ptr<ApeSource> source = open(input);
        if (options.action == MacOptions::Action::Decode)
            decode(options, input, *source, progress);
        else
            verify(input, *source, progress);
    }
    progress.finish();
    return EXIT_SUCCESS;
}

/// Callers look for the number.
void report(const ToolError &error)
{
    printMessage(std::string("mac: ") + error.what());
    if (error.kind() == ToolError::Kind::BadArguments)
        std::fprintf(stderr, "Try 'mac --help'.\n");
    std::fprintf(stderr, "Error: %d\n", static_cast<int>(apeErrorNumber(error)));
}

} // namespace

int runMacProgram(int argc, char **argv, const std::function<std::unique_ptr<ApeSource>(InputFile &)> &open)
{
    return toolMain(
        kText, argc, argv,
        [&](std::span<const std::string> arguments) { return run(MacOptions::parse(arguments), open); }, report);
}

} // namespace nurv
