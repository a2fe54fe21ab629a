// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/SystemCallRecorder.h"

#include <QFile>
#include <QList>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <mutex>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

struct Record {
    std::mutex lock;
    QStringList calls;
    struct Failure {
        QString start;
        int error = 0;
        int times = 0; ///< below 0: always
    };
    QList<Failure> failing;
    QList<std::pair<QString, std::function<void(struct stat &)>>> lies;
    QList<std::pair<QString, std::function<void()>>> waiting;
    bool forgetsRenameFlags = false;
};

std::atomic<Record *> g_record = nullptr;

/// Lives as long as the process: a thread may be in it when its recorder goes.
Record *newRecord()
{
    static auto *const all = new QList<Record *>;
    all->append(new Record);
    return all->last();
}

/// The system's own function, which stands behind the one of this file.
template<typename Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

QString targetOf(const QByteArray &link)
{
    QByteArray target(PATH_MAX, '\0');
    const ssize_t length = ::readlink(link.constData(), target.data(), static_cast<std::size_t>(target.size()));
    return length < 0 ? QString() : QFile::decodeName(target.first(length));
}

/// "/tmp/#1234 (deleted)" is how the system shows a file without a name.
QString pathOf(int descriptor)
{
    const QString path = targetOf("/proc/self/fd/" + QByteArray::number(descriptor));
    const qsizetype name = path.lastIndexOf(u'/') + 1;
    return path.endsWith(u" (deleted)"_s) && path.sliced(name).startsWith(u'#') ? path.first(name) + u'?' : path;
}

QString pathOf(int folder, const char *name)
{
    const QString path = QFile::decodeName(QByteArray(name));
    constexpr QStringView kDescriptors = u"/proc/self/fd/";
    if (path.startsWith(kDescriptors))
        return pathOf(path.sliced(kDescriptors.size()).toInt());
    if (path.startsWith(u'/'))
        return path;
    return (folder == AT_FDCWD ? targetOf("/proc/self/cwd") : pathOf(folder)) + u'/' + path;
}

/// Returns the error that the call is to fail with, or 0.
int record(const QString &call)
{
    Record *const current = g_record;
    if (current == nullptr)
        return 0;
    std::function<void()> work;
    int error = 0;
    {
        const std::scoped_lock lock(current->lock);
        current->calls.append(call);
        for (Record::Failure &failure : current->failing) {
            if (failure.times == 0 || !call.startsWith(failure.start))
                continue;
            error = failure.error;
            failure.times -= failure.times > 0 ? 1 : 0;
        }
        for (qsizetype at = 0; at < current->waiting.size() && !work; ++at) {
            if (call.startsWith(current->waiting[at].first))
                work = current->waiting.takeAt(at).second;
        }
    }
    if (work)
        work();
    return error;
}

/// Records a call on an open file, and makes it unless it is to fail.
template<typename Make>
auto recorded(const char *name, int descriptor, const Make &make)
{
    const int error = g_record.load() == nullptr ? 0 : record(QLatin1StringView(name) + u' ' + pathOf(descriptor));
    if (error == 0)
        return make();
    errno = error;
    return decltype(make())(-1);
}

/// The same for two names.
template<typename Make>
int recordedNames(const char *name, const QString &from, const QString &to, const Make &make)
{
    const int error = record(QLatin1StringView(name) + u' ' + from + u' ' + to);
    if (error == 0)
        return make();
    errno = error;
    return -1;
}

} // namespace

SystemCallRecorder::SystemCallRecorder()
{
    g_record = newRecord();
}

SystemCallRecorder::~SystemCallRecorder()
{
    g_record = nullptr;
}

QStringList SystemCallRecorder::calls() const
{
    Record &current = *g_record;
    const std::scoped_lock lock(current.lock);
    return current.calls;
}

qsizetype SystemCallRecorder::indexOf(const QString &start) const
{
    const QStringList all = calls();
    for (qsizetype at = 0; at < all.size(); ++at) {
        if (all[at].startsWith(start))
            return at;
    }
    return -1;
}

void SystemCallRecorder::fail(const QString &start, int error, int times)
{
    const std::scoped_lock lock(g_record.load()->lock);
    g_record.load()->failing.append({.start = start, .error = error, .times = times});
}

void SystemCallRecorder::lie(const QString &path, std::function<void(struct stat &facts)> change)
{
    const std::scoped_lock lock(g_record.load()->lock);
    g_record.load()->lies.append({path, std::move(change)});
}

void SystemCallRecorder::forgetRenameFlags()
{
    g_record.load()->forgetsRenameFlags = true;
}

void SystemCallRecorder::before(const QString &start, std::function<void()> work)
{
    const std::scoped_lock lock(g_record.load()->lock);
    g_record.load()->waiting.append({start, std::move(work)});
}

} // namespace nurv::test

