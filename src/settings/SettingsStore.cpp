// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/SettingsStore.h"

#include "base/Log.h"
#include "text/TextNumbers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QStandardPaths>
#include <QTimer>

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::chrono::milliseconds kSyncDelay{300};
/// Stored when a file was set aside: a key without a value may have had one.
const QString kLossMark = u"valuesWereLost"_s;

// An unquoted comma makes a list of a text that somebody typed into the file.
QString textOf(const QVariant &value)
{
    return value.typeId() == QMetaType::QStringList ? value.toStringList().join(u", "_s)
                                                    : value.toString();
}

/// By their texts: the file knows no types, and 5 read from it is "5".
bool isSame(const QVariant &one, const QVariant &other)
{
    return one.isValid() == other.isValid() && textOf(one) == textOf(other) && one.toByteArray() == other.toByteArray();
}

bool isText(const QVariant &value)
{
    return value.typeId() == QMetaType::QString || value.typeId() == QMetaType::QStringList;
}

bool startsWithNumber(QStringView text)
{
    text = text.trimmed();
    if (text.startsWith(u'-') || text.startsWith(u'+'))
        text = text.sliced(1);
    return !text.isEmpty() && text.front() >= u'0' && text.front() <= u'9';
}

std::optional<QVariant> asInteger(const QVariant &value)
{
    if (value.typeId() == QMetaType::Int)
        return value;
    if (value.typeId() == QMetaType::Bool)
        return QVariant(value.toBool() ? 1 : 0);
    const QString text = textOf(value);
    if (!isText(value))
        return std::nullopt;
    if (text == u"true" || text == u"false")
        return QVariant(text == u"true" ? 1 : 0);
    return startsWithNumber(text) ? std::optional(QVariant(leadingInteger(text))) : std::nullopt;
}

std::optional<QVariant> asBoolean(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return value;
    if (value.typeId() == QMetaType::Int)
        return QVariant(value.toInt() != 0);
    if (!isText(value))
        return std::nullopt;
    const QString text = textOf(value).trimmed().toLower();
    if (text == u"true" || text == u"yes" || text == u"on")
        return QVariant(true);
    if (text == u"false" || text == u"no" || text == u"off")
        return QVariant(false);
    return startsWithNumber(text) ? std::optional(QVariant(leadingInteger(text) != 0))
                                  : std::nullopt;
}

std::optional<QVariant> asString(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::QStringList:
    case QMetaType::Int:
    case QMetaType::Bool:
        return QVariant(textOf(value));
    default:
        return std::nullopt;
    }
}

std::optional<QVariant> asBytes(const QVariant &value)
{
    if (value.typeId() == QMetaType::QByteArray)
        return value;
    // An array of plain characters is written, and so read again, without a mark.
    return isText(value) ? std::optional(QVariant(textOf(value).toLatin1())) : std::nullopt;
}

} // namespace

SettingsStore::SettingsStore(const QString &filePath, QObject *parent)
    : QObject(parent), m_file(QDir::current().absoluteFilePath(filePath))
{
    take(m_file.read());
}

SettingsStore::~SettingsStore()
{
    sync();
}

SettingsStore &SettingsStore::instance()
{
    // Never destroyed: threads may read settings until the process ends. What is
    // pending is written when the application object goes.
    static SettingsStore *const store = [] {
        auto *created = new SettingsStore(defaultFilePath());
        if (QCoreApplication::instance())
            created->moveToThread(QCoreApplication::instance()->thread());
        qAddPostRoutine([] { instance().sync(); });
        return created;
    }();
    return *store;
}

QString SettingsStore::defaultFilePath()
{
    const QString named = qEnvironmentVariable("NURV_SETTINGS");
    if (!named.isEmpty())
        return QDir::current().absoluteFilePath(named);
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + u"/nurv/workbench.ini"_s;
}

void SettingsStore::registerDefaults(const QVariantMap &defaults)
{
    const std::lock_guard lock(m_mutex);
    m_defaults.insert(defaults);
}

