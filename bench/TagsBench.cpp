// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// What it costs to read and edit tags in a process of its own: small WavPack files, each with texts,
// whose tags are read and written again, through nurv-tags and in the process in turns.
//
//     TagsBench
#include "Measure.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "tags/TagLibTagsHelper.h"
#include "tags/TagsProcess.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::bench;

namespace {

constexpr int kRounds = 5;
/// In five rounds 5,000 files each way.
constexpr int kFiles = 1'000;
constexpr double kGoal = 1.2;
/// Reading alone is a few calls of the kernel; a message costs about as many.
constexpr double kReadingGoal = 3.0;

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const nurv::test::TestFolder folder;
    const QString wav = nurv::test::writeWav(folder.path(u"source.wav"_s), {.seconds = 0.1});
    const QString first = folder.path(u"first.wv"_s);
    runOrDie(u"wavpack"_s, {u"-q"_s, wav, u"-o"_s, first});
    TagsObject record;
    record.setTitleText(u"A title of the usual length"_s);
    record.setArtistText(u"Somebody"_s);
    record.setAlbumText(u"An album"_s);
    TagLibTagsHelper::writeTagsForWavpackFile(first, record, false);
    QStringList files;
    for (int i = 0; i < kFiles; ++i)
        files.append(folder.write(QString::number(i) + u".wv"_s, folder.read(u"first.wv"_s)));

    int round = 0;
    const auto readAll = [&] {
        for (int time = 0; time < 5; ++time) {
            for (const QString &file : files)
                static_cast<void>(TagLibTagsHelper::tagsForWavpackFile(file));
        }
    };
    const auto copyAll = [&] {
        ++round;
        for (const QString &file : files) {
            TagsObject tags = TagLibTagsHelper::tagsForWavpackFile(file);
            tags.setTitleText(u"Title %1"_s.arg(round));
            TagLibTagsHelper::writeTagsForWavpackFile(file, tags, false);
        }
    };
    const auto inProcessesOfTheirOwn = [](const auto &work) {
        return [work] {
            TagsProcess::setUp();
            work();
            TagsProcess::takeDown();
        };
    };
    compare(u"5,000 times tags read"_s, kRounds, kReadingGoal, inProcessesOfTheirOwn(readAll), readAll);
    compare(u"1,000 files: tags read and written"_s, kRounds, kGoal, inProcessesOfTheirOwn(copyAll), copyAll);
    return 0;
}
