// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/EmptyListPanel.h"

#include "text/PrintableText.h"
#include "ui/FileListView.h"
#include "ui/RecentFolders.h"

#include <QAbstractItemModel>
#include <QEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kSpacing = 8;
constexpr int kBelowHint = 14;

} // namespace

EmptyListPanel::EmptyListPanel(FileListView *list, const RecentFolders &recentFolders)
    : QWidget(list->viewport()), m_list(list), m_recentFolders(recentFolders)
{
    setObjectName(u"emptyListPanel"_s);
    const auto addButton = [this](const QString &title, const QString &objectName, const QString &toolTip) {
        auto *const button = new QPushButton(title, this);
        button->setObjectName(objectName);
        button->setAccessibleName(QString(title).remove(u'…'));
        button->setToolTip(toolTip);
        return button;
    };
    // Without mnemonics: the buttons and menus that are always there have them.
    m_filesButton = addButton(tr("Add Files…"), u"emptyAddFilesButton"_s, tr("Choose files for the list"));
    m_folderButton = addButton(tr("Add Folder…"), u"emptyAddFolderButton"_s, tr("Choose a folder, and take what lies in it"));
    m_recentButton = addButton(tr("Recent Folders"), u"recentFoldersButton"_s, tr("Folders that files came from lately"));
    m_recentMenu = new QMenu(m_recentButton);
    m_recentMenu->setObjectName(u"recentFoldersMenu"_s);
    m_recentButton->setMenu(m_recentMenu);
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kSpacing);
    for (QWidget *const button : buttons())
        row->addWidget(button);

    connect(m_filesButton, &QPushButton::clicked, this, &EmptyListPanel::filesWanted);
    connect(m_folderButton, &QPushButton::clicked, this, &EmptyListPanel::folderWanted);
    connect(m_recentMenu, &QMenu::aboutToShow, this, &EmptyListPanel::fillMenu);
    connect(list->model(), &QAbstractItemModel::modelReset, this, &EmptyListPanel::place);
    list->viewport()->installEventFilter(this);
    place();
}

QList<QWidget *> EmptyListPanel::buttons() const
{
    return {m_filesButton, m_folderButton, m_recentButton};
}

void EmptyListPanel::fillMenu()
{
    m_recentMenu->clear();
    for (const QString &path : m_recentFolders.paths()) {
        // A name may hold the character that marks a mnemonic.
        QAction *const action = m_recentMenu->addAction(printableLine(path).replace(u"&"_s, u"&&"_s));
        connect(action, &QAction::triggered, this, [this, path] { Q_EMIT recentFolderChosen(path); });
    }
    if (m_recentMenu->isEmpty())
        m_recentMenu->addAction(tr("None yet"))->setEnabled(false);
}

bool EmptyListPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show)
        place();
    return QWidget::eventFilter(watched, event);
}

void EmptyListPanel::place()
{
    const QWidget *const viewport = m_list->viewport();
    resize(sizeHint());
    const int top = static_cast<int>(m_list->hintBottom()) + kBelowHint;
    move((viewport->width() - width()) / 2, top);
    const bool hasRoom = width() <= viewport->width() && top + height() + kBelowHint <= viewport->height();
    setVisible(hasRoom && m_list->model()->rowCount() == 0);
}

} // namespace nurv
