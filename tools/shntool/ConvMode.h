// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"

#include <string>

namespace nurv {

class WaveOutput;
struct WaveInfo;

/// Converts files from one format to another, whole: the header and the chunks behind the data too.
class ConvMode final : public Mode {
public:
    using Mode::Mode;

    void takeOption(char option, const char *value) override;
    int execute() override;

private:
    bool convert(const WaveInfo &info);
    [[nodiscard]] std::string copyStandardInput(WaveOutput &output) const;
    bool convertStandardInput();
    void checkName() const;

    bool m_readsStandardInput = false;
};

} // namespace nurv
