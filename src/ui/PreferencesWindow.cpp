// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PreferencesWindow.h"

#include "preferences/PreferencesController.h"
#include "ui/Bindings.h"
#include "ui/NumberBox.h"
#include "ui/PreferencesPage.h"
#include "ui/RadioMatrix.h"
#include "ui/WindowPlace.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QShowEvent>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QString kGeometryKey = u"window/preferencesGeometry"_s;
constexpr int kMargin = 12;

template<typename Widget>
Widget *named(Widget *widget, const QString &objectName, const QString &accessibleName)
{
    widget->setObjectName(objectName);
    widget->setAccessibleName(accessibleName);
    return widget;
}

/// Says what is wrong with a field also to those who do not see the line below it.
void describe(QLineEdit *field, LabelControl &objection, const QString &toolTip)
{
    const auto show = [field, &objection, toolTip] {
        field->setAccessibleDescription(objection.text().isEmpty() ? toolTip : objection.text());
    };
    field->setToolTip(toolTip);
    show();
    QObject::connect(&objection, &Control::changed, field, show);
}

} // namespace

PreferencesWindow::PreferencesWindow(PreferencesController &preferences, QWidget *parent)
    : QDialog(parent), m_preferences(preferences), m_tabs(new QTabWidget(this)),
      m_closeButton(new QPushButton(tr("&Close"), this)), m_resizing(this)
{
    setObjectName(u"preferencesWindow"_s);
    setWindowTitle(tr("Preferences"));
    m_tabs->setObjectName(u"preferencesTab"_s);
    m_tabs->setAccessibleName(tr("Pages"));
    m_tabs->setDocumentMode(true);
    m_tabs->tabBar()->setObjectName(u"preferencesTabBar"_s);
    m_tabs->tabBar()->setAccessibleName(tr("Pages"));
    addGeneralPage();
    addMetadataPage();
    named(m_closeButton, u"closeButton"_s, tr("Close"));
    m_closeButton->setAutoDefault(false);
    connect(m_closeButton, &QPushButton::clicked, this, &QDialog::reject);
    auto *const buttons = new QHBoxLayout;
    buttons->setContentsMargins(kMargin, 0, kMargin, kMargin);
    buttons->addStretch(1);
    buttons->addWidget(m_closeButton);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_tabs, 1);
    column->addLayout(buttons);
    connect(m_tabs, &QTabWidget::currentChanged, this, [this](int index) { m_preferences.preferencesTab.setSelectedIndex(index); });
    connect(&preferences.preferencesTab, &Control::valueChanged, this, &PreferencesWindow::showSelectedPage);
    connect(&m_resizing, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &height) { resize(width(), height.toInt()); });
    m_tabs->setCurrentIndex(preferences.preferencesTab.selectedIndex());
    windowPlace::restore(*this, kGeometryKey, sizeHint());
}

PreferencesPage *PreferencesWindow::addPage(const QString &title, const QString &objectName)
{
    auto *const page = new PreferencesPage(objectName, m_tabs);
    m_tabs->addTab(page, title);
    connect(page, &PreferencesPage::heightChanged, this, [this] {
        if (isVisible())
            resizePreferencesPane(false);
    });
    return page;
}

void PreferencesWindow::addGeneralPage()
{
    PreferencesPage *const page = addPage(tr("&General"), u"generalPage"_s);
    auto *const jobs = named(new NumberBox(page->contents()), u"maxThreadsStepper"_s, tr("Jobs at once"));
    jobs->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    bind(jobs, m_preferences.maxThreadsStepper);
    QVBoxLayout *column = page->addRow(tr("&Jobs at once:"), jobs);
    const QString note = tr("From %1 to %2. Jobs that run go on; a new number counts from the next one that ends.")
                             .arg(jobs->minimum())
                             .arg(jobs->maximum());
    jobs->setAccessibleDescription(note);
    page->addNote(column, note, u"maxThreadsNote"_s);

    auto *const way = named(new RadioMatrix(page->contents()), u"trashOrDelete"_s, tr("Deleted originals"));
    way->setToolTip(tr("Also for files that an output replaces"));
    bind(way, m_preferences.trashOrDelete, {tr("&Delete for good"), tr("Move to the &trash")});
    column = page->addRow(tr("Deleted originals:"));
    column->addWidget(way);

    column = page->addRow(tr("Before deleting:"));
    page->addCheckBox(column, m_preferences.warnOnDeleteButton, tr("&Ask before such jobs start"), u"warnOnDeleteButton"_s,
                      tr("One question for all jobs of a list"));
    page->addCheckBox(column, m_preferences.proveButton, tr("&Prove that the output has the same sound"), u"proveButton"_s,
                      tr("Decodes original and output again; the original goes only when their sound is the same"));

    column = page->addRow(tr("Added files:"));
    page->addCheckBox(column, m_preferences.warnSkipFilesButton, tr("Tell which ones were passed &over"),
                      u"warnSkipFilesButton"_s, tr("Names the files that a tool does not take"));

    column = page->addRow(tr("Output folder:"));
    page->addCheckBox(column, m_preferences.keepFoldersButton, tr("&Keep the folders of the sources"), u"keepFoldersButton"_s,
                      tr("Makes them again below the output folder"));
}

