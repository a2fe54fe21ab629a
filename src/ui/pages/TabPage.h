// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

class QGroupBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QVBoxLayout;

namespace nurv {

class BaseTab;
class Control;
class ElidedLabel;
struct FileIntake;
class FileListView;
class OptionArea;
struct GivenFiles;
class RecentFolders;

/// The page of one tool: its file list on the left, its options on the right,
/// its buttons below. A tool's own page adds the options.
///
///     +--------------------+-----------+
///     | file list          | options   |
///     +--------------------+-----------+
///     | Add…  Clear  12 files  Execute |
///     +--------------------------------+
class TabPage : public QWidget {
    Q_OBJECT

public:
    /// The tab must outlive the page.
    explicit TabPage(BaseTab &tab, QWidget *parent = nullptr);
    /// Lets an empty list offer the folders, which must outlive the page.
    void offerRecentFolders(const RecentFolders &folders);

    /// Gives the columns of options one width.
    static void alignOptions(const QList<TabPage *> &pages);

    [[nodiscard]] BaseTab &tab() const { return m_tab; }
    [[nodiscard]] FileListView *fileList() const { return m_fileList; }
    [[nodiscard]] bool isAddingFiles() const { return m_searchesRunning > 0; }
    /// Whether Execute may be pressed.
    [[nodiscard]] bool isReady() const;

    /// Adds files and what lies in folders. Looks into the folders on another
    /// thread and returns at once.
    void addPaths(const QStringList &paths);
    /// The same, and tells which names were refused already.
    void addFiles(const GivenFiles &files);
    /// Asks for files and adds them.
    void chooseFiles();
    /// Asks for a folder and adds what lies in it.
    void chooseFolder();
    /// Presses the execute button; nothing while that is disabled.
    void execute();

Q_SIGNALS:
    /// Execute may be pressed, or no longer.
    void readinessChanged(bool isReady);

protected:
    /// A titled group in the column of options.
    QVBoxLayout *addOptionGroup(const QString &title, const QString &objectName);
    /// A group without its layout, to be followed by a control's hidden state.
    [[nodiscard]] QGroupBox *lastOptionGroup() const { return m_lastGroup; }
    /// The options are complete: pushes them to the top and sets the tab order.
    void finishOptions();
    /// Shows at once what the tab is doing on this thread; an empty text: nothing any more.
    void showWork(const QString &what);
    /// What pressing Execute makes of the files of the list: "FLAC 8, beside each source". Empty: nothing to say.
    [[nodiscard]] virtual QString plan() const { return {}; }
    /// `plan` tells of these.
    void planOf(const QList<Control *> &controls);
    /// Where outputs go, in the words of a plan.
    [[nodiscard]] QString placeWords(bool isBesideSources) const;
    /// Whether the tool has anything to do, and time for it.
    [[nodiscard]] virtual bool canExecute() const { return true; }
    /// Shows what can be pressed now.
    void showState();

private:
    void createWidgets();
    void layOut();
    void connectAll();
    /// Files came that another page takes: says so, and offers to go there.
    void tellWhereFilesBelong(const FileIntake &found);
    void goWhereFilesBelong();
    void showSum();
    void showPlan();
    /// While there are any, Execute is held back.
    void countSearches(const QString &label, int change);

    BaseTab &m_tab;
    FileListView *m_fileList = nullptr;
    QPushButton *m_addButton = nullptr;
    QPushButton *m_clearButton = nullptr;
    QPushButton *m_executeButton = nullptr;
    QLabel *m_countLabel = nullptr;
    QLabel *m_sumLabel = nullptr; ///< of what is known of all files
    ElidedLabel *m_planLabel = nullptr;
    QWidget *m_elsewhere = nullptr; ///< in sight while files wait that belong on another page
    ElidedLabel *m_elsewhereLabel = nullptr;
    QPushButton *m_elsewhereButton = nullptr;
    QString m_otherPage;
    QStringList m_filesOfOtherPage; ///< as they were given
    QProgressBar *m_busyBar = nullptr;
    QWidget *m_options = nullptr;
    QVBoxLayout *m_optionColumn = nullptr;
    OptionArea *m_optionArea = nullptr;
    QGroupBox *m_lastGroup = nullptr;
    int m_searchesRunning = 0; ///< for files of this page
    bool m_wasReady = false;
};

} // namespace nurv
