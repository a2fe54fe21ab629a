// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/LenMode.h"

#include "shntool/AudioFormat.h"
#include "shntool/ModeRun.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace nurv {

namespace {

constexpr const char *kColumnNames = "    length     expanded size    cdr  WAVE problems  fmt   ratio  filename\n";

/// Lengths in frames leave room for a third digit.
std::string lengthColumn(const std::string &length, bool isCdQuality)
{
    constexpr size_t kWidth = 13;
    const std::string text = isCdQuality ? length + ' ' : length;
    return std::string(text.size() < kWidth ? kWidth - text.size() : 0, ' ') + text;
}

std::string number(const char *format, double value)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

std::string cdColumn(const WaveInfo &info)
{
    if (!info.isCdQuality())
        return "cxx";
    return std::string("-") + (info.endsOnSector() ? '-' : 'b') + (info.isTooShort() ? 's' : '-');
}

std::string waveColumn(const WaveInfo &info)
{
    return std::string(1, info.header.isCanonical() ? '-' : 'h') + (info.extraBytes() > 0 ? 'e' : '-');
}

std::string problemColumn(const WaveInfo &info)
{
    std::string text;
    text += info.id3Bytes > 0 ? '3' : '-';
    text += info.isBlockAligned() ? '-' : 'a';
    text += info.isInconsistent() ? 'i' : '-';
    if (!info.canTellTruncation())
        return text + "xx";
    text += info.missingBytes() > 0 ? 't' : '-';
    text += info.junkBytes() > 0 ? 'j' : '-';
    return text;
}

} // namespace

LenMode::Unit LenMode::unitNamed(const char *name, const char *what) const
{
    constexpr std::array<Unit, 5> kUnits{
        Unit{"B ", 0}, Unit{"KB", 1}, Unit{"MB", 2}, Unit{"GB", 3}, Unit{"TB", 4},
    };
    constexpr std::array<std::string_view, kUnits.size()> kNames{"b", "kb", "mb", "gb", "tb"};
    for (size_t i = 0; i < kUnits.size(); ++i) {
        if (kNames[i] == name)
            return kUnits[i];
    }
    run().messages.failWithHelp(std::string("unknown ") + what + " size unit: [" + name + "]");
}

void LenMode::takeOption(char option, const char *value)
{
    switch (option) {
    case 'U': m_totalUnit = unitNamed(value, "total"); break;
    case 'u': m_fileUnit = unitNamed(value, "file"); break;
    case 'c': m_hidesNames = true; break;
    default: m_hidesTotals = true; break;
    }
}

std::string LenMode::sizeText(uint64_t bytes, Unit unit)
{
    const double size = static_cast<double>(bytes) / std::pow(1024.0, unit.power);
    return number(unit.power == 0 ? "%14.0f" : "%14.2f", size) + ' ' + unit.name;
}

int LenMode::execute()
{
    bool isGood = true;
    if (!m_hidesNames)
        run().messages.print(kColumnNames);
    while (const std::optional<std::string> name = run().names.next()) {
        const std::optional<WaveInfo> info = run().files.examine(*name);
        isGood = isGood && info;
        if (!info)
            continue;
        show(*info);
        add(*info);
    }
    if (!m_hidesTotals)
        showTotals();
    return isGood ? 0 : 1;
}

void LenMode::show(const WaveInfo &info) const
{
    std::array<char, 32> format{};
    std::snprintf(format.data(), format.size(), "%5.*s", static_cast<int>(info.format->name.size()),
                  info.format->name.data());
    run().messages.print(lengthColumn(run().lengthOf(info), info.isCdQuality()) + sizeText(info.totalBytes(), m_fileUnit)
                        + "  " + cdColumn(info) + "   " + waveColumn(info) + "   " + problemColumn(info) + "  "
                        + format.data() + "  " + number("%0.4f", info.ratio()) + "  " + info.fileName + '\n');
}

void LenMode::add(const WaveInfo &info)
{
    m_totals.areAllCdQuality = m_totals.areAllCdQuality && info.isCdQuality();
    m_totals.dataBytes += info.dataBytes();
    // By the rate that the header tells, where a file has its length by the one that follows from its fields.
    if (info.header.bytesPerSecond > 0)
        m_totals.seconds += static_cast<double>(info.dataBytes()) / info.header.bytesPerSecond;
    m_totals.totalBytes += info.totalBytes();
    m_totals.actualBytes += info.actualBytes;
    ++m_totals.files;
}

void LenMode::showTotals() const
{
    const std::string length =
        m_totals.areAllCdQuality ? run().time.ofCdBytes(m_totals.dataBytes) : run().time.ofSeconds(m_totals.seconds);
    const double ratio =
        m_totals.files == 0 ? 0 : static_cast<double>(m_totals.actualBytes) / static_cast<double>(m_totals.totalBytes);
    run().messages.print(lengthColumn(length, m_totals.areAllCdQuality) + sizeText(m_totals.totalBytes, m_totalUnit)
                        + "                           " + number("%0.4f", ratio) + "  ("
                        + std::to_string(m_totals.files) + (m_totals.files == 1 ? " file)\n" : " files)\n"));
}

} // namespace nurv
