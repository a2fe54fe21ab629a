// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The bundled `mac` at every level: decoding against ffmpeg on one thread, encoding against
// jmac where that is installed (on a sound so long that its start does not count).
//
//     ApeBench MAC
#include "Measure.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;
using namespace nurv::bench;

namespace {

/// Our time as a share of theirs that is wanted when encoding, by level.
constexpr double kEncodingGoals[] = {1 / 1.5, 1 / 1.5, 1 / 4.0, 1 / 8.0, 1 / 20.0};

class Bench {
public:
    Bench(const QString &mac, int bits)
        : m_mac(mac), m_bits(bits),
          m_wav(nurv::test::writeWav(m_folder.path(u"in.wav"_s), {.bits = bits, .seconds = 240})),
          m_ours(m_folder.path(u"ours.ape"_s)), m_theirs(m_folder.path(u"theirs.ape"_s))
    {
    }

    void measure(int level) const
    {
        const QString title = u"level %1, %2 bits"_s.arg(level).arg(m_bits);
        const auto encode = [&] { runOrDie(m_mac, {m_wav, m_ours, u"-c%1"_s.arg(level)}); };
        encode();
        measureDecoding(title);
        if (!QStandardPaths::findExecutable(u"jmac"_s).isEmpty())
            measureEncoding(title, level, encode);
    }

private:
    void measureDecoding(const QString &title) const
    {
        compare(
            u"mac -d, %1, against ffmpeg"_s.arg(title), 5, 1.0,
            [&] {
                runOrDie(m_mac, {m_ours, u"/dev/null"_s, u"-d"_s});
            },
            [&] {
                runOrDie(u"ffmpeg"_s,
                         {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-y"_s, u"-threads"_s, u"1"_s, u"-i"_s, m_ours,
                          u"-c:a"_s, u"pcm_s%1le"_s.arg(m_bits), u"-f"_s, u"wav"_s, u"/dev/null"_s});
            });
    }

    void measureEncoding(const QString &title, int level, const std::function<void()> &encode) const
    {
        const int step = level / 1000;
        compare(u"mac -c, %1, against jmac"_s.arg(title), 3, kEncodingGoals[step - 1], encode, [&] {
            // It does not shorten a file that is there.
            QFile::remove(m_theirs);
            runOrDie(u"jmac"_s, {u"c%1"_s.arg(step), m_wav, m_theirs});
        });
        std::printf("    %lld bytes against %lld, of %lld\n", static_cast<long long>(QFileInfo(m_ours).size()),
                    static_cast<long long>(QFileInfo(m_theirs).size()),
                    static_cast<long long>(QFileInfo(m_wav).size()));
    }

    nurv::test::TestFolder m_folder;
    QString m_mac;
    int m_bits;
    QString m_wav;
    QString m_ours;
    QString m_theirs;
};

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: ApeBench MAC\n");
        return 2;
    }
    for (const int bits : {16, 24}) {
        const Bench bench(QCoreApplication::arguments().at(1), bits);
        for (const int level : {1000, 2000, 3000, 4000, 5000})
            bench.measure(level);
    }
    return 0;
}
