// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"
#include "sound/SoundHash.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nurv {

class Progress;
class WavePass;
struct WaveInfo;

/// Fingerprints of the data of files, or one of all of them in their order.
class HashMode final : public Mode {
public:
    using Mode::Mode;

    void takeOption(char option, const char *value) override;
    int execute() override;

private:
    [[nodiscard]] std::optional<WaveInfo> examine(size_t number, const std::string &name) const;
    void showSteps(Progress &progress, size_t bytes) const;
    bool hashEach(const std::vector<std::string> &names);
    bool hashFile(const WaveInfo &info);
    void hashAll(const std::vector<WaveInfo> &infos);
    void addFile(const WaveInfo &info, SoundHash &hash, Progress &progress, uint64_t &partBytes) const;
    void show(const std::vector<uint8_t> &digest, const std::string &name) const;

    SoundHash::Kind m_kind = SoundHash::Kind::Md5;
    bool m_isComposite = false;
};

} // namespace nurv
