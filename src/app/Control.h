// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <utility>

namespace nurv {

/// One option of a tool tab, free of any widget: the window binds widgets to it,
/// the command line and the tests set it. Lives on the GUI thread, owned by its
/// tab.
class Control : public QObject {
    Q_OBJECT

public:
    [[nodiscard]] bool isEnabled() const { return m_isEnabled; }
    void setEnabled(bool enabled);
    [[nodiscard]] bool isHidden() const { return m_isHidden; }
    void setHidden(bool hidden);

Q_SIGNALS:
    /// The value, the enabled state or the hidden state is another one now.
    void changed();
    /// The value is another one now.
    void valueChanged();

protected:
    Control() = default;
    /// Emits both signals.
    void announceValue();
    /// Takes the setting's value now and whenever it changes, and stores every
    /// other new value under it, as an integer. Called at most once.
    void bindInteger(const QString &key, std::function<int()> value, std::function<void(int)> take);

private:
    bool m_isEnabled = true;
    bool m_isHidden = false;
    bool m_isBound = false;
    bool m_isTaking = false;
};

/// A check box.
class CheckControl final : public Control {
    Q_OBJECT

public:
    explicit CheckControl(bool isOn = false) : m_isOn(isOn) {}
    [[nodiscard]] bool isOn() const { return m_isOn; }
    void setOn(bool on);
    /// The value follows the setting and is stored under it (as an integer).
    void bindToSetting(const QString &key);

private:
    bool m_isOn;
};

/// A choice of one cell of a matrix, counted row by row.
class ChoiceControl final : public Control {
    Q_OBJECT

public:
    explicit ChoiceControl(QStringList titles, int columns = 1, int selectedIndex = 0);
    [[nodiscard]] const QStringList &titles() const { return m_titles; }
    [[nodiscard]] int columns() const { return m_columns; }
    /// May lie outside the cells: then nothing is selected.
    [[nodiscard]] int selectedIndex() const { return m_selectedIndex; }
    void setSelectedIndex(int index);
    /// The place of the selected cell; -1 when nothing is selected.
    [[nodiscard]] int selectedRow() const;
    [[nodiscard]] int selectedColumn() const;
    /// The title of the selected cell; empty when nothing is selected.
    [[nodiscard]] QString selectedTitle() const;
    /// Selects the cell with that title, compared without case. False when there is none.
    bool selectTitle(const QString &title);
    void bindToSetting(const QString &key);

private:
    [[nodiscard]] bool hasSelection() const;

    QStringList m_titles;
    int m_columns;
    int m_selectedIndex;
};

/// A whole number within a range and on its steps.
class NumberControl : public Control {
    Q_OBJECT

public:
    [[nodiscard]] int minimum() const { return m_minimum; }
    [[nodiscard]] int maximum() const { return m_maximum; }
    [[nodiscard]] int step() const { return m_step; }
    [[nodiscard]] int integerValue() const { return m_value; }
    /// The value as text, as it stands in a command line.
    [[nodiscard]] QString stringValue() const { return QString::number(m_value); }
    /// Moves to the step nearest to the value, within the range.
    void setIntegerValue(int value);
    void bindToSetting(const QString &key);

protected:
    NumberControl(int minimum, int maximum, int step, int value);

private:
    int m_minimum;
    int m_maximum;
    int m_step;
    int m_value;
};

/// A number that the user slides.
class SliderControl final : public NumberControl {
    Q_OBJECT

public:
    SliderControl(int minimum, int maximum, int step, int value) : NumberControl(minimum, maximum, step, value) {}
};

/// A number that the user types or steps to.
class StepperControl final : public NumberControl {
    Q_OBJECT

public:
    StepperControl(int minimum, int maximum, int value, int step = 1) : NumberControl(minimum, maximum, step, value) {}
};

/// A line of text that the user reads.
class LabelControl final : public Control {
    Q_OBJECT

public:
    explicit LabelControl(QString text) : m_text(std::move(text)) {}
    [[nodiscard]] const QString &text() const { return m_text; }
    void setText(const QString &text);

private:
    QString m_text;
};

} // namespace nurv
