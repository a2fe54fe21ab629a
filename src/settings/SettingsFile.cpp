// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/SettingsFile.h"

#include "base/Log.h"
#include "base/SystemError.h"
#include "files/FileDescriptor.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qint64 kLargestFile = 4 * 1024 * 1024;

SettingsFile::Contents withoutValues(SettingsFile::State state, const QString &defect)
{
    return {.state = state, .values = {}, .defect = defect};
}

SettingsFile::Contents inaccessible(int error)
{
    return withoutValues(SettingsFile::State::Inaccessible, systemErrorText(error));
}

// Returns the defect of a file whose bytes cannot be had, with its state.
std::optional<SettingsFile::Contents> readBytes(const QString &path, QByteArray &bytes)
{
    // Without O_NONBLOCK a named pipe would hold us for ever.
    const FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen())
        return errno == ENOENT || errno == ENOTDIR ? SettingsFile::Contents() : inaccessible(errno);
    struct stat facts = {};
    if (::fstat(file.get(), &facts) != 0)
        return inaccessible(errno);
    if (!S_ISREG(facts.st_mode))
        return withoutValues(SettingsFile::State::Inaccessible, u"it is no regular file"_s);
    if (facts.st_size > kLargestFile)
        return withoutValues(SettingsFile::State::Unusable, u"it is too large"_s);
    bytes.resize(facts.st_size);
    qsizetype count = 0;
    while (count < bytes.size()) {
        const ssize_t got = ::read(file.get(), bytes.data() + count, static_cast<size_t>(bytes.size() - count));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return inaccessible(errno);
        if (got == 0)
            break;
        count += got;
    }
    bytes.truncate(count);
    return std::nullopt;
}

// Whether the line ends where the reader of the values lets it end: an open
// quotation mark or a backslash at the end takes the next lines in.
bool endsWithinItself(const QByteArray &line)
{
    bool isQuoted = false;
    for (qsizetype at = 0; at < line.size(); ++at) {
        if (line.at(at) == '\\') {
            if (++at == line.size())
                return false;
        } else if (line.at(at) == '"') {
            isQuoted = !isQuoted;
        }
    }
    return !isQuoted;
}

int digitOf(char character)
{
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    return character >= '0' && character <= '9' ? character - '0' : 16;
}

// The character that the escape sequence behind a backslash stands for, as QSettings reads
// it: of any number of digits the last ones count. `at`, its place, is put behind it. 0 for
// what cannot be part of a type's name.
char escapedCharacter(const QByteArray &line, qsizetype &at)
{
    int base = 8;
    if (line.at(at) == 'x') {
        base = 16;
        ++at;
    } else if (digitOf(line.at(at)) >= base) {
        ++at;
        return '\0';
    }
    std::uint16_t number = 0;
    for (; at < line.size() && digitOf(line.at(at)) < base; ++at)
        number = static_cast<std::uint16_t>(number * base + digitOf(line.at(at)));
    return number < 0x80 ? static_cast<char>(number) : '\0';
}

// Whether a value is one of Qt's own streams, which may hold any type, nested as deep and as
// large as it likes: reading it ends the program or takes all memory. We write none.
// Escapes, quotation marks and blanks hide nothing.
bool holdsStream(const QByteArray &line)
{
    QByteArray plain;
    for (qsizetype at = 0; at < line.size();) {
        const char character = line.at(at++);
        if (character == '\\' && at < line.size())
            plain += escapedCharacter(line, at);
        else if (character != '"' && character != ' ' && character != '\t')
            plain += character;
    }
    static constexpr std::array kStreams{"=@Variant(", ",@Variant(", "=@DateTime(", ",@DateTime("};
    return std::any_of(kStreams.begin(), kStreams.end(), [&](const char *stream) { return plain.contains(stream); });
}

// Whether a key, or a section, has a name in each of its groups: QSettings reads one without, and writes it as a line that it cannot
// read. Groups end with a backslash in the file.
bool isNamed(QByteArray key)
{
    key = key.trimmed().replace('\\', '/').replace("%2F", "/").replace("%2f", "/");
    return !key.isEmpty() && !key.startsWith('/') && !key.endsWith('/') && !key.contains("//");
}

bool isSound(const QByteArray &line)
{
    if (line.isEmpty() || line.startsWith(';'))
        return true;
    const bool hasControls = std::any_of(line.begin(), line.end(), [](char character) {
        return static_cast<unsigned char>(character) < 0x20 && character != '\t';
    });
    if (hasControls || !line.isValidUtf8() || !endsWithinItself(line) || holdsStream(line))
        return false;
    const bool isSection = line.startsWith('[') && line.endsWith(']') && isNamed(line.mid(1, line.size() - 2));
    // QSettings takes a line that begins with "#" for a value like any other.
    const bool isComment = line.startsWith('#') && !line.contains('=');
    return isSection || isComment || (!line.startsWith('[') && isNamed(line.left(line.indexOf('='))) && line.contains('='));
}

struct SoundLines {
    QByteArray text;
    int refused = 0;
    int firstRefused = 0;
};

