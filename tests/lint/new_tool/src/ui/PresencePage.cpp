// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PresencePage.h"

#include "checksum/PresenceTab.h"
#include "ui/OptionWidgets.h"

#include <QGroupBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

PresencePage::PresencePage(PresenceTab &tab, QWidget *parent) : TabPage(tab, parent)
{
    QVBoxLayout *const group = addOptionGroup(tr("Presence"), u"presenceGroup"_s);
    addCheckBox(group, tab.strictButton, tr("&Strict"), u"strictButton"_s, tr("Links do not count"), lastOptionGroup());
    finishOptions();
}

} // namespace nurv
