// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"

#include "convert/DecodeALACTask.h"
#include "convert/DecodeAPETask.h"
#include "convert/DecodeFlacTask.h"
#include "convert/DecodeSHNTask.h"
#include "convert/DecodeTTATask.h"
#include "convert/DecodeWavpackTask.h"
#include "convert/EncodeALACTask.h"
#include "convert/EncodeALACToAPETask.h"
#include "convert/EncodeALACToFlacTask.h"
#include "convert/EncodeALACToTTATask.h"
#include "convert/EncodeALACToWavpackTask.h"
#include "convert/EncodeApeTask.h"
#include "convert/EncodeFlacTask.h"
#include "convert/EncodeSHNTask.h"
#include "convert/EncodeSHNToFlacTask.h"
#include "convert/EncodeTTATask.h"
#include "convert/EncodeThroughWavTask.h"
#include "convert/EncodeWavpackTask.h"
#include "convert/EncodeWavpackToFlacTask.h"

#include <typeindex>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class ConversionDispatchTest : public test::HeldQueueFixture {
protected:
    template<typename Tab>
    std::shared_ptr<NURVTask> queued(Tab &tab, const QString &source)
    {
        const std::size_t before = queue().panelArray().size();
        prompts.expectOutputFolder(out.path());
        tab.addMatchedFiles({folder.write(source, "")});
        tab.executeCommand();
        EXPECT_TRUE(tab.fileNames().isEmpty());
        if (queue().panelArray().size() != before + 1) {
            ADD_FAILURE() << "no job for " << qPrintable(source);
            return nullptr;
        }
        return queue().panelArray().back();
    }
    std::shared_ptr<NURVTask> encoded(EncodeTab &tab, const QString &format, const QString &source)
    {
        EXPECT_TRUE(tab.outputFormatMatrix.selectTitle(format));
        return queued(tab, source);
    }
};

std::type_index typeOf(const NURVTask &task)
{
    return typeid(task);
}

TEST_F(ConversionDispatchTest, EncodesByFormatAndSource)
{
    struct Row {
        QString format;
        QStringList sources;
        std::type_index type;
        bool isInSetOfBatch;
    };
    const QStringList plain{u"a.wav"_s, u"a.AIF"_s, u"a.aiff"_s, u"noextension"_s};
    const QStringList shortenAndApe{u"b.shn"_s, u"b.APE"_s};
    const QStringList byShntool = plain + shortenAndApe + QStringList{u"a.flac"_s, u"a.tta"_s};
    const QStringList all = byShntool + QStringList{u"b.WV"_s, u"c.m4a"_s};
    const std::vector<Row> rows{
        {u"SHN"_s, byShntool, typeid(EncodeSHNTask), true},
        {u"SHN"_s, {u"b.WV"_s, u"c.m4a"_s}, typeid(EncodeThroughWavTask), true},
        {u"FLAC"_s, shortenAndApe, typeid(EncodeSHNToFlacTask), true},
        {u"FLAC"_s, {u"c.m4a"_s, u"c.M4A"_s}, typeid(EncodeALACToFlacTask), true},
        {u"FLAC"_s, {u"c.wv"_s, u"c.WV"_s}, typeid(EncodeWavpackToFlacTask), true},
        {u"FLAC"_s, plain + QStringList{u"a.flac"_s}, typeid(EncodeFlacTask), true},
        {u"FLAC"_s, {u"a.tta"_s}, typeid(EncodeThroughWavTask), true},
        {u"WV"_s, {u"c.m4a"_s, u"c.M4A"_s}, typeid(EncodeALACToWavpackTask), false},
        {u"WV"_s, plain + QStringList{u"c.wv"_s}, typeid(EncodeWavpackTask), false},
        {u"WV"_s, shortenAndApe + QStringList{u"a.flac"_s, u"a.tta"_s}, typeid(EncodeThroughWavTask), false},
        {u"TTA"_s, {u"c.m4a"_s}, typeid(EncodeALACToTTATask), false},
        {u"TTA"_s, plain, typeid(EncodeTTATask), false},
        {u"TTA"_s,
         shortenAndApe + QStringList{u"a.flac"_s, u"a.tta"_s, u"b.WV"_s},
         typeid(EncodeThroughWavTask),
         false},
        {u"M4A"_s, all, typeid(EncodeALACTask), false},
        {u"APE"_s, {u"c.m4a"_s}, typeid(EncodeALACToAPETask), false},
        {u"APE"_s, plain, typeid(EncodeApeTask), false},
        {u"APE"_s,
         shortenAndApe + QStringList{u"a.flac"_s, u"a.tta"_s, u"b.WV"_s},
         typeid(EncodeThroughWavTask),
         false},
    };
    EncodeTab tab(controller);
    for (const Row &row : rows) {
        for (const QString &source : row.sources) {
            SCOPED_TRACE(qPrintable(row.format + u" from "_s + source));
            const auto task = encoded(tab, row.format, source);
            ASSERT_NE(task, nullptr);
            EXPECT_EQ(typeOf(*task), row.type);
            EXPECT_EQ(task->sourcePath(), folder.path(source));
            EXPECT_EQ(task->title(), source);
            EXPECT_EQ(task->textField().text, source);
            const auto conversion = std::dynamic_pointer_cast<Conversion>(task);
            ASSERT_NE(conversion, nullptr);
            EXPECT_EQ(conversion->outputFile(), out.path(source.section(u'.', 0, 0) + u'.' + row.format.toLower()));
            // The set of a batch waits for its members; a job's own set has one as well.
            ASSERT_NE(task->results(), nullptr);
            EXPECT_EQ(task->results()->memberCount(), 1);
        }
    }
}

