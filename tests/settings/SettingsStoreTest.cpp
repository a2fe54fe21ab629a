// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/SettingsStore.h"

#include "settings/SettingsFile.h"
#include "support/LogLines.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>

#include <chrono>
#include <cstdio>
#include <future>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using nurv::SettingsFile;
using nurv::SettingsStore;
using nurv::test::LogLines;
using nurv::test::TestFolder;

namespace {

const QVariantMap kDefaults{{u"maxThreads"_s, 2},
                            {u"warnOnDelete"_s, true},
                            {u"shntoolNamesFormat"_s, u"%number. %name %time"_s}};

// While it lives, nothing in the folder can be opened, nor made: the folder's name is
// a link to itself.
class OutOfReach {
public:
    explicit OutOfReach(const QString &folder)
        : m_name(QFile::encodeName(folder)), m_away(m_name + ".away")
    {
        EXPECT_EQ(::rename(m_name.constData(), m_away.constData()), 0);
        EXPECT_EQ(::symlink(m_name.constData(), m_name.constData()), 0);
    }
    ~OutOfReach()
    {
        EXPECT_EQ(::unlink(m_name.constData()), 0);
        EXPECT_EQ(::rename(m_away.constData(), m_name.constData()), 0);
    }
    OutOfReach(const OutOfReach &) = delete;
    OutOfReach &operator=(const OutOfReach &) = delete;

private:
    QByteArray m_name;
    QByteArray m_away;
};

class SettingsStoreFile : public ::testing::Test {
protected:
    [[nodiscard]] QString path() const { return m_folder.path(u"nurv/workbench.ini"_s); }
    QString write(const QByteArray &bytes) const { return m_folder.write(u"nurv/workbench.ini"_s, bytes); }
    [[nodiscard]] QByteArray contents() const { return m_folder.read(u"nurv/workbench.ini"_s); }
    [[nodiscard]] mode_t mode() const
    {
        struct stat facts = {};
        EXPECT_EQ(::stat(QFile::encodeName(path()).constData(), &facts), 0);
        return facts.st_mode & 07777;
    }

    TestFolder m_folder;
};

} // namespace

TEST_F(SettingsStoreFile, GivesTheDefaultsUntilAValueIsStored)
{
    SettingsStore store(path());
    EXPECT_EQ(store.integer(u"maxThreads"_s), 0);
    store.registerDefaults(kDefaults);
    EXPECT_EQ(store.integer(u"maxThreads"_s), 2);
    EXPECT_TRUE(store.boolean(u"warnOnDelete"_s));
    EXPECT_EQ(store.string(u"shntoolNamesFormat"_s), u"%number. %name %time"_s);
    EXPECT_EQ(store.bytes(u"windowGeometry"_s), QByteArray());
    store.setValue(u"maxThreads"_s, 5);
    EXPECT_EQ(store.integer(u"maxThreads"_s), 5);
    store.remove(u"maxThreads"_s);
    EXPECT_EQ(store.integer(u"maxThreads"_s), 2);
}

TEST_F(SettingsStoreFile, BringsEveryKindOfValueBackFromTheFile)
{
    const QByteArray geometry("\x00\x01\xFF\xFE geometry \n", 15);
    const QString awkward = u" @a, \"b\"; \\c\n%d \u00E9\U0001D11E"_s;
    {
        SettingsStore store(path());
        store.setValue(u"maxThreads"_s, -7);
        store.setValue(u"warnOnDelete"_s, false);
        store.setValue(u"shntoolNamesFormat"_s, awkward);
        store.setValue(u"windowGeometry"_s, geometry);
        store.setValue(u"plainBytes"_s, QByteArray("plain"));
        store.setValue(u"empty"_s, u""_s);
    }
    SettingsStore store(path());
    store.registerDefaults(kDefaults);
    store.registerDefaults({{u"empty"_s, u"default"_s}});
    EXPECT_EQ(store.integer(u"maxThreads"_s), -7);
    EXPECT_FALSE(store.boolean(u"warnOnDelete"_s));
    EXPECT_EQ(store.string(u"shntoolNamesFormat"_s), awkward);
    EXPECT_EQ(store.bytes(u"windowGeometry"_s), geometry);
    EXPECT_EQ(store.bytes(u"plainBytes"_s), QByteArray("plain"));
    EXPECT_EQ(store.string(u"empty"_s), QString());
}

