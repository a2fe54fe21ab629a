// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/DesktopPrompts.h"

#include "base/GuiThread.h"
#include "base/WorkerThreads.h"
#include "settings/SettingsStore.h"
#include "tags/PictureView.h"
#include "text/PrintableText.h"
#include "ui/PanelDialog.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPixmap>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kPictureSide = 64;
/// What a window's frame has beside its title.
constexpr int kTitleButtonsWidth = 140;
constexpr int kMomentMs = 300;

QStringList localPaths(const QFileDialog &dialog)
{
    QStringList paths;
    const QList<QUrl> urls = dialog.selectedUrls();
    for (const QUrl &url : urls) {
        if (url.isLocalFile())
            paths.append(QDir::cleanPath(url.toLocalFile()));
    }
    return paths;
}

QString filterOf(const QStringList &extensions, const QString &title)
{
    QStringList patterns;
    // Some desktops' dialogs tell capitals apart.
    for (const QString &extension : extensions)
        patterns << u"*."_s + extension << u"*."_s + extension.toUpper();
    return title + u" ("_s + patterns.join(u' ') + u')';
}

/// "CUE files (*.cue)", "CUE and TXT files (*.cue *.txt)".
QString filterFor(const QStringList &extensions)
{
    QStringList kinds;
    for (const QString &extension : extensions)
        kinds.append(extension.toUpper());
    const QString last = kinds.takeLast();
    const auto translated = [](const char *text) { return QCoreApplication::translate("DesktopPrompts", text); };
    const QString names = kinds.isEmpty()
        ? last
        : translated(QT_TRANSLATE_NOOP("DesktopPrompts", "%1 and %2")).arg(kinds.join(u", "_s), last);
    return filterOf(extensions, translated(QT_TRANSLATE_NOOP("DesktopPrompts", "%1 files")).arg(names));
}

/// A box is as wide as its texts, and takes no other width.
void widenForTitle(QMessageBox &box)
{
    auto *const grid = qobject_cast<QGridLayout *>(box.layout());
    if (grid == nullptr)
        return;
    const int width = box.fontMetrics().horizontalAdvance(box.windowTitle()) + kTitleButtonsWidth;
    grid->addItem(new QSpacerItem(width, 0, QSizePolicy::Minimum, QSizePolicy::Expanding), grid->rowCount(), 0, 1,
                  grid->columnCount());
}

/// The words of buttons begin with different letters.
QString withMnemonic(const QString &title)
{
    return title.contains(u'&') ? title : u'&' + title;
}

QFileDialog::FileMode modeOf(FileChooser::Kind kind)
{
    switch (kind) {
    case FileChooser::Kind::File: return QFileDialog::ExistingFile;
    case FileChooser::Kind::Files: return QFileDialog::ExistingFiles;
    case FileChooser::Kind::Folder: return QFileDialog::Directory;
    case FileChooser::Kind::Save: break;
    }
    return QFileDialog::AnyFile;
}

void prepare(QFileDialog &dialog, const FileChooser &chooser)
{
    dialog.setObjectName(u"fileDialog"_s);
    if (!chooser.title.isEmpty())
        dialog.setWindowTitle(chooser.title);
    dialog.setSupportedSchemes({u"file"_s});
    dialog.setAcceptMode(chooser.kind == FileChooser::Kind::Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(modeOf(chooser.kind));
    dialog.setOption(QFileDialog::ShowDirsOnly, chooser.kind == FileChooser::Kind::Folder);
    if (!chooser.buttonText.isEmpty())
        dialog.setLabelText(QFileDialog::Accept, chooser.buttonText);
    if (!chooser.extensions.isEmpty() && chooser.offersAllFiles)
        dialog.setNameFilters(
            {filterOf(chooser.extensions, QCoreApplication::translate("DesktopPrompts", "Files for this page")),
             QCoreApplication::translate("DesktopPrompts", "All files (*)")});
    else if (!chooser.extensions.isEmpty())
        dialog.setNameFilter(filterFor(chooser.extensions));
    if (!chooser.suggestedName.isEmpty())
        dialog.selectFile(chooser.suggestedName);
}

} // namespace

QWidget *DesktopPrompts::owner() const
{
    QWidget *const active = QApplication::activeWindow();
    return active != nullptr ? active : m_mainWindow.data();
}

