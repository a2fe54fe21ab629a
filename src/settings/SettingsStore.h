// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settings/SettingsFile.h"

#include <QByteArray>
#include <QObject>
#include <QSet>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <mutex>
#include <optional>

class QFileSystemWatcher;

namespace nurv {

/// The user's settings: one INI file under registered defaults.
///
///     value stored and of the default's kind  ->  that value
///     otherwise                               ->  the default
///
/// The file is read once. Stored values reach it a moment after `setValue` (one
/// write for a dragged slider, not hundreds), on `sync`, and at the latest when
/// the application object goes; values that another process has stored meanwhile
/// under other keys stay. The file is replaced as a whole, never half-written,
/// and readable by its owner only.
///
/// Of a file with lines that make no sense the others count; one that is no text
/// gives the defaults. Either way the log has one line, and when the next value is
/// stored the file is kept as `<file>.corrupt` and a new one holds every known value
/// and the mark "valuesWereLost", so that `reliableInteger` stays careful. A file
/// that cannot even be opened gives the defaults and is left alone.
///
/// Reading and storing are safe from any thread; `changed` is emitted on the
/// thread that stored the value.
class SettingsStore : public QObject {
    Q_OBJECT

public:
    enum class Persistence {
        File,       ///< stored values go to the file
        MemoryOnly, ///< stored values last as long as the process
    };

    /// A store on a file of its own. It need not exist.
    explicit SettingsStore(const QString &filePath, QObject *parent = nullptr);
    /// Writes what is not written yet.
    ~SettingsStore() override;

    /// The store of the application, on `defaultFilePath()`.
    static SettingsStore &instance();
    /// `nurv/workbench.ini` in the XDG config folder, or what `NURV_SETTINGS` names.
    [[nodiscard]] static QString defaultFilePath();

    [[nodiscard]] QString filePath() const { return m_file.path(); }

    /// Adds to the defaults; a key given again takes the new one.
    void registerDefaults(const QVariantMap &defaults);

    /// Integers that stand as text read by `leadingInteger`; a text without any
    /// number is not of this kind. A key without value and default gives 0.
    [[nodiscard]] int integer(const QString &key) const;
    /// The same, for choices that must not be guessed: nothing when a value was or
    /// may have been stored that cannot be read.
    [[nodiscard]] std::optional<int> reliableInteger(const QString &key) const;
    /// "true", "yes", "on", numbers other than 0 and their opposites.
    [[nodiscard]] bool boolean(const QString &key) const;
    [[nodiscard]] QString string(const QString &key) const;
    /// State that only its writer understands (window geometry); never in a default.
    [[nodiscard]] QByteArray bytes(const QString &key) const;

    /// Stores an int, bool, QString or QByteArray.
    void setValue(const QString &key, const QVariant &value);
    /// Forgets the stored value, so that the default shows again.
    void remove(const QString &key);

    /// Choosing `MemoryOnly` writes what was stored before; choosing `File` again
    /// leaves what was stored in memory out of the file.
    void setPersistence(Persistence persistence);

    /// Writes what is not written yet. Returns false, with a line in the log, when
    /// that is not possible; it is tried again with the next value stored.
    bool sync();
    /// From now on values that other processes store in the file count here at once, too, except under keys
    /// that wait to be written. On the store's thread, which needs an event loop.
    void followFile();
    /// Forgets everything not written and reads the file again; emits nothing.
    void reload();

Q_SIGNALS:
    /// The value under `key` is another one now.
    void changed(const QString &key);

private:
    void take(const SettingsFile::Contents &contents);
    void takeFromOthers();
    void watchFolder();
    void store(const QString &key, const std::optional<QVariant> &value);
    [[nodiscard]] QVariant valueOrDefault(const QString &key,
                                          std::optional<QVariant> (*convert)(const QVariant &)) const;
    void scheduleSync();
    bool writePending();
    [[nodiscard]] std::optional<QString> tryToWrite(const QSet<QString> &pending);

    const SettingsFile m_file;
    /// One thread at a time reads or writes the file. Taken before `m_mutex`, which
    /// is never held while the disk works: nobody waits for it to read a setting.
    std::mutex m_fileMutex;
    mutable std::mutex m_mutex;
    QVariantMap m_defaults;
    QVariantMap m_values;
    QVariantMap m_stored; ///< what belongs into the file: less what stays in memory
    QSet<QString> m_pending; ///< keys whose state in the file is behind
    mutable QSet<QString> m_reported; ///< ill-typed keys that the log has
    Persistence m_persistence = Persistence::File;
    bool m_valuesMayBeLost = false;
    bool m_fileWasRead = false;
    bool m_writeFailureReported = false; ///< under m_fileMutex
    bool m_syncScheduled = false;
    QFileSystemWatcher *m_watcher = nullptr; ///< of the folder: the file is replaced as a whole
};

} // namespace nurv
