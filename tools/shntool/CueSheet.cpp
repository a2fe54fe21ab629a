// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/CueSheet.h"

#include <algorithm>
#include <array>
#include <string_view>
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
        text = text.substr(0, text.find('"'));
    }
    return std::string(text);
}

/// Lines that tell nothing about places and names.
bool isOther(std::string_view line)
{
    constexpr std::array<std::string_view, 20> kWords{
        "FILE",    "TRACK",      "INDEX",    "CATALOG",  "CDTEXTFILE", "FLAGS",   "ISRC",     "POSTGAP", "PREGAP",  "REM",
        "GENRE",   "SONGWRITER", "COMPOSER", "ARRANGER", "MESSAGE",    "DISC_ID", "TOC_INFO", "UPC_EAN", "SIZE_INFO", "//",
    };
    return std::ranges::any_of(kWords, [&](std::string_view word) { return line.starts_with(word); });
}

/// "00:01:10" as "00:01.10"; what follows a place is passed over.
std::string placeOf(std::string_view text)
{
    text = trimmed(text);
    std::string place(text.substr(0, text.find_first_not_of("0123456789:.")));
    const size_t colon = place.find(':');
    const size_t second = colon == std::string::npos ? colon : place.find(':', colon + 1);
    if (second != std::string::npos)
        place[second] = '.';
    return place;
}

} // namespace

CueSheet CueSheet::read(std::istream &input)
{
    constexpr std::string_view kIndex = "INDEX 01";
    constexpr std::string_view kTitle = "TITLE";
    constexpr std::string_view kPerformer = "PERFORMER";
    CueSheet sheet;
    bool isInTrack = false;
    std::string trackPerformer;
    for (std::string text; std::getline(input, text);) {
        const std::string_view line = trimmed(text);
        if (line.starts_with(kIndex)) {
            sheet.places.push_back(placeOf(line.substr(kIndex.size())));
        } else if (line.starts_with(kTitle)) {
            const std::string title = unquoted(line.substr(kTitle.size()));
            if (isInTrack && !sheet.tracks.empty())
                sheet.tracks.back().title = title;
            else
                sheet.album = title;
        } else if (line.starts_with(kPerformer)) {
            const std::string performer = unquoted(line.substr(kPerformer.size()));
            if (isInTrack && !sheet.tracks.empty())
                sheet.tracks.back().performer = performer;
            else
                sheet.performer = performer;
        } else if (line.starts_with("TRACK")) {
            isInTrack = true;
            sheet.tracks.push_back({.title = {}, .performer = sheet.performer});
        } else if (!isOther(line)) {
            sheet.places.push_back(placeOf(line));
        }
    }
    return sheet;
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
