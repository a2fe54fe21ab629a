// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lossy/LossyFixture.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <random>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

constexpr int kRate = 44100;
constexpr int kSeconds = 20;

/// Plucked strings and drums, soft and loud: what an encoder spends its bits on changes from second to second.
class Music {
public:
    Music() : m_left(kRate * kSeconds), m_right(kRate * kSeconds)
    {
        constexpr std::array kChords{220.0, 196.0, 174.6, 164.8};
        for (int beat = 0; beat < (kSeconds - 1) * 4; ++beat) {
            const double loudness = 0.15 + 0.85 * (0.5 - 0.5 * std::cos(std::numbers::pi * beat / 40.0));
            const double root = kChords[static_cast<std::size_t>(beat / 8) % kChords.size()];
            pluck(beat, root * (beat % 3 == 0 ? 1.0 : beat % 3 == 1 ? 1.26 : 3.0), 0.22 * loudness, 0.2 + 0.15 * (beat % 5));
            if (beat % 2 == 0)
                drum(beat, (beat % 4 == 0 ? 0.25 : 0.4) * loudness, beat % 4 == 0 ? 0.03 : 0.08);
        }
    }
    [[nodiscard]] QByteArray samples() const
    {
        double loudest = 0.0;
        for (const auto *channel : {&m_left, &m_right}) {
            for (const double value : *channel)
                loudest = std::max(loudest, std::abs(value));
        }
        QByteArray bytes;
        bytes.reserve(static_cast<qsizetype>(m_left.size()) * 4);
        for (std::size_t i = 0; i < m_left.size(); ++i) {
            for (const double value : {m_left[i], m_right[i]}) {
                const auto sample = static_cast<std::int16_t>(std::lround(30000.0 * value / loudest));
                bytes.append(static_cast<char>(sample & 0xff)).append(static_cast<char>((sample >> 8) & 0xff));
            }
        }
        return bytes;
    }

private:
    [[nodiscard]] double noise() { return static_cast<double>(m_random()) / 2147483648.0 - 1.0; }
    void add(std::size_t frame, double value, double place)
    {
        m_left[frame] += (1.0 - place) * value;
        m_right[frame] += place * value;
    }
    /// A string after Karplus and Strong, for a second.
    void pluck(int beat, double frequency, double loudness, double place)
    {
        std::vector<double> string(static_cast<std::size_t>(kRate / frequency));
        std::generate(string.begin(), string.end(), [this] { return noise(); });
        const std::size_t first = static_cast<std::size_t>(beat) * kRate / 4;
        std::size_t at = 0;
        for (std::size_t i = first; i < first + kRate; ++i) {
            const std::size_t next = (at + 1) % string.size();
            add(i, loudness * string[at], place);
            string[at] = 0.4985 * (string[at] + string[next]);
            at = next;
        }
    }
    void drum(int beat, double loudness, double decaySeconds)
    {
        const std::size_t first = static_cast<std::size_t>(beat) * kRate / 4;
        double smooth = 0.0;
        for (std::size_t i = 0; i < kRate / 4; ++i) {
            smooth += 0.6 * (noise() * std::exp(-static_cast<double>(i) / (decaySeconds * kRate)) - smooth);
            add(first + i, loudness * smooth, 0.5);
        }
    }

    std::mt19937 m_random{5};
    std::vector<double> m_left;
    std::vector<double> m_right;
};

/// Kilobits of each second of a file's sound, by the packets that ffprobe counts.
struct Rates {
    double mean = 0.0;           ///< kbit/s
    double spreadInPercent = 0.0; ///< standard deviation in percent of the mean
};