// QSettings reads anything and keeps what looks like a key, so what makes sense is
// decided here.
SoundLines soundLinesOf(QByteArray bytes)
{
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes.remove(0, 3);
    SoundLines sound;
    int number = 0;
    bool hasSection = false;
    bool isInUnknownSection = false;
    for (const QByteArray &rawLine : bytes.split('\n')) {
        ++number;
        const QByteArray line = rawLine.trimmed();
        if (isSound(line)) {
            const bool isSection = line.startsWith('[');
            hasSection = hasSection || isSection;
            isInUnknownSection = isInUnknownSection && !isSection;
            if (!isInUnknownSection)
                sound.text += line + '\n';
            continue;
        }
        // What stands before every section belongs to the general one, as do values
        // whose general section has lost its first line.
        if (line.startsWith('['))
            isInUnknownSection = hasSection;
        if (sound.refused++ == 0)
            sound.firstRefused = number;
    }
    return sound;
}

QVariantMap allValues(const QSettings &file)
{
    QVariantMap values;
    for (const QString &key : file.allKeys())
        values.insert(key, file.value(key));
    return values;
}

SettingsFile::Contents damagedContents(const SoundLines &sound)
{
    SettingsFile::Contents contents{.state = SettingsFile::State::Damaged,
                                    .values = {},
                                    .defect = u"line %1 makes no sense"_s.arg(sound.firstRefused)};
    if (sound.refused > 1)
        contents.defect += u", and %1 more"_s.arg(sound.refused - 1);
    QTemporaryFile copy;
    if (!copy.open() || copy.write(sound.text) != sound.text.size() || !copy.flush())
        contents.defect += u"; the others could not be read: "_s + copy.errorString();
    else
        contents.values = allValues(QSettings(copy.fileName(), QSettings::IniFormat));
    return contents;
}

std::optional<QString> applyTo(const QString &path, const SettingsFile::Changes &changes)
{
    QSettings file(path, QSettings::IniFormat);
    // A file that could not be read just now would be taken for an empty one.
    if (file.status() == QSettings::AccessError)
        return u"it cannot be read"_s;
    for (auto change = changes.cbegin(); change != changes.cend(); ++change) {
        if (change.value())
            file.setValue(change.key(), **change);
        else
            file.remove(change.key());
    }
    file.sync();
    if (file.status() != QSettings::NoError)
        return u"the disk is full or the folder is read-only"_s;
    if (::chmod(QFile::encodeName(path).constData(), 0600) != 0)
        return systemErrorText(errno);
    return std::nullopt;
}

// Gives the file a second name. Returns the errno of a failure.
int keepCorruptFile(const QString &path)
{
    const QByteArray from = QFile::encodeName(path);
    for (int number = 1; number <= 1000; ++number) {
        const QByteArray suffix = number == 1 ? QByteArray() : "." + QByteArray::number(number);
        const QByteArray to = from + ".corrupt" + suffix;
        int error = ::link(from.constData(), to.constData()) == 0 ? 0 : errno;
        // File systems without links.
        if (error == EPERM || error == EOPNOTSUPP || error == ENOSYS)
            error =
                ::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0 ? 0 : errno;
        if (error == 0)
            qCWarning(settingsLog).noquote() << path + u" is kept as "_s + QFile::decodeName(to);
        if (error != EEXIST)
            return error;
    }
    return EEXIST;
}

} // namespace

SettingsFile::Contents SettingsFile::read() const
{
    QByteArray bytes;
    if (const std::optional<Contents> defect = readBytes(m_path, bytes))
        return *defect;
    if (bytes.contains('\0'))
        return withoutValues(State::Unusable, u"it is no text"_s);
    const SoundLines sound = soundLinesOf(bytes);
    if (sound.refused > 0)
        return damagedContents(sound);
    const QSettings file(m_path, QSettings::IniFormat);
    if (file.status() == QSettings::AccessError)
        return withoutValues(State::Inaccessible, u"it cannot be read"_s);
    return {.state = State::Healthy, .values = allValues(file), .defect = {}};
}

std::optional<QString> SettingsFile::change(const Changes &changes) const
{
    errno = 0;
    if (!QDir().mkpath(QFileInfo(m_path).path()))
        return systemErrorText(errno);
    // The file exists, empty and private, before any value is in it.
    (void)QFile(m_path).open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner);
    return applyTo(m_path, changes);
}

std::optional<QString> SettingsFile::replaceCorrupt(const QVariantMap &values) const
{
    // A link stays one: what it names is replaced.
    const QString path = QFileInfo(m_path).canonicalFilePath();
    if (path.isEmpty())
        return systemErrorText(ENOENT);
    QTemporaryFile fresh(path + u".XXXXXX"_s);
    if (!fresh.open())
        return fresh.errorString();
    Changes changes;
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        changes.insert(value.key(), *value);
    if (const std::optional<QString> failure = applyTo(fresh.fileName(), changes))
        return failure;
    if (const int error = keepCorruptFile(path))
        return systemErrorText(error);
    if (::rename(QFile::encodeName(fresh.fileName()).constData(), QFile::encodeName(path).constData()) != 0)
        return systemErrorText(errno);
    fresh.setAutoRemove(false);
    return std::nullopt;
}

} // namespace nurv
