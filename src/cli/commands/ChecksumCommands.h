// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/BatchCommand.h"

namespace nurv {

/// "nurv checksum create": writes a list of the files.
class ChecksumCreateCommand final : public BatchCommand {
public:
    [[nodiscard]] const CommandSpec &spec() const override;

protected:
    [[nodiscard]] bool takes(const QString &) const override { return true; }
    [[nodiscard]] std::unique_ptr<BaseTab> makeTab(NURVController &controller) const override;
    [[nodiscard]] QStringList optionsWithoutEffect(const ParsedArguments &arguments, const QStringList &files) const override;
};

/// "nurv checksum verify": checks lists.
class ChecksumVerifyCommand final : public BatchCommand {
public:
    [[nodiscard]] const CommandSpec &spec() const override;

protected:
    [[nodiscard]] bool takes(const QString &path) const override;
    [[nodiscard]] std::unique_ptr<BaseTab> makeTab(NURVController &controller) const override;
};

/// "nurv checksum test": decodes lossless files, and keeps nothing.
class ChecksumTestCommand final : public BatchCommand {
public:
    [[nodiscard]] const CommandSpec &spec() const override;

protected:
    [[nodiscard]] bool takes(const QString &path) const override;
    [[nodiscard]] std::unique_ptr<BaseTab> makeTab(NURVController &controller) const override;
};

} // namespace nurv
