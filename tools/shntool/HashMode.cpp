// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/HashMode.h"

#include "shntool/ModeRun.h"
#include "shntool/Progress.h"
#include "shntool/WavePass.h"

#include <algorithm>

namespace nurv {

namespace {

/// What the progress counts in.
constexpr uint64_t kStepBytes = 4096;
constexpr size_t kReadBytes = 64 * kStepBytes;

} // namespace

void HashMode::takeOption(char option, const char *)
{
    switch (option) {
    case 'c': m_isComposite = true; break;
    case 'm': m_kind = SoundHash::Kind::Md5; break;
    default: m_kind = SoundHash::Kind::Sha1; break;
    }
}

int HashMode::execute()
{
    std::vector<std::string> names = run().names.all();
    run().names.sortIfAsked(names);
    std::vector<WaveInfo> infos;
    for (size_t i = 0; i < names.size(); ++i) {
        if (std::optional<WaveInfo> info = examine(i, names[i]))
            infos.push_back(std::move(*info));
    }
    if (!m_isComposite)
        return hashEach(names) ? 0 : 1;
    if (names.empty())
        run().messages.fail("need at least one valid file to process");
    if (infos.size() < names.size())
        run().messages.fail("all files must be valid to generate a composite fingerprint");
    hashAll(infos);
    return 0;
}

std::optional<WaveInfo> HashMode::examine(size_t number, const std::string &name) const
{
    run().messages.debugFile(number, name);
    return run().files.examine(name);
}

bool HashMode::hashEach(const std::vector<std::string> &names)
{
    bool isGood = true;
    for (size_t i = 0; i < names.size(); ++i) {
        const std::optional<WaveInfo> info = examine(i, names[i]);
        isGood = info && hashFile(*info) && isGood;
    }
    return isGood;
}

/// Step by step, of which the last one may be short.
void HashMode::showSteps(Progress &progress, size_t bytes) const
{
    for (size_t at = 0; at < bytes; at += kStepBytes) {
        const size_t step = std::min<size_t>(kStepBytes, bytes - at);
        if (step < kStepBytes)
            run().messages.debugShortRead(kStepBytes, step);
        progress.add(step);
    }
}

bool HashMode::hashFile(const WaveInfo &info)
{
    Progress progress(run().messages, {.action = "Hashing",
                                      .file = info.fileName,
                                      .fileDetail = run().lengthOf(info),
                                      .link = {},
                                      .otherFile = {},
                                      .otherDetail = {},
                                      .totalBytes = info.dataBytes()});
    WavePass pass(run().files, info);
    if (!pass.isOpen()) {
        progress.fail();
        run().messages.warn("could not open file: [" + info.fileName + "]");
        return false;
    }
    // The pass may make the same sum for itself.
    const bool isShared = m_kind == SoundHash::Kind::Md5 && pass.hashesData();
    SoundHash hash(m_kind);
    std::vector<uint8_t> bytes(kReadBytes);
    uint64_t left = info.dataBytes();
    bool isGood = true;
    while (isGood && left > 0) {
        const auto wanted = static_cast<size_t>(std::min<uint64_t>(left, bytes.size()));
        const size_t got = pass.read(std::span(bytes).first(wanted));
        if (!isShared)
            hash.add(std::span(bytes).first(got));
        showSteps(progress, got);
        left -= got;
        isGood = got == wanted;
    }
    if (!isGood || !pass.finish()) {
        progress.fail();
        run().messages.warn("possibly truncated and/or corrupt file: [" + info.fileName + "]");
        return false;
    }
    progress.succeed();
    if (isShared && pass.dataMd5())
        show({pass.dataMd5()->begin(), pass.dataMd5()->end()}, info.fileName);
    else
        show(hash.finish(), info.fileName);
    return true;
}

void HashMode::hashAll(const std::vector<WaveInfo> &infos)
{
    uint64_t total = 0;
    for (const WaveInfo &info : infos)
        total += info.dataBytes();
    Progress progress(run().messages, {.action = "Hashing",
                                      .file = "composite",
                                      .fileDetail = {},
                                      .link = {},
                                      .otherFile = {},
                                      .otherDetail = {},
                                      .totalBytes = total});
    SoundHash hash(m_kind);
    uint64_t partBytes = 0;
    for (size_t i = 0; i < infos.size(); ++i) {
        // Once more, for those who want to know of every look at a file.
        if (run().messages.debugLevel > 0)
            static_cast<void>(examine(i, infos[i].fileName));
        addFile(infos[i], hash, progress, partBytes);
    }
    progress.succeed();
    show(hash.finish(), "composite");
}

/// The progress does not count what fills up a step that the files before have begun: `partBytes` of it.
void HashMode::addFile(const WaveInfo &info, SoundHash &hash, Progress &progress, uint64_t &partBytes) const
{
    WavePass pass(run().files, info);
    if (!pass.isOpen())
        run().messages.fail("could not open file: [" + info.fileName + "]");
    std::vector<uint8_t> bytes(kReadBytes);
    uint64_t done = 0;
    const uint64_t first = partBytes == 0 ? 0 : std::min(kStepBytes - partBytes, info.dataBytes());
    while (done < info.dataBytes()) {
        const uint64_t most = done < first ? first - done : info.dataBytes() - done;
        const auto wanted = static_cast<size_t>(std::min<uint64_t>(most, bytes.size()));
        const size_t got = pass.read(std::span(bytes).first(wanted));
        hash.add(std::span(bytes).first(got));
        if (done >= first)
            showSteps(progress, got);
        done += got;
        if (got < wanted)
            run().messages.fail("possibly truncated and/or corrupt file: [" + info.fileName + "]");
    }
    partBytes = (partBytes + info.dataBytes()) % kStepBytes;
    if (!pass.finish())
        run().messages.fail("possibly truncated and/or corrupt file: [" + info.fileName + "]");
}

void HashMode::show(const std::vector<uint8_t> &digest, const std::string &name) const
{
    run().messages.print(hexText(digest) + "  [shntool]  " + name + '\n');
}

} // namespace nurv
