// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "originals/OutputClaim.h"

#include "app/PathNames.h"
#include "originals/OutputBatch.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

#include <linux/magic.h>
#include <sys/vfs.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// The outputs that are being made now, with their sources, and the files that are being
/// converted, with the number of jobs that do. Never destroyed: a worker may outlast the
/// application.
struct ActiveFiles {
    std::mutex lock;
    QHash<QString, QString> sourceOfPlace;
    QHash<QString, int> readersOfPlace;

    static ActiveFiles &instance()
    {
        static ActiveFiles *const files = new ActiveFiles;
        return *files;
    }
};

// Types of statfs(2) that linux/magic.h does not name.
constexpr unsigned long kNtfs = 0x5346544E;
constexpr unsigned long kNtfs3 = 0x7366746E;
constexpr unsigned long kHfsPlus = 0x482B;
constexpr unsigned long kVirtualBoxShare = 0x786F4256;

/// Whether the folder lies on a disk that takes "Song" and "song" for one name: those of
/// cameras and sticks, of Windows and the Mac, shares, and maybe any in user space.
bool ignoresCase(const QString &folder)
{
    static constexpr std::array<unsigned long, 11> kSystems{
        MSDOS_SUPER_MAGIC, EXFAT_SUPER_MAGIC, kNtfs,      kNtfs3,          kHfsPlus, SMB_SUPER_MAGIC, CIFS_SUPER_MAGIC,
        SMB2_SUPER_MAGIC,  FUSE_SUPER_MAGIC,  V9FS_MAGIC, kVirtualBoxShare};
    struct statfs facts = {};
    return ::statfs(QFile::encodeName(folder).constData(), &facts) == 0
           && std::find(kSystems.begin(), kSystems.end(), static_cast<unsigned long>(facts.f_type)) != kSystems.end();
}

QString placeOf(const QString &file)
{
    const QString real = QFileInfo(file).canonicalFilePath();
    if (!real.isEmpty())
        return ignoresCase(folderOf(real)) ? foldedName(real) : real;
    const QString folder = QFileInfo(folderOf(file)).canonicalFilePath();
    // A folder that is not there has no other name either.
    if (folder.isEmpty())
        return file;
    const QString place = joinPath(folder, lastPathComponent(file));
    return ignoresCase(folder) ? foldedName(place) : place;
}

} // namespace

QString foldedName(const QString &path)
{
    return path.normalized(QString::NormalizationForm_C).toCaseFolded();
}

std::optional<QString> OutputClaim::take(const QString &output, const QString &source, OutputBatch *batch)
{
    const QString place = placeOf(output);
    const QString sourcePlace = placeOf(source);
    const QString name = lastPathComponent(output);
    ActiveFiles &active = ActiveFiles::instance();
    const std::scoped_lock lock(active.lock);
    if (const auto other = active.sourceOfPlace.constFind(place); other != active.sourceOfPlace.cend())
        return u"its output %1 is made from %2"_s.arg(name, *other);
    if (active.readersOfPlace.contains(place))
        return u"its output %1 is being converted"_s.arg(name);
    if (const auto origin = active.sourceOfPlace.constFind(sourcePlace); origin != active.sourceOfPlace.cend())
        return u"it is still being made from %1"_s.arg(*origin);
    if (batch != nullptr) {
        if (const auto earlier = batch->sourceOfOutput.constFind(place); earlier != batch->sourceOfOutput.cend())
            return u"its output %1 is made from %2"_s.arg(name, *earlier);
        batch->sourceOfOutput.insert(place, source);
    }
    active.sourceOfPlace.insert(place, source);
    ++active.readersOfPlace[sourcePlace];
    m_place = place;
    m_sourcePlace = sourcePlace;
    m_isHeld = true;
    return std::nullopt;
}

std::optional<QString> OutputClaim::takeSource(const QString &source)
{
    const QString sourcePlace = placeOf(source);
    ActiveFiles &active = ActiveFiles::instance();
    const std::scoped_lock lock(active.lock);
    if (const auto origin = active.sourceOfPlace.constFind(sourcePlace); origin != active.sourceOfPlace.cend())
        return u"it is still being made from %1"_s.arg(*origin);
    ++active.readersOfPlace[sourcePlace];
    m_sourcePlace = sourcePlace;
    m_isHeld = true;
    return std::nullopt;
}

bool OutputClaim::isSourceReadByOthers() const
{
    ActiveFiles &active = ActiveFiles::instance();
    const std::scoped_lock lock(active.lock);
    return active.readersOfPlace.value(m_sourcePlace) > (m_isHeld ? 1 : 0);
}

void OutputClaim::release()
{
    if (!std::exchange(m_isHeld, false))
        return;
    ActiveFiles &active = ActiveFiles::instance();
    const std::scoped_lock lock(active.lock);
    if (!m_place.isEmpty())
        active.sourceOfPlace.remove(m_place);
    if (--active.readersOfPlace[m_sourcePlace] == 0)
        active.readersOfPlace.remove(m_sourcePlace);
    m_place.clear();
}

} // namespace nurv
