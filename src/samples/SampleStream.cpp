// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/SampleStream.h"

#include "platform/NurvFailure.h"

using namespace Qt::StringLiterals;

namespace nurv {

std::unique_ptr<SampleStream> SampleStream::open(const QString &)
{
    throw NurvFailure(u"it cannot be decoded"_s);
}

} // namespace nurv