TEST_F(SettingsStoreFile, ReadsNoStreamsOfQtsOwnTypes)
{
    // Lists within lists: each level takes the stack a little further down.
    QByteArray nested = "[General]\nmaxThreads=3\nx=@Variant(";
    for (int level = 0; level < 150'000; ++level)
        nested += "\\0\\0\\0\\t\\0\\0\\0\\x1";
    for (const QByteArray &bytes :
         {nested + ")\n", QByteArray("[General]\nmaxThreads=3\nx=\"@Var\"  \"iant(\\0\\0\\0\\t\\0\\0\\0\\0)\"\n"),
          QByteArray("[General]\nmaxThreads=3\nx=\\x40\\126ariant(\\0\\0\\0\\t\\0\\0\\0\\0)\n"),
          QByteArray("[General]\nmaxThreads=3\nx=a, @DateTime(\\0\\0\\0\\0)\n")}) {
        write(bytes);
        const SettingsFile::Contents found = SettingsFile(path()).read();
        EXPECT_EQ(found.state, SettingsFile::State::Damaged);
        EXPECT_EQ(found.defect, u"line 3 makes no sense"_s);
        EXPECT_EQ(found.values, (QVariantMap{{u"maxThreads"_s, u"3"_s}}));
    }
    write("[General]\nx=\"@@Variant(a)\"\ny=the @Variant(b)\nz=@ByteArray(\\x56)\n");
    EXPECT_EQ(SettingsFile(path()).read().state, SettingsFile::State::Healthy);
}

TEST_F(SettingsStoreFile, ReadsNoKeysWithoutAName)
{
    for (const char *line : {"/=1", "\\=1", "a\\=1", "\\a=1", "a\\\\b=1", "%2Fa=1", " =1"}) {
        write(QByteArray("[General]\nmaxThreads=3\n") + line + '\n');
        const SettingsFile::Contents found = SettingsFile(path()).read();
        EXPECT_EQ(found.state, SettingsFile::State::Damaged) << line;
        EXPECT_EQ(found.values, (QVariantMap{{u"maxThreads"_s, u"3"_s}})) << line;
    }
    write("[General]\nmaxThreads=3\nown\\key=4\n");
    EXPECT_EQ(SettingsFile(path()).read().values.value(u"own/key"_s), u"4"_s);
}

TEST_F(SettingsStoreFile, ReadsNoSectionsWithoutAName)
{
    for (const char *section : {"[]", "[/]", "[a\\\\]", "[\\a]", "[a//b]"}) {
        write(QByteArray("[General]\nmaxThreads=3\n") + section + "\nb=1\n");
        EXPECT_EQ(SettingsFile(path()).read().state, SettingsFile::State::Damaged) << section;
    }
    write("[General]\nmaxThreads=3\n[own]\nkey=4\n");
    EXPECT_EQ(SettingsFile(path()).read().values.value(u"own/key"_s), u"4"_s);
}

TEST_F(SettingsStoreFile, IsReadableByItsOwnerOnlyFromTheFirstMomentOn)
{
    const mode_t formerMask = ::umask(0);
    m_folder.makeFolder(u"nurv"_s);
    SettingsStore store(path());
    store.setValue(u"maxThreads"_s, 3);
    // The lock that writers take stops the store before it writes the value.
    QLockFile lock(path() + u".lock"_s);
    ASSERT_TRUE(lock.lock());
    std::future<bool> written = std::async(std::launch::async, [&store] { return store.sync(); });
    EXPECT_TRUE(nurv::test::waitUntil([&] { return QFileInfo::exists(path()); }));
    EXPECT_EQ(mode(), 0600U);
    EXPECT_EQ(contents(), QByteArray());
    lock.unlock();
    EXPECT_TRUE(written.get());
    ::umask(formerMask);
    EXPECT_EQ(mode(), 0600U);
    EXPECT_EQ(contents(), QByteArray("[General]\nmaxThreads=3\n"));
}

TEST_F(SettingsStoreFile, BecomesPrivateWithTheNextValueStored)
{
    write("[General]\nmaxThreads=3\n");
    ASSERT_EQ(::chmod(QFile::encodeName(path()).constData(), 0644), 0);
    SettingsStore store(path());
    store.setValue(u"maxThreads"_s, 4);
    ASSERT_TRUE(store.sync());
    EXPECT_EQ(mode(), 0600U);
}

TEST_F(SettingsStoreFile, DelaysNobodyWhoReadsWhileItIsWritten)
{
    m_folder.makeFolder(u"nurv"_s);
    SettingsStore store(path());
    store.setValue(u"maxThreads"_s, 3);
    QLockFile lock(path() + u".lock"_s);
    ASSERT_TRUE(lock.lock());
    std::future<bool> written = std::async(std::launch::async, [&store] { return store.sync(); });
    ASSERT_TRUE(nurv::test::waitUntil([&] { return QFileInfo::exists(path()); }));
    std::future<int> read = std::async(std::launch::async, [&store] {
        store.setValue(u"encodeFlacLevel"_s, 8);
        return store.integer(u"maxThreads"_s);
    });
    EXPECT_EQ(read.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    lock.unlock();
    EXPECT_EQ(read.get(), 3);
    EXPECT_TRUE(written.get());
    EXPECT_TRUE(store.sync());
    EXPECT_EQ(SettingsStore(path()).integer(u"encodeFlacLevel"_s), 8);
}

TEST_F(SettingsStoreFile, IsReplacedAsAWhole)
{
    write("[General]\nmaxThreads=3\n");
    QFile reader(path());
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly));
    SettingsStore store(path());
    store.setValue(u"maxThreads"_s, 4);
    ASSERT_TRUE(store.sync());
    // Who had the old file open still reads the old one, whole.
    EXPECT_EQ(reader.readAll(), QByteArray("[General]\nmaxThreads=3\n"));
    EXPECT_EQ(contents(), QByteArray("[General]\nmaxThreads=4\n"));
    EXPECT_EQ(m_folder.list().filter(u"workbench"_s).size(), 1) << m_folder.list().join(u' ').toStdString();
}

