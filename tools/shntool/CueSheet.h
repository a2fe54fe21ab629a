// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nurv {

/// Places to split at, and names, as people write them down: a cue sheet, or a list with a place on each line. The
/// first line tells which it is.
struct CueSheet {
    /// Of a track, in the order of their titles.
    struct Track {
        std::string title;
        std::string performer;
    };

    bool isSheet = false; ///< or a list
    std::string album;
    std::string performer;
    std::vector<Track> tracks;
    std::vector<std::string> places; ///< as they are written, but m:ss:ff as m:ss.ff

    /// Reads to the end. Lines of a cue sheet that are of no use here are passed over.
    [[nodiscard]] static CueSheet read(std::istream &input);

private:
    void addLine(std::string_view line);
};

/// How files are named by a cue sheet.
class CueNames {
public:
    /// `format` has %p, %a, %t and %n for performer, album, title and number. In `replacements` the letters take
    /// turns: what is replaced, and by what.
    CueNames(std::string format, std::string replacements);

    /// Before letters are replaced that no name can have.
    [[nodiscard]] std::string nameOf(const CueSheet &sheet, size_t track, const std::string &number) const;

private:
    std::string m_format;
    std::string m_replacements;
};

} // namespace nurv
