// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/CueSheet.h"
#include "shntool/Mode.h"
#include "shntool/OutputSet.h"
#include "shntool/WaveInfo.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace nurv {

class Progress;
class WaveOutput;
class WavePass;

/// Splits a file at given places. The pieces get their names when all of them are complete.
class SplitMode final : public Mode {
public:
    explicit SplitMode(ModeRun &run);
    ~SplitMode() override;

    void takeOption(char option, const char *value) override;
    int execute() override;

private:
    static constexpr int kMostPieces = 256;

    void readTracks(const std::string &list);
    [[nodiscard]] bool isWanted(size_t piece) const;
    void readPlaces();
    void addRepeatedPlaces(const std::string &length);
    [[noreturn]] void failForNumber() const;
    void addPlace(uint64_t place);
    void endPlaces();
    void readLeads();
    void warnOfPiece(size_t piece) const;
    void namePieces();
    void nameByCueSheet();
    [[nodiscard]] std::string numberOf(size_t piece) const;
    [[nodiscard]] uint64_t bytesOfPiece(size_t piece) const;
    void splitAll();
    void splitPiece(size_t piece);
    void openInput(WaveOutput &output, Progress &progress);
    void writePiece(size_t piece, WaveOutput &output, Progress &progress);
    void copy(WaveOutput &output, uint64_t count, Progress &progress);
    [[noreturn]] void failPiece(Progress &progress, WaveOutput &output, const std::string &why);

    std::optional<std::string> m_placesFile;
    std::optional<std::string> m_repeated;
    std::optional<std::string> m_leadInText;
    std::optional<std::string> m_leadOutText;
    std::string m_numberFormat = "%02d";
    std::optional<std::string> m_cueFormat;
    std::string m_replacements;
    int m_firstNumber = 1;
    std::optional<std::set<int>> m_wanted;

    WaveInfo m_info;
    CueSheet m_sheet;
    std::vector<uint64_t> m_places; ///< where pieces end, the last one included
    uint64_t m_leadIn = 0;
    uint64_t m_leadOut = 0;
    std::vector<std::string> m_names;
    std::optional<std::string> m_duplicate;
    bool m_lastIsWarned = false; ///< of its length
    std::unique_ptr<WavePass> m_pass;
    uint64_t m_position = 0; ///< of the data that is read
    /// What the next piece begins with, up to what is read next.
    std::vector<uint8_t> m_around;
    OutputSet m_outputs;
};

} // namespace nurv
