// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/UserPrompts.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

QString dismissingButton(const Alert &alert)
{
    for (const QString &button : {u"No"_s, u"Cancel"_s, u"Keep"_s, u"Not Now"_s}) {
        if (alert.buttons.contains(button))
            return button;
    }
    return alert.buttons.isEmpty() ? QString() : alert.buttons.last();
}

bool UserPrompts::waitFor(const QString &, const std::function<void(const std::function<bool()> &isUnwanted)> &work)
{
    work([] { return false; });
    return true;
}

QStringList UserPrompts::chooseFiles(FileChooser chooser)
{
    chooser.kind = FileChooser::Kind::Files;
    return choose(chooser);
}

std::optional<QString> UserPrompts::chooseFile(FileChooser chooser)
{
    return chooseOne(std::move(chooser), FileChooser::Kind::File);
}

std::optional<QString> UserPrompts::chooseFolder(FileChooser chooser)
{
    return chooseOne(std::move(chooser), FileChooser::Kind::Folder);
}

std::optional<QString> UserPrompts::chooseSavePath(FileChooser chooser)
{
    return chooseOne(std::move(chooser), FileChooser::Kind::Save);
}

std::optional<QString> UserPrompts::chooseOne(FileChooser chooser, FileChooser::Kind kind)
{
    chooser.kind = kind;
    const QStringList chosen = choose(chooser);
    return chosen.isEmpty() ? std::nullopt : std::optional(chosen.first());
}

} // namespace nurv
