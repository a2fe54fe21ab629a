// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/DiscImageCheck.h"

#include "app/PathNames.h"
#include "base/Log.h"
#include "base/NurvFailure.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <cdio/iso9660.h>
#include <cdio/logging.h>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qint64 kSectorBytes = ISO_BLOCKSIZE;
constexpr qint64 kChunkSectors = 512;
const QString kAudioFolder = u"AUDIO_TS"_s;
const QString kSimpleManager = u"AUDIO_PP.IFO"_s;
const QString kSomethingElse = u"the image holds something else than the folder"_s;

/// libcdio has another name for it from 2.2 on.
template<typename Entry>
qint64 sizeOf(const Entry &entry)
{
    if constexpr (requires { entry.total_size; })
        return static_cast<qint64>(entry.total_size);
    else
        return static_cast<qint64>(entry.size);
}

struct ImageEntry {
    bool isFolder = false;
    qint64 sector = 0;
    qint64 bytes = 0;
};
using ImageFolder = std::map<QString, ImageEntry>;

[[noreturn]] void fail(const QString &why)
{
    throw NurvFailure(why);
}

void logQuietly(cdio_log_level_t level, const char message[])
{
    qCDebug(utilLog) << "libcdio" << level << message;
}

/// What the directory of an image tells, and the sectors of its files.
class Image {
public:
    explicit Image(const QString &path)
    {
        cdio_log_set_handler(logQuietly);
        m_image.reset(iso9660_open(QFile::encodeName(path).constData()));
        iso9660_pvd_t volume = {};
        if (!m_image || !iso9660_ifs_read_pvd(m_image.get(), &volume))
            fail(u"the image is no image of a disc"_s);
        if (QFileInfo(path).size() < qint64{iso9660_get_pvd_space_size(&volume)} * kSectorBytes)
            fail(u"the image ends too early"_s);
    }

    /// What is in a folder; a link or the like is a fault.
    [[nodiscard]] ImageFolder entriesOf(const QString &folder) const
    {
        const std::unique_ptr<CdioISO9660FileList_t, ListCloser> entries(
            iso9660_ifs_readdir(m_image.get(), folder.toLatin1().constData()));
        if (!entries)
            fail(u"the image has no folder %1"_s.arg(folder));
        ImageFolder found;
        for (CdioListNode_t *node = _cdio_list_begin(entries.get()); node != nullptr; node = _cdio_list_node_next(node)) {
            const auto *const entry = static_cast<const iso9660_stat_t *>(_cdio_list_node_data(node));
            // "AUDIO_TS.IFO;1"
            const QString name = QString::fromLatin1(entry->filename).section(u';', 0, 0);
            if (name == u"." || name == u"..")
                continue;
            const bool isFolder = entry->type == iso9660_stat_s::_STAT_DIR;
            if (!isFolder && entry->type != iso9660_stat_s::_STAT_FILE)
                fail(kSomethingElse);
            found.emplace(name, ImageEntry{.isFolder = isFolder, .sector = entry->lsn, .bytes = sizeOf(*entry)});
        }
        return found;
    }

    /// The first bytes from a sector on; fewer at the image's end or where it cannot be read.
    [[nodiscard]] QByteArray read(qint64 sector, qint64 bytes) const
    {
        const qint64 sectors = (bytes + kSectorBytes - 1) / kSectorBytes;
        QByteArray read(sectors * kSectorBytes, Qt::Uninitialized);
        const long count = iso9660_iso_seek_read(m_image.get(), read.data(), static_cast<lsn_t>(sector),
                                                 static_cast<long>(sectors));
        read.truncate(std::clamp<qint64>(count, 0, bytes));
        return read;
    }

private:
    struct ImageCloser {
        void operator()(iso9660_t *image) const { iso9660_close(image); }
    };
    struct ListCloser {
        void operator()(CdioISO9660FileList_t *list) const { iso9660_filelist_free(list); }
    };

    std::unique_ptr<iso9660_t, ImageCloser> m_image;
};

/// AUDIO_PP.IFO: eight copies of a table with a record for each track, in which three words are sectors of the image.
class SimpleManager {
public:
    /// `firstSound`: where the first AOB begins in the image.
    SimpleManager(QByteArray ofFolder, qint64 firstSound) : m_bytes(std::move(ofFolder))
    {
        constexpr qsizetype kTableBytes = 16384;
        constexpr qsizetype kHeadBytes = 16;
        constexpr qsizetype kTrackBytes = 52;
        constexpr qsizetype kFirstSectorWord = 40;
        constexpr qsizetype kAfterSectorWords = 52;
        constexpr qsizetype kWordBytes = 4;
        if (m_bytes.size() % kTableBytes != 0 || !m_bytes.startsWith("DVDAUDIOSAPP"))
            fail(kSimpleManager + u" is no table of tracks"_s);
        const qsizetype tracks = qFromBigEndian<quint16>(m_bytes.constData() + 12);
        if (tracks == 0 || kHeadBytes + tracks * kTrackBytes > kTableBytes)
            fail(kSimpleManager + u" is no table of tracks"_s);
        const auto base = qFromBigEndian<quint32>(m_bytes.constData() + kHeadBytes + kFirstSectorWord);
        const quint32 shift = static_cast<quint32>(firstSound) - base;
        for (qsizetype table = 0; table < m_bytes.size(); table += kTableBytes) {
            for (qsizetype track = 0; track < tracks; ++track) {
                for (qsizetype word = kFirstSectorWord; word < kAfterSectorWords; word += kWordBytes) {
                    char *const at = m_bytes.data() + table + kHeadBytes + track * kTrackBytes + word;
                    qToBigEndian<quint32>(qFromBigEndian<quint32>(at) + shift, at);
                }
            }
        }
    }

