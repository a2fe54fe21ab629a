// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Workbench.h"

#include "app/ApplicationShutdown.h"
#include "app/FileIntake.h"
#include "app/NURVController.h"
#include "convert/DecodeTab.h"
#include "convert/EncodeTab.h"
#include "ui/ApplicationIcon.h"
#include "ui/MainWindow.h"
#include "ui/RunningInstance.h"
#include "ui/TerminationSignals.h"

#include <QApplication>
#include <QCommandLineParser>

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QStringList filesOfCommandLine(const QApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(Workbench::tr("Batch work on lossless audio files"));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(u"files"_s, Workbench::tr("Files and folders to open"), u"[files...]"_s);
    parser.process(application);
    QStringList paths;
    for (const QString &argument : parser.positionalArguments())
        paths.append(absolutePath(argument));
    return paths;
}

} // namespace

int Workbench::run(int &argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"nurv-workbench"_s);
    QApplication::setApplicationDisplayName(u"Nurv Audio Workbench"_s);
    QApplication::setApplicationVersion(QStringLiteral(NURV_VERSION));
    QApplication::setDesktopFileName(u"org.nurvaudio.Workbench"_s);
    QApplication::setWindowIcon(applicationIcon());
    QApplication::setQuitOnLastWindowClosed(false);

    const QStringList paths = filesOfCommandLine(application);
    RunningInstance instance;
    if (instance.claim() == RunningInstance::Role::Second && instance.handOver(paths))
        return 0;

    Workbench workbench;
    MainWindow &window = workbench.window();
    connect(&instance, &RunningInstance::activationRequested, &window, &MainWindow::bringToFront);
    connect(&instance, &RunningInstance::openRequested, &window, [&window](const QStringList &files) {
        window.bringToFront();
        window.openPaths(files);
    });
    window.show();
    if (!paths.isEmpty())
        window.openPaths(paths);
    return QApplication::exec();
}

Workbench::Workbench()
{
    NURVController::registerDefaults();
    m_controller = std::make_unique<NURVController>(m_prompts, m_services);
    m_decodeTab = std::make_unique<DecodeTab>(*m_controller);
    m_encodeTab = std::make_unique<EncodeTab>(*m_controller);
    m_window = std::make_unique<MainWindow>(*m_controller);
    m_prompts.setMainWindow(m_window.get());
    m_services.setWindow(m_window.get());
    connect(m_window.get(), &MainWindow::quitConfirmed, this, &Workbench::quit);
    auto *const signalsToEnd = new TerminationSignals(this);
    connect(signalsToEnd, &TerminationSignals::received, this, [this] {
        m_window->saveState();
        quit();
    });
}

Workbench::~Workbench() = default;

void Workbench::quit()
{
    if (std::exchange(m_hasQuit, true))
        return;
    m_controller->applicationWillTerminate();
    shutDown(m_controller->taskQueue());
    // Not quit(), which asks every window whether it may close.
    QApplication::exit(0);
}

} // namespace nurv
