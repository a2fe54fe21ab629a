// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/TagsPage.h"

#include "tagging/TagsTab.h"
#include "ui/AlbumArtWell.h"
#include "ui/Bindings.h"
#include "ui/OptionWidgets.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kColumns = 4;
constexpr int kLeastFieldWidth = 70;

QPushButton *makeButton(const QString &title, const QString &objectName, const QString &toolTip, QWidget *parent)
{
    auto *const button = new QPushButton(title, parent);
    button->setObjectName(objectName);
    button->setAccessibleName(QString(title).remove(u'&').remove(u'…'));
    button->setToolTip(toolTip);
    return button;
}

} // namespace

TagsPage::TagsPage(TagsTab &tab, QWidget *parent) : TabPage(tab, parent), m_tagsTab(tab)
{
    setObjectName(u"tagsPage"_s);
    addFields();
    addOptionGroup(tr("Cover picture"), u"pictureGroup"_s)->addWidget(new AlbumArtWell(tab, lastOptionGroup()));
    addNames();
    addWriting();
    finishOptions();
    planOf({&tab.writeEmptyTagsButton});
    connect(&tab, &BaseTab::selectedRowsChanged, this, &TagsPage::showState);
    connect(&tab, &TagsTab::readingChanged, this, &TagsPage::showState);
}

bool TagsPage::canExecute() const
{
    return !m_tagsTab.selectedRows().isEmpty() && !m_tagsTab.isReading();
}

QString TagsPage::plan() const
{
    const auto count = m_tagsTab.selectedRows().size();
    const QString files = count == 1 ? tr("tags of the selected file") : tr("tags of the %1 selected files").arg(count);
    return m_tagsTab.writeEmptyTagsButton.isOn() ? tr("%1, empty fields too").arg(files) : files;
}

void TagsPage::disableWhileReading(QWidget *widget)
{
    connect(&m_tagsTab, &TagsTab::readingChanged, widget,
            [this, widget] { widget->setEnabled(!m_tagsTab.isReading()); });
}

QLineEdit *TagsPage::addField(QGridLayout *grid, int row, int column, int span, const QString &caption,
                              TextControl &control, const QString &objectName, const QString &accessibleName)
{
    QWidget *const parent = lastOptionGroup();
    auto *const label = new QLabel(caption, parent);
    auto *const field = new QLineEdit(parent);
    field->setObjectName(objectName);
    field->setAccessibleName(accessibleName);
    field->setMinimumWidth(kLeastFieldWidth);
    label->setBuddy(field);
    grid->addWidget(label, row, column, Qt::AlignRight | Qt::AlignVCenter);
    grid->addWidget(field, row, column + 1, 1, span);
    bind(field, control);
    return field;
}

