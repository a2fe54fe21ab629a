// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/AlbumArtControl.h"

namespace nurv {

void AlbumArtControl::setPicture(const AlbumArt &picture)
{
    if (m_picture == picture)
        return;
    m_picture = picture;
    announceValue();
}

void AlbumArtControl::setPlaceholder(const QString &text)
{
    if (m_placeholder == text)
        return;
    m_placeholder = text;
    Q_EMIT changed();
}

} // namespace nurv
