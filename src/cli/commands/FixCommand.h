// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/BatchCommand.h"

namespace nurv {

/// `nurv fix`: the fix tab.
class FixCommand final : public BatchCommand {
public:
    [[nodiscard]] const CommandSpec &spec() const override;

protected:
    [[nodiscard]] std::unique_ptr<BaseTab> makeTab(NURVController &controller) const override;
    [[nodiscard]] bool takes(const QString &path) const override;
    [[nodiscard]] bool needsAllFiles(const ParsedArguments &) const override { return true; }
    [[nodiscard]] QStringList optionsWithoutEffect(const ParsedArguments &arguments,
                                                   const QStringList &files) const override;
};

} // namespace nurv
