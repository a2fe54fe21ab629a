// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Workbench.h"

#include "app/ApplicationShutdown.h"
#include "app/BaseTab.h"
#include "app/DockMenuController.h"
#include "app/NURVController.h"
#include "base/Log.h"
#include "base/Version.h"
#include "files/FileNames.h"
#include "process/TerminationSignals.h"
#include "settings/SettingsStore.h"
#include "text/PrintableLog.h"
#include "toolbox/Toolbox.h"
#include "ui/ApplicationIcon.h"
#include "ui/GivenFiles.h"
#include "ui/LegiblePalette.h"
#include "ui/LegibleStyle.h"
#include "ui/MainWindow.h"
#include "ui/RunningInstance.h"
#include "ui/StartupRecovery.h"

#include <QApplication>
#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QFile>

#include <cstdlib>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

struct GivenArguments {
    QStringList uris;
    QString page; ///< the action that goes to it; empty: the one of the last time
};

GivenArguments givenArguments(int argc, char **argv)
{
    QStringList arguments;
    QStringList uris;
    for (int index = 0; index < argc; ++index) {
        // The application's own list of arguments has lost the bytes of such a name.
        if (const std::optional<QString> text = fileNameFromBytes(argv[index]))
            arguments.append(*text);
        else
            uris.append(uriOfArgument(argv[index]));
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(Workbench::tr("Batch work on lossless audio files"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption page(u"page"_s, Workbench::tr("Show the page of a tool: decode, encode, fix-sbe and so on"),
                                  Workbench::tr("name"));
    parser.addOption(page);
    parser.addPositionalArgument(u"files"_s, Workbench::tr("Files and folders to open"), u"[files...]"_s);
    parser.process(arguments);
    for (const QString &argument : parser.positionalArguments())
        uris.append(uriOfArgument(QFile::encodeName(argument)));
    return {.uris = uris, .page = parser.value(page)};
}

} // namespace

int Workbench::run(int &argc, char **argv)
{
    makeLogPrintable();
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"nurv-workbench"_s);
    QApplication::setApplicationDisplayName(u"Nurv Audio Workbench"_s);
    QApplication::setApplicationVersion(shortVersionString());
    QApplication::setDesktopFileName(u"org.nurvaudio.Workbench"_s);
    QApplication::setWindowIcon(applicationIcon());
    QApplication::setQuitOnLastWindowClosed(false);
    LegibleStyle::install();
    const LegiblePalette palette;

    const GivenArguments given = givenArguments(argc, argv);
    RunningInstance instance;
    if (instance.claim() == RunningInstance::Role::Second && instance.handOver(given.uris, given.page))
        return 0;

    Workbench workbench;
    SettingsStore::instance().followFile();
    MainWindow &window = workbench.window();
    connect(&instance, &RunningInstance::activationRequested, &window, &MainWindow::bringToFront);
    connect(&instance, &RunningInstance::openRequested, &window, [&window](const GivenFiles &files) {
        window.bringToFront();
        window.openFiles(files);
    });
    DockMenuController dock(*workbench.m_controller);
    connect(&instance, &RunningInstance::pageRequested, &window, [&dock](const QString &action) { dock.selectTab(action); });
    if (!given.page.isEmpty() && !dock.selectTab(given.page))
        qCWarning(appLog).noquote() << "There is no page" << given.page << "- there are" << dock.actions().join(u", "_s);
    const GivenFiles files = filesOfUris(given.uris);
    if (given.page.isEmpty())
        workbench.m_controller->selectTab(workbench.m_controller->pageFor(files.paths));
    window.show();
    window.openFiles(files);
    StartupRecovery recovery(*workbench.m_controller);
    recovery.start();
    return QApplication::exec();
}

Workbench::Workbench()
{
    m_controller = std::make_unique<NURVController>(m_prompts, m_services, toolbox());
    for (const Tool &tool : m_controller->tools()) {
        if (tool.makeTab)
            m_tabs.push_back(tool.makeTab(*m_controller));
    }
    m_window = std::make_unique<MainWindow>(*m_controller);
    m_prompts.setMainWindow(m_window.get());
    m_services.setWindow(m_window.get());
    connect(m_window.get(), &MainWindow::quitConfirmed, this, &Workbench::quit);
    auto *const signalsToEnd = new TerminationSignals(this);
    connect(signalsToEnd, &TerminationSignals::interrupted, this, &Workbench::quit);
    connect(signalsToEnd, &TerminationSignals::terminated, this, &Workbench::quit);
}

Workbench::~Workbench() = default;

void Workbench::quit()
{
    if (std::exchange(m_hasQuit, true))
        return;
    m_window->prepareToQuit();
    if (!shutDown(*m_controller)) {
        // A worker that hangs in the file system still uses what an orderly end
        // would destroy.
        SettingsStore::instance().sync();
        std::_Exit(EXIT_SUCCESS);
    }
    // Not quit(), which asks every window whether it may close.
    QApplication::exit(0);
}

} // namespace nurv
