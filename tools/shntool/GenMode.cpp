// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/GenMode.h"

#include "shntool/LengthValue.h"
#include "shntool/ModeRun.h"
#include "shntool/PcmWaveHeader.h"
#include "shntool/Progress.h"
#include "shntool/WaveOutput.h"
#include "shntool/WavePass.h"

#include <algorithm>

namespace nurv {

int GenMode::execute()
{
    if (!m_length)
        run().messages.fail("length must be specified");
    const WaveHeader header = pcmHeader(44100, 2, 16);
    const uint64_t dataBytes = parseLength(*m_length, run().messages).inBytes(header, run().messages);
    std::string name = run().outputs.nameOf("silence", "");
    const std::vector<uint8_t> head = makeWaveHeader(header, dataBytes);
    Progress progress(run().messages, {.action = "Generating",
                                      .file = name,
                                      .fileDetail = run().time.of(header, dataBytes),
                                      .link = {},
                                      .otherFile = {},
                                      .otherDetail = {},
                                      .totalBytes = head.size() + dataBytes});
    const std::unique_ptr<WaveOutput> output = run().outputs.open(name, &progress);
    if (!output)
        run().messages.fail(run().outputs.refusalOr("could not open output file: [" + name + "]"));
    const auto failWrite = [&](const std::string &why) {
        progress.fail();
        run().messages.fail(why);
    };
    if (!output->write(head))
        failWrite("error while writing " + std::to_string(head.size()) + "-byte WAVE header");
    progress.add(head.size());
    const std::vector<uint8_t> silence(WavePass::kTransferBytes);
    for (uint64_t left = dataBytes; left > 0;) {
        const auto count = static_cast<size_t>(std::min<uint64_t>(left, silence.size()));
        if (!output->write(std::span(silence).first(count)))
            failWrite("error while writing " + std::to_string(count) + "-byte chunk of silence");
        progress.add(count);
        left -= count;
    }
    if (!output->write(std::vector<uint8_t>(dataBytes % 2)))
        failWrite("error while NULL-padding odd-sized data chunk");
    if (!output->complete() || !output->commit())
        failWrite("could not complete output file: [" + name + "]");
    progress.succeed();
    return 0;
}

} // namespace nurv
