// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "preferences/SettingField.h"

#include "settings/SettingsStore.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

SettingField::SettingField(Setting setting, QString name) : m_setting(std::move(setting)), m_name(std::move(name))
{
    restore();
    connect(&text, &Control::valueChanged, this, &SettingField::take);
    connect(&SettingsStore::instance(), &SettingsStore::changed, this, [this](const QString &key) {
        if (key == m_setting.key)
            restore();
    });
}

void SettingField::restore()
{
    const QString stored = SettingsStore::instance().string(m_setting.key);
    text.setText(stored);
    // Somebody may have written one into the file that nobody could type.
    const QString reason = m_setting.read(stored).objection;
    object(reason.isEmpty() ? QString() : u"%1 %2."_s.arg(m_name, reason));
}

void SettingField::take()
{
    SettingsStore &store = SettingsStore::instance();
    const SettingInput input = m_setting.read(text.text());
    const QString stored = store.string(m_setting.key);
    if (input.value && text.text() != stored)
        store.setValue(m_setting.key, *input.value);
    object(input.value ? QString() : u"%1 %2. \"%3\" stays."_s.arg(m_name, input.objection, stored));
}

void SettingField::object(const QString &sentence)
{
    objection.setText(sentence);
    objection.setHidden(sentence.isEmpty());
}

} // namespace nurv
