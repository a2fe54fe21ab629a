// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/FileIntake.h"
#include "app/UserPrompts.h"
#include "programs/NeededPrograms.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <optional>

namespace nurv {

class NURVController;

/// The common base of the tool tabs: the list of input files and all that fills
/// and trims it. A tab adds its controls and `executeCommand`.
///
/// Knows no widget: the window, the command line and the tests press the same
/// operations. Lives on the GUI thread.
class BaseTab : public QObject {
    Q_OBJECT

public:
    /// `label`: the page's label, the tab's key in the controller's maps. The
    /// tab enters itself there. `controller` must outlive the tab.
    BaseTab(NURVController &controller, const QString &label);
    ~BaseTab() override;

    [[nodiscard]] const QString &label() const { return m_label; }
    [[nodiscard]] NURVController &nurvController() const { return m_controller; }
    [[nodiscard]] const QString &pathToCommandLineTools() const { return m_pathToCommandLineTools; }

    /// Absolute paths without duplicates, in file-browser order.
    [[nodiscard]] const QStringList &fileNames() const { return m_fileNames; }

    /// The folders of a listed file from the given folder's own name on: "shows/disc1" for
    /// .../shows/disc1/a.wav when .../shows was given. Empty for a file that was given
    /// itself, never absolute, never with a "..".
    [[nodiscard]] QString relativeFolderOf(const QString &path) const;

    /// The heads of the list's columns. The first column holds the names; a list with no other
    /// shows no heads.
    [[nodiscard]] virtual QStringList columnTitles() const;
    /// What a row has in a column behind the first.
    [[nodiscard]] virtual QString columnText(int /*row*/, int /*column*/) const { return {}; }
    /// The rows that are selected, in their order; none once the list is another one.
    [[nodiscard]] const QList<int> &selectedRows() const { return m_selectedRows; }
    /// The user, or the tab itself, has selected these rows.
    void setSelectedRows(const QList<int> &rows);

    /// Adds a file that the controller has matched with this tab already.
    void addFile(const QString &path) { addMatchedFiles({path}); }
    /// `addFile` for each, with one sort and one announcement for all. `bases` as in a
    /// FileIntake.
    void addMatchedFiles(const QStringList &paths, const QStringList &bases = {});
    /// Adds files and what lies in folders; tells the user what was refused.
    /// Blocks while it searches the folders.
    void addFiles(const QStringList &paths);
    /// Adds what was found, and tells what was refused. While a tab executes, the files wait.
    void addCollected(const FileIntake &intake);
    /// Asks for files; empty when cancelled.
    [[nodiscard]] QStringList chooseFiles();
    /// Asks for files and adds them. Blocks while it looks at them.
    void addButtonClick();
    void clearButtonClick() { clearFiles(); }
    virtual void clearFiles();

    /// The distinct extensions of the listed files, as written, sorted by character.
    [[nodiscard]] QStringList listedExtensions() const;
    /// Takes every file with that extension off the list; case matters.
    void filterGivenExtension(const QString &extension);
    /// Takes the files of these rows off the list. The view clears its selection.
    void deleteSelectedRows(const QList<int> &rows);

    /// How many files `undoRemoval` would put back into the list; 0 when nothing was taken off.
    [[nodiscard]] qsizetype removedCount() const { return m_removals.empty() ? 0 : m_removals.back().size(); }
    /// Puts the files back that were taken off the list last, whoever did it: the user, or the tab when it had made jobs of
    /// them. While a tab executes, it waits.
    void undoRemoval();
    /// The folder that was given when the file came, as a FileIntake has it.
    [[nodiscard]] QString baseOf(const QString &path) const { return m_bases.value(path); }
    [[nodiscard]] virtual bool usesTableViewContextMenu() const { return true; }

    /// Shows and enables the options that matter for the current choices.
    virtual void displayRelevantOptions() {}
    /// The user has chosen another option.
    void changeDisplayOptions() { displayRelevantOptions(); }
    /// Turns the list into jobs for the queue.
    virtual void executeCommand() {}
    /// The programs that the jobs of the list will start.
    [[nodiscard]] virtual NeededPrograms neededPrograms() const { return {}; }

    /// The sources that the last press of the button made no job of, since their outputs
    /// exist and were to be passed over.
    [[nodiscard]] const QStringList &passedOver() const { return m_passedOver; }

    /// Whether the last press of the button did all that was asked for without a job.
    [[nodiscard]] virtual bool hasWorkedItself() const { return false; }

    /// The setting with the output folder that was chosen last, in a window.
    [[nodiscard]] QString outputFolderKey() const { return QStringLiteral("window/outputFolder/") + m_label; }

    /// How long the messages about refused files wait, so that they come after
    /// the drop has finished; 500 ms unless set. With 0 they come at once.
    void setRefusalMessageDelay(int milliseconds) { m_refusalMessageDelayMs = milliseconds; }

Q_SIGNALS:
    /// The list is another one now; nothing in it is selected.
    void fileNamesChanged();
    /// Other rows are selected now.
    void selectedRowsChanged();
    /// Files were added; the view widens its column.
    void filesWereAdded();
    /// The list has other columns now, while its rows are the same.
    void columnsChanged();
    /// The texts of these columns are others now, while the list is the same.
    void columnTextsChanged();

protected:
    /// Called after files were added. Overrides call this one.
    virtual void filesAdded();
    /// Called after other rows were selected, and after the list has changed.
    virtual void selectionChanged() {}
    /// The folder that the user chose; nothing when cancelled.
    [[nodiscard]] std::optional<QString> chooseOutputFolder();
    /// The path that the user chose; nothing when cancelled.
    [[nodiscard]] std::optional<QString> openSavePanel(const QString &suggestedName,
                                                       const std::optional<QString> &title);
    /// Whether a text may get that path: neither that of one of the sources nor the name of a sound. Otherwise a
    /// message says so; `what`: what the text is, "the list"; `reason`: why no source may make way.
    [[nodiscard]] bool canBeText(const QString &path, const QStringList &sources, const QString &what,
                                 const QString &reason);
    void setPassedOver(const QStringList &sources) { m_passedOver = sources; }
    /// Asks, when originals are to be deleted and "warnOnDelete" is on. False:
    /// the user does not want to go on.
    [[nodiscard]] bool confirmDeletingOriginals(bool deleteOriginals);

private:
    /// The files of one removal with their bases.
    using Removal = QHash<QString, QString>;

    void append(const QStringList &paths, const QStringList &bases);
    void takeCollected(const FileIntake &intake);
    void removeIf(const std::function<bool(const QString &path)> &isUnwanted);
    void remember(Removal removal);
    void sortFileNames();
    void announceList();
    void showBadFileMessages(const QList<Alert> &messages);

    NURVController &m_controller;
    QString m_label;
    QString m_pathToCommandLineTools;
    QStringList m_fileNames;
    QHash<QString, QString> m_bases; ///< of every listed file; empty: given itself
    std::deque<Removal> m_removals; ///< the last one at the end
    QList<int> m_selectedRows;
    QStringList m_passedOver;
    int m_refusalMessageDelayMs = 500; // long enough for a drop to finish
};

} // namespace nurv
