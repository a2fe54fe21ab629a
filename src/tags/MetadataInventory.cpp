// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/MetadataInventory.h"

#include "app/PathNames.h"
#include "tags/MetadataReader.h"
#include "tags/PictureDigest.h"
#include "tags/TagsProcess.h"

#include <QSet>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kMostNames = 3;
constexpr qsizetype kMostNameCharacters = 40;
// A few bytes of a hostile file can ask for many pixels.
constexpr int kMostDecodedPictures = 30;

/// A kind of output files: what this program, and those that it runs, can put into them.
struct Kind {
    QStringView extension; ///< in capitals
    QStringView name;      ///< with its article
    bool takesTags;
    bool takesPictures;
    bool takesChunks;
};

constexpr std::array kKinds = {
    Kind{u"WAV", u"a WAV", false, false, true},           Kind{u"AIFF", u"an AIFF", true, true, true},
    Kind{u"AIF", u"an AIFF", true, true, true},           Kind{u"FLAC", u"a FLAC", true, true, true},
    Kind{u"SHN", u"a Shorten", false, false, true},       Kind{u"WV", u"a WavPack", true, true, true},
    Kind{u"APE", u"a Monkey's Audio", true, true, true},  Kind{u"TTA", u"a TTA", false, false, false},
    Kind{u"M4A", u"an MPEG-4", true, true, false},        Kind{u"MP3", u"an MP3", true, true, false},
    Kind{u"OPUS", u"an Opus", true, false, false}};

/// A name of a file's choice, safe to show.
QString shownName(const QString &name)
{
    QString shown;
    for (const char32_t character : name.left(kMostNameCharacters).toUcs4()) {
        if (QChar::isPrint(character))
            shown += QString::fromUcs4(&character, 1);
        else
            shown += u"\\x%1"_s.arg(static_cast<uint>(character), 2, 16, QChar(u'0'));
    }
    return name.size() > kMostNameCharacters ? shown + u'…' : shown;
}

/// "(COMPOSER, MOOD, WORK and 3 more)"
QString nameList(const QStringList &names)
{
    QStringList shown;
    for (const QString &name : names.first(std::min<qsizetype>(names.size(), kMostNames)))
        shown.append(shownName(name));
    const qsizetype more = names.size() - shown.size();
    return u'(' + shown.join(u", "_s) + (more > 0 ? u" and %1 more)"_s.arg(more) : u")"_s);
}

bool startsWithVowel(const QString &word)
{
    return !word.isEmpty() && u"aeioAEIO"_s.contains(word.front());
}

/// Things that share a verb: "14 tags, a picture and a bext chunk".
class Enumeration {
public:
    void add(const QString &thing, bool isPlural)
    {
        m_isPlural = isPlural || !m_things.isEmpty();
        m_things.append(thing);
    }

    [[nodiscard]] bool isEmpty() const { return m_things.isEmpty(); }
    [[nodiscard]] QString clause(const QString &verb, const QString &verbOfSeveral, const QString &rest) const
    {
        const QStringList first = m_things.first(m_things.size() - 1);
        const QString things = first.isEmpty() ? m_things.last() : first.join(u", "_s) + u" and "_s + m_things.last();
        return things + u' ' + (m_isPlural ? verbOfSeveral : verb) + u' ' + rest;
    }

private:
    QStringList m_things;
    bool m_isPlural = false;
};

// What is lost

/// Whether a value that the output does not hold as it is says no more than others.
bool isRepeated(const QString &field, const QString &value, const MetadataInventory &source,
                const MetadataInventory &output)
{
    const QStringList held = output.tags.value(field);
    // A year beside a date that has the same year.
    if (field == u"DATE")
        return std::any_of(held.begin(), held.end(),
                           [&](const QString &date) { return date.startsWith(value + u'-'); });
    // Apple Lossless files are given the artist as album artist.
    return field == u"ALBUMARTIST" && source.tags.value(u"ARTIST"_s).contains(value)
           && output.tags.value(u"ARTIST"_s).contains(value);
}

QStringList lostTags(const MetadataInventory &source, const MetadataInventory &output)
{
    QStringList lost;
    for (auto tag = source.tags.cbegin(); tag != source.tags.cend(); ++tag) {
        const QStringList values = output.tags.value(tag.key());
        const QSet<QString> held(values.begin(), values.end());
        if (!std::all_of(tag->begin(), tag->end(), [&](const QString &value) {
                return held.contains(value) || isRepeated(tag.key(), value, source, output);
            }))
            lost.append(tag.key());
    }
    return lost;
}

/// Tells pictures by their pixels: writers of tags render them anew.
class PixelDigests {
public:
    /// Nothing for what is no picture, or the one too many.
    [[nodiscard]] QByteArray of(const QByteArray &picture)
    {
        if (m_decoded == kMostDecodedPictures)
            return {};
        ++m_decoded;
        return pictureDigest(picture);
    }

private:
    int m_decoded = 0;
};

