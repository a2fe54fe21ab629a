// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WindowPlace.h"

#include "settings/SettingsStore.h"

#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace nurv::windowPlace {

namespace {

/// For the frame of a window that does not show yet.
constexpr QSize kFrame{2, 32};

QRect roomOf(const QWidget &window)
{
    return window.screen()->availableGeometry();
}

QRect within(const QRect &rect, const QRect &room)
{
    QRect moved = rect;
    moved.moveRight(std::min(moved.right(), room.right()));
    moved.moveBottom(std::min(moved.bottom(), room.bottom()));
    moved.moveLeft(std::max(moved.left(), room.left()));
    moved.moveTop(std::max(moved.top(), room.top()));
    return moved;
}

void clamp(QWidget &window)
{
    const QRect room = roomOf(window);
    const QSize size = window.size().boundedTo(room.size() - kFrame).expandedTo(window.minimumSize());
    if (size != window.size())
        window.resize(size);
    const QRect place(window.pos(), size + kFrame);
    if (!room.contains(place))
        window.move(within(place, room).topLeft());
}

} // namespace

bool restore(QWidget &window, const QString &key, QSize firstSize)
{
    const QByteArray kept = SettingsStore::instance().bytes(key);
    if (!kept.isEmpty() && window.restoreGeometry(kept)) {
        if (!window.isMaximized() && !window.isFullScreen())
            clamp(window);
        return true;
    }
    window.resize(firstSize.boundedTo(roomOf(window).size() - kFrame));
    return false;
}

void moveBeside(QWidget &window, const QWidget *other)
{
    if (other == nullptr || !other->isVisible())
        return;
    const QRect room = roomOf(*other);
    const QRect frame = other->frameGeometry();
    QRect place(frame.topRight() + QPoint(1, 0), window.size() + kFrame);
    if (place.right() > room.right() && frame.left() - place.width() >= room.left())
        place.moveRight(frame.left() - 1);
    window.move(within(place, room).topLeft());
}

void keep(const QWidget &window, const QString &key)
{
    SettingsStore::instance().setValue(key, window.saveGeometry());
}

} // namespace nurv::windowPlace
