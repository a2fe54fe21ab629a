// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/AlbumArtWell.h"

#include "app/NURVController.h"
#include "app/UserPrompts.h"
#include "tagging/TagsTab.h"
#include "tags/PictureView.h"
#include "ui/GivenFiles.h"
#include "ui/NURVDragAndDropImageView.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMimeData>
#include <QPushButton>
#include <QVBoxLayout>

#include <functional>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kSide = 150;
constexpr int kMargin = 6;

/// The picture of the clipboard in the bytes of whoever put it there; only what this program has put there is rendered.
QByteArray pastedBytes(const QMimeData &data)
{
    static const QStringList kinds{u"image/png"_s,  u"image/jpeg"_s, u"image/gif"_s,
                                   u"image/webp"_s, u"image/tiff"_s, u"image/bmp"_s};
    for (const QString &kind : kinds) {
        if (data.hasFormat(kind))
            return data.data(kind);
    }
    QByteArray bytes;
    if (data.hasFormat(u"application/x-qt-image"_s)) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        qvariant_cast<QImage>(data.imageData()).save(&buffer, "PNG");
    }
    return bytes;
}

} // namespace

AlbumArtWell::AlbumArtWell(TagsTab &tab, QWidget *parent)
    : QWidget(parent), m_tab(tab), m_view(new NURVDragAndDropImageView(this))
{
    m_view->setObjectName(u"albumArtImageView"_s);
    m_view->setAccessibleName(tr("Cover picture"));
    m_view->setFixedSize(kSide, kSide);
    m_view->setWordWrap(true);
    m_view->setFocusPolicy(Qt::StrongFocus);
    m_view->installEventFilter(this);
    m_view->setTextFormat(Qt::PlainText);
    m_view->setToolTip(tr("Drop a picture here, or paste one"));

    auto *const buttons = new QVBoxLayout;
    m_chooseButton = addButton(tr("Choose…"), u"choosePictureButton"_s, tr("Take a picture from a file"));
    m_pasteButton = addButton(tr("Paste"), u"pastePictureButton"_s, tr("Take the picture of the clipboard"));
    m_saveButton = addButton(tr("Save as…"), u"savePictureButton"_s, tr("Save the picture as a file"));
    m_removeButton = addButton(tr("Remove"), u"removePictureButton"_s,
                               tr("Empty the well; pictures in the files stay unless empty fields are written"));
    for (QPushButton *const button : {m_chooseButton, m_pasteButton, m_saveButton, m_removeButton})
        buttons->addWidget(button);
    buttons->addStretch(1);
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_view);
    row->addLayout(buttons, 1);

    connect(m_chooseButton, &QPushButton::clicked, this, &AlbumArtWell::choose);
    connect(m_pasteButton, &QPushButton::clicked, this, &AlbumArtWell::paste);
    connect(m_saveButton, &QPushButton::clicked, &m_tab, &TagsTab::savePictureAs);
    connect(m_removeButton, &QPushButton::clicked, &m_tab, &TagsTab::removePicture);
    connect(m_view, &NURVDragAndDropImageView::fileDropped, &m_tab, &TagsTab::takePictureFile,
            Qt::QueuedConnection); // the program that the file came from waits for the end of the drop
    connect(&m_tab.albumArtImageView, &Control::changed, this, &AlbumArtWell::showPicture);
    showPicture();
}

QPushButton *AlbumArtWell::addButton(const QString &title, const QString &objectName, const QString &toolTip)
{
    auto *const button = new QPushButton(title, this);
    button->setObjectName(objectName);
    button->setAccessibleName(tr("%1 the cover picture").arg(QString(title).remove(u'…')));
    button->setToolTip(toolTip);
    return button;
}

bool AlbumArtWell::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_view || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto *const key = static_cast<QKeyEvent *>(event);
    if (key->matches(QKeySequence::Paste))
        paste();
    else if (key->matches(QKeySequence::Delete))
        m_tab.removePicture();
    else
        return QWidget::eventFilter(watched, event);
    return true;
}

void AlbumArtWell::choose()
{
    const std::optional<QString> path = m_tab.nurvController().prompts().chooseFile(
        {.title = tr("Choose a cover picture"),
         .extensions = {u"png"_s, u"jpg"_s, u"jpeg"_s, u"gif"_s, u"tiff"_s, u"tif"_s, u"webp"_s, u"bmp"_s}});
    if (path)
        m_tab.takePictureFile(*path);
}

void AlbumArtWell::paste()
{
    const QMimeData *const pasted = QGuiApplication::clipboard()->mimeData();
    if (pasted == nullptr)
        return;
    const GivenFiles files = localFiles(pasted);
    if (files.paths.size() == 1)
        m_tab.takePictureFile(files.paths.first());
    else if (const QByteArray bytes = pastedBytes(*pasted); !bytes.isEmpty())
        m_tab.takePicture(bytes, tr("of the clipboard"));
    else
        m_tab.nurvController().prompts().ask({.title = tr("There is no picture in the clipboard."), .message = {}, .buttons = {tr("OK")}});
}

void AlbumArtWell::showPicture()
{
    const AlbumArtControl &control = m_tab.albumArtImageView;
    const AlbumArt &picture = control.picture();
    m_view->setEnabled(control.isEnabled());
    m_chooseButton->setEnabled(control.isEnabled());
    m_pasteButton->setEnabled(control.isEnabled());
    m_saveButton->setEnabled(control.isEnabled() && picture);
    m_removeButton->setEnabled(control.isEnabled() && picture);
    m_scaling.giveUp();
    m_view->setText(picture ? QString() : control.placeholder().isEmpty() ? tr("No picture") : control.placeholder());
    m_view->setAccessibleDescription(picture ? pictureWords(*picture) : m_view->text());
    m_view->setToolTip(picture ? pictureWords(*picture) : tr("Drop a picture here, or paste one"));
    if (!picture)
        return;
    const qreal ratio = devicePixelRatioF();
    const QSize box = QSize(kSide - 2 * kMargin, kSide - 2 * kMargin) * ratio;
    m_scaling.begin(
        this, [picture, box](const std::function<bool()> &) { return pictureView(picture->bytes(), box); },
        [this, ratio](const QImage &image) {
            QPixmap pixmap = QPixmap::fromImage(image);
            pixmap.setDevicePixelRatio(ratio);
            m_view->setPixmap(pixmap);
        });
}

} // namespace nurv
