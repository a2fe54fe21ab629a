// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "SampleFixtures.h"

#include "base/NurvFailure.h"
#include "support/TestProgram.h"

#include <QtEndian>

#include <gtest/gtest.h>

#include <ostream>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

const QStringList kQuietFfmpeg = {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-y"_s};

QString byFfmpeg(const QString &path, const QString &wav, const QStringList &arguments = {})
{
    runOrFail(u"ffmpeg"_s, kQuietFfmpeg + QStringList{u"-i"_s, wav} + arguments + QStringList{path});
    return path;
}

} // namespace

std::int64_t Decoded::frames() const
{
    return format.channels > 0 ? static_cast<std::int64_t>(samples.size()) / format.channels : 0;
}

Decoded decode(const QString &path, std::size_t framesPerRead)
{
    Decoded decoded;
    std::unique_ptr<SampleStream> stream;
    try {
        stream = SampleStream::open(path);
    } catch (const NurvFailure &failure) {
        decoded.refusal = failure.reason();
        return decoded;
    }
    decoded.format = stream->format();
    decoded.declaredFrames = stream->declaredFrames();
    decoded.isLossless = stream->isLossless();
    const auto channels = static_cast<std::size_t>(decoded.format.channels);
    std::vector<std::int32_t> buffer(framesPerRead * channels);
    try {
        while (const std::size_t frames = stream->read(buffer.data(), framesPerRead)) {
            const auto end = buffer.begin() + static_cast<std::ptrdiff_t>(frames * channels);
            decoded.samples.insert(decoded.samples.end(), buffer.begin(), end);
        }
    } catch (const NurvFailure &failure) {
        decoded.complaint = failure.reason();
    }
    return decoded;
}

std::vector<std::int32_t> expectedSamples(const SoundShape &shape)
{
    const QByteArray bytes = makeSamples(shape);
    const auto width = static_cast<std::size_t>(shape.bits / 8);
    std::vector<std::int32_t> samples(static_cast<std::size_t>(bytes.size()) / width);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        // The low bytes stay 0, the sample stands in the high ones.
        std::uint8_t word[4] = {};
        for (std::size_t byte = 0; byte < width; ++byte)
            word[4 - width + byte] = static_cast<std::uint8_t>(bytes[static_cast<qsizetype>(i * width + byte)]);
        if (shape.bits == 8)
            word[3] = static_cast<std::uint8_t>(word[3] - 128);
        samples[i] = qFromLittleEndian<qint32>(word);
    }
    return samples;
}

std::ostream &operator<<(std::ostream &out, const Decoded &decoded)
{
    return out << decoded.frames() << " frames, refused: \"" << qPrintable(decoded.refusal) << "\", complaint: \""
               << qPrintable(decoded.complaint) << '"';
}

QString bundled(const QString &name)
{
    return qEnvironmentVariable("NURV_TOOLS") + u'/' + name;
}

QByteArray runOrFail(const QString &program, const QStringList &arguments, const QByteArray &input)
{
    const ProgramResult result = runProgram(program, arguments, input);
    EXPECT_EQ(result.exitStatus, 0) << qPrintable(program) << ": " << result.errors.constData();
    return result.output;
}

QString makeSound(const TestFolder &folder, const QString &kind, const SoundShape &shape)
{
    const QString wav = writeWav(folder.path(u"plain.wav"_s), shape);
    const QString path = folder.path(u"sound."_s + kind);
    if (kind == u"wav")
        return writeWav(path, shape);
    if (kind == u"wavx") {
        SoundShape extensible = shape;
        extensible.extensible = true;
        return writeWav(path, extensible);
    }
    if (kind == u"aiff")
        return writeAiff(path, shape);
    if (kind == u"aifc")
        return runOrFail(u"sox"_s, {u"-D"_s, wav, u"-t"_s, u"aifc"_s, path}), path;
    if (kind == u"sowt")
        return byFfmpeg(path, wav, {u"-c:a"_s, u"pcm_s16le"_s, u"-f"_s, u"aiff"_s});
    if (kind == u"flac") {
        SoundShape extensible = shape;
        extensible.extensible = shape.channels > 2;
        return writeFlac(path, extensible);
    }
    if (kind == u"flac-ffmpeg")
        return byFfmpeg(path, wav, {u"-c:a"_s, u"flac"_s, u"-f"_s, u"flac"_s});
    if (kind == u"wv")
        return runOrFail(u"wavpack"_s, {u"-q"_s, u"-y"_s, wav, u"-o"_s, path}), path;
    if (kind == u"wv-ffmpeg")
        return byFfmpeg(path, wav, {u"-c:a"_s, u"wavpack"_s, u"-f"_s, u"wv"_s});
    if (kind == u"tta")
        return runOrFail(bundled(u"ttaenc"_s), {u"-e"_s, wav, u"-o"_s, path}), path;
    if (kind == u"tta-ffmpeg")
        return byFfmpeg(path, wav, {u"-c:a"_s, u"tta"_s, u"-f"_s, u"tta"_s});
    if (kind.startsWith(u"ape"))
        return runOrFail(bundled(u"mac"_s), {wav, path, u"-c"_s + kind.mid(3)}), path;
    if (kind == u"shn")
        return runOrFail(bundled(u"shorten"_s), {wav, path}), path;
    if (kind == u"m4a")
        return byFfmpeg(path, wav, {u"-c:a"_s, u"alac"_s, u"-f"_s, u"ipod"_s});
    ADD_FAILURE() << "no kind " << qPrintable(kind);
    return path;
}

QByteArray little32(std::uint32_t value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray big32(std::uint32_t value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray patched(QByteArray bytes, qsizetype offset, const QByteArray &with)
{
    EXPECT_GE(offset, 0);
    EXPECT_LE(offset + with.size(), bytes.size());
    return bytes.replace(offset, with.size(), with);
}

} // namespace nurv::test

namespace nurv {

void PrintTo(const SampleFormat &format, std::ostream *out)
{
    *out << format.channels << " channels of " << format.bitsPerSample << (format.isFloat ? " floating" : "")
         << " bits at " << format.sampleRateHz << " Hz";
}

} // namespace nurv
