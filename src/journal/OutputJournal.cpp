// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/OutputJournal.h"

namespace nurv {

namespace {

class SilentJournal final : public OutputJournal {
public:
    void markBegun(const QString &) override {}
    void markEnded(const QString &) override {}
    void noteAside(const QString &, const QString &) override {}
    void forgetAside(const QString &) override {}
    void flush() override {}
};

} // namespace

OutputJournal::~OutputJournal() = default;

std::shared_ptr<OutputJournal> OutputJournal::begin(const std::vector<Planned> &)
{
    return std::make_shared<SilentJournal>();
}

void OutputJournal::noteTemporary(const QString &) {}

void OutputJournal::forgetTemporary(const QString &) {}

} // namespace nurv
