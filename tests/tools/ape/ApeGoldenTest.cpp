// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Files that other programs decode, pinned by their bytes or their MD5. All but those of
// 16-bit mono are what an independent encoder writes, too.
#include "ApeSounds.h"

#include <QCryptographicHash>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

struct TinyFile {
    const char *what;
    unsigned channels;
    std::vector<int32_t> samples;
    const char *frames;
    const char *md5;
};

const TinyFile kTinyFiles[] = {
    {"OneBlock", 2, {1000, -2}, "9615fa4be463d90000000000", "36e4a3202c8034c41778708e0cff9a83"},
    {"Mono", 1, {0, 1, -1, 300}, "f4b26a4005000000009866e700000000", "ac71f6d924badfbb92ec54a6a700d62c"},
    {"Silence", 2, std::vector<int32_t>(200), "860611a3030000000000010000000000", "539ca8cd7f543f167f491b36aa1cff3c"},
    {"EqualChannels", 2, {5, 5, -7, -7}, "03cc42e804000000cb58010000000000", "73d726d8f71a31dd343f7a09b9f934e8"},
};

class ApeGoldenTinyFile : public ::testing::TestWithParam<TinyFile> {};

TEST_P(ApeGoldenTinyFile, HasTheKnownFramesAndChecksum)
{
    const PcmShape shape{.channels = GetParam().channels};
    const QByteArray wav = wavOf(pcmOf(GetParam().samples, shape), shape);
    const QByteArray ape = encoded(wav, ApeLevel::Normal);
    EXPECT_EQ(ape.mid(52 + 24 + 4 + 44).toHex(), GetParam().frames);
    EXPECT_EQ(ape.mid(36, 16).toHex(), GetParam().md5);
    EXPECT_EQ(decoded(ape).toHex(), wav.toHex());
}

INSTANTIATE_TEST_SUITE_P(Frames, ApeGoldenTinyFile, ::testing::ValuesIn(kTinyFiles),
                         [](const auto &tested) { return std::string(tested.param.what); });

struct LongFile {
    char set;
    unsigned bits;
    unsigned channels;
    const char *wav;
    const char *levels[5];
};

const LongFile kLongFiles[] = {
    {'A', 8, 1, "33fb555e1529", {"a292c602b2ce", "2dcc47fd17d1", "577ef5ee1089", "e0f0512de535", "146915209475"}},
    {'A', 8, 2, "332fb5788369", {"cdb14b30133e", "f4e6d2f596b9", "c6a808d9191d", "cfaba099077e", "76413684d228"}},
    {'A', 16, 1, "1d5b46841a4d", {"ad0c2d9c63f3", "38553fff1253", "bf6f8dcc983f", "edf982f66436", "208628740f7a"}},
    {'A', 16, 2, "17b328a43833", {"e68e5f352d98", "8513bff9fa16", "91fdda2aa0f1", "1cfbac42a9e6", "6c4ac597a50e"}},
    {'A', 24, 1, "33ac6ed8a154", {"be4a609c456d", "e335635907df", "c79e02219ea8", "d2ac25ba7234", "dff8c3a30207"}},
    {'A', 24, 2, "d0bebf007c96", {"eed3d98a27eb", "a734ea55005b", "025eea84fae4", "11b0716ff42c", "ae692fb2708c"}},
    {'B', 8, 1, "a8da47349ea3", {"4298a96090d4", "d3dbaee916fd", "77ce29cd3e68", "c076f44e1a20", "d170731ba9b8"}},
    {'B', 8, 2, "db83a4e6cf26", {"106c47d09115", "180ed9189133", "bd8fb1d9e283", "7125113f2104", "41d8d38fb31b"}},
    {'B', 16, 1, "034b977636b9", {"56bbca82127c", "df289e52809f", "967a169af613", "39ccdeb02a4a", "e6c0d0beb086"}},
    {'B', 16, 2, "1585085acd15", {"edef72c2d064", "cef1a84a32cf", "99ed45ad22fd", "6c706b1200aa", "88a3326e5714"}},
    {'B', 24, 1, "196240982c15", {"4ddfab11444e", "fe33c405ae34", "0ab8c9a15a6e", "81e3accde444", "b5e011f4215e"}},
    {'B', 24, 2, "363f1ad8d75b", {"a686f5243321", "7a9f45c54e41", "59c2ae6db7e0", "4eea0f2d831d", "580314cdaec6"}},
};

QByteArray shortMd5(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex().left(12);
}

class ApeGoldenLongFile : public ::testing::TestWithParam<LongFile> {};

TEST_P(ApeGoldenLongFile, HasTheKnownBytesAtEveryLevel)
{
    const PcmShape shape{.bits = GetParam().bits, .channels = GetParam().channels};
    const QByteArray wav = wavOf(pcmOf(referenceSamples(GetParam().set, shape), shape), shape);
    ASSERT_EQ(shortMd5(wav), GetParam().wav);
    for (size_t i = 0; i < std::size(kApeLevels); ++i) {
        const QByteArray ape = encoded(wav, kApeLevels[i]);
        EXPECT_EQ(shortMd5(ape), GetParam().levels[i]) << i;
        EXPECT_TRUE(isSame(decoded(ape), wav)) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Sounds, ApeGoldenLongFile, ::testing::ValuesIn(kLongFiles), [](const auto &tested) {
    return tested.param.set + std::to_string(tested.param.bits) + "Bits" + std::to_string(tested.param.channels);
});

} // namespace

} // namespace nurv::test
