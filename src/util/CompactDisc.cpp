// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/CompactDisc.h"

#include "app/NURVStringCategory.h"
#include "app/PathNames.h"
#include "engine/NSTaskWrapperSync.h"
#include "programs/Cdda2wav.h"
#include "text/RegularExpression.h"
#include "text/TextNumbers.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <vector>

#include <mntent.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kLongestDeviceName = 32;
/// How much of the volume's name may be missing in the name of its mount point.
constexpr qsizetype kMostCharactersLess = 5;
/// A line of a mount table: two paths, a type and options of one page.
constexpr std::size_t kLongestMountLine = 65'536;

struct Mount {
    QByteArray folder;
    QByteArray device;
};

std::vector<Mount> readMounts(const QString &mountTable)
{
    std::vector<Mount> mounts;
    const std::unique_ptr<FILE, int (*)(FILE *)> table(::setmntent(QFile::encodeName(mountTable).constData(), "re"),
                                                       &::endmntent);
    if (table == nullptr)
        return mounts;
    std::vector<char> line(kLongestMountLine);
    mntent entry = {};
    while (::getmntent_r(table.get(), &entry, line.data(), static_cast<int>(line.size())) != nullptr)
        mounts.push_back({.folder = entry.mnt_dir, .device = entry.mnt_fsname});
    return mounts;
}

/// The device of what is mounted at the folder, and seen there: the last one hides the others.
QString deviceAt(const std::vector<Mount> &mounts, const QString &folder)
{
    const QByteArray path = QFile::encodeName(folder);
    const auto found =
        std::find_if(mounts.rbegin(), mounts.rend(), [&](const Mount &mount) { return mount.folder == path; });
    if (found == mounts.rend() || !found->device.startsWith("/dev/"))
        return {};
    const QString name = QFile::decodeName(found->device.sliced(5));
    return isDeviceName(name) ? name : QString();
}

/// The drive in the name of a folder of gvfs; empty when that shows no disc.
QString driveOfGvfsFolder(const QString &volumePath)
{
    const QString parent = lastPathComponent(folderOf(volumePath));
    if (parent != u"gvfs" && parent != u".gvfs")
        return {};
    const QString name = QUrl::fromPercentEncoding(lastPathComponent(volumePath).toUtf8());
    // Whatever else gvfs mounts there has its own scheme.
    if (!name.startsWith(u"cdda:"_s) && (name.contains(u':') || name.contains(u'=')))
        return {};
    static const RegularExpression drive(u"(?<![A-Za-z0-9_])sr[0-9]{1,4}(?![A-Za-z0-9_])"_s);
    const std::vector<RegularExpressionMatch> found = drive.findAll(name);
    return found.empty() ? QString() : found.back().text();
}

/// "3 Track.wav" for "Track 3.wav"; any other name as it is.
QString withNumberFirst(const QString &name)
{
    static const RegularExpression numberLast(u"(.*\\S)\\s+([0-9]{1,2})(\\.[^.]*)?"_s);
    const auto match = numberLast.matchWhole(name);
    if (!match || cdTrackNumber(name) != 0)
        return name;
    return match->text(2) + u' ' + match->text(1) + match->text(3);
}

QString runDiscProgram(const QString &path, const QStringList &arguments, const std::function<bool()> &isUnwanted)
{
    // A drive that reads a bad disc may need that long; one that is stuck never answers.
    constexpr std::chrono::seconds kLimit(90);
    const QDeadlineTimer limit(kLimit);
    NSTaskWrapperSync run(path, arguments);
    const QString told = run.runTask([&] { return limit.hasExpired() || (isUnwanted && isUnwanted()); });
    return limit.hasExpired() ? told + u"\n%1 did not end in time"_s.arg(lastPathComponent(path)) : told;
}

QString discAddress(const QString &device)
{
    return u"cdda://"_s + device + u'/';
}

} // namespace

