// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/FileNumber.h"
#include "shntool/WaveInfo.h"

#include <memory>
#include <optional>
#include <set>
#include <string>

namespace nurv {

class RunMessages;
class FileArguments;
class FormatSettings;
class Progress;
class WaveOutput;

/// Names and makes the files of a run.
class OutputFiles {
public:
    enum class Overwrite { Ask, Always, Never };

    OutputFiles(const RunMessages &messages, const FormatSettings &formats, const FileArguments &sources);

    Overwrite overwrite = Overwrite::Ask;
    std::string folder;                  ///< of the option -d; empty: none was given
    std::optional<std::string> prefix;   ///< -a
    std::optional<std::string> postfix;  ///< -z
    std::optional<std::string> fullName; ///< -n of conv: the file, whatever the source's name

    /// For a file that is made of one source: beside it unless a folder was given, with its name and `postfix`,
    /// for which -z stands in.
    [[nodiscard]] std::string nameFrom(const WaveInfo &source, const std::string &postfix) const;
    /// The same in the current folder.
    [[nodiscard]] std::string nameHere(const WaveInfo &source, const std::string &postfix) const;
    /// For a file of its own: in the current folder unless one was given; -a stands in for `base`.
    [[nodiscard]] std::string nameOf(const std::string &base, const std::string &middle) const;
    /// In the same place, with -a and -z around the name.
    [[nodiscard]] std::string nameAround(const std::string &middle) const;

    /// Opens an output of the chosen format. Asks about a file that is there already, as was said; null where it
    /// stays, or nothing can be made, and where the name is that of a source, whatever the answer, or of another output
    /// of this run, unless that is complete and the answer was yes. May give the output another name, and ends the run where it may not ask.
    /// `progress` is what to show again after a question; null: nothing yet.
    [[nodiscard]] std::unique_ptr<WaveOutput> open(std::string &name, Progress *progress);

    /// Why the last `open` gave nothing: whose name that is, or else `text`.
    [[nodiscard]] std::string refusalOr(const std::string &text) const { return m_refusal.empty() ? text : m_refusal; }

    /// For outputs that do not live to the end of the run: it has its name, or was given up.
    void noteMade(const std::string &name);
    void noteGivenUp(const std::string &name);

    /// Whether both names stand for one file.
    [[nodiscard]] static bool areSame(const std::string &one, const std::string &other);

private:
    [[nodiscard]] bool isFile() const;
    [[nodiscard]] std::string inFolder(const std::string &name) const;
    [[nodiscard]] std::string named(const WaveInfo &source, const std::string &place, const std::string &postfix) const;
    [[nodiscard]] std::string extended(const std::string &name) const;
    [[nodiscard]] bool isTaken(const std::string &name) const;
    [[nodiscard]] bool isOutput(const std::string &name) const;
    [[nodiscard]] bool isMade(const std::string &name) const;
    [[nodiscard]] std::string refusalOf(const std::string &name, bool isAgreed) const;
    [[nodiscard]] bool mayWrite(std::string &name, Progress *progress);
    [[nodiscard]] bool ask(std::string &name, Progress *progress);
    [[nodiscard]] bool rename(std::string &name, Progress *progress);
    [[nodiscard]] std::unique_ptr<WaveOutput> make(const std::string &name);

    const RunMessages &m_messages;
    const FormatSettings &m_formats;
    const FileArguments &m_sources;
    std::string m_refusal;
    std::set<std::string> m_places;  ///< where outputs of this run are or will be
    std::set<FileNumber> m_made;   ///< those that have their names
    std::set<std::string> m_swept;   ///< folders in which nothing of a killed run is left
};

} // namespace nurv