TEST_F(SettingsStoreFile, IsWrittenSoonAfterAValueIsStored)
{
    SettingsStore store(path());
    for (int level = 0; level < 100; ++level)
        store.setValue(u"lossySliderLevel"_s, level);
    EXPECT_FALSE(QFileInfo::exists(path()));
    EXPECT_TRUE(nurv::test::waitUntil([&] { return QFileInfo::exists(path()) && contents().contains("lossySliderLevel=99"); }));
}

TEST_F(SettingsStoreFile, KeepsWhatAnotherProcessStoredMeanwhile)
{
    write("[General]\nmaxThreads=3\n");
    SettingsStore store(path());
    write("[General]\nmaxThreads=9\nffpExtension=other.txt\n");
    store.setValue(u"encodeFlacLevel"_s, 8);
    ASSERT_TRUE(store.sync());
    SettingsStore reopened(path());
    EXPECT_EQ(reopened.integer(u"maxThreads"_s), 9);
    EXPECT_EQ(reopened.string(u"ffpExtension"_s), u"other.txt"_s);
    EXPECT_EQ(reopened.integer(u"encodeFlacLevel"_s), 8);
}

TEST_F(SettingsStoreFile, IsNotTouchedWhenValuesStayInMemory)
{
    write("[General]\nmaxThreads=3\n");
    SettingsStore store(path());
    store.setValue(u"fixFlacLevel"_s, 6);
    store.setPersistence(SettingsStore::Persistence::MemoryOnly);
    const QByteArray before = contents();
    EXPECT_TRUE(before.contains("fixFlacLevel=6"));
    store.setValue(u"maxThreads"_s, 16);
    store.remove(u"fixFlacLevel"_s);
    EXPECT_TRUE(store.sync());
    EXPECT_EQ(store.integer(u"maxThreads"_s), 16);
    EXPECT_EQ(store.integer(u"fixFlacLevel"_s), 0);
    EXPECT_EQ(contents(), before);
    store.setPersistence(SettingsStore::Persistence::File);
    store.setValue(u"trashOrDelete"_s, 1);
    EXPECT_TRUE(store.sync());
    EXPECT_EQ(SettingsStore(path()).integer(u"maxThreads"_s), 3);
    store.reload();
    EXPECT_EQ(store.integer(u"maxThreads"_s), 3);
}

