// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace nurv {

/// A modal question or message.
struct Alert {
    QString title;
    QString message;
    QStringList buttons; ///< the first one is the default
};

/// The button that changes nothing: "No", "Cancel", "Keep" or "Not Now" when there is
/// one, else the last. Empty without buttons.
[[nodiscard]] QString dismissingButton(const Alert &alert);

struct FileChooser {
    QString title;
    QString buttonText; ///< empty: the platform's own text
};

/// Everything that a tab or the application asks the user. The window answers
/// with dialogs, the command line with its options and, on a terminal, with
/// questions, a test with a script. GUI thread only; the calls wait for the answer.
class UserPrompts {
public:
    virtual ~UserPrompts() = default;

    /// Returns the chosen button's text. Dismissing the alert chooses its
    /// `dismissingButton`.
    virtual QString ask(const Alert &alert) = 0;
    /// Returns the chosen files; empty when cancelled.
    virtual QStringList chooseFiles(const FileChooser &chooser) = 0;
    /// Returns the chosen folder, which exists; nothing when cancelled.
    virtual std::optional<QString> chooseFolder(const FileChooser &chooser) = 0;
    /// Returns the chosen path; nothing when cancelled. The user has agreed to
    /// replace a file that exists there.
    virtual std::optional<QString> chooseSavePath(const QString &suggestedName,
                                                  const std::optional<QString> &title) = 0;
};

} // namespace nurv
