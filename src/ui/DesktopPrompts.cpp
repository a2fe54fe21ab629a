// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/DesktopPrompts.h"

#include "text/PrintableText.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

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

void prepare(QFileDialog &dialog, const QString &title, const QString &buttonText)
{
    dialog.setObjectName(u"fileDialog"_s);
    if (!title.isEmpty())
        dialog.setWindowTitle(title);
    if (!buttonText.isEmpty())
        dialog.setLabelText(QFileDialog::Accept, buttonText);
    dialog.setSupportedSchemes({u"file"_s});
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
    box.setIcon(isQuestion ? QMessageBox::Question : QMessageBox::Information);
    const qsizetype dismissing = alert.buttons.indexOf(dismissingButton(alert));
    QList<QPushButton *> buttons;
    for (qsizetype index = 0; index < alert.buttons.size(); ++index) {
        const auto role = isQuestion && index == dismissing ? QMessageBox::RejectRole : QMessageBox::AcceptRole;
        QPushButton *const button = box.addButton(alert.buttons.at(index), role);
        button->setAccessibleName(alert.buttons.at(index));
        buttons.append(button);
    }
    if (buttons.isEmpty()) {
        box.exec();
        return {};
    }
    box.setDefaultButton(buttons.first());
    box.setEscapeButton(buttons.at(dismissing));
    box.exec();
    for (qsizetype index = 0; index < buttons.size(); ++index) {
        if (box.clickedButton() == buttons.at(index))
            return alert.buttons.at(index);
    }
    return alert.buttons.at(dismissing);
}

QStringList DesktopPrompts::chooseFiles(const FileChooser &chooser)
{
    QFileDialog dialog(owner());
    prepare(dialog, chooser.title, chooser.buttonText);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    return dialog.exec() == QDialog::Accepted ? localPaths(dialog) : QStringList();
}

std::optional<QString> DesktopPrompts::chooseFolder(const FileChooser &chooser)
{
    QFileDialog dialog(owner());
    prepare(dialog, chooser.title, chooser.buttonText);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    const QStringList paths = localPaths(dialog);
    return paths.isEmpty() ? std::nullopt : std::optional(paths.first());
}

std::optional<QString> DesktopPrompts::chooseSavePath(const QString &suggestedName, const std::optional<QString> &title)
{
    QFileDialog dialog(owner());
    prepare(dialog, title.value_or(QString()), QString());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.selectFile(suggestedName);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    const QStringList paths = localPaths(dialog);
    return paths.isEmpty() ? std::nullopt : std::optional(paths.first());
}

} // namespace nurv