TEST_F(SettingsStoreFile, ReadsIntegersAsFarAsTheirDigitsGo)
{
    write("[General]\na=5 jobs\nb=7.9\nc=-3\nd=99999999999\ne=true\nf=\"12\"\n");
    const SettingsStore store(path());
    EXPECT_EQ(store.integer(u"a"_s), 5);
    EXPECT_EQ(store.integer(u"b"_s), 7);
    EXPECT_EQ(store.integer(u"c"_s), -3);
    EXPECT_EQ(store.integer(u"d"_s), 2147483647);
    EXPECT_EQ(store.integer(u"e"_s), 1);
    EXPECT_EQ(store.integer(u"f"_s), 12);
}

TEST_F(SettingsStoreFile, ReadsTheUsualWordsForYesAndNo)
{
    write("[General]\na=yes\nb=No\nc=1\nd=0\ne=ON\nf=false\ng=YES\n");
    const SettingsStore store(path());
    for (const QString &key : {u"a"_s, u"c"_s, u"e"_s, u"g"_s})
        EXPECT_TRUE(store.boolean(key)) << key.toStdString();
    for (const QString &key : {u"b"_s, u"d"_s, u"f"_s})
        EXPECT_FALSE(store.boolean(key)) << key.toStdString();
}

TEST_F(SettingsStoreFile, ReadsATextWithACommaAsOneText)
{
    write("[General]\nincomingSurroundOrder=L, R, C\n");
    EXPECT_EQ(SettingsStore(path()).string(u"incomingSurroundOrder"_s), u"L, R, C"_s);
}

TEST_F(SettingsStoreFile, GivesTheDefaultAndOneLogLineForAValueOfAnotherKind)
{
    write("[General]\nmaxThreads=many\nwarnOnDelete=perhaps\nshntoolNamesFormat=@ByteArray(x\\xff)\n");
    const LogLines log;
    SettingsStore store(path());
    store.registerDefaults(kDefaults);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(store.integer(u"maxThreads"_s), 2);
        EXPECT_TRUE(store.boolean(u"warnOnDelete"_s));
        EXPECT_EQ(store.string(u"shntoolNamesFormat"_s), u"%number. %name %time"_s);
    }
    EXPECT_EQ(log.of(u"nurv.settings"_s).size(), 3) << log.of(u"nurv.settings"_s).join(u'\n').toStdString();
}

TEST_F(SettingsStoreFile, LosesOnlyTheLinesThatMakeNoSense)
{
    const std::vector<QByteArray> badLines{"half a li",       "maxThreads=\xFF\xFE",  "open=\"quotation", "continued=C:\\",
                                           "bell=\x07",        "=without a key",       "[General",         "# odd \" mark",
                                           "<?xml version?>"};
    for (const QByteArray &bad : badLines) {
        for (const QByteArray &text :
             {bad + "\n[General]\ntrashOrDelete=1\nffpExtension=a.txt\n", "[General]\r\ntrashOrDelete=1\r\n" + bad + "\r\nffpExtension=a.txt\r\n",
              "[General]\ntrashOrDelete=1\nffpExtension=a.txt\n" + bad}) {
            if (bad.startsWith('[') && text.contains('\r'))
                continue; // to whom the second value belongs nobody knows
            write(text);
            const LogLines log;
            const SettingsStore store(path());
            EXPECT_EQ(store.integer(u"trashOrDelete"_s), 1) << text.toStdString();
            EXPECT_EQ(store.string(u"ffpExtension"_s), u"a.txt"_s) << text.toStdString();
            EXPECT_EQ(log.of(u"nurv.settings"_s).size(), 1) << text.toStdString();
        }
    }
}