    /// As it has to be in the image.
    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

/// A file of the folder that is read piece by piece.
class FolderFile {
public:
    explicit FolderFile(const QString &path) : m_file(path)
    {
        if (!m_file.open(QIODevice::ReadOnly))
            fail(u"%1 cannot be read: %2"_s.arg(lastPathComponent(path), m_file.errorString()));
    }
    [[nodiscard]] QByteArray read(qint64 bytes)
    {
        QByteArray read = m_file.read(bytes);
        if (read.size() != bytes)
            fail(u"%1 cannot be read to its end"_s.arg(lastPathComponent(m_file.fileName())));
        return read;
    }

private:
    QFile m_file;
};

class Comparison {
public:
    Comparison(const QString &image, const QString &folder, const std::function<void(double)> &showProgress,
               const std::function<bool()> &isUnwanted)
        : m_image(image), m_folder(folder), m_showProgress(showProgress), m_isUnwanted(isUnwanted)
    {
    }

    void run()
    {
        // VIDEO_TS is empty on such a disc. What the folder has beside it nobody takes away.
        for (const auto &[name, entry] : m_image.entriesOf(u"/"_s)) {
            if (!entry.isFolder || (name != kAudioFolder && !m_image.entriesOf(name).empty()))
                fail(kSomethingElse);
        }
        const ImageFolder files = matchedFiles();
        for (const auto &[name, file] : files) {
            if (file.isFolder)
                fail(kSomethingElse);
            m_total += file.bytes;
        }
        const auto sound = files.find(u"ATS_01_1.AOB"_s);
        if (sound == files.end())
            fail(u"the image holds no sound"_s);
        for (const auto &[name, file] : files)
            compare(name, file, sound->second.sector);
    }

private:
    /// What both have in AUDIO_TS; something that only one has is a fault.
    [[nodiscard]] ImageFolder matchedFiles() const
    {
        ImageFolder entries = m_image.entriesOf(kAudioFolder);
        QStringList names;
        for (const auto &[name, entry] : entries)
            names.append(name);
        // Both are sorted.
        if (names
            != QDir(joinPath(m_folder, kAudioFolder))
                   .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name))
            fail(kSomethingElse);
        return entries;
    }

    void compare(const QString &name, const ImageEntry &file, qint64 firstSound)
    {
        const QString path = joinPath(joinPath(m_folder, kAudioFolder), name);
        if (QFileInfo(path).size() != file.bytes)
            fail(u"%1 has another size in the image"_s.arg(name));
        FolderFile source(path);
        if (name == kSimpleManager) {
            const SimpleManager expected(source.read(file.bytes), firstSound);
            compareBytes(name, expected.bytes(), file.sector);
            return;
        }
        for (qint64 done = 0; done < file.bytes;) {
            const qint64 count = std::min(kChunkSectors * kSectorBytes, file.bytes - done);
            compareBytes(name, source.read(count), file.sector + done / kSectorBytes);
            done += count;
        }
    }

    void compareBytes(const QString &name, const QByteArray &expected, qint64 sector)
    {
        if (m_isUnwanted())
            fail(u"the comparison was given up"_s);
        if (m_image.read(sector, expected.size()) != expected)
            fail(u"%1 is another one in the image"_s.arg(name));
        m_done += expected.size();
        m_showProgress(static_cast<double>(m_done) * 100.0 / static_cast<double>(m_total));
    }

    Image m_image;
    QString m_folder;
    const std::function<void(double)> &m_showProgress;
    const std::function<bool()> &m_isUnwanted;
    qint64 m_total = 0;
    qint64 m_done = 0;
};

} // namespace

DiscImageCheck::DiscImageCheck(const QString &image, const QString &folder) : m_image(image), m_folder(folder) {}

std::optional<QString> DiscImageCheck::fault(const std::function<void(double)> &showProgress,
                                             const std::function<bool()> &isUnwanted) const
{
    try {
        Comparison(m_image, m_folder, showProgress, isUnwanted).run();
    } catch (const NurvFailure &failure) {
        return failure.reason();
    }
    return std::nullopt;
}

} // namespace nurv
