// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Panel.h"

#include <QDialog>

class QGridLayout;
class QLabel;
class QPushButton;

namespace nurv {

/// A panel as a dialog: its widgets follow the controls, and set them as the user types.
/// The panel must outlive it.
class PanelDialog final : public QDialog {
    Q_OBJECT

public:
    PanelDialog(const Panel &panel, QWidget *parent);

    /// Accepts only while no field objects.
    void accept() override;
    void reject() override;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void addMessage();
    void addFields();
    void addObjection();
    void addField(const PanelField &field);
    /// Side by side with its caption, or below it and as wide as the dialog.
    void place(const PanelField &field, QWidget *widget, bool isWide);
    void addButtons();
    void orderTabs();
    void focusFirstField();
    void press(const PanelButton &button);
    void tell(const QString &objection);
    void showObjection();

    // Each makes the widget of a kind of control.
    QWidget *widgetFor(const PanelField &field, CheckControl &control);
    QWidget *widgetFor(const PanelField &field, ChoiceControl &control);
    QWidget *widgetFor(const PanelField &field, SliderControl &control);
    QWidget *widgetFor(const PanelField &field, StepperControl &control);
    QWidget *widgetFor(const PanelField &field, LabelControl &control);
    QWidget *widgetFor(const PanelField &field, TextControl &control);
    QWidget *widgetFor(const PanelField &field, LinesControl &control);
    QWidget *widgetFor(const PanelField &field, PairsControl &control);

    const Panel &m_panel;
    QGridLayout *m_grid = nullptr;
    QLabel *m_objection = nullptr;
    bool m_mayObject = false;
    QList<QPushButton *> m_acceptingButtons;
    QList<QWidget *> m_stops; ///< of the keyboard: fields, then buttons
};

} // namespace nurv
