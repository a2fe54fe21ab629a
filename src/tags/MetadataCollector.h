// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/MetadataInventory.h"

#include <QByteArray>
#include <QSet>
#include <QString>

#include <utility>

namespace nurv {

/// Takes what the readers of the containers find, as it stands in the file, and makes an inventory
/// of it. Throws NurvFailure for more fields, pictures and chunks than a sound file has.
class MetadataCollector {
public:
    /// A field under its common name (metadataFields). Zero characters part several values;
    /// an empty value is none.
    void addText(const QString &field, const QString &text);
    /// A number with a total; 0 is none.
    void addNumbers(const QString &field, unsigned int number, unsigned int total);
    /// A field whose value is no text.
    void addBytes(const QString &field, const QByteArray &bytes);
    void addPicture(const QByteArray &bytes);
    /// `name` as it stands in the file, of whatever bytes.
    void addChunk(const QByteArray &name, const QByteArray &digest);
    /// An ID3v1 tag. What of it only repeats the beginning of fuller tags, wherever those
    /// stand in the file, is left out.
    void addId3v1(const QByteArray &tag);

    [[nodiscard]] MetadataInventory inventory();

private:
    void addValue(const QString &field, const QString &value);
    void addTrackOrDisc(const QString &field, const QString &value);
    void countOne();
    void addRestOfId3v1(const QByteArray &tag);
    void addId3v1Text(const QString &field, QByteArray text);

    MetadataInventory m_inventory;
    QSet<std::pair<QString, QString>> m_values; ///< those of the inventory, for a quick look
    QSet<QByteArray> m_pictures;
    QByteArrayList m_id3v1Tags;
    int m_count = 0;
};

} // namespace nurv
