// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace nurv {

class RunMessages;
class WaveOutput;

/// Outputs of one run that get their names when all of them are complete. Before that nothing stays of any.
class OutputSet {
public:
    OutputSet();
    ~OutputSet();
    OutputSet(const OutputSet &) = delete;
    OutputSet &operator=(const OutputSet &) = delete;

    /// Returns the output, which stays valid until `clear`.
    WaveOutput &add(const std::string &name, std::unique_ptr<WaveOutput> output);

    /// Gives up all that have no name yet.
    void clear();

    /// Names them, in their order. Where one cannot get its name, those before it have theirs and keep them, the others
    /// are given up; then a warning tells which one that was. Returns whether all of them have their names.
    [[nodiscard]] bool commit(const RunMessages &messages);

private:
    struct Member {
        std::string name;
        std::unique_ptr<WaveOutput> output;
    };

    std::vector<Member> m_members;
};

} // namespace nurv
