// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lossy/LossyFixture.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <array>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class LossyBadLuckTest : public test::LossyFixture {
protected:
    enum class Encoder { Mp3, Aac, Opus };
    static constexpr std::array kEncoders{Encoder::Mp3, Encoder::Aac, Encoder::Opus};

    std::shared_ptr<StagedTask> make(Encoder encoder, const QString &source)
    {
        switch (encoder) {
        case Encoder::Mp3: return makeMp3(source);
        case Encoder::Aac: return makeAac(source);
        case Encoder::Opus: break;
        }
        return makeOpus(source);
    }
    [[nodiscard]] QByteArray waits() const
    {
        return "create=" + folder.path(u"waits"_s).toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8();
    }
    /// Cancels the job when its program waits; the program may come to its end afterwards.
    void cancelWhileItWaits(const std::shared_ptr<StagedTask> &task)
    {
        task->setDeleteOriginal(true);
        queue().addTask(task);
        ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
        task->cancelTask();
        folder.write(u"go-on"_s, "");
        ASSERT_TRUE(finish());
        ASSERT_TRUE(test::waitUntil([] { return workerThreads::runningCount() == 0; }));
        EXPECT_EQ(task->textField().text, u"Canceled");
        EXPECT_FALSE(task->error());
        EXPECT_EQ(children::runningCount(), 0);
        EXPECT_TRUE(QFile::exists(task->fileName()));
        EXPECT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
        folder.remove(u"waits"_s);
        folder.remove(u"go-on"_s);
    }
    void expectFailure(const std::shared_ptr<StagedTask> &task)
    {
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_TRUE(task->error());
        EXPECT_FALSE(task->report().section(u'\n', 1).trimmed().isEmpty()) << "the report says why";
        EXPECT_TRUE(QFile::exists(task->fileName()));
    }
};

TEST_F(LossyBadLuckTest, LeavesNothingOfAnEncoderWhoseJobIsCancelled)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    const QString flac = test::writeFlac(folder.path(u"b.flac"_s));
    const QString alac = makeSource(u"M4A"_s, {.seconds = 0.5});
    const QByteArray hangs = "create=" + folder.path(u"waits"_s).toUtf8() + ";hang";
    setFake(u"lame"_s, "append=@-1:half;" + hangs);
    cancelWhileItWaits(makeMp3(wav));
    EXPECT_EQ(out.list(), QStringList());
    setFake(u"opusenc"_s, "append=@-1:half;" + hangs);
    for (const QString &source : {wav, flac, alac}) {
        SCOPED_TRACE(qPrintable(source));
        cancelWhileItWaits(makeOpus(source));
        EXPECT_EQ(out.list(), QStringList());
    }
    setFake(u"shntool"_s, hangs);
    for (const QString &source : {flac, alac}) {
        SCOPED_TRACE(qPrintable(source));
        cancelWhileItWaits(makeMp3(source));
        EXPECT_EQ(out.list(), QStringList());
    }
}

TEST_F(LossyBadLuckTest, EncodesNothingOnceTheJobIsCancelledWhileItDecodes)
{
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s));
    addFake(u"opusenc"_s, "append=@-1:x");
    setFake(u"flac"_s, "append=@-2:sound;" + waits());
    cancelWhileItWaits(makeOpus(flac));
    cancelWhileItWaits(makeAac(flac));
    setFake(u"shntool"_s, "append=@-2:sound;" + waits());
    const QString shn = folder.write(u"b.shn"_s, "ajkg");
    cancelWhileItWaits(makeOpus(shn));
    cancelWhileItWaits(makeAac(shn));
    EXPECT_TRUE(calls(u"opusenc"_s).isEmpty());
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(LossyBadLuckTest, CancelsTheAudioServiceBetweenItsBuffers)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 60});
    const auto task = makeAac(wav);
    task->setDeleteOriginal(true);
    queue().addTask(task);
    const QRegularExpression figureOfTheService(u"^Encoding to .*%$"_s);
    ASSERT_TRUE(test::waitUntil([&] { return !statuses.filter(figureOfTheService).isEmpty(); }));
    task->cancelTask();
    ASSERT_TRUE(finish());
    EXPECT_EQ(task->textField().text, u"Canceled");
    EXPECT_EQ(out.list(), QStringList());
    EXPECT_TRUE(QFile::exists(wav));
}

