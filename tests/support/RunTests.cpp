// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/RunTests.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <cstdio>

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
        qputenv("NURV_TOOLS", NURV_BUILT_TOOLS);
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    return true;
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
    return RUN_ALL_TESTS();
}

} // namespace nurv::test
