// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ConvMode.h"

#include "shntool/FileEdit.h"
#include "shntool/FileWaveSource.h"
#include "shntool/ModeRun.h"
#include "shntool/Progress.h"
#include "shntool/WaveHeaderReader.h"
#include "shntool/WaveOutput.h"
#include "shntool/WavePass.h"

#include <algorithm>

#include <unistd.h>

namespace nurv {

namespace {

/// Whether a size stands for none: programs that write into pipes do not know how much will come. Most write zero or
/// all bits, some what fits into 31 bits: rounded down to their buffers, or with the header added to it.
bool isPlaceholder(uint64_t size)
{
    constexpr uint64_t kAllBits = 0xFFFFFFFF;
    constexpr uint64_t kLeastOf31Bits = 0x7FFFF000;
    constexpr uint64_t kMostOf31Bits = 0x80001000;
    return size == 0 || size == kAllBits || size == ~uint64_t{0} || (size >= kLeastOf31Bits && size <= kMostOf31Bits);
}

/// What has to be there, of the whole file, where its end is told.
uint64_t promisedBytes(const WaveHeader &header)
{
    const uint64_t data = isPlaceholder(header.dataBytes) ? 0 : header.dataBytes;
    const uint64_t riff = isPlaceholder(header.chunkBytes) ? 0 : header.chunkBytes + 8;
    return std::max(header.bytes.size() + data, riff);
}

} // namespace

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
        run().messages.fail("option -n needs the name of the file to make");
    if (run().names.listName)
        run().messages.fail("option -n names one file, so it does not go with -F");
    const size_t expected = m_readsStandardInput ? 0 : 1;
    if (run().names.argumentCount() != expected) {
        run().messages.fail("option -n names one file, so it takes " + std::to_string(expected) + " source files, not "
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

/// Returns what is wrong with it; empty: nothing. Sound of unknown length ends where the pipe ends.
std::string ConvMode::copyStandardInput(WaveOutput &output) const
{
    FileWaveSource source("-");
    WaveHeader header;
    if (readWaveHeader(source, "data from the terminal", run().messages, header) != WaveHeaderFault::None)
        return "input data is no WAVE data";
    uint64_t count = header.bytes.size();
    bool isWritten = output.write(header.bytes);
    std::vector<uint8_t> bytes(WavePass::kTransferBytes);
    for (size_t got = 0; isWritten && (got = source.read(bytes)) > 0; count += got)
        isWritten = output.write(std::span(bytes).first(got));
    if (!isWritten)
        return "error while transferring data";
    if (!source.finish())
        return "could not read input data";
    return count < promisedBytes(header) ? "input data seems to be truncated" : std::string();
}

bool ConvMode::convertStandardInput()
{
    if (::isatty(STDIN_FILENO) != 0)
        run().messages.tell("enter WAVE data by hand... good luck:\n");
    WaveInfo info;
    info.fileName = "terminal";
    info.format = &audioFormats().front();
    std::string name = run().outputs.nameFrom(info, "");
    Progress progress(run().messages, {.action = "Converting",
                                      .file = "data from the terminal",
                                      .fileDetail = {},
                                      .link = "-->",
                                      .otherFile = name,
                                      .otherDetail = {},
                                      .totalBytes = 1});
    const std::unique_ptr<WaveOutput> output = run().outputs.open(name, &progress);
    const auto skip = [&](const std::string &why) {
        progress.fail();
        run().messages.warn(why + " -- skipping.");
        if (const std::string complaint = output ? output->complaint() : std::string(); !complaint.empty())
            run().messages.warn(complaint);
        return false;
    };
    if (!output)
        return skip(run().outputs.refusalOr("could not open output file"));
    if (const std::string fault = copyStandardInput(*output); !fault.empty())
        return skip(fault);
    if (!output->complete()) {
        run().messages.warn(output->complaint());
        progress.fail();
        return false;
    }
    if (!output->commit())
        return skip("could not complete output file: [" + name + "]");
    progress.succeed();
    return true;
}

} // namespace nurv
