// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"

#include <optional>
#include <string>

namespace nurv {

/// Makes a file of silence in the quality of a CD.
class GenMode final : public Mode {
public:
    using Mode::Mode;

    void takeOption(char, const char *value) override { m_length = value; }
    int execute() override;

private:
    std::optional<std::string> m_length;
};

} // namespace nurv
