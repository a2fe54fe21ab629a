// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConversionTask.h"

namespace nurv {

/// One file converted by `shntool`, which gives its output a name of its own where it does
/// not know the source's extension.
class ShntoolConversionTask : public ConversionTask {
public:
    [[nodiscard]] QString intermediateFile() const final;

protected:
    /// `arguments` as the functions of `shntool` give them: the source is taken from them.
    ShntoolConversionTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);
};

} // namespace nurv