void PreferencesWindow::addMetadataPage()
{
    PreferencesPage *const page = addPage(tr("&Metadata"), u"metadataPage"_s);
    addSetListRow(*page);
    addListRows(*page);
    QVBoxLayout *column = page->addRow(tr("Tags and pictures:"));
    page->addCheckBox(column, m_preferences.dropMetadataButton, tr("Delete originals even when some are &lost"),
                      u"dropMetadataButton"_s,
                      tr("Originals go although the output lacks some of their tags, pictures or chunks"));
    auto *const order = named(new QComboBox(page->contents()), u"surroundOrder"_s, tr("Order of six channels"));
    order->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    bind(order, m_preferences.surroundOrder);
    column = page->addRow(tr("Si&x channels:"), order);
    const QString note = tr("The order that sound of six channels is said to have. It is kept for you: no tool changes the order.");
    order->setAccessibleDescription(note);
    page->addNote(column, note, u"surroundOrderNote"_s);
}

void PreferencesWindow::addSetListRow(PreferencesPage &page)
{
    auto *const format = named(new QLineEdit(page.contents()), u"shnlenTrackListingFormat"_s, tr("Line of a set list"));
    bind(format, m_preferences.shnlenTrackListingFormat);
    QVBoxLayout *const column = page.addRow(tr("Line of a &set list:"), format);
    describe(format, m_preferences.namesFormatObjection,
             tr("%number, %name and %time stand for the number, the name and the length of a track"));
    page.addObjection(column, m_preferences.namesFormatObjection, u"namesFormatObjection"_s);
    page.addLine(column, m_preferences.currentFormat, u"currentFormat"_s)->setAccessibleName(tr("Example of a line"));
    page.addNote(column, tr("%number, %name and %time stand for those of a track."), u"namesFormatNote"_s);
}

void PreferencesWindow::addListRows(PreferencesPage &page)
{
    auto *const ending = named(new QLineEdit(page.contents()), u"ffpExtension"_s, tr("Ending of fingerprint lists"));
    bind(ending, m_preferences.ffpExtension);
    QVBoxLayout *column = page.addRow(tr("&Fingerprint lists end in:"), ending);
    describe(ending, m_preferences.ffpExtensionObjection, tr("What stands behind the dot: fingerprint.ffp.txt"));
    page.addObjection(column, m_preferences.ffpExtensionObjection, u"ffpExtensionObjection"_s);
    column = page.addRow(tr("Checksum lists:"));
    page.addCheckBox(column, m_preferences.namedAfterFolderButton, tr("&Name them after their folder"),
                     u"namedAfterFolderButton"_s, tr("Instead of \"checksum\" and \"fingerprint\""));
}

PreferencesPage *PreferencesWindow::currentPage() const
{
    return qobject_cast<PreferencesPage *>(m_tabs->currentWidget());
}

void PreferencesWindow::showSelectedPage()
{
    m_tabs->setCurrentIndex(m_preferences.preferencesTab.selectedIndex());
    if (isVisible())
        resizePreferencesPane(true);
}

int PreferencesWindow::fittingHeight() const
{
    const int around = m_tabs->tabBar()->sizeHint().height() + m_closeButton->sizeHint().height() + kMargin;
    const int frame = frameGeometry().height() - height();
    const int most = screen()->availableGeometry().height() - frame;
    return std::min(around + currentPage()->heightFor(width()), most);
}

void PreferencesWindow::resizePreferencesPane(bool animated)
{
    m_resizing.stop();
    const int duration = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this);
    if (!animated || duration <= 0) {
        resize(width(), fittingHeight());
        return;
    }
    m_resizing.setDuration(duration);
    m_resizing.setStartValue(height());
    m_resizing.setEndValue(fittingHeight());
    m_resizing.start();
}

void PreferencesWindow::bringToFront()
{
    show();
    raise();
    activateWindow();
}

void PreferencesWindow::saveState() const
{
    windowPlace::keep(*this, kGeometryKey);
}

void PreferencesWindow::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (!event->spontaneous())
        resizePreferencesPane(false);
}

void PreferencesWindow::hideEvent(QHideEvent *event)
{
    QDialog::hideEvent(event);
    if (event->spontaneous())
        return;
    m_resizing.stop();
    saveState();
    m_preferences.windowWillClose();
}

} // namespace nurv
