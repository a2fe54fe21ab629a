// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/SampleCount.h"

#include "base/NurvFailure.h"

using namespace Qt::StringLiterals;

namespace nurv {

void failPromise(std::int64_t declared, std::int64_t held)
{
    throw NurvFailure(u"its header promises %1 samples, it holds %2"_s.arg(declared).arg(held));
}

void checkPromise(std::optional<std::int64_t> declared, std::int64_t held)
{
    if (declared.value_or(0) != 0 && *declared != held)
        failPromise(*declared, held);
}

QString timeOfFrame(std::int64_t frame, int sampleRateHz)
{
    const std::int64_t rate = sampleRateHz > 0 ? sampleRateHz : 1;
    const std::int64_t seconds = frame / rate;
    const std::int64_t thousandths = frame % rate * 1000 / rate;
    return u"%1:%2.%3"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, QChar(u'0')).arg(thousandths, 3, 10, QChar(u'0'));
}

} // namespace nurv
