// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/TaskOutcome.h"

using namespace Qt::StringLiterals;

namespace nurv {

QString stateWord(ListedFile::State state)
{
    using State = ListedFile::State;
    switch (state) {
    case State::Ok: return u"ok"_s;
    case State::Different: return u"different"_s;
    case State::Damaged: return u"damaged"_s;
    case State::Missing: return u"missing"_s;
    case State::Unreadable: return u"unreadable"_s;
    case State::NotAnEntry: break;
    }
    return u"invalid"_s;
}

} // namespace nurv
