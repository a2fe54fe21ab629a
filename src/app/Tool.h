// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settings/Setting.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

namespace nurv {

class BaseTab;
class NURVController;

/// What there is to know of a tool before it has a tab: the controller, the window and the command line take their facts from
/// here.
struct Tool {
    QString label;             ///< of its page; settings and routes know the tool by it
    const char *title = "";    ///< of its page, for people; to be translated in the context "Tool"
    QStringList extensions = {}; ///< in capitals; empty: its page takes any file

    /// Files of other extensions are taken, too: they say what the others hold.
    bool takesAllFiles = false;
    bool takesFilesWithoutExtension = true;
    /// Of MPEG-4 files its page takes those that hold Apple Lossless, whatever the extensions say; also out of folders
    /// that arrive with the application, if `takesAppleLosslessFromFolders`.
    bool takesAppleLossless = false;
    bool takesAppleLosslessFromFolders = false;

    std::vector<Setting> settings = {}; ///< those that are its own
    /// Makes its tab, which enters itself with the controller; empty for a tool that is not there.
    std::function<std::unique_ptr<BaseTab>(NURVController &controller)> makeTab = {};
};

} // namespace nurv
