// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"

#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

/// Two files to convert, by one program and by two behind each other.
class TagsProgram : public ::testing::TestWithParam<std::pair<const char *, const char *>> {
protected:
    const TestFolder folder;
    const QString from = QString::fromLatin1(GetParam().first);
    const QString to = QString::fromLatin1(GetParam().second);

    void SetUp() override
    {
        folder.makeFolder(u"in"_s);
        folder.makeFolder(u"out"_s);
        for (const QString &name : {u"1"_s, u"2"_s})
            writeByFfmpeg(source(name), {.seconds = 0.1}, {u"-metadata"_s, u"title=T"_s});
    }
    [[nodiscard]] QString source(const QString &name) const { return folder.path(u"in/"_s + name + from); }
    [[nodiscard]] QString output(const QString &name) const { return folder.path(u"out/"_s + name + to); }

    [[nodiscard]] QStringList encoding() const
    {
        return {u"encode"_s,     u"--delete-originals"_s,  u"--yes"_s,
                u"--json"_s,     u"--format"_s,            to.mid(1),
                u"--output-dir"_s, folder.path(u"out"_s), folder.path(u"in"_s)};
    }

    /// All is converted; what is told of each file is this, and its source stays.
    void expectLostTags(const ProgramResult &result, const QString &reason) const
    {
        EXPECT_EQ(result.exitStatus, 1) << result.errors.constData();
        int count = 0;
        for (const QJsonObject &line : jsonLines(result.output)) {
            if (line[u"type"_s].toString() != u"job")
                continue;
            ++count;
            EXPECT_EQ(line[u"reason"_s].toString(), u"its tags were not copied: "_s + reason);
            EXPECT_EQ(line[u"original"_s].toString(), u"kept"_s);
            EXPECT_EQ(line[u"status"_s].toString(), u"complete"_s);
        }
        EXPECT_EQ(count, 2);
        for (const QString &name : {u"1"_s, u"2"_s})
            EXPECT_TRUE(sameSound(source(name), output(name)));
    }
};

} // namespace

TEST_P(TagsProgram, CostsTheTagsWhenItDies)
{
    const InstalledNurv nurv(folder, "kill -SEGV $$\n");
    expectLostTags(nurv.run(encoding()),
                   u"its tags could not be read: the program that reads them ended by signal 11"_s);
}

TEST_P(TagsProgram, CostsTheTagsWhenItDiesWhileItWrites)
{
    // Any file has an empty record; whatever else it is asked for kills it.
    const InstalledNurv nurv(folder, "while kind=$(head -c 1 <&3 | od -An -tu1); do\n"
                                     "    [ \"$((kind))\" = 1 ] || kill -SEGV $$\n"
                                     "    head -c 16 <&3 >/dev/null\n"
                                     "    printf '\\x10\\x80\\0\\0\\0\\0\\0\\0\\0' >&3\n"
                                     "    head -c 128 /dev/zero >&3\n"
                                     "done\n");
    expectLostTags(nurv.run(encoding()),
                   u"its tags could not be written: the program that reads them ended by signal 11"_s);
}

TEST_P(TagsProgram, CostsTheTagsWhenItIsNotThere)
{
    const InstalledNurv nurv(folder, std::nullopt);
    expectLostTags(nurv.run(encoding()),
                   u"its tags could not be read: nurv-tags, the program that reads them, is missing: %1"_s.arg(
                       folder.path(u"installed/lib/nurv/nurv-tags"_s)));
}

TEST_P(TagsProgram, CostsTheTagsWhenItRefusesToWork)
{
    const InstalledNurv nurv(folder, "read -r -n 1 -u 3\n"
                                     "printf '\\x15\\x0a\\0\\0\\0\\0\\0\\0\\0' >&3\n"
                                     "printf '\\x02\\0\\0\\0\\0\\0\\0\\0n\\0' >&3\n");
    expectLostTags(nurv.run(encoding()),
                   u"its tags could not be read: the program that reads them refuses to work: n"_s);
}

TEST_P(TagsProgram, WritesNothingToTheTerminal)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "reports of sanitizers are shown";
#endif
    const InstalledNurv nurv(folder, "printf 'taken \\e[2J over' >&2\nprintf 'taken over' >&1\nexit 1\n");
    const ProgramResult result = nurv.run(encoding());
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_FALSE(result.errors.contains("taken") || result.output.contains("taken")) << result.errors.constData();
}

INSTANTIATE_TEST_SUITE_P(Conversions, TagsProgram,
                         ::testing::Values(std::pair(".aiff", ".flac"), std::pair(".wv", ".m4a")),
                         [](const auto &conversion) {
                             return std::string(conversion.param.first + 1) + "To" + (conversion.param.second + 1);
                         });

TEST(TagsProgramOfDoctor, IsRequired)
{
    const TestFolder folder;
    const InstalledNurv nurv(folder, std::nullopt);
    const ProgramResult result = nurv.run({u"doctor"_s});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_TRUE(result.output.simplified().contains("nurv-tags not found")) << result.output.constData();
    const ProgramResult quiet = nurv.run({u"doctor"_s, u"--quiet"_s});
    EXPECT_EQ(quiet.exitStatus, 3);
    EXPECT_EQ(quiet.output + quiet.errors, QByteArray());
}
