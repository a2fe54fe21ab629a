// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/RunTests.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

bool setPrivateEnvironment(const QDir &home)
{
    const std::pair<const char *, QString> folders[] = {
        {"HOME", u"home"_s},          {"TMPDIR", u"tmp"_s},           {"XDG_CONFIG_HOME", u"config"_s},
        {"XDG_DATA_HOME", u"data"_s}, {"XDG_CACHE_HOME", u"cache"_s}, {"XDG_RUNTIME_DIR", u"run"_s},
    };
    for (const auto &[variable, name] : folders) {
        const QString path = home.absoluteFilePath(name);
        if (!QDir().mkpath(path)
            || !QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner)) {
            return false;
        }
        qputenv(variable, QFile::encodeName(path));
    }
    qputenv("NURV_SETTINGS", QFile::encodeName(home.absoluteFilePath(u"config/nurv-test.ini"_s)));
    qputenv("NURV_STATE", QFile::encodeName(home.absoluteFilePath(u"state"_s)));
    if (!qEnvironmentVariableIsSet("NURV_TEST_SESSION_BUS")) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    }
    if (!qEnvironmentVariableIsSet("NURV_TOOLS")) {
        qputenv("NURV_TOOLS", NURV_BUILT_PROGRAMS);
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    return true;
}

/// What one case could leave to the next one of its process.
struct Surroundings {
    std::vector<std::string> environment;
    QString folder;
    mode_t mask = 0;

    static Surroundings now()
    {
        Surroundings found;
        for (const char *const *variable = environ; variable && *variable; ++variable)
            found.environment.emplace_back(*variable);
        std::sort(found.environment.begin(), found.environment.end());
        found.folder = QDir::currentPath();
        found.mask = ::umask(0);
        ::umask(found.mask);
        return found;
    }
};

/// Cases of a suite share a process: each leaves it as it found it.
class SurroundingsCheck : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo &) override { m_before = Surroundings::now(); }
    void OnTestEnd(const ::testing::TestInfo &) override
    {
        const Surroundings after = Surroundings::now();
        EXPECT_EQ(after.environment, m_before.environment) << "the case has left another environment";
        EXPECT_EQ(after.folder, m_before.folder) << "the case has left another current folder";
        EXPECT_EQ(after.mask, m_before.mask) << "the case has left another umask";
    }

    Surroundings m_before;
};

pid_t g_process = 0;
bool g_haveAllRun = false;

/// A case that ends the process must not pass for all that come after it.
void failAtEarlyExit()
{
    if (g_haveAllRun || ::getpid() != g_process)
        return;
    std::fprintf(stderr, "a case ended the process\n");
    std::fflush(nullptr);
    ::_exit(1);
}

int runAll()
{
    g_process = ::getpid();
    std::atexit(failAtEarlyExit);
    const int status = RUN_ALL_TESTS();
    g_haveAllRun = true;
    return status;
}

} // namespace

int runTests(int &argc, char **argv, const std::function<std::unique_ptr<QCoreApplication>()> &makeApplication)
{
    ::testing::InitGoogleMock(&argc, argv);
    if (::testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    QTemporaryDir home(QDir::tempPath() + u"/nurv-test-XXXXXX"_s);
    if (!home.isValid() || !setPrivateEnvironment(QDir(home.path()))) {
        std::fprintf(stderr, "cannot make a temporary home: %s\n", qPrintable(home.errorString()));
        return 1;
    }
    const std::unique_ptr<QCoreApplication> application = makeApplication();
    ::testing::UnitTest::GetInstance()->listeners().Append(new SurroundingsCheck);
    return runAll();
}

} // namespace nurv::test
