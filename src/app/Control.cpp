// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Control.h"

#include "settings/SettingsStore.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <cstdint>

namespace nurv {

void Control::setEnabled(bool enabled)
{
    if (std::exchange(m_isEnabled, enabled) != enabled)
        Q_EMIT changed();
}

void Control::setHidden(bool hidden)
{
    if (std::exchange(m_isHidden, hidden) != hidden)
        Q_EMIT changed();
}

void Control::announceValue()
{
    Q_EMIT valueChanged();
    Q_EMIT changed();
}

void Control::bindInteger(const QString &key, std::function<int()> value, std::function<void(int)> take)
{
    Q_ASSERT_X(!m_isBound, "Control", "a control is bound to one setting only");
    m_isBound = true;
    SettingsStore &store = SettingsStore::instance();
    // A stored value that the control cannot show stays as it is until the user
    // chooses another one.
    const auto takeStored = [this, &store, key, take = std::move(take)] {
        const QScopedValueRollback taking(m_isTaking, true);
        take(store.integer(key));
    };
    takeStored();
    connect(&store, &SettingsStore::changed, this, [key, takeStored](const QString &changedKey) {
        if (changedKey == key)
            takeStored();
    });
    connect(this, &Control::valueChanged, this, [this, &store, key, value = std::move(value)] {
        if (!m_isTaking)
            store.setValue(key, value());
    });
}

void CheckControl::setOn(bool on)
{
    if (std::exchange(m_isOn, on) != on)
        announceValue();
}

void CheckControl::bindToSetting(const QString &key)
{
    bindInteger(
        key, [this] { return m_isOn ? 1 : 0; }, [this](int stored) { setOn(stored != 0); });
}

ChoiceControl::ChoiceControl(QStringList titles, int columns, int selectedIndex)
    : m_titles(std::move(titles)), m_columns(columns), m_selectedIndex(selectedIndex)
{
    Q_ASSERT(columns > 0);
}

void ChoiceControl::setSelectedIndex(int index)
{
    if (std::exchange(m_selectedIndex, index) != index)
        announceValue();
}

bool ChoiceControl::hasSelection() const
{
    return m_selectedIndex >= 0 && m_selectedIndex < m_titles.size();
}

int ChoiceControl::selectedRow() const
{
    return hasSelection() ? m_selectedIndex / m_columns : -1;
}

int ChoiceControl::selectedColumn() const
{
    return hasSelection() ? m_selectedIndex % m_columns : -1;
}

QString ChoiceControl::selectedTitle() const
{
    return hasSelection() ? m_titles.at(m_selectedIndex) : QString();
}

bool ChoiceControl::selectTitle(const QString &title)
{
    for (int index = 0; index < m_titles.size(); ++index) {
        if (m_titles.at(index).compare(title, Qt::CaseInsensitive) == 0) {
            setSelectedIndex(index);
            return true;
        }
    }
    return false;
}

void ChoiceControl::bindToSetting(const QString &key)
{
    bindInteger(
        key, [this] { return m_selectedIndex; }, [this](int stored) { setSelectedIndex(stored); });
}

NumberControl::NumberControl(int minimum, int maximum, int step, int value)
    : m_minimum(minimum), m_maximum(maximum), m_step(step), m_value(minimum)
{
    Q_ASSERT(minimum <= maximum && step > 0 && (std::int64_t{maximum} - minimum) % step == 0);
    setIntegerValue(value);
}

void NumberControl::setIntegerValue(int value)
{
    const std::int64_t offset = std::clamp(value, m_minimum, m_maximum) - std::int64_t{m_minimum};
    const std::int64_t steps = (offset + m_step / 2) / m_step;
    const int nearest = static_cast<int>(m_minimum + steps * m_step);
    if (std::exchange(m_value, nearest) != nearest)
        announceValue();
}

void NumberControl::bindToSetting(const QString &key)
{
    bindInteger(
        key, [this] { return m_value; }, [this](int stored) { setIntegerValue(stored); });
}

void LabelControl::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    announceValue();
}

} // namespace nurv
