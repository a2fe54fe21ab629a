// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/InputFile.h"

#include "support/TestFolder.h"
#include "support/ToolError.h"

#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <numeric>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

constexpr size_t kLongerThanAnyBuffer = 1'000'003;

/// Bytes that tell their place.
std::vector<uint8_t> numberedBytes(size_t count)
{
    std::vector<uint8_t> bytes(count);
    for (size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(i * 7 + i / 251);
    return bytes;
}

QByteArray asByteArray(const std::vector<uint8_t> &bytes)
{
    return {reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

std::string nameOf(const QString &path)
{
    return path.toStdString();
}

std::vector<uint8_t> readInSteps(InputFile &input, size_t step)
{
    std::vector<uint8_t> all;
    std::vector<uint8_t> block(step);
    while (const size_t count = input.read(block)) {
        all.insert(all.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
        if (count < step)
            break;
    }
    return all;
}

/// A named pipe that a thread fills, a few bytes at a time.
class FilledPipe {
public:
    FilledPipe(const TestFolder &folder, std::vector<uint8_t> bytes, size_t step)
        : m_path(nameOf(folder.path(u"pipe"_s)))
    {
        EXPECT_EQ(::mkfifo(m_path.c_str(), 0600), 0);
        m_writer = std::thread([path = m_path, bytes = std::move(bytes), step] {
            const int descriptor = ::open(path.c_str(), O_WRONLY);
            for (size_t at = 0; at < bytes.size(); at += step)
                EXPECT_GT(::write(descriptor, bytes.data() + at, std::min(step, bytes.size() - at)), 0);
            ::close(descriptor);
        });
    }
    ~FilledPipe() { m_writer.join(); }
    FilledPipe(const FilledPipe &) = delete;
    FilledPipe &operator=(const FilledPipe &) = delete;

    [[nodiscard]] const std::string &path() const { return m_path; }

private:
    std::string m_path;
    std::thread m_writer;
};

TEST(InputFile, ReadsAFileInStepsOfAnySize)
{
    const TestFolder folder;
    const std::vector<uint8_t> bytes = numberedBytes(kLongerThanAnyBuffer);
    const std::string path = nameOf(folder.write(u"a"_s, asByteArray(bytes)));
    for (const size_t step : {size_t{1'000}, size_t{65'536}, size_t{131'072}, size_t{300'000}, size_t{2'000'000}}) {
        InputFile input(path);
        EXPECT_EQ(input.size(), kLongerThanAnyBuffer);
        EXPECT_EQ(readInSteps(input, step), bytes) << step;
        EXPECT_EQ(input.position(), kLongerThanAnyBuffer);
        uint8_t more = 0;
        EXPECT_EQ(input.read({&more, 1}), 0U);
    }
}

TEST(InputFile, ReadsAPipeThatComesInSmallPieces)
{
    const TestFolder folder;
    const std::vector<uint8_t> bytes = numberedBytes(kLongerThanAnyBuffer);
    const FilledPipe pipe(folder, bytes, 997);
    InputFile input(pipe.path());
    EXPECT_FALSE(input.size());
    EXPECT_EQ(readInSteps(input, 10'000), bytes);
    EXPECT_THROW(input.seek(0), ToolError);
}

TEST(InputFile, ShowsWhatComesNextWithoutTakingIt)
{
    const TestFolder folder;
    const std::vector<uint8_t> bytes = numberedBytes(200'000);
    const FilledPipe pipe(folder, bytes, 997);
    InputFile input(pipe.path());
    std::vector<uint8_t> taken(100'000);
    for (const size_t start : {size_t{0}, size_t{100'000}}) {
        const std::span<const uint8_t> next = input.peek(100'000);
        ASSERT_EQ(next.size(), 65'536U);
        EXPECT_TRUE(std::equal(next.begin(), next.end(), bytes.begin() + static_cast<std::ptrdiff_t>(start)));
        EXPECT_EQ(input.position(), start);
        input.readExactly(taken);
        EXPECT_TRUE(std::equal(taken.begin(), taken.end(), bytes.begin() + static_cast<std::ptrdiff_t>(start)));
    }
    EXPECT_TRUE(input.peek(1).empty());
}

TEST(InputFile, SkipsWhatIsThere)
{
    const TestFolder folder;
    const std::vector<uint8_t> bytes = numberedBytes(300'000);
    const FilledPipe pipe(folder, bytes, 997);
    const std::string file = nameOf(folder.write(u"a"_s, asByteArray(bytes)));
    for (const std::string &path : {pipe.path(), file}) {
        InputFile input(path);
        EXPECT_EQ(input.skip(10), 10U);
        EXPECT_EQ(input.skip(250'000), 250'000U);
        EXPECT_EQ(input.position(), 250'010U);
        EXPECT_EQ(input.peek(1).front(), bytes[250'010]);
        EXPECT_EQ(input.skip(UINT64_MAX), 49'990U);
        EXPECT_EQ(input.position(), 300'000U);
    }
}

TEST(InputFile, GoesToAnyOffsetOfAFile)
{
    const TestFolder folder;
    const std::vector<uint8_t> bytes = numberedBytes(kLongerThanAnyBuffer);
    InputFile input(nameOf(folder.write(u"a"_s, asByteArray(bytes))));
    std::vector<uint8_t> large(400'000);
    for (const size_t offset :
         {size_t{5}, size_t{900'000}, size_t{900'100}, size_t{0}, size_t{131'071}, size_t{600'000}}) {
        input.seek(offset);
        EXPECT_EQ(input.position(), offset);
        uint8_t byte = 0;
        input.readExactly({&byte, 1});
        EXPECT_EQ(byte, bytes[offset]) << offset;
        const size_t count = input.read(large);
        EXPECT_EQ(count, std::min(large.size(), bytes.size() - offset - 1));
        EXPECT_TRUE(std::equal(large.begin(), large.begin() + static_cast<std::ptrdiff_t>(count),
                               bytes.begin() + static_cast<std::ptrdiff_t>(offset) + 1));
    }
    input.seek(uint64_t{1} << 40);
    EXPECT_EQ(input.read(large), 0U);
    EXPECT_THROW(input.seek(UINT64_MAX), ToolError);
}

TEST(InputFile, SaysThatItEndsTooEarly)
{
    InputFile input(std::span<const uint8_t>(numberedBytes(10)));
    std::vector<uint8_t> block(11);
    try {
        input.readExactly(block);
        FAIL() << "eleven bytes of ten";
    } catch (const ToolError &error) {
        EXPECT_EQ(error.kind(), ToolError::Kind::Damaged);
    }
}

TEST(InputFile, SaysThatItChangedWhileItWasRead)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, QByteArray(400'000, 'x'));
    InputFile whole(nameOf(path));
    EXPECT_EQ(readInSteps(whole, 4096).size(), 400'000U);
    EXPECT_NO_THROW(whole.checkEnd());
    InputFile cut(nameOf(path));
    ASSERT_TRUE(QFile::resize(path, 200'000));
    EXPECT_EQ(readInSteps(cut, 4096).size(), 200'000U);
    EXPECT_THROW(cut.checkEnd(), ToolError);
}

TEST(InputFile, RefusesWhatCannotBeReadByItsName)
{
    const TestFolder folder;
    const std::string missing = nameOf(folder.path(u"missing"_s));
    const std::pair<std::string, std::string> cases[] = {
        {nameOf(folder.path()), "Is a directory"},
        {missing, "No such file or directory"},
        {"", "No such file or directory"},
    };
    for (const auto &[name, reason] : cases) {
        try {
            const InputFile input(name);
            ADD_FAILURE() << name;
        } catch (const ToolError &error) {
            EXPECT_EQ(error.kind(), ToolError::Kind::Read);
            EXPECT_EQ(error.what(), "cannot read " + name + ": " + reason);
        }
    }
}

std::atomic<int> g_signals = 0;

TEST(InputFile, GoesOnAfterASignal)
{
    struct sigaction action {};
    struct sigaction former {};
    action.sa_handler = [](int) { ++g_signals; };
    ASSERT_EQ(::sigaction(SIGUSR1, &action, &former), 0);
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pthread_t reader = ::pthread_self();
    std::thread writer([&] {
        // The reader waits for bytes that come after the signals only.
        while (g_signals < 5) {
            ::pthread_kill(reader, SIGUSR1);
            std::this_thread::yield();
        }
        EXPECT_EQ(::write(ends[1], "abc", 3), 3);
        ::close(ends[1]);
    });
    {
        InputFile input("/proc/self/fd/" + std::to_string(ends[0]));
        ::close(ends[0]);
        EXPECT_EQ(readInSteps(input, 100), (std::vector<uint8_t>{'a', 'b', 'c'}));
    }
    writer.join();
    ::sigaction(SIGUSR1, &former, nullptr);
}

TEST(InputFile, WaitsForAPipeThatDoesNotBlock)
{
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_NONBLOCK), 0);
    const int standardInput = ::dup(STDIN_FILENO);
    ASSERT_EQ(::dup2(ends[0], STDIN_FILENO), STDIN_FILENO);
    std::vector<uint8_t> read;
    std::atomic<bool> isReading = false;
    std::thread reader([&] {
        InputFile input("-");
        EXPECT_EQ(input.name(), "standard input");
        isReading = true;
        read = readInSteps(input, 100);
    });
    while (!isReading)
        std::this_thread::yield();
    EXPECT_EQ(::write(ends[1], "abc", 3), 3);
    ::close(ends[1]);
    reader.join();
    ::dup2(standardInput, STDIN_FILENO);
    ::close(standardInput);
    ::close(ends[0]);
    EXPECT_EQ(read, (std::vector<uint8_t>{'a', 'b', 'c'}));
}

} // namespace

} // namespace nurv::test
