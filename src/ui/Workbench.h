// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/DesktopPrompts.h"
#include "ui/WindowDesktopServices.h"

#include <QObject>

#include <memory>
#include <vector>

namespace nurv {

class BaseTab;
class MainWindow;
class NURVController;

/// The desktop application: owns the controller, the tools and the main window,
/// and ends them in order. GUI thread.
class Workbench final : public QObject {
    Q_OBJECT

public:
    /// Runs the application with the arguments of `main`; returns its exit status.
    /// With another one running already, hands the files to that one instead.
    static int run(int &argc, char **argv);

    Workbench();
    ~Workbench() override;

    [[nodiscard]] MainWindow &window() const { return *m_window; }

private:
    /// Cancels every job, ends the programs, and leaves the event loop.
    void quit();

    DesktopPrompts m_prompts;
    WindowDesktopServices m_services;
    std::unique_ptr<NURVController> m_controller;
    std::vector<std::unique_ptr<BaseTab>> m_tabs;
    std::unique_ptr<MainWindow> m_window;
    bool m_hasQuit = false;
};

} // namespace nurv