TEST_F(ConversionDispatchTest, PutsOnlyShortenAndFlacJobsIntoTheSetOfTheBatch)
{
    for (const auto &[format, isShared] :
         {std::pair{u"FLAC"_s, true}, std::pair{u"SHN"_s, true}, std::pair{u"WV"_s, false}, std::pair{u"TTA"_s, false},
          std::pair{u"APE"_s, false}, std::pair{u"M4A"_s, false}}) {
        EncodeTab tab(controller);
        ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(format));
        const std::size_t before = queue().panelArray().size();
        prompts.expectOutputFolder(out.path());
        tab.addMatchedFiles({folder.path(u"1.m4a"_s), folder.path(u"2.wv"_s), folder.path(u"3.wav"_s)});
        tab.executeCommand();
        const auto jobs = queue().panelArray();
        ASSERT_EQ(jobs.size(), before + 3);
        EXPECT_EQ(jobs[before]->results() == jobs[before + 2]->results(), isShared) << qPrintable(format);
        EXPECT_EQ(jobs[before]->results()->memberCount(), isShared ? 3 : 1) << qPrintable(format);
    }
}

TEST_F(ConversionDispatchTest, DecodesBySource)
{
    const std::vector<std::pair<QString, std::type_index>> rows{
        {u"a.flac"_s, typeid(DecodeFlacTask)},  {u"b.SHN"_s, typeid(DecodeSHNTask)},
        {u"c.wv"_s, typeid(DecodeWavpackTask)}, {u"d.TTA"_s, typeid(DecodeTTATask)},
        {u"e.m4a"_s, typeid(DecodeALACTask)},   {u"f.Ape"_s, typeid(DecodeAPETask)},
    };
    DecodeTab tab(controller);
    for (const QString &format : {u"WAV"_s, u"AIFF"_s}) {
        ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(format));
        for (const auto &[source, type] : rows) {
            SCOPED_TRACE(qPrintable(source + u" to "_s + format));
            const auto task = queued(tab, source);
            ASSERT_NE(task, nullptr);
            EXPECT_EQ(typeOf(*task), type);
            EXPECT_EQ(task->sourcePath(), folder.path(source));
            EXPECT_EQ(std::dynamic_pointer_cast<Conversion>(task)->outputFile(),
                      out.path(source.left(1) + u'.' + format.toLower()));
            EXPECT_EQ(task->results()->memberCount(), 1);
        }
    }
}

TEST_F(ConversionDispatchTest, SkipsWhatCannotBeDecoded)
{
    DecodeTab tab(controller);
    prompts.expectOutputFolder(out.path());
    tab.addMatchedFiles({folder.path(u"a.wav"_s), folder.path(u"noextension"_s), folder.path(u"b.tta"_s)});
    tab.executeCommand();
    ASSERT_EQ(queue().panelArray().size(), 1U);
    EXPECT_EQ(queue().panelArray()[0]->title(), u"b.tta");
    EXPECT_TRUE(tab.fileNames().isEmpty());
}

TEST_F(ConversionDispatchTest, AsksEveryJobToDeleteItsOriginal)
{
    set(u"warnOnDelete", false);
    EncodeTab encode(controller);
    for (const QString &format : {u"SHN"_s, u"FLAC"_s, u"WV"_s, u"TTA"_s, u"APE"_s, u"M4A"_s}) {
        for (const QString &source : {u"a.wav"_s, u"a.m4a"_s, u"a.wv"_s}) {
            encode.deleteOriginalsButton.setOn(true);
            const auto task = encoded(encode, format, source);
            EXPECT_TRUE(std::dynamic_pointer_cast<Conversion>(task)->deleteOriginal());
            EXPECT_FALSE(encode.deleteOriginalsButton.isOn()) << "wanted for that batch";
        }
    }
    DecodeTab decode(controller);
    for (const bool deletes : {true, false}) {
        for (const QString &source : {u"a.flac"_s, u"a.shn"_s, u"a.wv"_s, u"a.tta"_s, u"a.m4a"_s, u"a.ape"_s}) {
            decode.deleteOriginalsButton.setOn(deletes);
            EXPECT_EQ(std::dynamic_pointer_cast<Conversion>(queued(decode, source))->deleteOriginal(), deletes);
        }
    }
}

TEST_F(ConversionDispatchTest, KeepsTheLevelOfTheFlacSliderInTheJobThatDoesNotPassIt)
{
    EncodeTab tab(controller);
    tab.flacSlider.setIntegerValue(8);
    const auto fromAlac = std::dynamic_pointer_cast<EncodeALACToFlacTask>(encoded(tab, u"FLAC"_s, u"a.m4a"_s));
    ASSERT_NE(fromAlac, nullptr);
    EXPECT_EQ(fromAlac->level(), 8);
    const auto fromWavpack = std::dynamic_pointer_cast<EncodeWavpackToFlacTask>(encoded(tab, u"FLAC"_s, u"a.wv"_s));
    ASSERT_NE(fromWavpack, nullptr);
    EXPECT_EQ(fromWavpack->level(), 8);
}

} // namespace
} // namespace nurv