bool isDeviceName(const QString &name)
{
    static const RegularExpression word(u"[A-Za-z0-9_]+"_s);
    return name.size() <= kLongestDeviceName && word.matchWhole(name);
}

bool isOpticalDriveName(const QString &name)
{
    static const RegularExpression drive(u"sr[0-9]{1,4}"_s);
    return drive.matchWhole(name).has_value();
}

bool isGvfsDisc(const QString &volumePath)
{
    return !driveOfGvfsFolder(volumePath).isEmpty();
}

QString discIdForVolumePath(const QString &volumePath, const QString &mountTable)
{
    if (const QString drive = driveOfGvfsFolder(volumePath); !drive.isEmpty())
        return drive;
    QString path = volumePath;
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    const std::vector<Mount> mounts = readMounts(mountTable);
    // What is mounted at a folder above is another file system.
    const qsizetype shortest = path.lastIndexOf(u'/') + 2;
    for (qsizetype less = 0; less <= kMostCharactersLess; ++less) {
        if (less > 0 && path.size() - less < shortest)
            break;
        if (const QString device = deviceAt(mounts, path.chopped(less)); !device.isEmpty())
            return device;
    }
    return {};
}

int cdTrackNumber(const QString &name)
{
    const auto end = std::find_if(name.begin(), name.end(), [](QChar character) { return character.isSpace(); });
    const int number = leadingInteger(QStringView(name.begin(), end));
    return number >= 1 && number <= cdda2wav::kLastTrack ? number : 0;
}

QString reNumberedCdTrack(const QString &path)
{
    QString name = lastPathComponent(path);
    if (isGvfsDisc(folderOf(path)))
        name = withNumberFirst(name);
    const auto end = std::find_if(name.begin(), name.end(), [](QChar character) { return character.isSpace(); });
    const bool isShort = leadingInteger(QStringView(name.begin(), end)) <= 9 && !nurvStartsWith(name, u"0");
    return isShort ? u'0' + name : name;
}

QStringList reNumberCdTracks(const QStringList &paths)
{
    QStringList names;
    for (const QString &path : paths)
        names.append(reNumberedCdTrack(path));
    std::sort(names.begin(), names.end());
    return names;
}

QString getTrackNumberForExtract(const QStringList &names)
{
    if (names.isEmpty())
        return u"-1+0"_s;
    cdda2wav::TrackRange range;
    range.first = cdTrackNumber(names.first());
    range.last = range.first;
    for (qsizetype place = 1; place < names.size() && cdTrackNumber(names.at(place)) == range.last + 1; ++place)
        ++range.last;
    return cdda2wav::rangeText(range);
}

DiscMount discMount(const QString &volumePath)
{
    return isGvfsDisc(volumePath) ? DiscMount::Gvfs : DiscMount::FileSystem;
}

QString unMountDisc(const QString &device, DiscMount mount, const QString &programFolder,
                    const std::function<bool()> &isUnwanted)
{
    if (!isDeviceName(device))
        return {};
    if (mount == DiscMount::Gvfs)
        return runDiscProgram(joinPath(programFolder, u"gio"_s), {u"mount"_s, u"-u"_s, discAddress(device)},
                              isUnwanted);
    return runDiscProgram(joinPath(programFolder, u"udisksctl"_s),
                          {u"unmount"_s, u"--force"_s, u"--no-user-interaction"_s, u"-b"_s, u"/dev/"_s + device},
                          isUnwanted);
}

QString mountDisc(const QString &device, DiscMount mount, const QString &programFolder,
                  const std::function<bool()> &isUnwanted)
{
    if (!isDeviceName(device))
        return {};
    if (mount == DiscMount::Gvfs)
        return runDiscProgram(joinPath(programFolder, u"gio"_s), {u"mount"_s, discAddress(device)}, isUnwanted);
    return runDiscProgram(joinPath(programFolder, u"udisksctl"_s),
                          {u"mount"_s, u"--no-user-interaction"_s, u"-b"_s, u"/dev/"_s + device}, isUnwanted);
}

} // namespace nurv
