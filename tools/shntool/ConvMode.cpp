// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ConvMode.h"

#include "shntool/FileEdit.h"
#include "shntool/FileWaveSource.h"
#include "shntool/ModeRun.h"
#include "shntool/Progress.h"
#include "shntool/WaveOutput.h"
#include "shntool/WavePass.h"

#include <unistd.h>

namespace nurv {

void ConvMode::takeOption(char option, const char *value)
{
    if (option == 't')
        m_readsStandardInput = true;
    else
        run().outputs.fullName = value;
}

/// One name is for one file.
void ConvMode::checkName() const
{
    const std::optional<std::string> &name = run().outputs.fullName;
    if (!name)
        return;
    if (name->empty())
        run().console.fail("option -n needs the name of the file to make");
    if (run().names.listName)
        run().console.fail("option -n names one file, so it does not go with -F");
    const size_t expected = m_readsStandardInput ? 0 : 1;
    if (run().names.argumentCount() != expected) {
        run().console.fail("option -n names one file, so it takes " + std::to_string(expected) + " source files, not "
                           + std::to_string(run().names.argumentCount()));
    }
}

int ConvMode::execute()
{
    checkName();
    if (m_readsStandardInput)
        return convertStandardInput() ? 0 : 1;
    bool isGood = true;
    while (const std::optional<std::string> name = run().names.next()) {
        const std::optional<WaveInfo> info = run().files.examine(*name);
        isGood = info && convert(*info) && isGood;
    }
    return isGood ? 0 : 1;
}

bool ConvMode::convert(const WaveInfo &info)
{
    FileEdit edit(run(), info, "Converting", "");
    return edit.checkNames() && edit.openInput() && edit.openOutput() && edit.writeHeader(info.header.bytes)
           && edit.copyData(info.dataBytes()) && edit.copyExtra(info.bytesBehindData()) && edit.finish();
}

/// Whatever it is: the encoder will tell.
bool ConvMode::convertStandardInput()
{
    if (::isatty(STDIN_FILENO) != 0)
        run().console.tell("enter WAVE data by hand... good luck:\n");
    WaveInfo info;
    info.fileName = "terminal";
    info.format = &audioFormats().front();
    std::string name = run().outputs.nameFrom(info, "");
    Progress progress(run().console, {.action = "Converting",
                                      .file = "data from the terminal",
                                      .fileDetail = {},
                                      .link = "-->",
                                      .otherFile = name,
                                      .otherDetail = {},
                                      .totalBytes = 1});
    WavePass pass(std::make_unique<FileWaveSource>("-", 0), info);
    const std::unique_ptr<WaveOutput> output = run().outputs.open(name, &progress);
    const auto skip = [&](const std::string &why) {
        progress.fail();
        run().console.warn(why + " -- skipping.");
        if (const std::string complaint = output ? output->complaint() : std::string(); !complaint.empty())
            run().console.warn(complaint);
        return false;
    };
    if (!output)
        return skip(run().outputs.refusalOr("could not open output file"));
    std::vector<uint8_t> bytes(WavePass::kTransferBytes);
    for (size_t got = 0; (got = pass.read(bytes)) > 0;) {
        if (!output->write(std::span(bytes).first(got)))
            return skip("error while transferring data");
    }
    if (!pass.finish())
        return skip("could not read input data");
    if (!output->complete()) {
        run().console.warn(output->complaint());
        progress.fail();
        return false;
    }
    if (!output->commit())
        return skip("could not complete output file: [" + name + "]");
    progress.succeed();
    return true;
}

} // namespace nurv
