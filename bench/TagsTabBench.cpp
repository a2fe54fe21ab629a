// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// 5,000 mixed files whose tags the Tags tab reads when they are selected, and 1,000 that it writes, against a plain
// loop over the same calls in the process; and for how long the GUI thread is away meanwhile.
//
//     TagsTabBench
#include "app/NURVController.h"
#include "app/UserPrompts.h"
#include "desktop/NullDesktopServices.h"
#include "Measure.h"
#include "settings/SettingsStore.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "tagging/TagFiles.h"
#include "tagging/TagsTab.h"
#include "tags/TagsProcess.h"
#include "toolbox/Toolbox.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::bench;

namespace {

constexpr int kRounds = 5;
constexpr int kReadFiles = 5'000;
constexpr int kWrittenFiles = 1'000;
constexpr double kGoal = 1.2;
/// What reading in processes of their own may cost; see TagsBench.
constexpr double kIsolatedGoal = 3.0;
constexpr int kTickMs = 5;

/// Nobody is asked anything here.
class NoPrompts final : public UserPrompts {
public:
    QString ask(const Alert &alert) override { qFatal("asked: %s", qUtf8Printable(alert.title + alert.message)); }
    QStringList choose(const FileChooser &) override { return {}; }
    bool runPanel(const Panel &) override { return false; }
};

/// For how long the event loop did not come round, at most.
class Gaps {
public:
    Gaps()
    {
        m_timer.setInterval(kTickMs);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer,
                         [this] { m_longestMs = std::max(m_longestMs, m_sinceTick.restart()); });
        m_sinceTick.start();
        m_timer.start();
    }
    [[nodiscard]] qint64 longestMs() const { return std::max(m_longestMs, m_sinceTick.elapsed()); }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceTick;
    qint64 m_longestMs = 0;
};

/// Small files of four kinds, in turns.
QStringList makeFiles(const test::TestFolder &folder, int count)
{
    const QString wav = test::writeWav(folder.path(u"source.wav"_s), {.seconds = 0.1});
    const QString flac = folder.path(u"first.flac"_s);
    const QString wv = folder.path(u"first.wv"_s);
    const QString mp3 = folder.path(u"first.mp3"_s);
    const QString m4a = folder.path(u"first.m4a"_s);
    runOrDie(u"flac"_s, {u"-s"_s, wav, u"-o"_s, flac});
    runOrDie(u"wavpack"_s, {u"-q"_s, wav, u"-o"_s, wv});
    runOrDie(u"lame"_s, {u"--quiet"_s, wav, mp3});
    runOrDie(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, wav, u"-c:a"_s, u"alac"_s, m4a});
    TagsObject record;
    record.setTitleText(u"A title of the usual length"_s);
    record.setArtistText(u"Somebody"_s);
    record.setAlbumText(u"An album"_s);
    QStringList files;
    const QStringList kinds{flac, wv, mp3, m4a};
    for (const QString &kind : kinds)
        tagFiles::write(kind, record, false);
    for (int i = 0; i < count; ++i) {
        const QString &first = kinds.at(i % kinds.size());
        const QString name = first.section(u'/', -1);
        files.append(folder.write(u"%1 %2"_s.arg(i).arg(name), folder.read(name)));
    }
    return files;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const test::TestFolder folder;
    const QStringList files = makeFiles(folder, kReadFiles);
    NURVController::registerDefaults(toolbox());
    SettingsStore::instance().setPersistence(SettingsStore::Persistence::MemoryOnly);
    NoPrompts prompts;
    NullDesktopServices services;
    NURVController controller(prompts, services, toolbox());

    qint64 longestMs = 0;
    const auto select = [&] {
        TagsProcess::setUp();
        {
            TagsTab tab(controller);
            tab.addFiles(files);
            const Gaps gaps;
            while (tab.isReading())
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            longestMs = std::max(longestMs, gaps.longestMs());
            if (tab.albumText.text() != u"An album")
                qFatal("the tags were not read");
        }
        TagsProcess::takeDown();
    };
    const auto readAll = [&] {
        for (const QString &file : files)
            static_cast<void>(tagFiles::read(file));
    };
    const auto isolated = [](const auto &work) {
        return [work] {
            TagsProcess::setUp();
            work();
            TagsProcess::takeDown();
        };
    };
    compare(u"5,000 mixed files selected, against a loop through nurv-tags"_s, kRounds, kGoal, select,
            isolated(readAll));
    compare(u"the same, against a loop in the process"_s, kRounds, kIsolatedGoal, select, readAll);
    std::printf("the GUI thread was away for %lld ms at most; goal 100\n", static_cast<long long>(longestMs));

    const QStringList written = files.first(kWrittenFiles);
    int round = 0;
    const auto writeByTab = [&] {
        TagsProcess::setUp();
        {
            TagsTab tab(controller);
            tab.previewButton.setOn(false);
            tab.addFiles(written);
            tab.finishReading();
            tab.genreText.setText(QString::number(++round));
            tab.executeCommand();
        }
        TagsProcess::takeDown();
    };
    const auto writeAll = [&] {
        for (const QString &file : written)
            static_cast<void>(tagFiles::read(file));
        TagsObject record;
        record.setArtistText(u"Somebody"_s);
        record.setAlbumText(u"An album"_s);
        record.setGenreText(QString::number(++round));
        for (const QString &file : written)
            tagFiles::write(file, record, false);
    };
    compare(u"1,000 mixed files selected and written, against a loop through nurv-tags"_s, kRounds, kGoal, writeByTab,
            isolated(writeAll));
    compare(u"the same, against a loop in the process"_s, kRounds, kIsolatedGoal, writeByTab, writeAll);
    return 0;
}
