// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

class BaseTab;
class TabPage;

/// The page that shows a tab; null for a null tab and one of a kind that has no page.
[[nodiscard]] TabPage *makePage(BaseTab *tab);

} // namespace nurv
