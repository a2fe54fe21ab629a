// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/CmpMode.h"

#include "shntool/ModeRun.h"
#include "shntool/Progress.h"
#include "shntool/SameFormat.h"
#include "shntool/WavePass.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

namespace nurv {

namespace {

constexpr int kMostSeconds = 600; ///< of sound that is kept in memory

std::string failedRead(uint64_t bytes, const WaveInfo &info)
{
    return "error while reading " + std::to_string(bytes) + " bytes from file: [" + info.fileName + "]";
}

/// Reads up to that many bytes; what the header says is not believed before it is there. Returns whether all were
/// there.
bool readAll(WavePass &pass, size_t wanted, std::vector<uint8_t> &bytes)
{
    bytes.clear();
    while (bytes.size() < wanted) {
        const size_t start = bytes.size();
        bytes.resize(std::min(wanted, start + WavePass::kTransferBytes));
        const size_t got = pass.read(std::span(bytes).subspan(start));
        if (got < bytes.size() - start) {
            bytes.resize(start + got);
            return false;
        }
    }
    return true;
}

} // namespace

void CmpMode::takeOption(char option, const char *value)
{
    switch (option) {
    case 's': m_findsShift = true; break;
    case 'l': m_listsBytes = true; break;
    case 'c':
        m_seconds = std::atoi(value);
        if (m_seconds <= 0)
            run().messages.failWithHelp("seconds for byte-shift comparison must be positive");
        break;
    default:
        m_fuzz = std::atoi(value);
        if (*m_fuzz < 0)
            run().messages.failWithHelp("fuzz factor cannot be negative");
        break;
    }
}

int CmpMode::execute()
{
    if (m_fuzz && !m_findsShift)
        run().messages.failWithHelp("fuzz factor can only be used with byte-shift");
    const std::vector<std::string> names = run().names.all();
    if (names.size() != 2) {
        const std::string why = "need exactly two files to process";
        if (run().names.hasArguments())
            run().messages.failWithHelp(why);
        run().messages.fail(why);
    }
    const std::optional<WaveInfo> first = run().files.examine(names[0]);
    if (!first)
        return 1;
    const std::optional<WaveInfo> second = run().files.examine(names[1]);
    if (!second)
        return 1;
    Shift shift;
    if (m_findsShift) {
        shift = findShift(*first, *second);
        tellShift(*first, shift);
    }
    return compare(*first, *second, shift) ? 0 : 1;
}

/// At least what is moved at a time elsewhere.
size_t CmpMode::bufferBytes(const WaveInfo &info) const
{
    constexpr uint64_t kMost = uint64_t{1} << 30;
    const uint64_t bytes = static_cast<uint64_t>(std::min(m_seconds, kMostSeconds)) * info.header.calculatedRate();
    return static_cast<size_t>(std::clamp<uint64_t>(bytes, WavePass::kTransferBytes, kMost));
}

std::vector<uint8_t> CmpMode::readFront(const WaveInfo &info) const
{
    WavePass pass(run().files, info);
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(bufferBytes(info), info.dataBytes()));
    std::vector<uint8_t> bytes;
    if (!pass.isOpen() || !readAll(pass, wanted, bytes))
        run().messages.fail(failedRead(wanted, info));
    return bytes;
}

bool CmpMode::areEqual(std::span<const uint8_t> one, std::span<const uint8_t> other) const
{
    const size_t count = std::min(one.size(), other.size());
    const int allowed = m_fuzz.value_or(0);
    int differences = 0;
    for (auto at = one.begin(), end = one.begin() + static_cast<std::ptrdiff_t>(count);;) {
        at = std::mismatch(at, end, other.begin() + (at - one.begin())).first;
        if (at == end)
            return true;
        if (++differences > allowed)
            return false;
        ++at;
    }
}

CmpMode::Shift CmpMode::findShift(const WaveInfo &first, const WaveInfo &second) const
{
    Progress progress(run().messages, {.action = "Scanning",
                                      .file = first.fileName,
                                      .fileDetail = {},
                                      .link = "and",
                                      .otherFile = second.fileName,
                                      .otherDetail = {},
                                      .totalBytes = 1});
    const std::vector<uint8_t> one = readFront(first);
    const std::vector<uint8_t> other = readFront(second);
    const size_t most = std::min(one.size(), other.size());
    for (size_t shift = 0; shift < most || shift == 0; ++shift) {
        if (areEqual(std::span(one).subspan(shift), other)) {
            progress.succeed();
            return {.first = shift, .second = 0};
        }
        if (areEqual(one, std::span(other).subspan(shift))) {
            progress.succeed();
            return {.first = 0, .second = shift};
        }
    }
    progress.fail();
    run().messages.fail("these files do not share identical data within the first "
                       + std::to_string(static_cast<uint64_t>(m_seconds) * first.header.calculatedRate()) + " bytes.");
}

