// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeDecoder.h"
#include "ape/ApeEncoder.h"
#include "ape/ApeError.h"
#include "ape/ApeProgress.h"
#include "support/InputFile.h"
#include "support/OutputFile.h"
#include "support/SpoolFile.h"
#include "support/ToolMain.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

using namespace nurv;

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

struct Request {
    enum class Action { Encode, Decode, Verify };

    Action action = Action::Verify;
    ApeLevel level = ApeLevel::Normal;
    std::string input;
    std::string output;
};

/// An option: dashes alone are names.
bool isOption(const std::string &argument)
{
    return argument.size() > 1 && argument[0] == '-';
}

ApeLevel levelOf(const std::string &option)
{
    for (const ApeLevel level :
         {ApeLevel::Fast, ApeLevel::Normal, ApeLevel::High, ApeLevel::ExtraHigh, ApeLevel::Insane}) {
        if (option == "-c" + std::to_string(static_cast<unsigned>(level)))
            return level;
    }
    badArguments("there is no level " + option + ", only -c1000, -c2000, -c3000, -c4000 and -c5000");
}

Request parse(std::span<const std::string> arguments)
{
    Request request;
    std::vector<std::string> names;
    std::string action;
    bool areOptionsOver = false;
    for (const std::string &argument : arguments) {
        if (areOptionsOver || !isOption(argument)) {
            names.push_back(argument);
        } else if (argument == "--") {
            areOptionsOver = true;
        } else {
            if (!action.empty())
                badArguments(action + " and " + argument + " cannot be given together");
            action = argument;
        }
    }
    if (action == "-d") {
        request.action = Request::Action::Decode;
    } else if (action.starts_with("-c")) {
        request.action = Request::Action::Encode;
        request.level = levelOf(action);
    } else if (action != "-v") {
        badArguments(action.empty() ? "one of -cLEVEL, -d and -v is missing" : "unknown option " + action);
    }
    const size_t expected = request.action == Request::Action::Verify ? 1 : 2;
    if (names.size() > expected)
        badArguments("unexpected argument " + names[expected]);
    if (names.empty())
        badArguments("the input file is missing");
    if (names.size() < expected)
        badArguments("the output file is missing");
    request.input = names[0];
    if (expected == 2)
        request.output = names[1];
    return request;
}

void encode(const Request &request, ApeProgress &progress)
{
    InputFile input(request.input);
    ApeEncoder encoder(input, request.level);
    OutputFile output(request.output, input);
    progress.start("Compressing...", encoder.expectedBlocks());
    encoder.encode(output, spoolFolder(request.output), [&](size_t blocks) { progress.add(blocks); });
    output.commit();
}

void decode(const Request &request, ApeProgress &progress)
{
    InputFile input(request.input);
    ApeDecoder decoder(input);
    OutputFile output(request.output, input);
    progress.start("Decompressing...", decoder.header().totalBlocks());
    bool isFirst = true;
    decoder.decode(
        [&](std::span<const uint8_t> bytes) {
            output.write(bytes);
            // Whoever only wants to see the header is done as soon as it is there.
            if (std::exchange(isFirst, false))
                output.flush();
        },
        [&](size_t blocks) { progress.add(blocks); });
    output.commit();
}

void verify(const Request &request, ApeProgress &progress)
{
    InputFile input(request.input);
    ApeDecoder decoder(input);
    progress.start("Verifying...", decoder.header().totalBlocks());
    decoder.decode([](std::span<const uint8_t>) {}, [&](size_t blocks) { progress.add(blocks); });
}

int run(std::span<const std::string> arguments)
{
    const Request request = parse(arguments);
    const bool isPipe = request.input == "-" || request.output == "-";
    ApeProgress progress(isPipe ? ApeProgress::Output::None : ApeProgress::Output::StandardError);
    switch (request.action) {
    case Request::Action::Encode: encode(request, progress); break;
    case Request::Action::Decode: decode(request, progress); break;
    case Request::Action::Verify: verify(request, progress); break;
    }
    progress.finish();
    return EXIT_SUCCESS;
}

/// Callers look for the number.
void report(const ToolError &error)
{
    std::fprintf(stderr, "mac: %s\n", error.what());
    if (error.kind() == ToolError::Kind::BadArguments)
        std::fprintf(stderr, "Try 'mac --help'.\n");
    std::fprintf(stderr, "Error: %d\n", static_cast<int>(apeErrorNumber(error)));
}

} // namespace

int main(int argc, char **argv)
{
    return toolMain(kText, argc, argv, run, report);
}
