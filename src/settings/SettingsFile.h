// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <optional>

namespace nurv {

/// One INI file on the disk, with its bad days. Holds no state: every call looks
/// at the disk, and blocks for as long as that needs. Calls for the same file do
/// not overlap.
class SettingsFile {
public:
    enum class State {
        Missing,
        Healthy,
        Damaged,      ///< a text with lines that make no sense; the others count
        Unusable,     ///< no text, or too large: nothing in it counts
        Inaccessible, ///< not opened or read, or no regular file: nobody knows what is in it
    };

    struct Contents {
        State state = State::Missing;
        QVariantMap values;
        QString defect; ///< what is wrong with it; empty for Missing and Healthy
    };

    /// Values to store; a key without one is to be removed.
    using Changes = QMap<QString, std::optional<QVariant>>;

    explicit SettingsFile(const QString &path) : m_path(path) {}

    [[nodiscard]] const QString &path() const { return m_path; }

    [[nodiscard]] Contents read() const;

    // Both writes replace the file as a whole, make the folders above it, leave it
    // readable by its owner only, and return why they failed.

    /// Changes some values of a healthy or missing file.
    [[nodiscard]] std::optional<QString> change(const Changes &changes) const;
    /// Writes a file of these values alone in the place of a damaged one, which is
    /// kept as `<file>.corrupt`. On failure the damaged file is still in its place.
    [[nodiscard]] std::optional<QString> replaceCorrupt(const QVariantMap &values) const;

private:
    const QString m_path;
};

} // namespace nurv