QString DesktopPrompts::ask(const Alert &alert)
{
    QMessageBox box(owner());
    box.setObjectName(u"alert"_s);
    box.setWindowTitle(QApplication::applicationDisplayName());
    box.setTextFormat(Qt::PlainText);
    box.setText(printableText(alert.title));
    box.setInformativeText(printableText(alert.message));
    // The box keeps the format to its first text; the second would take a name for markup.
    const QList<QLabel *> labels = box.findChildren<QLabel *>();
    for (QLabel *const label : labels)
        label->setTextFormat(Qt::PlainText);
    const bool isQuestion = alert.buttons.size() > 1;
    box.setIcon(alert.isWarning ? QMessageBox::Warning : isQuestion ? QMessageBox::Question : QMessageBox::Information);
    if (!alert.picture.isEmpty()) {
        const qreal ratio = box.devicePixelRatioF();
        QPixmap pixmap = QPixmap::fromImage(pictureView(alert.picture, QSize(kPictureSide, kPictureSide) * ratio));
        pixmap.setDevicePixelRatio(ratio);
        if (!pixmap.isNull())
            box.setIconPixmap(pixmap);
    }
    const qsizetype dismissing = alert.buttons.indexOf(dismissingButton(alert));
    QList<QPushButton *> buttons;
    for (qsizetype index = 0; index < alert.buttons.size(); ++index) {
        const auto role = isQuestion && index == dismissing ? QMessageBox::RejectRole : QMessageBox::AcceptRole;
        QPushButton *const button = box.addButton(withMnemonic(alert.buttons.at(index)), role);
        button->setAccessibleName(alert.buttons.at(index));
        buttons.append(button);
    }
    if (buttons.isEmpty()) {
        box.exec();
        return {};
    }
    box.setDefaultButton(alert.isWarning ? buttons.at(dismissing) : buttons.first());
    box.setEscapeButton(buttons.at(dismissing));
    widenForTitle(box);
    box.exec();
    for (qsizetype index = 0; index < buttons.size(); ++index) {
        if (box.clickedButton() == buttons.at(index))
            return alert.buttons.at(index);
    }
    return alert.buttons.at(dismissing);
}

QStringList DesktopPrompts::choose(const FileChooser &chooser)
{
    QFileDialog dialog(owner());
    prepare(dialog, chooser);
    SettingsStore &settings = SettingsStore::instance();
    if (const QString folder = chooser.folderKey.isEmpty() ? QString() : settings.string(chooser.folderKey);
        !folder.isEmpty() && QFileInfo(folder).isDir())
        dialog.setDirectory(folder);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    const QStringList chosen = localPaths(dialog);
    if (!chooser.folderKey.isEmpty() && !chosen.isEmpty())
        settings.setValue(chooser.folderKey, chosen.first());
    return chosen;
}

bool DesktopPrompts::runPanel(const Panel &panel)
{
    PanelDialog dialog(panel, owner());
    return dialog.exec() == QDialog::Accepted;
}

bool DesktopPrompts::waitFor(const QString &what,
                             const std::function<void(const std::function<bool()> &isUnwanted)> &work)
{
    struct State {
        std::mutex lock;
        std::condition_variable ended;
        bool isDone = false;
        std::atomic<bool> isUnwanted = false;
    };
    const auto state = std::make_shared<State>();
    QEventLoop loop;
    workerThreads::startOrRun([state, work, guard = QPointer<QEventLoop>(&loop)] {
        work([&state] { return state->isUnwanted.load(); });
        {
            const std::scoped_lock lock(state->lock);
            state->isDone = true;
        }
        state->ended.notify_all();
        postToGuiThread([guard] {
            if (guard)
                guard->quit();
        });
    });
    const auto isDone = [&state] {
        const std::scoped_lock lock(state->lock);
        return state->isDone;
    };
    // What comes at once shows no dialog; what is pressed until then waits for it.
    QTimer::singleShot(kMomentMs, &loop, &QEventLoop::quit);
    if (!isDone())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    QProgressDialog dialog(what, QCoreApplication::translate("DesktopPrompts", "Cancel"), 0, 0, owner());
    dialog.setObjectName(u"waitDialog"_s);
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.setAutoReset(false);
    QObject::connect(&dialog, &QProgressDialog::canceled, &loop, [&] {
        state->isUnwanted = true;
        dialog.setLabelText(QCoreApplication::translate("DesktopPrompts", "Ending…"));
        dialog.show();
    });
    if (!isDone()) {
        dialog.show();
        loop.exec();
    }
    // The loop also ends with the application; what the work refers to has to stay until it has ended.
    std::unique_lock lock(state->lock);
    if (!state->isDone)
        state->isUnwanted = true;
    state->ended.wait(lock, [&state] { return state->isDone; });
    return !state->isUnwanted;
}

} // namespace nurv
