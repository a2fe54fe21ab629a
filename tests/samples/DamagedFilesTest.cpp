// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "SampleFixtures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace test;

const SoundShape kSound{.frames = 60'000};

struct DamagedFiles : ::testing::Test {
    TestFolder folder;
    std::vector<std::int32_t> expected = expectedSamples(kSound);

    [[nodiscard]] QByteArray make(const QString &kind) const
    {
        makeSound(folder, kind, kSound);
        return folder.read(u"sound."_s + kind);
    }
    [[nodiscard]] Decoded decodeBytes(const QByteArray &bytes) const
    {
        return decode(folder.write(u"damaged"_s, bytes), 100'000);
    }
    /// Whether the right samples came, or somebody complained.
    static bool isHonest(const Decoded &decoded, const std::vector<std::int32_t> &samples)
    {
        return !decoded.refusal.isEmpty() || !decoded.complaint.isEmpty() || decoded.samples == samples;
    }
};

struct CheckedFormat : DamagedFiles, ::testing::WithParamInterface<QString> {};
struct AnyFormat : DamagedFiles, ::testing::WithParamInterface<QString> {};

TEST_P(CheckedFormat, NoDamagedByteGoesUnnoticed)
{
    const QByteArray whole = make(GetParam());
    int noticed = 0;
    int tried = 0;
    for (qsizetype at = 3; at < whole.size(); at += whole.size() / 150 + 1) {
        QByteArray damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ (at % 2 != 0 ? 0x10 : 0xFF));
        const Decoded decoded = decodeBytes(damaged);
        EXPECT_TRUE(isHonest(decoded, expected)) << "byte " << at << " of " << whole.size() << ": " << decoded;
        noticed += !decoded.refusal.isEmpty() || !decoded.complaint.isEmpty() ? 1 : 0;
        ++tried;
    }
    EXPECT_GT(noticed, tried * 9 / 10);
}

TEST_P(CheckedFormat, NoHoleGoesUnnoticed)
{
    const QByteArray whole = make(GetParam());
    for (const qsizetype size : {1, 2, 4, 100, 1000, 9000, 30'000}) {
        for (const qsizetype at : {whole.size() / 3, whole.size() / 2, whole.size() - size - 20}) {
            QByteArray holed = whole;
            const Decoded removed = decodeBytes(holed.remove(at, size));
            EXPECT_TRUE(isHonest(removed, expected)) << size << " at " << at << ": " << removed;
            const Decoded doubled = decodeBytes(whole.left(at + size) + whole.mid(at));
            EXPECT_TRUE(isHonest(doubled, expected)) << size << " at " << at << ": " << doubled;
        }
    }
}

/// A FLAC file without what could tell: total and MD5, as a pipe leaves it.
QByteArray asFromPipe(QByteArray flac)
{
    flac[21] = static_cast<char>(flac[21] & '\xF0');
    return patched(patched(flac, 22, big32(0)), 26, QByteArray(16, '\0'));
}

TEST_F(DamagedFiles, NoDamagedByteOfAPipesFlacGoesUnnoticed)
{
    const QByteArray whole = asFromPipe(make(u"flac"_s));
    const QByteArray sound = whole.mid(whole.indexOf("\xFF\xF8"));
    const qsizetype start = whole.size() - sound.size();
    for (qsizetype at = start; at < whole.size(); at += whole.size() / 300 + 1) {
        QByteArray damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x21);
        const Decoded decoded = decodeBytes(damaged);
        EXPECT_NE(decoded.refusal + decoded.complaint, QString()) << "byte " << at << ": " << decoded;
    }
    // The heads of the frames, of which everything else depends.
    for (qsizetype frame = sound.indexOf("\xFF\xF8"); frame >= 0; frame = sound.indexOf("\xFF\xF8", frame + 2)) {
        for (qsizetype at = frame; at < std::min(frame + 7, sound.size()); ++at) {
            QByteArray damaged = whole;
            damaged[start + at] = static_cast<char>(damaged[start + at] ^ 0x01);
            const Decoded decoded = decodeBytes(damaged);
            EXPECT_NE(decoded.refusal + decoded.complaint, QString()) << "byte " << start + at << ": " << decoded;
        }
    }
}

TEST_F(DamagedFiles, AFrameThatIsMissingFromAPipesFlacIsNoticed)
{
    const QByteArray whole = asFromPipe(make(u"flac"_s));
    // The heads: the sync code, and the number of the frame after two bytes.
    std::vector<qsizetype> heads;
    for (qsizetype at = whole.indexOf("\xFF\xF8"); at >= 0; at = whole.indexOf("\xFF\xF8", at + 1)) {
        if (static_cast<std::size_t>(static_cast<std::uint8_t>(whole[at + 4])) == heads.size())
            heads.push_back(at);
    }
    ASSERT_GT(heads.size(), 10U);
    for (const std::size_t frame : {std::size_t{0}, std::size_t{1}, std::size_t{7}}) {
        QByteArray holed = whole;
        const Decoded decoded = decodeBytes(holed.remove(heads[frame], heads[frame + 1] - heads[frame]));
        EXPECT_NE(decoded.complaint, QString()) << frame << ": " << decoded;
    }
}

INSTANTIATE_TEST_SUITE_P(Damaged, CheckedFormat,
                         ::testing::Values(u"flac"_s, u"wv"_s, u"tta"_s, u"ape1000"_s, u"ape3000"_s),
                         [](const auto &kind) { return kind.param.toStdString(); });

TEST_P(AnyFormat, NoTruncationGoesUnnoticed)
{
    const QByteArray whole = make(GetParam());
    for (const qsizetype size : {0, 1, 2, 3, 4, 5, 8, 20, 100, 1000, 10'000, 50'000}) {
        const Decoded decoded = decodeBytes(whole.chopped(size));
        if (size == 0) {
            EXPECT_EQ(decoded.refusal + decoded.complaint, QString());
        }
        EXPECT_TRUE(isHonest(decoded, expected)) << size << " bytes less: " << decoded;
    }
    for (const int percent : {1, 10, 50, 90}) {
        const Decoded decoded = decodeBytes(whole.left(whole.size() * percent / 100));
        EXPECT_NE(decoded.refusal + decoded.complaint, QString()) << percent << " percent: " << decoded;
    }
}

INSTANTIATE_TEST_SUITE_P(Damaged, AnyFormat,
                         ::testing::Values(u"wav"_s, u"wavx"_s, u"aiff"_s, u"sowt"_s, u"flac"_s, u"wv"_s, u"tta"_s,
                                           u"ape1000"_s, u"ape5000"_s, u"shn"_s, u"m4a"_s),
                         [](const auto &kind) { return kind.param.toStdString(); });

TEST_F(DamagedFiles, DamagedHeadersBreakNothing)
{
    for (const QString &kind : {u"wav"_s, u"aiff"_s, u"flac"_s, u"wv"_s, u"tta"_s, u"ape1000"_s, u"shn"_s, u"m4a"_s}) {
        const QByteArray whole = make(kind).left(20'000);
        std::uint32_t state = 7;
        for (int trial = 0; trial < 60; ++trial) {
            QByteArray damaged = whole;
            for (int byte = 0; byte < 3; ++byte) {
                state = state * 1664525U + 1013904223U;
                damaged[static_cast<qsizetype>(state >> 16) % 80] = static_cast<char>(state >> 8);
            }
            const Decoded decoded = decodeBytes(damaged);
            EXPECT_LE(decoded.frames(), 2'000'000) << qPrintable(kind);
        }
    }
}

} // namespace
} // namespace nurv
