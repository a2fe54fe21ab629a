// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace nurv::test {

/// The path of a recorded transcript, as a fake program replays it.
[[nodiscard]] QString transcriptPath(const QString &name);

/// What a program wrote, one element per read of its pipe.
[[nodiscard]] QList<QByteArray> transcriptChunks(const QString &name);

} // namespace nurv::test
