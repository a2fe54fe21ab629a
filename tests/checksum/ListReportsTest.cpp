// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/LosslessFiles.h"
#include "checksum/VerifyFFPTask.h"
#include "checksum/VerifyListFixture.h"
#include "checksum/VerifyMD5Task.h"
#include "checksum/VerifyST5Task.h"

#include <QCryptographicHash>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QStringList kFaults{u"good"_s, u"damaged"_s, u"cut"_s, u"missing"_s, u"renamed"_s};
const QStringList kFormats{u"flac"_s, u"ape"_s, u"wv"_s, u"tta"_s, u"shn"_s};

/// The reports of checks of lists over good and bad files of all formats, by the real programs.
class ListReportsTest : public test::VerifyListFixture {
protected:
    ListReportsTest() { tools.addAllReal(); }

    /// "good.flac", "damaged.flac" ...: all of the same sound, and still whole. The names, in their order in the lists.
    [[nodiscard]] QStringList writeAll(const QStringList &formats)
    {
        QStringList names;
        for (const QString &format : formats) {
            const QString first = test::writeLossless(folder, tools, kFaults.first(), format, kShape);
            names.append(kFaults.first() + u'.' + format);
            for (const QString &fault : kFaults.sliced(1)) {
                names.append(fault + u'.' + format);
                EXPECT_TRUE(QFile::copy(first, folder.path(names.last())));
            }
        }
        return names;
    }
    /// Does to each file what its name says.
    void spoil(const QStringList &names)
    {
        for (const QString &name : names) {
            if (name.startsWith(u"damaged"_s))
                test::flipABit(folder, name);
            if (name.startsWith(u"cut"_s))
                test::truncate(folder, name);
            if (name.startsWith(u"missing"_s))
                folder.remove(name);
            if (name.startsWith(u"renamed"_s) && !QFile::rename(folder.path(name), folder.path(u"other "_s + name)))
                ADD_FAILURE() << qPrintable(name);
        }
    }
    /// Of the sound, which is what the lists but for that of MD5 hold.
    [[nodiscard]] static QByteArray digestOfSound()
    {
        return QCryptographicHash::hash(test::makeSamples(kShape), QCryptographicHash::Md5).toHex();
    }

    static constexpr test::SoundShape kShape{.seconds = 1.0};
    test::ProgramFolder tools;
};

TEST_F(ListReportsTest, OfMd5)
{
    const QStringList names = writeAll(kFormats);
    QByteArray list = "#by md5sum\n";
    for (const QString &name : names)
        list += test::runProgram(u"md5sum"_s, {u"-b"_s, folder.path(name)}).output.first(32) + " *" + name.toUtf8() + '\n';
    spoil(names);
    const auto task = verify<VerifyMD5Task>(folder.write(u"l.md5"_s, list));
    QString expected = u"Verify MD5: l.md5\n"_s;
    for (const QString &format : kFormats) {
        expected += u"good.%1 : OK\ndamaged.%1 : FAILED\ncut.%1 : FAILED\nmissing.%1 : FAILED\nrenamed.%1 : FAILED\n"_s.arg(format);
    }
    EXPECT_EQ(report, expected + u"10 of 25 files are missing\n10 of 25 files are other ones\n"_s);
    const std::vector<State> states{State::Ok, State::Different, State::Different, State::Missing, State::Missing};
    for (std::size_t i = 0; i < 25; ++i)
        EXPECT_EQ(statesOf(*task).at(i), states[i % 5]) << qPrintable(names[static_cast<qsizetype>(i)]);
    EXPECT_TRUE(task->error());
}

TEST_F(ListReportsTest, OfSt5)
{
    const QStringList names = writeAll(kFormats);
    QByteArray list = ";by hand\n";
    for (const QString &name : names)
        list += digestOfSound() + "  [shntool]  " + name.toUtf8() + '\n';
    spoil(names);
    const auto task = verify<VerifyST5Task>(folder.write(u"l.st5"_s, list));
    QString expected = u"Verify ST5: l.st5\n"_s;
    const auto warning = [this](const QString &name, const QString &words) {
        return u"%1 : warning: %2: [%3]%1\n"_s.arg(name, words, folder.path(name));
    };
    for (const QString &format : kFormats) {
        const QString corrupt = u"possibly truncated and/or corrupt file"_s;
        const QString gone = u"cannot open non-existent file"_s;
        expected += u"good.%1 : OK\n"_s.arg(format);
        // A Shorten file holds nothing by which damage could be seen but that its sound is another one.
        expected += format == u"shn" ? u"damaged.shn : did not match shntool md5 file\n"_s
                                     : warning(u"damaged."_s + format, corrupt);
        // The program for APE files looks at the length of the file before it gives any sound.
        expected += format == u"ape" ? u"cut.ape : warning: failed to read data from input file using format: [ape]cut.ape\n"_s
                                     : warning(u"cut."_s + format, corrupt);
        expected += warning(u"missing."_s + format, gone) + warning(u"renamed."_s + format, gone);
    }
    EXPECT_EQ(report, expected + u"10 of 25 files are missing\n10 of 25 files are other ones\n"_s);
    EXPECT_TRUE(task->error());
}

TEST_F(ListReportsTest, OfFingerprints)
{
    const QStringList names = writeAll({u"flac"_s});
    QByteArray list = ";by hand\n";
    for (const QString &name : names)
        list += name.toUtf8() + ':' + digestOfSound() + '\n';
    spoil(names);
    test::makeWriteAtOnce(tools, u"flac"_s);
    test::makeWriteAtOnce(tools, u"metaflac"_s);
    const auto task = verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, list));
    const auto said = [this](const QString &program, const QString &option, const QString &name) {
        return test::saidByHand(tools, program, {option, folder.path(name)}).trimmed();
    };
    QString expected = u"Verify FFP: l.ffp\ngood.flac : OK\ndamaged.flac : OK\ncut.flac : OK\n"_s;
    for (const QString &name : {u"missing.flac"_s, u"renamed.flac"_s})
        expected += said(u"metaflac"_s, u"--show-md5sum"_s, name) + u" : "_s + name + u'\n';
    expected += u"\nVerify Flac Files in l.ffp\n"_s;
    // In the order of the paths, and whole: no line of them tells of a figure.
    for (const QString &name : {u"cut.flac"_s, u"damaged.flac"_s, u"good.flac"_s})
        expected += u"\n%1: %2\n"_s.arg(name, said(u"flac"_s, u"-t"_s, name));
    EXPECT_EQ(report, expected + u"2 of 5 files are missing\n2 of 5 files are damaged\n"_s);
    EXPECT_TRUE(said(u"metaflac"_s, u"--show-md5sum"_s, u"missing.flac"_s).contains(u"FLAC__METADATA_CHAIN"_s));
    EXPECT_EQ(statesOf(*task), (std::vector{State::Ok, State::Damaged, State::Damaged, State::Missing, State::Missing}));
}

} // namespace
} // namespace nurv
