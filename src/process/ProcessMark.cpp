// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/ProcessMark.h"

#include <QUuid>

namespace nurv {

const QByteArray &processMark()
{
    // Never destroyed: workers may start programs until the process ends.
    static const QByteArray *const mark = new QByteArray(QUuid::createUuid().toByteArray(QUuid::Id128));
    return *mark;
}

} // namespace nurv