TEST_F(SettingsStoreFile, GivesNoSectionTheValuesOfAnUnreadableOne)
{
    write("[General]\ntrashOrDelete=1\n[Oth\ntrashOrDelete=0\n[Third]\nkey=2\n");
    const SettingsStore store(path());
    EXPECT_EQ(store.integer(u"trashOrDelete"_s), 1);
    EXPECT_EQ(store.integer(u"Third/key"_s), 2);
}

TEST_F(SettingsStoreFile, MayBeginWithAByteOrderMark)
{
    write("\xEF\xBB\xBF[General]\ntrashOrDelete=1\n");
    const LogLines log;
    EXPECT_EQ(SettingsStore(path()).reliableInteger(u"trashOrDelete"_s), 1);
    EXPECT_EQ(log.of(u"nurv.settings"_s), QStringList());
}

TEST_F(SettingsStoreFile, IsKeptBesideWhenItIsCorruptAndReplaced)
{
    struct Corrupt {
        QByteArray bytes;
        QByteArray replacement;
    };
    const std::vector<Corrupt> cases{
        {QByteArray("\x7F" "ELF\0\0\1", 7), "[General]\nmaxThreads=8\nvaluesWereLost=true\n"},
        {QByteArray("maxThreads=3\n\0\n", 15), "[General]\nmaxThreads=8\nvaluesWereLost=true\n"},
        {QByteArray(5 * 1024 * 1024, ';'), "[General]\nmaxThreads=8\nvaluesWereLost=true\n"},
        {"<plist>\nno value\n", "[General]\nmaxThreads=8\nvaluesWereLost=true\n"},
        {"[General]\nffpExtension=a.txt\nhalf a li", "[General]\nffpExtension=a.txt\nmaxThreads=8\nvaluesWereLost=true\n"},
    };
    for (const Corrupt &corrupt : cases) {
        const TestFolder folder;
        const QString file = folder.write(u"s.ini"_s, corrupt.bytes);
        const LogLines log;
        SettingsStore store(file);
        store.registerDefaults(kDefaults);
        EXPECT_EQ(store.integer(u"maxThreads"_s), 2);
        EXPECT_EQ(log.of(u"nurv.settings"_s).size(), 1) << corrupt.bytes.left(80).toStdString();
        EXPECT_EQ(folder.read(u"s.ini"_s), corrupt.bytes);
        store.setValue(u"maxThreads"_s, 8);
        ASSERT_TRUE(store.sync());
        EXPECT_EQ(folder.read(u"s.ini.corrupt"_s), corrupt.bytes);
        EXPECT_EQ(folder.read(u"s.ini"_s), corrupt.replacement);
        EXPECT_EQ(folder.list(), (QStringList{u"s.ini"_s, u"s.ini.corrupt"_s}));

        // A second accident does not cost what was kept after the first.
        folder.write(u"s.ini"_s, "second accident");
        store.setValue(u"maxThreads"_s, 9);
        ASSERT_TRUE(store.sync());
        EXPECT_EQ(folder.read(u"s.ini.corrupt"_s), corrupt.bytes);
        EXPECT_EQ(folder.read(u"s.ini.corrupt.2"_s), QByteArray("second accident"));
        EXPECT_EQ(SettingsStore(file).integer(u"maxThreads"_s), 9);
    }
}

