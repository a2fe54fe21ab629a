// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/DockMenuController.h"

#include "app/NURVController.h"

using namespace Qt::StringLiterals;

namespace nurv {

void DockMenuController::selectTab(int tag)
{
    m_controller.selectTab(tag);
}

bool DockMenuController::selectTab(const QString &action)
{
    const QStringList labels = m_controller.pageLabels();
    for (int tag = 0; tag < labels.size(); ++tag) {
        if (actionOf(labels.at(tag)) != action || !actions().contains(action))
            continue;
        selectTab(tag);
        return true;
    }
    return false;
}

QStringList DockMenuController::actions() const
{
    QStringList names;
    for (const QString &label : m_controller.pageLabels()) {
        if (label == NURVController::kAboutLabel || m_controller.tab(label) != nullptr)
            names.append(actionOf(label));
    }
    return names;
}

QString DockMenuController::actionOf(const QString &label)
{
    return label.toLower().replace(u' ', u'-');
}

} // namespace nurv
