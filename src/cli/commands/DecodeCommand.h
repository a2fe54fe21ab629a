// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/BatchCommand.h"

namespace nurv {

/// `nurv decode`: the decode tab.
class DecodeCommand final : public BatchCommand {
public:
    [[nodiscard]] const CommandSpec &spec() const override;

protected:
    [[nodiscard]] std::unique_ptr<BaseTab> makeTab(NURVController &controller) const override;
    [[nodiscard]] bool takes(const QString &path) const override;
};

} // namespace nurv
