// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace nurv {

struct Panel;

/// A modal question or message.
struct Alert {
    QString title;
    QString message;
    QStringList buttons;     ///< the first one is the default
    QByteArray picture = {}; ///< the bytes of one that is shown beside the text
    bool isWarning = false;  ///< what cannot be taken back: the default is the button that changes nothing
};

/// The button that changes nothing: "No", "Cancel", "Keep" or "Not Now" when there is
/// one, else the last. Empty without buttons.
[[nodiscard]] QString dismissingButton(const Alert &alert);

/// What the user is to choose in the file system.
struct FileChooser {
    enum class Kind { File, Files, Folder, Save };

    QString title;
    QString buttonText = {}; ///< empty: the platform's own text
    Kind kind = Kind::Files;
    QStringList extensions = {}; ///< of the files that are offered, in lower case; empty: of any kind
    bool offersAllFiles = false; ///< others, too, when the user wants to see them
    QString suggestedName = {};  ///< of a file to save
    /// The option that answers it on the command line; without one nothing is chosen there.
    QString option = {};
    /// Where a window remembers the folder that was chosen last; empty: nowhere.
    QString folderKey = {};
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
    /// Returns absolute paths, more than one of `Kind::Files` only; empty when cancelled. The
    /// files and folders exist; to replace one that is to be saved the user has agreed.
    virtual QStringList choose(const FileChooser &chooser) = 0;
    /// Lets the user change the controls of the panel. Returns whether it was accepted, with
    /// nothing that its fields object to. What was typed stays in the controls either way.
    [[nodiscard]] virtual bool runPanel(const Panel &panel) = 0;

    /// Lets `work` run, which asks nobody and must not throw, and returns when it has: where there is a window on another
    /// thread, while that stays alive and shows `what`. `isUnwanted` is true once the user has given it up. Returns whether
    /// nobody has.
    virtual bool waitFor(const QString &what, const std::function<void(const std::function<bool()> &isUnwanted)> &work);

    // The kinds of `choose`.

    [[nodiscard]] QStringList chooseFiles(FileChooser chooser);
    /// One file; nothing when cancelled.
    [[nodiscard]] std::optional<QString> chooseFile(FileChooser chooser);
    /// A folder, nothing when cancelled.
    [[nodiscard]] std::optional<QString> chooseFolder(FileChooser chooser);
    /// The path of a file to write, nothing when cancelled.
    [[nodiscard]] std::optional<QString> chooseSavePath(FileChooser chooser);

private:
    [[nodiscard]] std::optional<QString> chooseOne(FileChooser chooser, FileChooser::Kind kind);
};

} // namespace nurv
