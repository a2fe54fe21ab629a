// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/NURVController.h"
#include "app/ScriptedPrompts.h"
#include "checksum/ChecksumTab.h"
#include "convert/DecodeTab.h"
#include "convert/EncodeTab.h"
#include "desktop/NullDesktopServices.h"
#include "fix/FixTab.h"
#include "lossy/LossyTab.h"
#include "shntool/SHNtoolTab.h"
#include "support/TestFolder.h"
#include "tagging/TagsTab.h"
#include "toolbox/Toolbox.h"
#include "ui/MainWindow.h"
#include "util/UtilTab.h"

#include <QMimeData>

namespace nurv::test {

/// A whole application with a scripted user, its window not shown yet.
struct WindowFixture {
    TestFolder folder;
    ScriptedPrompts prompts;
    NullDesktopServices services;
    NURVController controller{prompts, services, toolbox()};
    DecodeTab decodeTab{controller};
    EncodeTab encodeTab{controller};
    ChecksumTab checksumTab{controller};
    LossyTab lossyTab{controller};
    FixTab fixTab{controller};
    SHNtoolTab shntoolTab{controller};
    UtilTab utilTab{controller};
    TagsTab tagsTab{controller};
    MainWindow window{controller};

    WindowFixture() = default;
    /// Waits for the workers, as the application does at its end.
    ~WindowFixture();
    WindowFixture(const WindowFixture &) = delete;
    WindowFixture &operator=(const WindowFixture &) = delete;

    /// Shows the window and waits until it has been drawn and has the keyboard.
    void show();
    template<typename Widget>
    [[nodiscard]] Widget *find(const QString &objectName) const
    {
        return window.findChild<Widget *>(objectName);
    }
};

/// Sends what a drag of these paths onto the widget sends; returns whether the
/// widget has taken it.
bool dropOn(QWidget *widget, const QStringList &paths);

} // namespace nurv::test
