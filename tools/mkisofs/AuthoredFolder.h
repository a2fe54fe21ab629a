// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nurv {

/// A folder with AUDIO_TS, and nothing else but an empty VIDEO_TS.
class AuthoredFolder {
public:
    struct File {
        std::string name; ///< in AUDIO_TS
        uint64_t bytes = 0;

        [[nodiscard]] uint64_t sectors() const;
    };

    /// Throws ToolError where something is missing, is no whole number of sectors, or does not belong there.
    explicit AuthoredFolder(const std::string &path);

    [[nodiscard]] const std::string &path() const { return m_path; }
    /// In the order in which they have to be on the disc, where they point to each other by it.
    [[nodiscard]] const std::vector<File> &files() const { return m_files; }
    [[nodiscard]] std::string pathOf(const std::string &name) const;
    [[nodiscard]] bool hasVideo() const { return m_hasVideo; }

    /// All of a file that is no larger than tables are. Throws ToolError.
    [[nodiscard]] std::vector<uint8_t> read(const std::string &name) const;

private:
    void examine();
    void addFile(const std::string &name);
    void checkPair(const char *table, const char *copy) const;

    std::string m_path;
    std::vector<File> m_files;
    bool m_hasVideo = false;
};

} // namespace nurv
