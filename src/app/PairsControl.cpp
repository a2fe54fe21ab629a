// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/PairsControl.h"

namespace nurv {

void PairsControl::setPair(int row, const Pair &pair)
{
    if (row < 0 || row >= rowCount() || m_pairs.at(row) == pair)
        return;
    m_pairs[row] = pair;
    announceValue();
}

void PairsControl::clear()
{
    for (int row = 0; row < rowCount(); ++row)
        setPair(row, {});
}

} // namespace nurv