void TagsPage::addFields()
{
    QVBoxLayout *const group = addOptionGroup(tr("Tags"), u"fieldsGroup"_s);
    auto *const selection = new QLabel(lastOptionGroup());
    selection->setObjectName(u"multipleSelectionsLabel"_s);
    bind(selection, m_tagsTab.multipleSelectionsLabel);
    group->addWidget(selection);
    auto *const note = new QLabel(lastOptionGroup());
    note->setObjectName(u"note"_s);
    note->setWordWrap(true);
    note->setTextFormat(Qt::PlainText);
    bind(note, m_tagsTab.note);
    group->addWidget(note);
    auto *const grid = new QGridLayout;
    group->addLayout(grid);
    constexpr int kWhole = kColumns - 1;
    addField(grid, 0, 0, kWhole, tr("&Title:"), m_tagsTab.titleText, u"titleText"_s, tr("Title"));
    addField(grid, 1, 0, kWhole, tr("Art&ist:"), m_tagsTab.artistText, u"artistText"_s, tr("Artist"));
    addField(grid, 2, 0, kWhole, tr("Al&bum:"), m_tagsTab.albumText, u"albumText"_s, tr("Album"));
    addField(grid, 3, 0, 1, tr("&Date:"), m_tagsTab.dateText, u"dateText"_s, tr("Date"));
    addField(grid, 3, 2, 1, tr("Ge&nre:"), m_tagsTab.genreText, u"genreText"_s, tr("Genre"));
    addField(grid, 4, 0, kWhole, tr("&Composer:"), m_tagsTab.composerText, u"composerText"_s, tr("Composer"));
    addField(grid, 5, 0, 1, tr("Trac&k:"), m_tagsTab.trackText, u"trackText"_s, tr("Track"));
    addField(grid, 5, 2, 1, tr("&of"), m_tagsTab.trackTotalText, u"trackTotalText"_s, tr("Number of tracks"));
    addField(grid, 6, 0, 1, tr("Di&sc:"), m_tagsTab.discText, u"discText"_s, tr("Disc"));
    addField(grid, 6, 2, 1, tr("of"), m_tagsTab.discTotalText, u"discTotalText"_s, tr("Number of discs"));
    addField(grid, 7, 0, kWhole, tr("Co&mment:"), m_tagsTab.commentText, u"commentText"_s, tr("Comment"));

    auto *const previous = makeButton(tr("Use &Previous Tags"), u"usePreviousTagsButton"_s,
                                      tr("Fill the fields with what was written last"), lastOptionGroup());
    group->addWidget(previous, 0, Qt::AlignLeft);
    follow(previous, m_tagsTab.usePreviousTagsButton);
    connect(previous, &QPushButton::clicked, &m_tagsTab, &TagsTab::usePreviousTags);
    disableWhileReading(previous);
}

void TagsPage::addNames()
{
    QVBoxLayout *const group = addOptionGroup(tr("Names and custom tags"), u"namesGroup"_s);
    QWidget *const parent = lastOptionGroup();
    addCheckBox(group, m_tagsTab.autoNameButton, tr("Tit&les and numbers from track names"), u"autoNameButton"_s,
                tr("Of several files: each gets the name that stands at its place in the list"), parent);
    auto *const box = parent->findChild<QCheckBox *>(u"autoNameButton"_s);
    connect(box, &QCheckBox::clicked, &m_tagsTab, &TagsTab::autoNameClick);
    auto *const buttons = new QHBoxLayout;
    auto *const names = makeButton(tr("Sho&w track names…"), u"namesButton"_s,
                                   tr("Type the names of the tracks, or load them"), parent);
    auto *const custom = makeButton(tr("C&ustom tags…"), u"customTagsButton"_s,
                                    tr("Further fields, which only FLAC files take"), parent);
    buttons->addWidget(names);
    buttons->addWidget(custom);
    buttons->addStretch(1);
    group->addLayout(buttons);
    connect(names, &QPushButton::clicked, &m_tagsTab, &TagsTab::showNamesWindow);
    connect(custom, &QPushButton::clicked, &m_tagsTab, &TagsTab::openCustomTagsPanel);
    disableWhileReading(custom);
    auto *const note = new QLabel(parent);
    note->setObjectName(u"customTagsNote"_s);
    note->setWordWrap(true);
    note->setForegroundRole(QPalette::PlaceholderText);
    bind(note, m_tagsTab.customTagsNote);
    group->addWidget(note);
}

void TagsPage::addWriting()
{
    QVBoxLayout *const group = addOptionGroup(tr("Writing"), u"writingGroup"_s);
    QWidget *const parent = lastOptionGroup();
    addCheckBox(
        group, m_tagsTab.writeEmptyTagsButton, tr("Write empt&y fields"), u"writeEmptyTagsButton"_s,
        tr("Removes what stands in no field: what is empty here, and what the page does not show; otherwise an empty "
           "field changes nothing"),
        parent);
    addCheckBox(group, m_tagsTab.previewButton, tr("Pre&view before writing"), u"previewButton"_s,
                tr("The old and new values of every tag that changes, file by file"), parent);
}

} // namespace nurv
