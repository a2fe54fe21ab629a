// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/SettingsStore.h"

#include "platform/PlatformLog.h"
#include "platform/SystemError.h"
#include "platform/TextNumbers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>

#include <cerrno>
#include <chrono>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::chrono::milliseconds kSyncDelay{300};
constexpr qint64 kLargestFile = 4 * 1024 * 1024;

// QSettings reads anything and keeps what looks like a key, so whether the file is
// an INI file at all is decided here. Returns what is wrong with it.
std::optional<QString> defectOf(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return std::nullopt;
    if (!info.isFile())
        return u"it is no regular file"_s;
    if (info.size() > kLargestFile)
        return u"it is too large"_s;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    const QByteArray contents = file.read(kLargestFile);
    if (contents.contains('\0') || !contents.isValidUtf8())
        return u"it is no text"_s;
    int number = 0;
    for (const QByteArray &rawLine : contents.split('\n')) {
        ++number;
        const QByteArray line = rawLine.trimmed();
        const bool isSection = line.startsWith('[') && line.endsWith(']');
        if (!line.isEmpty() && !line.startsWith(';') && !line.startsWith('#') && !isSection
            && line.indexOf('=') <= 0)
            return u"line %1 is neither a section nor a value"_s.arg(number);
    }
    return std::nullopt;
}

// An unquoted comma makes a list of a text that somebody typed into the file.
QString textOf(const QVariant &value)
{
    return value.typeId() == QMetaType::QStringList ? value.toStringList().join(u", "_s)
                                                    : value.toString();
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
    : QObject(parent), m_filePath(QDir::current().absoluteFilePath(filePath))
{
    const std::lock_guard lock(m_mutex);
    load();
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
            qCWarning(platformLog).noquote()
                << m_filePath + u": the value of "_s + key + u" is not of its kind; the default is used"_s;
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
            m_pending.insert(key);
            scheduleSync();
        }
        // By their texts: the file knows no types, and 5 read from it is "5".
        const QVariant after = m_values.value(key, m_defaults.value(key));
        if (before.isValid() == after.isValid() && textOf(before) == textOf(after)
            && before.toByteArray() == after.toByteArray())
            return;
    }
    Q_EMIT changed(key);
}

void SettingsStore::setPersistence(Persistence persistence)
{
    const std::lock_guard lock(m_mutex);
    if (m_persistence == Persistence::File && persistence == Persistence::MemoryOnly)
        writePending();
    m_persistence = persistence;
}

SettingsStore::Persistence SettingsStore::persistence() const
{
    const std::lock_guard lock(m_mutex);
    return m_persistence;
}

bool SettingsStore::sync()
{
    const std::lock_guard lock(m_mutex);
    return writePending();
}

void SettingsStore::reload()
{
    const std::lock_guard lock(m_mutex);
    m_pending.clear();
    m_reported.clear();
    load();
}

void SettingsStore::scheduleSync()
{
    if (m_syncScheduled || !QCoreApplication::instance())
        return;
    m_syncScheduled = true;
    // The timer must start on the store's own thread, whichever thread stored.
    QMetaObject::invokeMethod(
        this, [this] { QTimer::singleShot(kSyncDelay, this, [this] {
            const std::lock_guard lock(m_mutex);
            m_syncScheduled = false;
            writePending();
        }); },
        Qt::QueuedConnection);
}

void SettingsStore::load()
{
    m_values.clear();
    const std::optional<QString> defect = defectOf(m_filePath);
    if (defect) {
        qCWarning(platformLog).noquote()
            << m_filePath + u" cannot be used, "_s + *defect + u"; the defaults are used"_s;
        return;
    }
    if (!QFileInfo::exists(m_filePath))
        return;
    const QSettings file(m_filePath, QSettings::IniFormat);
    for (const QString &key : file.allKeys())
        m_values.insert(key, file.value(key));
}

bool SettingsStore::writePending()
{
    if (m_pending.isEmpty())
        return true;
    const std::optional<QString> failure = tryToWritePending();
    if (failure && !m_writeFailureReported)
        qCWarning(platformLog).noquote() << m_filePath + u" cannot be written: "_s + *failure;
    m_writeFailureReported = failure.has_value();
    if (!failure)
        m_pending.clear();
    return !failure;
}

std::optional<QString> SettingsStore::tryToWritePending()
{
    errno = 0;
    if (!QDir().mkpath(QFileInfo(m_filePath).path())
        || (defectOf(m_filePath) && !keepCorruptFile()))
        return systemErrorText(errno);
    // The file exists, empty and private, before any value is in it.
    (void)QFile(m_filePath).open(QIODevice::WriteOnly | QIODevice::NewOnly,
                                 QFile::ReadOwner | QFile::WriteOwner);
    QSettings file(m_filePath, QSettings::IniFormat);
    for (const QString &key : std::as_const(m_pending)) {
        if (const auto value = m_values.constFind(key); value != m_values.cend())
            file.setValue(key, *value);
        else
            file.remove(key);
    }
    file.sync();
    if (file.status() != QSettings::NoError)
        return u"the disk is full or the folder is read-only"_s;
    if (::chmod(QFile::encodeName(m_filePath).constData(), 0600) != 0)
        return systemErrorText(errno);
    return std::nullopt;
}

bool SettingsStore::keepCorruptFile()
{
    const QByteArray from = QFile::encodeName(m_filePath);
    for (int number = 1; number <= 1000; ++number) {
        const QByteArray suffix = number == 1 ? QByteArray() : "." + QByteArray::number(number);
        const QByteArray to = from + ".corrupt" + suffix;
        if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0) {
            qCWarning(platformLog).noquote()
                << m_filePath + u" is kept as "_s + QFile::decodeName(to);
            return true;
        }
        if (errno != EEXIST)
            return false;
    }
    return false;
}

} // namespace nurv
