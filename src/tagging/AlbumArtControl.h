// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Control.h"
#include "tags/CoverPicture.h"

#include <QString>

namespace nurv {

/// A well with a cover picture, or with none.
class AlbumArtControl final : public Control {
    Q_OBJECT

public:
    AlbumArtControl() = default;
    /// Null: there is none.
    [[nodiscard]] const AlbumArt &picture() const { return m_picture; }
    void setPicture(const AlbumArt &picture);
    /// What stands in an empty well.
    [[nodiscard]] const QString &placeholder() const { return m_placeholder; }
    void setPlaceholder(const QString &text);

private:
    AlbumArt m_picture;
    QString m_placeholder;
};

} // namespace nurv