void CmpMode::tellShift(const WaveInfo &first, const Shift &shift) const
{
    const uint64_t extra = std::max(shift.first, shift.second);
    const std::string start =
        m_fuzz && *m_fuzz > 0 ? "With fuzz factor " + std::to_string(*m_fuzz) + ", file" : std::string("File");
    std::string text = "\n" + start;
    if (extra == 0) {
        text += "s are identical so far.\n";
    } else {
        text += std::string(" the ") + (shift.first > 0 ? "first" : "second") + " file seems to have "
                + std::to_string(extra) + " extra bytes ("
                + std::to_string(extra / std::max<uint64_t>(first.header.blockAlign, 1)) + " extra samples";
        if (first.isCdQuality())
            text += ", or " + std::to_string((extra + kSectorBytes / 2) / kSectorBytes) + " extra sectors";
        text += ")\n\nThese extra bytes will be ignored in the full comparison.\n";
    }
    run().messages.tell(text + "\nPreparing to do a full comparison...\n\n");
}

/// Returns whether they are equal. Ends the run at a difference that is not to be listed.
bool CmpMode::comparePieces(std::span<const uint8_t> one, std::span<const uint8_t> other, uint64_t offset,
                            bool hasDiffered, Progress &progress) const
{
    bool areSame = true;
    for (size_t i = 0; i < one.size(); ++i) {
        if (one[i] == other[i])
            continue;
        if (!m_listsBytes) {
            progress.fail();
            run().messages.fail("WAVE data differs at byte offset: " + std::to_string(offset + i + 1));
        }
        if (areSame && !hasDiffered) {
            progress.fail();
            run().messages.tell("\n    offset   1   2\n   ----------------\n");
        }
        areSame = false;
        std::array<char, 64> line{};
        std::snprintf(line.data(), line.size(), "%10" PRIu64 " %3u %3u\n", offset + i + 1, unsigned{one[i]},
                      unsigned{other[i]});
        run().messages.tell(line.data());
    }
    return areSame;
}

bool CmpMode::compare(const WaveInfo &first, const WaveInfo &second, const Shift &shift) const
{
    if (const char *difference = differenceOf(first.header, second.header))
        run().messages.fail(std::string(difference) + " differs between these files");
    if (first.dataBytes() - shift.first != second.dataBytes() - shift.second)
        run().messages.remark("WAVE data size differs between these files -- will check up to smaller size");
    const uint64_t total = std::min(first.dataBytes() - shift.first, second.dataBytes() - shift.second);
    Progress progress(run().messages, {.action = "Comparing",
                                      .file = first.fileName,
                                      .fileDetail = run().lengthOf(first),
                                      .link = "and",
                                      .otherFile = second.fileName,
                                      .otherDetail = run().lengthOf(second),
                                      .totalBytes = total});
    WavePass one(run().files, first);
    WavePass other(run().files, second);
    const auto failRead = [&](uint64_t count, const WaveInfo &info) {
        progress.fail();
        run().messages.fail(failedRead(count, info));
    };
    if (!one.isOpen() || !one.transfer(nullptr, shift.first, nullptr))
        failRead(shift.first, first);
    if (!other.isOpen() || !other.transfer(nullptr, shift.second, nullptr))
        failRead(shift.second, second);
    std::vector<uint8_t> ones;
    std::vector<uint8_t> others;
    bool areSame = true;
    for (uint64_t done = 0; done < total;) {
        const auto wanted = static_cast<size_t>(std::min<uint64_t>(total - done, bufferBytes(first)));
        const bool hasOnes = readAll(one, wanted, ones);
        progress.add(ones.size());
        if (!hasOnes)
            failRead(wanted, first);
        if (!readAll(other, wanted, others))
            failRead(wanted, second);
        areSame = comparePieces(ones, others, done, !areSame, progress) && areSame;
        done += wanted;
    }
    if (!one.finish())
        failRead(first.dataBytes(), first);
    if (!other.finish())
        failRead(second.dataBytes(), second);
    const std::string contents = m_findsShift && shift.first + shift.second > 0 ? "Aligned contents" : "Contents";
    if (!areSame) {
        run().messages.tell("\n" + contents + " of these files differed as indicated above.\n");
        return false;
    }
    progress.succeed();
    std::string limit;
    if (first.dataBytes() - shift.first != second.dataBytes() - shift.second)
        limit = " (up to the first " + std::to_string(total) + " bytes of WAVE data)";
    run().messages.tell("\n" + contents + " of these files are identical" + limit + ".\n");
    return true;
}

} // namespace nurv