TEST_F(SettingsStoreFile, HoldsEveryKnownValueAfterAnAccidentWhileTheProgramRan)
{
    write("[General]\nffpExtension=a.txt\ntrashOrDelete=1\nmaxThreads=3\n");
    SettingsStore store(path());
    store.setPersistence(SettingsStore::Persistence::MemoryOnly);
    store.setValue(u"maxThreads"_s, 16);
    store.setPersistence(SettingsStore::Persistence::File);
    write("maxThreads=4\n\x01\n");
    store.setValue(u"encodeFlacLevel"_s, 8);
    ASSERT_TRUE(store.sync());
    EXPECT_EQ(contents(),
              QByteArray("[General]\nencodeFlacLevel=8\nffpExtension=a.txt\nmaxThreads=4\ntrashOrDelete=1\nvaluesWereLost=true\n"));
    EXPECT_EQ(mode(), 0600U);
}

TEST_F(SettingsStoreFile, IsLeftAloneWhileItCannotBeOpened)
{
    const QByteArray healthy = "[General]\ntrashOrDelete=1\n";
    write(healthy);
    SettingsStore store(path());
    store.setValue(u"maxThreads"_s, 4);
    {
        const OutOfReach outOfReach(m_folder.path(u"nurv"_s));
        EXPECT_FALSE(store.sync());
    }
    EXPECT_EQ(contents(), healthy);
    EXPECT_EQ(m_folder.list(), QStringList{u"nurv/workbench.ini"_s});
    EXPECT_TRUE(store.sync());
    EXPECT_EQ(contents(), QByteArray("[General]\nmaxThreads=4\ntrashOrDelete=1\n"));
}