using namespace nurv::test;

extern "C" {

int fsync(int file)
{
    static auto *const real = next<int(int)>("fsync");
    return recorded("fsync", file, [&] { return real(file); });
}

int fdatasync(int file)
{
    static auto *const real = next<int(int)>("fdatasync");
    return recorded("fdatasync", file, [&] { return real(file); });
}

int fchown(int file, uid_t owner, gid_t group) noexcept
{
    static auto *const real = next<int(int, uid_t, gid_t)>("fchown");
    return recorded("fchown", file, [&] { return real(file, owner, group); });
}

ssize_t write(int file, const void *bytes, size_t count)
{
    static auto *const real = next<ssize_t(int, const void *, size_t)>("write");
    return recorded("write", file, [&] { return real(file, bytes, count); });
}

ssize_t pwrite(int file, const void *bytes, size_t count, off_t offset)
{
    static auto *const real = next<ssize_t(int, const void *, size_t, off_t)>("pwrite");
    return recorded("pwrite", file, [&] { return real(file, bytes, count, offset); });
}

int ftruncate(int file, off_t length) noexcept
{
    static auto *const real = next<int(int, off_t)>("ftruncate");
    return recorded("ftruncate", file, [&] { return real(file, length); });
}

/// Returns its error.
int posix_fallocate(int file, off_t offset, off_t length)
{
    static auto *const real = next<int(int, off_t, off_t)>("posix_fallocate");
    const int result = recorded("posix_fallocate", file, [&] { return real(file, offset, length); });
    return result < 0 ? errno : result;
}

// There is a type of that name, too.
int recordedFlock(int file, int operation) noexcept __asm__("flock");

int recordedFlock(int file, int operation) noexcept
{
    static auto *const real = next<int(int, int)>("flock");
    return recorded("flock", file, [&] { return real(file, operation); });
}

int close(int file)
{
    static auto *const real = next<int(int)>("close");
    const int error = g_record.load() == nullptr ? 0 : record(u"close "_s + pathOf(file));
    const int result = real(file);
    if (error == 0)
        return result;
    errno = error;
    return -1;
}

int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned int flags) noexcept
{
    static auto *const real = next<int(int, const char *, int, const char *, unsigned int)>("renameat2");
    if (Record *const current = g_record; current != nullptr && current->forgetsRenameFlags && flags != 0) {
        errno = EINVAL;
        return -1;
    }
    const auto make = [&] { return real(fromFolder, from, toFolder, to, flags); };
    return g_record.load() == nullptr ? make()
                                      : recordedNames("rename", pathOf(fromFolder, from), pathOf(toFolder, to), make);
}

int renameat(int fromFolder, const char *from, int toFolder, const char *to) noexcept
{
    static auto *const real = next<int(int, const char *, int, const char *)>("renameat");
    const auto make = [&] { return real(fromFolder, from, toFolder, to); };
    return g_record.load() == nullptr ? make()
                                      : recordedNames("rename", pathOf(fromFolder, from), pathOf(toFolder, to), make);
}

int rename(const char *from, const char *to) noexcept
{
    static auto *const real = next<int(const char *, const char *)>("rename");
    const auto make = [&] { return real(from, to); };
    return g_record.load() == nullptr ? make()
                                      : recordedNames("rename", pathOf(AT_FDCWD, from), pathOf(AT_FDCWD, to), make);
}

int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept
{
    static auto *const real = next<int(int, const char *, int, const char *, int)>("linkat");
    const auto make = [&] { return real(fromFolder, from, toFolder, to, flags); };
    return g_record.load() == nullptr ? make()
                                      : recordedNames("link", pathOf(fromFolder, from), pathOf(toFolder, to), make);
}

int unlinkat(int folder, const char *name, int flags) noexcept
{
    static auto *const real = next<int(int, const char *, int)>("unlinkat");
    if (g_record.load() != nullptr)
        record(u"unlink "_s + pathOf(folder, name));
    return real(folder, name, flags);
}

int unlink(const char *name) noexcept
{
    static auto *const real = next<int(const char *)>("unlink");
    if (g_record.load() != nullptr)
        record(u"unlink "_s + pathOf(AT_FDCWD, name));
    return real(name);
}

int lstat(const char *name, struct stat *facts) noexcept
{
    static auto *const real = next<int(const char *, struct stat *)>("lstat");
    const int result = real(name, facts);
    if (Record *const current = g_record; current != nullptr && result == 0) {
        const QString path = pathOf(AT_FDCWD, name);
        const std::scoped_lock lock(current->lock);
        for (const auto &[top, change] : std::as_const(current->lies)) {
            if (path == top || path.startsWith(top + u'/'))
                change(*facts);
        }
    }
    return result;
}

} // extern "C"