qsizetype lostPictures(const MetadataInventory &source, const MetadataInventory &output)
{
    PixelDigests digests;
    std::optional<QByteArrayList> held;
    const auto isHeldByPixels = [&](const QByteArray &picture) {
        if (output.pictures.isEmpty())
            return false;
        if (!held) {
            held.emplace();
            for (const QByteArray &other : output.pictures)
                held->append(digests.of(other));
        }
        const QByteArray digest = digests.of(picture);
        return !digest.isEmpty() && held->contains(digest);
    };
    const QSet<QByteArray> same(output.pictures.begin(), output.pictures.end());
    return std::count_if(source.pictures.begin(), source.pictures.end(), [&](const QByteArray &picture) {
        return !same.contains(picture) && !isHeldByPixels(picture);
    });
}

struct LostChunks {
    QStringList names;
    qsizetype count = 0;
    bool hasNameless = false;
};

LostChunks lostChunks(const MetadataInventory &source, const MetadataInventory &output)
{
    LostChunks lost;
    for (auto chunk = source.foreignChunks.cbegin(); chunk != source.foreignChunks.cend(); ++chunk) {
        QByteArrayList held = output.foreignChunks.value(chunk.key());
        const auto missing = std::count_if(chunk->begin(), chunk->end(),
                                           [&](const QByteArray &digest) { return !held.removeOne(digest); });
        if (missing == 0)
            continue;
        if (chunk.key().isEmpty()) {
            lost.hasNameless = true;
        } else {
            lost.names.append(chunk.key());
            lost.count += missing;
        }
    }
    return lost;
}

/// What is lost, in the clauses of one sentence.
class LossSentence {
public:
    explicit LossSentence(const QString &outputName)
    {
        const QString extension = formatWord(outputName);
        const auto *const kind =
            std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind &each) { return each.extension == extension; });
        if (kind != kKinds.end())
            m_kind = *kind;
    }

    void addTags(const QStringList &names)
    {
        if (names.isEmpty())
            return;
        const bool isOne = names.size() == 1;
        const QString count = isOne ? u"a tag"_s : u"%1 tags"_s.arg(names.size());
        // Nobody asks which ones where none could be kept.
        listFor(m_kind.takesTags).add(m_kind.takesTags ? count + u' ' + nameList(names) : count, !isOne);
    }

    void addPictures(qsizetype count)
    {
        if (count > 0)
            listFor(m_kind.takesPictures).add(count == 1 ? u"a picture"_s : u"%1 pictures"_s.arg(count), count > 1);
    }

    void addChunks(const LostChunks &chunks)
    {
        Enumeration &list = listFor(m_kind.takesChunks);
        if (chunks.count == 1) {
            const QString name = shownName(chunks.names.first());
            list.add(u"%1 %2 chunk"_s.arg(startsWithVowel(name) ? u"an"_s : u"a"_s, name), false);
        } else if (chunks.count > 1) {
            list.add(u"%1 chunks %2"_s.arg(QString::number(chunks.count), nameList(chunks.names)), true);
        }
        if (chunks.hasNameless)
            list.add(u"data without a name"_s, false);
    }

    [[nodiscard]] std::optional<QString> text() const
    {
        QStringList clauses;
        if (!m_withoutPlace.isEmpty())
            clauses.append(m_withoutPlace.clause(u"has"_s, u"have"_s, u"no place in %1 file"_s.arg(m_kind.name)));
        if (!m_missing.isEmpty())
            clauses.append(m_missing.clause(u"is"_s, u"are"_s, u"not in the output"_s));
        return clauses.isEmpty() ? std::nullopt : std::optional(clauses.join(u", and "_s));
    }

private:
    [[nodiscard]] Enumeration &listFor(bool hasPlace) { return hasPlace ? m_missing : m_withoutPlace; }

    Kind m_kind{u"", u"", true, true, true}; ///< of an unknown kind nothing is claimed
    Enumeration m_withoutPlace;
    Enumeration m_missing;
};

} // namespace

MetadataInventory MetadataInventory::of(const QString &path)
{
    if (std::optional<MetadataInventory> inventory = TagsProcess::readInventory(path))
        return *std::move(inventory);
    return readMetadata(path);
}

std::optional<QString> metadataLost(const MetadataInventory &source, const MetadataInventory &output,
                                    const QString &outputName)
{
    LossSentence sentence(outputName);
    sentence.addTags(lostTags(source, output));
    sentence.addPictures(lostPictures(source, output));
    sentence.addChunks(lostChunks(source, output));
    return sentence.text();
}

} // namespace nurv
