// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/CueSheet.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <utility>

namespace nurv {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view trimmed(std::string_view text)
{
    const size_t start = text.find_first_not_of(kBlanks);
    if (start == std::string_view::npos)
        return {};
    return text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

std::string unquoted(std::string_view text)
{
    text = trimmed(text);
    if (text.starts_with('"')) {
        text.remove_prefix(1);
        if (text.ends_with('"'))
            text.remove_suffix(1);
    }
    return std::string(text);
}

/// The first line of a sheet; other lists are of places alone.
bool beginsSheet(std::string_view line)
{
    constexpr std::array<std::string_view, 17> kWords{
        "TITLE",    "PERFORMER", "REM",     "FILE",  "CATALOG",  "ISRC",      "CDTEXTFILE", "SONGWRITER", "COMPOSER",
        "ARRANGER", "MESSAGE",   "DISC_ID", "GENRE", "TOC_INFO", "TOC_INFO2", "UPC_EAN",    "SIZE_INFO",
    };
    const size_t start = line.find_first_not_of(" \t");
    if (start == std::string_view::npos)
        return false;
    line.remove_prefix(start);
    return std::ranges::any_of(kWords, [&](std::string_view word) {
        return line.starts_with(word) && line.size() > word.size() && kBlanks.find(line[word.size()]) < 2;
    });
}

/// The last word of a line that could be a place, "00:01:10" as "00:01.10".
std::string placeIn(std::string_view line)
{
    constexpr std::string_view kLetters = "0123456789:.";
    const size_t last = line.find_last_of(kLetters);
    if (last == std::string_view::npos)
        return {};
    const size_t before = line.find_last_not_of(kLetters, last);
    const size_t start = before == std::string_view::npos ? 0 : before + 1;
    std::string place(line.substr(start, last - start + 1));
    if (std::ranges::count(place, ':') > 1)
        place[place.rfind(':')] = '.';
    return place;
}

/// All of the text, or its first mebibyte: far more than a disc has titles for.
std::string limitedText(std::istream &input)
{
    constexpr size_t kMostBytes = size_t{1} << 20;
    std::string text;
    for (std::array<char, 4096> piece{}; input && text.size() < kMostBytes;) {
        input.read(piece.data(), piece.size());
        text.append(piece.data(), static_cast<size_t>(input.gcount()));
    }
    return text;
}

} // namespace

CueSheet CueSheet::read(std::istream &input)
{
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    constexpr size_t kMostLetters = 2047;
    CueSheet sheet;
    bool isFirst = true;
    std::istringstream lines(limitedText(input));
    for (std::string text; std::getline(lines, text); isFirst = false) {
        text.resize(std::min(text.size(), kMostLetters));
        if (isFirst && text.starts_with(kMark))
            text.erase(0, kMark.size());
        if (isFirst)
            sheet.isSheet = beginsSheet(text);
        if (sheet.isSheet)
            sheet.addLine(trimmed(text));
        else
            sheet.places.push_back(placeIn(text));
    }
    // What cannot be read, as a folder, has no places, and nothing that long is a sheet.
    if (input.bad() || !input.eof())
        sheet.places.emplace_back();
    return sheet;
}

void CueSheet::addLine(std::string_view line)
{
    constexpr std::string_view kIndex = "INDEX 01";
    constexpr std::string_view kTitle = "TITLE";
    constexpr std::string_view kPerformer = "PERFORMER";
    if (line.starts_with(kIndex))
        places.push_back(placeIn(line));
    else if (line.starts_with("TRACK"))
        tracks.push_back({.title = {}, .performer = performer});
    else if (line.starts_with(kTitle))
        (tracks.empty() ? album : tracks.back().title) = unquoted(line.substr(kTitle.size()));
    else if (line.starts_with(kPerformer))
        (tracks.empty() ? performer : tracks.back().performer) = unquoted(line.substr(kPerformer.size()));
}

CueNames::CueNames(std::string format, std::string replacements)
    : m_format(std::move(format)), m_replacements(std::move(replacements))
{
}

std::string CueNames::nameOf(const CueSheet &sheet, size_t track, const std::string &number) const
{
    std::string name;
    for (size_t i = 0; i < m_format.size(); ++i) {
        const char letter = m_format[i];
        const char field = letter == '%' && i + 1 < m_format.size() ? m_format[i + 1] : '\0';
        switch (field) {
        case 'p': name += sheet.tracks[track].performer; break;
        case 'a': name += sheet.album; break;
        case 't': name += sheet.tracks[track].title; break;
        case 'n': name += number; break;
        default: name += letter; continue;
        }
        ++i;
    }
    for (size_t i = 0; i + 1 < m_replacements.size(); i += 2)
        std::ranges::replace(name, m_replacements[i], m_replacements[i + 1]);
    return name;
}

} // namespace nurv
