// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/InputFile.h"
#include "support/OutputFile.h"
#include "support/ToolError.h"
#include "support/ToolMain.h"
#include "tta/PercentDisplay.h"
#include "tta/TtaConversion.h"
#include "tta/TtaencOptions.h"
#include "tta/TtaReader.h"

#include <cstdlib>
#include <string>

namespace {

using namespace nurv;
using Mode = TtaencOptions::Mode;

constexpr char kHelp[] = R"(Usage: ttaenc [-e | -d | -t] INPUT [-o OUTPUT]

Encodes WAV files to TTA1 files and decodes them, without loss.

  -e         encode: INPUT is a WAV file of 1 to 6 channels and 8, 16 or 24 bits
  -d         decode: INPUT is a TTA1 file
  -t         test a TTA1 file: check every CRC and decode every frame
             (none of them: the first bytes of INPUT tell whether to encode or decode)
  -o OUTPUT  where to write; an existing file is replaced, on success only
             (without it: INPUT's name with the extension .tta or .wav, if no
             such file exists; standard output for standard input)
  --         what follows is no option
  --help     show this text
  --version  show the version

INPUT and OUTPUT may be "-": standard input and standard output. Progress and
messages go to standard error. The exit status is 0 on success, otherwise 1.
)";

Mode modeByInput(InputFile &input)
{
    if (looksLikeTta(input))
        return Mode::Decode;
    if (looksLikeWave(input))
        return Mode::Encode;
    throw ToolError(ToolError::Kind::InvalidInput, input.name() + ": neither a WAV nor a TTA1 file");
}

int test(InputFile &input)
{
    std::string damage;
    {
        PercentDisplay display(" ", "% done...");
        damage = testTta(input, [&](uint64_t done, uint64_t total) { display.show(done, total); });
        input.drainPipe();
    }
    printMessage(input.name() + ": " + (damage.empty() ? "OK" : damage));
    return damage.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

void convert(Mode mode, InputFile &input, const TtaencOptions &options)
{
    const std::string name = options.outputName(mode == Mode::Encode ? ".tta" : ".wav");
    OutputFile output(name, input);
    PercentDisplay display("Percent Progress: ", "");
    const TtaProgress progress = [&](uint64_t done, uint64_t total) { display.show(done, total); };
    if (mode == Mode::Encode)
        encodeWaveToTta(input, output, progress);
    else
        decodeTtaToWave(input, output, progress);
    input.drainPipe();
    output.commit();
}

int run(std::span<const std::string> arguments)
{
    const TtaencOptions options = TtaencOptions::fromArguments(arguments);
    InputFile input(options.input);
    const Mode mode = options.mode == Mode::ByInput ? modeByInput(input) : options.mode;
    if (mode == Mode::Test)
        return test(input);
    convert(mode, input, options);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv)
{
    return nurv::toolMain({"ttaenc", kHelp}, argc, argv, run);
}