int SettingsStore::integer(const QString &key) const
{
    return valueOrDefault(key, asInteger).toInt();
}

std::optional<int> SettingsStore::reliableInteger(const QString &key) const
{
    {
        const std::lock_guard lock(m_mutex);
        const auto stored = m_values.constFind(key);
        if (stored == m_values.cend() ? m_valuesMayBeLost : !asInteger(*stored))
            return std::nullopt;
    }
    return integer(key);
}

bool SettingsStore::boolean(const QString &key) const
{
    return valueOrDefault(key, asBoolean).toBool();
}

QString SettingsStore::string(const QString &key) const
{
    return valueOrDefault(key, asString).toString();
}

QByteArray SettingsStore::bytes(const QString &key) const
{
    return valueOrDefault(key, asBytes).toByteArray();
}

QVariant SettingsStore::valueOrDefault(const QString &key,
                                       std::optional<QVariant> (*convert)(const QVariant &)) const
{
    const std::lock_guard lock(m_mutex);
    if (const auto stored = m_values.constFind(key); stored != m_values.cend()) {
        if (const std::optional<QVariant> value = convert(*stored))
            return *value;
        if (!m_reported.contains(key)) {
            m_reported.insert(key);
            qCWarning(settingsLog).noquote()
                << filePath() + u": the value of "_s + key + u" is not of its kind; the default is used"_s;
        }
    }
    return convert(m_defaults.value(key)).value_or(QVariant());
}

void SettingsStore::setValue(const QString &key, const QVariant &value)
{
    store(key, value);
}

void SettingsStore::remove(const QString &key)
{
    store(key, std::nullopt);
}

void SettingsStore::store(const QString &key, const std::optional<QVariant> &value)
{
    {
        const std::lock_guard lock(m_mutex);
        const QVariant before = m_values.value(key, m_defaults.value(key));
        if (value)
            m_values.insert(key, *value);
        else
            m_values.remove(key);
        if (m_persistence == Persistence::File) {
            if (value)
                m_stored.insert(key, *value);
            else
                m_stored.remove(key);
            m_pending.insert(key);
            scheduleSync();
        }
        if (isSame(before, m_values.value(key, m_defaults.value(key))))
            return;
    }
    Q_EMIT changed(key);
}

void SettingsStore::setPersistence(Persistence persistence)
{
    {
        const std::lock_guard lock(m_mutex);
        m_persistence = persistence;
    }
    writePending();
}

bool SettingsStore::sync()
{
    return writePending();
}

void SettingsStore::reload()
{
    const std::lock_guard fileLock(m_fileMutex);
    {
        const std::lock_guard lock(m_mutex);
        m_pending.clear();
    }
    take(m_file.read());
}

void SettingsStore::followFile()
{
    if (m_watcher)
        return;
    m_watcher = new QFileSystemWatcher(this);
    connect(m_watcher, &QFileSystemWatcher::directoryChanged, this, &SettingsStore::takeFromOthers);
    watchFolder();
}

/// The first value that is stored may have made the folder.
void SettingsStore::watchFolder()
{
    const QString folder = QFileInfo(filePath()).path();
    if (m_watcher && m_watcher->directories().isEmpty() && QFileInfo::exists(folder))
        m_watcher->addPath(folder);
}

void SettingsStore::takeFromOthers()
{
    QStringList changedKeys;
    {
        const std::lock_guard fileLock(m_fileMutex);
        const SettingsFile::Contents present = m_file.read();
        if (present.state != SettingsFile::State::Healthy)
            return;
        const std::lock_guard lock(m_mutex);
        QSet<QString> keys(present.values.keyBegin(), present.values.keyEnd());
        keys.unite(QSet<QString>(m_stored.keyBegin(), m_stored.keyEnd()));
        for (const QString &key : std::as_const(keys)) {
            const QVariant value = present.values.value(key);
            // What is in memory only stays, and what is newer here is about to be written.
            if (m_pending.contains(key) || isSame(m_stored.value(key), value) || !isSame(m_stored.value(key), m_values.value(key)))
                continue;
            const QVariant before = m_values.value(key, m_defaults.value(key));
            if (value.isValid()) {
                m_stored.insert(key, value);
                m_values.insert(key, value);
            } else {
                m_stored.remove(key);
                m_values.remove(key);
            }
            if (!isSame(before, m_values.value(key, m_defaults.value(key))))
                changedKeys.append(key);
        }
    }
    for (const QString &key : std::as_const(changedKeys))
        Q_EMIT changed(key);
}

