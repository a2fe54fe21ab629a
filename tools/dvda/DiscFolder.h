// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TemporaryFile.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace nurv {

/// The folder that gets AUDIO_TS and an empty VIDEO_TS. It may be new, empty, or hold a disc that this program made
/// before: nothing else is ever replaced or removed, and no link is followed.
///
///     files without names ──> hidden folder ── rename ──> AUDIO_TS, or the whole folder where it is new
///
/// So the disc is there whole or not at all.
class DiscFolder {
public:
    using Files = std::vector<std::pair<std::string, std::unique_ptr<TemporaryFile>>>;

    /// Throws ToolError(Write) for a folder with something else in it, and for one that cannot be written.
    explicit DiscFolder(const std::string &name);

    /// On whose file system the files are to be made.
    [[nodiscard]] const std::string &workFolder() const { return m_base; }

    /// Names the files of AUDIO_TS. Throws ToolError(Write), and leaves nothing then. A signal comes before or after.
    void commit(Files files) const;

private:
    void examine();
    void examineAudio() const;
    void makeWhole(const std::string &work, Files &files) const;
    void makeAudio(const std::string &work, Files &files) const;
    void replaceAudio(const std::string &work) const;

    std::string m_name;
    std::string m_base;
    bool m_isNew = false;
    bool m_hasAudio = false;
    bool m_hasVideo = false;
};

} // namespace nurv
