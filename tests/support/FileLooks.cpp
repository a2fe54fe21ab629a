// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FileLooks.h"

#include <QFile>

#include <cstdarg>
#include <map>
#include <mutex>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>

namespace nurv::test {

namespace {

struct Counts {
    std::mutex lock;
    bool isCounting = false;
    std::map<std::string, int> stats;
    std::map<std::string, int> opens;
};

Counts &counts()
{
    static Counts *const instance = new Counts;
    return *instance;
}

void count(std::map<std::string, int> Counts::*calls, const char *path)
{
    const std::lock_guard guard(counts().lock);
    if (counts().isCounting)
        ++(counts().*calls)[path];
}

int countOf(std::map<std::string, int> Counts::*calls, const QString &path)
{
    const std::lock_guard guard(counts().lock);
    return (counts().*calls)[QFile::encodeName(path).toStdString()];
}

} // namespace

FileLooks::FileLooks()
{
    const std::lock_guard guard(counts().lock);
    counts().stats.clear();
    counts().opens.clear();
    counts().isCounting = true;
}

FileLooks::~FileLooks()
{
    const std::lock_guard guard(counts().lock);
    counts().isCounting = false;
}

int FileLooks::stats(const QString &path) const
{
    return countOf(&Counts::stats, path);
}

int FileLooks::opens(const QString &path) const
{
    return countOf(&Counts::opens, path);
}

} // namespace nurv::test

// The linker puts these in the place of the functions: --wrap in CMakeLists.txt.
extern "C" {
int __real_stat(const char *path, struct stat *facts);
int __real_lstat(const char *path, struct stat *facts);
int __real_open(const char *path, int flags, ...);

int __wrap_stat(const char *path, struct stat *facts)
{
    nurv::test::count(&nurv::test::Counts::stats, path);
    return __real_stat(path, facts);
}

int __wrap_lstat(const char *path, struct stat *facts)
{
    nurv::test::count(&nurv::test::Counts::stats, path);
    return __real_lstat(path, facts);
}

int __wrap_open(const char *path, int flags, ...)
{
    nurv::test::count(&nurv::test::Counts::opens, path);
    if ((flags & (O_CREAT | O_TMPFILE)) == 0)
        return __real_open(path, flags);
    va_list arguments;
    va_start(arguments, flags);
    const unsigned mode = va_arg(arguments, unsigned);
    va_end(arguments);
    return __real_open(path, flags, mode);
}
}