TEST_F(LossyBadLuckTest, LeavesNothingOfAProgramThatIsKilled)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    const QString flac = test::writeFlac(folder.path(u"b.flac"_s));
    setFake(u"lame"_s, "append=@-1:half;signal=9");
    setFake(u"opusenc"_s, "append=@-1:half;signal=9");
    for (const auto &task : std::initializer_list<std::shared_ptr<StagedTask>>{makeMp3(wav), makeOpus(wav), makeOpus(flac)}) {
        expectFailure(task);
        EXPECT_EQ(out.list(), QStringList()) << qPrintable(task->fileName());
    }
    setFake(u"flac"_s, "append=@-2:half;signal=11");
    expectFailure(makeAac(flac));
    expectFailure(makeOpus(flac));
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(LossyBadLuckTest, KeepsAnOutputThatWasThereBefore)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    for (const QString &name : {u"a.mp3"_s, u"a.opus"_s})
        out.write(name, "somebody's");
    setFake(u"lame"_s, "signal=9");
    setFake(u"opusenc"_s, "signal=9");
    expectFailure(makeMp3(wav));
    expectFailure(makeOpus(wav));
    for (const QString &name : {u"a.mp3"_s, u"a.opus"_s})
        EXPECT_EQ(out.read(name), "somebody's");
}

TEST_F(LossyBadLuckTest, HasTheNameOfItsOutputBeforeTheProgramBegins)
{
    // A second run of the application, which takes no notice of this one, finds it taken.
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    setFake(u"lame"_s, waits() + ";append=@-1:made;exit=1");
    setFake(u"opusenc"_s, waits() + ";append=@-1:made;exit=1");
    for (const auto &[encoder, name] : {std::pair{Encoder::Mp3, u"a.mp3"_s}, std::pair{Encoder::Opus, u"a.opus"_s}}) {
        const auto task = make(encoder, wav);
        queue().addTask(task);
        ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
        EXPECT_EQ(out.list(), QStringList{name});
        EXPECT_EQ(out.read(name), "");
        folder.write(u"go-on"_s, "");
        ASSERT_TRUE(finish());
        EXPECT_TRUE(task->error());
        EXPECT_EQ(out.list(), QStringList()) << "what a failed program made of it goes";
        folder.remove(u"waits"_s);
        folder.remove(u"go-on"_s);
    }
}

