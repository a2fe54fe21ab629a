// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/CoverPicture.h"

#include <QMap>
#include <QString>

#include <optional>
#include <utility>

namespace nurv {

/// The descriptive tags of one file: what every tag reader fills, every tag writer
/// takes and the Tags tab edits.
///
/// Each text is absent, empty or set; the three are kept apart. A fresh record has
/// an empty map of custom tags and nothing else. A plain value: copies share the
/// picture.
class TagsObject {
public:
    using Text = std::optional<QString>;

    [[nodiscard]] const Text &titleText() const { return m_titleText; }
    [[nodiscard]] const Text &artistText() const { return m_artistText; }
    [[nodiscard]] const Text &albumArtistText() const { return m_albumArtistText; }
    /// Date or year, as text.
    [[nodiscard]] const Text &dateText() const { return m_dateText; }
    [[nodiscard]] const Text &albumText() const { return m_albumText; }
    [[nodiscard]] const Text &commentText() const { return m_commentText; }
    [[nodiscard]] const Text &discText() const { return m_discText; }
    [[nodiscard]] const Text &discTotalText() const { return m_discTotalText; }
    [[nodiscard]] const Text &trackText() const { return m_trackText; }
    [[nodiscard]] const Text &trackTotalText() const { return m_trackTotalText; }
    [[nodiscard]] const Text &genreText() const { return m_genreText; }
    [[nodiscard]] const Text &composerText() const { return m_composerText; }
    /// Names the encoder and its settings; filled by the lossy jobs.
    [[nodiscard]] const Text &encoderSettings() const { return m_encoderSettings; }
    /// The cover picture; none is a null pointer.
    [[nodiscard]] const AlbumArt &albumArt() const { return m_albumArt; }
    /// Why the file's cover picture is not in this record, as the end of a sentence; absent when it is,
    /// or when there is none. Takes no part in equality.
    [[nodiscard]] const Text &albumArtFault() const { return m_albumArtFault; }
    /// Further tags by name, as read from or to be written to a Vorbis comment.
    [[nodiscard]] const QMap<QString, QString> &customTagsDictionary() const { return m_customTagsDictionary; }
    [[nodiscard]] QMap<QString, QString> &customTagsDictionary() { return m_customTagsDictionary; }

    void setTitleText(Text text) { m_titleText = std::move(text); }
    void setArtistText(Text text) { m_artistText = std::move(text); }
    void setAlbumArtistText(Text text) { m_albumArtistText = std::move(text); }
    void setDateText(Text text) { m_dateText = std::move(text); }
    void setAlbumText(Text text) { m_albumText = std::move(text); }
    void setCommentText(Text text) { m_commentText = std::move(text); }
    void setDiscText(Text text) { m_discText = std::move(text); }
    void setDiscTotalText(Text text) { m_discTotalText = std::move(text); }
    void setTrackText(Text text) { m_trackText = std::move(text); }
    void setTrackTotalText(Text text) { m_trackTotalText = std::move(text); }
    void setGenreText(Text text) { m_genreText = std::move(text); }
    void setComposerText(Text text) { m_composerText = std::move(text); }
    void setEncoderSettings(Text text) { m_encoderSettings = std::move(text); }
    void setAlbumArt(AlbumArt picture, Text fault = std::nullopt)
    {
        m_albumArt = std::move(picture);
        m_albumArtFault = std::move(fault);
    }
    void setCustomTagsDictionary(QMap<QString, QString> tags) { m_customTagsDictionary = std::move(tags); }

    /// True for this very record; false for none; otherwise `isEqualToTagsObject`.
    [[nodiscard]] bool isEqual(const TagsObject *object) const;
    /// Whether the texts and the picture are equal. The picture is compared by the
    /// identity of the image object. Album artist, encoder settings and custom tags
    /// take no part: the search for the tags that several files share relies on it.
    [[nodiscard]] bool isEqualToTagsObject(const TagsObject &record) const;
    /// Whether both are absent, or both present with the same characters. Absent
    /// and empty differ.
    [[nodiscard]] static bool stringTagsEqual(const Text &string1, const Text &string2);

private:
    Text m_titleText;
    Text m_artistText;
    Text m_albumArtistText;
    Text m_dateText;
    Text m_albumText;
    Text m_commentText;
    Text m_discText;
    Text m_discTotalText;
    Text m_trackText;
    Text m_trackTotalText;
    Text m_genreText;
    Text m_composerText;
    Text m_encoderSettings;
    AlbumArt m_albumArt;
    Text m_albumArtFault;
    QMap<QString, QString> m_customTagsDictionary;
};

} // namespace nurv
