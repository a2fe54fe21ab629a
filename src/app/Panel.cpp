// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Panel.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

Control &PanelField::base() const
{
    return std::visit([](auto *shown) -> Control & { return *shown; }, control);
}

QString PanelField::title() const
{
    QString text = QString(caption).remove(u'&').trimmed();
    if (text.endsWith(u':'))
        text.chop(1);
    return text.isEmpty() ? name : text;
}

QString Panel::objection() const
{
    for (const PanelField &field : fields) {
        if (!field.objection || field.base().isHidden() || !field.base().isEnabled())
            continue;
        if (QString reason = field.objection(); !reason.isEmpty())
            return reason;
    }
    return {};
}

bool Panel::canBeDismissed() const
{
    return std::any_of(buttons.begin(), buttons.end(),
                       [](const PanelButton &button) { return button.role == PanelButton::Role::Dismiss; });
}

std::vector<PanelButton> okAndCancel()
{
    return {{.title = u"Cancel"_s, .role = PanelButton::Role::Dismiss}, {.title = u"OK"_s}};
}

} // namespace nurv