void SettingsStore::scheduleSync()
{
    if (m_syncScheduled || !QCoreApplication::instance())
        return;
    m_syncScheduled = true;
    // The timer must start on the store's own thread, whichever thread stored.
    QMetaObject::invokeMethod(
        this, [this] { QTimer::singleShot(kSyncDelay, this, [this] {
            {
                const std::lock_guard lock(m_mutex);
                m_syncScheduled = false;
            }
            writePending();
            watchFolder();
        }); },
        Qt::QueuedConnection);
}

void SettingsStore::take(const SettingsFile::Contents &contents)
{
    using State = SettingsFile::State;
    if (contents.state == State::Damaged)
        qCWarning(settingsLog).noquote()
            << filePath() + u": "_s + contents.defect + u"; the rest of the file is used"_s;
    else if (contents.state == State::Unusable || contents.state == State::Inaccessible)
        qCWarning(settingsLog).noquote()
            << filePath() + u" cannot be used, "_s + contents.defect + u"; the defaults are used"_s;
    const std::lock_guard lock(m_mutex);
    m_values = contents.values;
    m_stored = contents.values;
    m_reported.clear();
    m_fileWasRead = contents.state != State::Inaccessible;
    m_valuesMayBeLost = (contents.state != State::Healthy && contents.state != State::Missing)
        || contents.values.contains(kLossMark);
}

bool SettingsStore::writePending()
{
    const std::lock_guard fileLock(m_fileMutex);
    QSet<QString> pending;
    {
        const std::lock_guard lock(m_mutex);
        pending = std::exchange(m_pending, {});
    }
    if (pending.isEmpty())
        return true;
    const std::optional<QString> failure = tryToWrite(pending);
    if (failure) {
        const std::lock_guard lock(m_mutex);
        m_pending += pending;
    }
    if (failure && !m_writeFailureReported)
        qCWarning(settingsLog).noquote() << filePath() + u" cannot be written: "_s + *failure;
    m_writeFailureReported = failure.has_value();
    return !failure;
}

std::optional<QString> SettingsStore::tryToWrite(const QSet<QString> &pending)
{
    using State = SettingsFile::State;
    const SettingsFile::Contents present = m_file.read();
    if (present.state == State::Inaccessible)
        return present.defect;
    const bool isHealthy = present.state == State::Healthy || present.state == State::Missing;
    SettingsFile::Changes changes;
    QVariantMap whole;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_fileWasRead)
            m_valuesMayBeLost = present.values.contains(kLossMark);
        if (!isHealthy) {
            m_valuesMayBeLost = true;
            m_stored.insert(kLossMark, true);
        }
        whole = m_stored;
        // What another process has stored meanwhile is newer than what was read.
        for (auto value = present.values.cbegin(); value != present.values.cend(); ++value) {
            if (!pending.contains(value.key()))
                whole.insert(value.key(), value.value());
            if (!m_fileWasRead && !m_values.contains(value.key()) && !pending.contains(value.key())) {
                m_values.insert(value.key(), value.value());
                m_stored.insert(value.key(), value.value());
            }
        }
        m_fileWasRead = true;
        for (const QString &key : pending) {
            const auto value = m_stored.constFind(key);
            changes.insert(key, value == m_stored.cend() ? std::nullopt : std::optional(*value));
        }
    }
    return isHealthy ? m_file.change(changes) : m_file.replaceCorrupt(whole);
}

} // namespace nurv
