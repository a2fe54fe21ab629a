// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// 100,000 files in nested folders added to a tab's list, sorted.
#include "app/NURVController.h"
#include "app/UserPrompts.h"
#include "convert/EncodeTab.h"
#include "desktop/NullDesktopServices.h"
#include "Measure.h"
#include "settings/SettingsStore.h"
#include "support/TestFolder.h"
#include "toolbox/Toolbox.h"

#include <QCoreApplication>
#include <QDir>

#include <cstdio>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::bench;

namespace {

constexpr int kFolders = 1'000;
constexpr int kFilesInFolder = 100;

/// Nobody is asked anything here.
class NoPrompts final : public UserPrompts {
public:
    QString ask(const Alert &) override { return {}; }
    QStringList choose(const FileChooser &) override { return {}; }
    bool runPanel(const Panel &) override { return false; }
};

void makeFiles(const QString &root)
{
    for (int folder = 0; folder < kFolders; ++folder) {
        const QString path = u"%1/artist %2/album %3/disc %4"_s.arg(root).arg(folder % 10).arg(folder / 10).arg(folder);
        QDir().mkpath(path);
        for (int file = 0; file < kFilesInFolder; ++file) {
            const QByteArray name = u"%1/Track %2 - A title.wav"_s.arg(path).arg(file + 1).toLocal8Bit();
            const int fd = ::open(name.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
            if (fd < 0)
                qFatal("no file can be made");
            ::close(fd);
        }
    }
}

double peakMegabytes()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const test::TestFolder folder;
    makeFiles(folder.path());
    NURVController::registerDefaults(toolbox());
    SettingsStore::instance().setPersistence(SettingsStore::Persistence::MemoryOnly);
    NoPrompts prompts;
    NullDesktopServices services;
    NURVController controller(prompts, services, toolbox());

    QList<double> times;
    const double before = peakMegabytes();
    double growth = 0.0;
    for (int round = 0; round < 5; ++round) {
        EncodeTab tab(controller);
        times.append(millisecondsOf([&] { tab.addFiles({folder.path()}); }));
        if (tab.fileNames().size() != kFolders * kFilesInFolder)
            qFatal("the list is not complete");
        if (round == 0)
            growth = peakMegabytes() - before;
    }
    std::printf("100,000 files added to a list: %.0f ms (median of 5, goal 2000), %.0f MB more memory (goal 150)\n",
                median(times), growth);
    return 0;
}
