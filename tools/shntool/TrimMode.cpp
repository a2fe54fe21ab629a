// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/TrimMode.h"

#include "shntool/FileEdit.h"
#include "shntool/ModeRun.h"
#include "shntool/PcmWaveHeader.h"
#include "shntool/Progress.h"
#include "shntool/WavePass.h"

#include <algorithm>

namespace nurv {

namespace {

/// Counts zero bytes before the first and behind the last other one.
struct SilenceCounter {
    uint64_t start = 0;
    uint64_t end = 0;
    bool hasSound = false;

    void add(std::span<const uint8_t> bytes)
    {
        const auto isSound = [](uint8_t byte) { return byte != 0; };
        if (!hasSound) {
            const auto first = std::ranges::find_if(bytes, isSound);
            start += static_cast<uint64_t>(first - bytes.begin());
            hasSound = first != bytes.end();
            if (!hasSound)
                return;
        }
        const auto last = std::find_if(bytes.rbegin(), bytes.rend(), isSound);
        const auto silent = static_cast<uint64_t>(last - bytes.rbegin());
        end = last == bytes.rend() ? end + silent : silent;
    }
};

} // namespace

int TrimMode::execute()
{
    bool isGood = true;
    while (const std::optional<std::string> name = run().names.next()) {
        const std::optional<WaveInfo> info = run().files.examine(*name);
        isGood = info && trim(*info) && isGood;
    }
    return isGood ? 0 : 1;
}

bool TrimMode::trim(const WaveInfo &info) const
{
    const std::optional<Silence> silence = findSilence(info);
    return silence && write(info, *silence);
}

std::optional<TrimMode::Silence> TrimMode::findSilence(const WaveInfo &info) const
{
    Progress progress(run().messages, {.action = "Scanning",
                                      .file = info.fileName,
                                      .fileDetail = run().lengthOf(info),
                                      .link = {},
                                      .otherFile = {},
                                      .otherDetail = {},
                                      .totalBytes = info.totalBytes()});
    const auto skip = [&](const std::string &why) {
        progress.fail();
        run().messages.warn(why + " -- skipping.");
        return std::nullopt;
    };
    if (OutputFiles::areSame(info.fileName, run().outputs.nameFrom(info, "-trimmed")))
        return skip("output file would overwrite input file");
    WavePass pass(run().files, info);
    if (!pass.isOpen()) {
        progress.fail();
        run().messages.fail("could not open input file: [" + info.fileName + "]");
    }
    SilenceCounter counter;
    std::vector<uint8_t> bytes(WavePass::kTransferBytes);
    for (uint64_t left = info.dataBytes(); left > 0;) {
        const auto wanted = static_cast<size_t>(std::min<uint64_t>(left, bytes.size()));
        if (pass.read(std::span(bytes).first(wanted)) != wanted) {
            progress.fail();
            run().messages.fail("error while reading " + std::to_string(wanted)
                               + " bytes into local cache from input file");
        }
        counter.add(std::span(bytes).first(wanted));
        progress.add(wanted);
        left -= wanted;
    }
    if (!counter.hasSound)
        return skip("input file contains nothing but silence");
    const uint64_t block = std::max<uint64_t>(info.header.blockAlign, 1);
    const Silence silence{.start = m_wantsStart ? counter.start / block * block : 0,
                          .end = m_wantsEnd ? counter.end / block * block : 0};
    if (silence.start == 0 && silence.end == 0) {
        const char *where = m_wantsStart && m_wantsEnd ? "either end" : m_wantsStart ? "the beginning" : "the end";
        return skip(std::string("input file has no silence to trim from ") + where);
    }
    progress.succeed();
    return silence;
}

bool TrimMode::write(const WaveInfo &info, const Silence &silence) const
{
    const uint64_t kept = info.dataBytes() - silence.start - silence.end;
    FileEdit edit(run(), info, "Trimming", "-trimmed");
    if (!edit.checkNames() || !edit.openInput() || !edit.openOutput())
        return false;
    // The header is counted when it is read, and when it is written.
    edit.progress().add(info.header.bytes.size());
    const uint64_t pad = kept % 2;
    if (!edit.writeHeader(headerWithSizes(info.header, kept, pad + info.extraBytes()))
        || !edit.skipData(silence.start,
                          "error while trimming " + std::to_string(silence.start) + " bytes from beginning of file")
        || !edit.copyData(kept)
        || !edit.skipData(silence.end,
                          "error while trimming " + std::to_string(silence.end) + " bytes from end of file")
        || !edit.skipData(info.bytesBehindData() - info.extraBytes(), "error while discarding NULL pad byte")
        || !edit.writeZerosSilently(pad))
        return false;
    return edit.copyExtra(info.extraBytes()) && edit.finish();
}

} // namespace nurv
