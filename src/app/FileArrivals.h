// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/FileIntake.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace nurv {

class NURVController;

/// By which way files come in; it decides what a page takes of them, and what the user is told.
enum class Door {
    /// Dropped on the list or chosen for it: by their contents where names do not decide. What is refused is told.
    List,
    /// Opened with the application or dropped on its window: by their extensions. What is not the page's is left out
    /// without a word; from the about page each file goes to the page of its kind.
    Application,
    /// Named on the command line: by their contents; in folders by their extensions, and Apple Lossless files. What is refused is in the intake.
    CommandLine,
};

/// Files as somebody gives them; nothing has looked at them yet.
struct Arrival {
    QString label; ///< of the page that they are for
    Door door = Door::List;
    QStringList paths;
    QStringList refusedNames = {};                          ///< paths whose names are no valid UTF-8, made printable
    std::function<bool(const QString &path)> makesJob = {}; ///< whether a job comes of a file of that name; empty: of any

    [[nodiscard]] bool isEmpty() const { return paths.isEmpty() && refusedNames.isEmpty(); }
};

/// The one way in for files.
///
///     arguments of the start --+
///     a second instance -------+
///     drop on the window ------+--> Arrival --> search --> FileIntake --> deliver --> lists, messages
///     drop on a list ----------+                one look
///     Add ---------------------+                at each file
///     command line ------------+
///
/// Lives on the GUI thread.
class FileArrivals final : public QObject {
    Q_OBJECT

public:
    /// The controller owns it.
    explicit FileArrivals(NURVController &controller) : m_controller(controller) {}

    /// Searches on another thread, then delivers. Returns at once.
    void receive(const Arrival &arrival);
    /// The same on this thread. Blocks while it searches.
    void add(const Arrival &arrival) { deliver(arrival.label, search(arrival)); }

    /// Searches the folders and looks at each file once. Any thread; blocks; gives up when the application quits.
    [[nodiscard]] FileIntake search(const Arrival &arrival) const;
    /// Puts what was found on the list of the page, or on the lists of the pages of its kinds, and tells what was left out.
    /// While a tab executes, the files wait.
    void deliver(const QString &label, const FileIntake &found);

Q_SIGNALS:
    /// Files for the page are being looked for on another thread; no longer.
    void searchBegan(const QString &label);
    /// What was found has reached its list, or is on its way there after a tab that executes.
    void delivered(const QString &label, const nurv::FileIntake &found);
    void searchEnded(const QString &label);

private:
    [[nodiscard]] FileVerdict look(const Arrival &arrival, const QString &path, bool isGiven) const;
    void routeByExtension(const FileIntake &found);

    NURVController &m_controller;
};

} // namespace nurv