TEST_F(SettingsStoreFile, IsNoRegularFileAndIsLeftAlone)
{
    m_folder.makeFolder(u"nurv"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    SettingsStore store(path());
    EXPECT_EQ(store.reliableInteger(u"trashOrDelete"_s), std::nullopt);
    store.setValue(u"maxThreads"_s, 4);
    EXPECT_FALSE(store.sync());
    struct stat facts = {};
    ASSERT_EQ(::stat(QFile::encodeName(path()).constData(), &facts), 0);
    EXPECT_TRUE(S_ISFIFO(facts.st_mode));
}

TEST_F(SettingsStoreFile, GuessesNoChoiceThatMayHaveBeenLost)
{
    const QString key = u"trashOrDelete"_s;
    const auto choiceIn = [&](const QByteArray &text) {
        write(text);
        SettingsStore store(path());
        store.registerDefaults({{key, 0}});
        return store.reliableInteger(key);
    };
    EXPECT_EQ(SettingsStore(path()).reliableInteger(key), 0);
    EXPECT_EQ(choiceIn(""), 0);
    EXPECT_EQ(choiceIn("[General]\nmaxThreads=3\n"), 0);
    EXPECT_EQ(choiceIn("[General]\ntrashOrDelete=0\nhalf a li"), 0);
    EXPECT_EQ(choiceIn("[General]\ntrashOrDelete=trash\n"), std::nullopt);
    EXPECT_EQ(choiceIn("[General]\ntrashOrDelete=\n"), std::nullopt);
    EXPECT_EQ(choiceIn("[General]\ntrashOrDe"), std::nullopt);
    EXPECT_EQ(choiceIn(QByteArray("\0", 1)), std::nullopt);
}

TEST_F(SettingsStoreFile, StaysInDoubtAboutALostChoiceUntilItIsMadeAgain)
{
    const QString key = u"trashOrDelete"_s;
    write("[General]\ntrashOrDe");
    {
        SettingsStore store(path());
        store.registerDefaults({{key, 0}});
        store.setValue(u"maxThreads"_s, 4);
        EXPECT_TRUE(store.sync());
        EXPECT_EQ(store.reliableInteger(key), std::nullopt);
    }
    SettingsStore store(path());
    store.registerDefaults({{key, 0}});
    EXPECT_EQ(store.reliableInteger(key), std::nullopt);
    store.setValue(key, 0);
    EXPECT_EQ(store.reliableInteger(key), 0);
}

TEST_F(SettingsStoreFile, GivesItsValuesOnceItCanBeOpenedAgain)
{
    const QString key = u"trashOrDelete"_s;
    write("[General]\ntrashOrDelete=1\nmaxThreads=3\n");
    std::optional<SettingsStore> store;
    {
        const OutOfReach outOfReach(m_folder.path(u"nurv"_s));
        store.emplace(path());
    }
    store->registerDefaults({{key, 0}});
    EXPECT_EQ(store->reliableInteger(key), std::nullopt);
    store->setValue(u"maxThreads"_s, 5);
    EXPECT_TRUE(store->sync());
    EXPECT_EQ(store->reliableInteger(key), 1);
    EXPECT_EQ(contents(), QByteArray("[General]\nmaxThreads=5\ntrashOrDelete=1\n"));
}

TEST_F(SettingsStoreFile, GivesTheDefaultsWhenItIsAFolder)
{
    m_folder.makeFolder(u"nurv/workbench.ini"_s);
    SettingsStore store(path());
    store.registerDefaults(kDefaults);
    EXPECT_EQ(store.integer(u"maxThreads"_s), 2);
}

TEST_F(SettingsStoreFile, StaysInMemoryAndSaysSoWhenItCannotBeWritten)
{
    const QString blocked = m_folder.write(u"file"_s, "x") + u"/workbench.ini"_s;
    SettingsStore store(blocked);
    store.setValue(u"maxThreads"_s, 4);
    const LogLines log;
    EXPECT_FALSE(store.sync());
    EXPECT_FALSE(store.sync());
    EXPECT_EQ(log.of(u"nurv.settings"_s).size(), 1);
    EXPECT_EQ(store.integer(u"maxThreads"_s), 4);
    m_folder.remove(u"file"_s);
    EXPECT_TRUE(store.sync());
    EXPECT_EQ(SettingsStore(blocked).integer(u"maxThreads"_s), 4);
}

TEST_F(SettingsStoreFile, AnnouncesValuesThatChangeAndNoOthers)
{
    SettingsStore store(path());
    store.registerDefaults(kDefaults);
    QStringList keys;
    QObject::connect(&store, &SettingsStore::changed, &store, [&](const QString &key) { keys.append(key); });
    store.setValue(u"maxThreads"_s, 2);
    EXPECT_EQ(keys, QStringList());
    store.setValue(u"maxThreads"_s, 3);
    store.setValue(u"maxThreads"_s, 3);
    store.setValue(u"warnOnDelete"_s, false);
    store.setValue(u"new"_s, u""_s);
    store.remove(u"maxThreads"_s);
    EXPECT_EQ(keys, (QStringList{u"maxThreads"_s, u"warnOnDelete"_s, u"new"_s, u"maxThreads"_s}));
}

TEST_F(SettingsStoreFile, ServesSeveralThreadsAtOnce)
{
    SettingsStore store(path());
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&store, number] {
            const QString key = u"key%1"_s.arg(number);
            for (int value = 1; value <= 200; ++value) {
                store.setValue(key, value);
                EXPECT_EQ(store.integer(key), value);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_TRUE(store.sync());
    const SettingsStore reopened(path());
    for (int number = 0; number < 4; ++number)
        EXPECT_EQ(reopened.integer(u"key%1"_s.arg(number)), 200);
}

TEST(SettingsStore, UsesTheFileThatTheEnvironmentNames)
{
    const QByteArray former = qgetenv("NURV_SETTINGS");
    qputenv("NURV_SETTINGS", "/somewhere/else.ini");
    EXPECT_EQ(SettingsStore::defaultFilePath(), u"/somewhere/else.ini"_s);
    qunsetenv("NURV_SETTINGS");
    EXPECT_EQ(SettingsStore::defaultFilePath(), qEnvironmentVariable("XDG_CONFIG_HOME") + u"/nurv/workbench.ini"_s);
    qputenv("NURV_SETTINGS", former);
    EXPECT_EQ(SettingsStore::instance().filePath(), SettingsStore::defaultFilePath());
}