class LossyRatesTest : public test::LossyFixture {
protected:
    LossyRatesTest()
    {
        static const QByteArray samples = Music().samples();
        QByteArray wav = test::wavBytes({.frames = kRate * kSeconds});
        wav.replace(wav.size() - samples.size(), samples.size(), samples);
        m_music = folder.write(u"a.wav"_s, wav);
    }
    Rates ratesOf(const std::shared_ptr<StagedTask> &task)
    {
        runJob(task);
        EXPECT_FALSE(task->error()) << qPrintable(task->report());
        const auto probed = test::runProgram(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-select_streams"_s, u"a:0"_s, u"-show_entries"_s,
                                                            u"packet=pts_time,size"_s, u"-of"_s, u"csv=p=0"_s, task->outputFile()});
        std::vector<double> kilobits(kSeconds, 0.0);
        for (const QByteArray &line : probed.output.split('\n')) {
            const QList<QByteArray> fields = line.split(',');
            if (fields.size() < 2)
                continue;
            const auto second = static_cast<std::size_t>(std::clamp(fields[0].toDouble(), 0.0, kSeconds - 0.5));
            kilobits[second] += fields[1].toDouble() * 8.0 / 1000.0;
        }
        EXPECT_TRUE(QFile::remove(task->outputFile()));
        Rates rates{.mean = std::accumulate(kilobits.begin(), kilobits.end(), 0.0) / kSeconds};
        // The last second is silence at its end.
        kilobits.pop_back();
        const double mean = std::accumulate(kilobits.begin(), kilobits.end(), 0.0) / static_cast<double>(kilobits.size());
        double squares = 0.0;
        for (const double value : kilobits)
            squares += (value - mean) * (value - mean);
        rates.spreadInPercent = 100.0 * std::sqrt(squares / static_cast<double>(kilobits.size())) / mean;
        return rates;
    }

    QString m_music;
};

TEST_F(LossyRatesTest, AreTheWantedOnesForAac)
{
    const Rates constant = ratesOf(makeAac(m_music, u"CBR"_s, 128));
    const Rates average = ratesOf(makeAac(m_music, u"ABR"_s, 128));
    const Rates constrained = ratesOf(makeAac(m_music, u"VBR Constrained"_s, 128));
    for (const Rates &rates : {constant, average, constrained})
        EXPECT_NEAR(rates.mean, 128.0, 0.08 * 128.0);
    EXPECT_LT(constant.spreadInPercent, average.spreadInPercent);
    EXPECT_LT(constant.spreadInPercent, constrained.spreadInPercent);
}

TEST_F(LossyRatesTest, RiseWithTheQualityOfAac)
{
    double former = 0.0;
    double lowest = 0.0;
    for (const int quality : {0, 12, 24, 36, 48, 60, 72, 84, 96, 110, 127}) {
        const double rate = ratesOf(makeAac(m_music, u"VBR"_s, quality)).mean;
        EXPECT_GT(rate, former * 1.02) << quality;
        if (quality == 0)
            lowest = rate;
        former = rate;
    }
    EXPECT_LT(lowest, 70.0);
    EXPECT_GT(former, 240.0);
}

TEST_F(LossyRatesTest, AreTheWantedOnesForOpus)
{
    const Rates constant = ratesOf(makeOpus(m_music, u"CBR"_s, 96));
    EXPECT_NEAR(constant.mean, 96.0, 0.02 * 96.0);
    EXPECT_LT(constant.spreadInPercent, 1.0);
    const Rates constrained = ratesOf(makeOpus(m_music, u"VBR Constrained"_s, 96));
    EXPECT_NEAR(constrained.mean, 96.0, 0.15 * 96.0);
    EXPECT_LT(constant.spreadInPercent, constrained.spreadInPercent);
}

TEST_F(LossyRatesTest, AreTheWantedOnesForMp3)
{
    for (const int rate : {128, 320}) {
        const Rates rates = ratesOf(makeMp3(m_music, u"CBR"_s, rate));
        EXPECT_NEAR(rates.mean, rate, 0.02 * rate);
    }
    EXPECT_GT(ratesOf(makeMp3(m_music, u"VBR"_s, 0)).mean, 1.3 * ratesOf(makeMp3(m_music, u"VBR"_s, 9)).mean);
}

} // namespace
} // namespace nurv