TEST_F(LossyBadLuckTest, KeepsAShortenFileWithAnotherSoundBehindItsEnd)
{
    const QString shn = makeSource(u"SHN"_s, {.seconds = 1.0});
    const QByteArray bytes = folder.read(u"a.shn"_s);
    for (const QByteArray &tail : {bytes, QByteArray(5'000, 'x')}) {
        folder.write(u"a.shn"_s, bytes + tail);
        for (const Encoder encoder : kEncoders) {
            const auto task = make(encoder, shn);
            task->setDeleteOriginal(true);
            runJob(task);
            EXPECT_TRUE(QFile::exists(shn)) << qPrintable(task->outputFile());
            for (const QString &name : out.list())
                ASSERT_TRUE(QFile::remove(out.path(name)));
        }
    }
}

TEST_F(LossyBadLuckTest, KeepsADamagedSource)
{
    const test::SoundShape shape{.seconds = 2.0};
    for (const QString &format : {u"flac"_s, u"FLAC"_s, u"WV"_s, u"TTA"_s, u"SHN"_s, u"M4A"_s}) {
        const QString source = makeSource(format, shape);
        QFile file(source);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        // A run of bytes in the middle of the sound, where every format's check sums see it.
        ASSERT_TRUE(file.seek(file.size() / 2));
        ASSERT_EQ(file.write(QByteArray(400, '\x55')), 400);
        file.close();
        for (const Encoder encoder : kEncoders) {
            SCOPED_TRACE(qPrintable(format));
            const auto task = make(encoder, source);
            task->setDeleteOriginal(true);
            runJob(task);
            EXPECT_TRUE(QFile::exists(source)) << qPrintable(task->outputFile());
            EXPECT_TRUE(task->error() || !task->outcome().problem.isEmpty()) << qPrintable(task->outputFile());
            const bool hasDecoder = format != u"M4A" && encoder != Encoder::Mp3;
            if (hasDecoder && format != u"TTA") {
                EXPECT_EQ(task->outcome().problem, u"its decoder failed") << qPrintable(task->outputFile());
            }
            for (const QString &name : out.list())
                ASSERT_TRUE(QFile::remove(out.path(name)));
        }
        folder.remove(QFileInfo(source).fileName());
    }
}

TEST_F(LossyBadLuckTest, KeepsATruncatedSource)
{
    const test::SoundShape shape{.seconds = 2.0};
    for (const QString &format : {u"WAV"_s, u"AIFF"_s, u"flac"_s, u"WV"_s, u"TTA"_s, u"SHN"_s, u"M4A"_s}) {
        const QString source = makeSource(format, shape);
        QFile file(source);
        ASSERT_TRUE(file.resize(QFileInfo(source).size() / 2));
        for (const Encoder encoder : kEncoders) {
            SCOPED_TRACE(qPrintable(format));
            const auto task = make(encoder, source);
            task->setDeleteOriginal(true);
            runJob(task);
            EXPECT_TRUE(QFile::exists(source)) << qPrintable(task->outputFile());
            EXPECT_TRUE(task->error()) << qPrintable(task->outputFile());
            for (const QString &name : out.list())
                ASSERT_TRUE(QFile::remove(out.path(name)));
        }
        folder.remove(QFileInfo(source).fileName());
    }
}

TEST_F(LossyBadLuckTest, SaysThatASourceIsGone)
{
    for (const Encoder encoder : kEncoders) {
        for (const QString &name : {u"a.wav"_s, u"a.flac"_s, u"a.aiff"_s, u"a.m4a"_s, u"a.shn"_s}) {
            const auto task = runJob(make(encoder, folder.path(name)));
            EXPECT_TRUE(task->error()) << qPrintable(name);
            EXPECT_FALSE(task->report().section(u'\n', 1).trimmed().isEmpty()) << qPrintable(name);
        }
    }
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(LossyBadLuckTest, NamesAProgramThatIsMissing)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.remove(u"lame"_s);
    tools.remove(u"opusenc"_s);
    for (const auto &[encoder, name] : {std::pair{Encoder::Mp3, u"lame"_s}, std::pair{Encoder::Opus, u"opusenc"_s}}) {
        const auto task = runJob(make(encoder, wav));
        EXPECT_TRUE(task->error());
        EXPECT_TRUE(task->report().contains(name)) << qPrintable(task->report());
    }
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(LossyBadLuckTest, RefusesAnOutputNameThatIsALink)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    const QString aimed = folder.write(u"precious"_s, "precious");
    for (const auto &[encoder, name] :
         {std::pair{Encoder::Mp3, u"a.mp3"_s}, std::pair{Encoder::Aac, u"a.m4a"_s}, std::pair{Encoder::Opus, u"a.opus"_s}}) {
        ASSERT_TRUE(QFile::link(aimed, out.path(name)));
        expectFailure(make(encoder, wav));
        EXPECT_EQ(folder.read(u"precious"_s), "precious");
        EXPECT_TRUE(QFileInfo(out.path(name)).isSymLink());
    }
}

} // namespace
} // namespace nurv
