// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Pages.h"

#include "checksum/ChecksumTab.h"
#include "convert/DecodeTab.h"
#include "convert/EncodeTab.h"
#include "fix/FixTab.h"
#include "lossy/LossyTab.h"
#include "shntool/SHNtoolTab.h"
#include "tagging/TagsTab.h"
#include "ui/pages/ChecksumPage.h"
#include "ui/pages/DecodePage.h"
#include "ui/pages/EncodePage.h"
#include "ui/pages/FixPage.h"
#include "ui/pages/LossyPage.h"
#include "ui/pages/SHNtoolPage.h"
#include "ui/pages/TagsPage.h"
#include "ui/pages/UtilPage.h"
#include "util/UtilTab.h"

namespace nurv {

namespace {

template<typename Tab, typename Page>
TabPage *makeFor(BaseTab *tab)
{
    auto *const suited = qobject_cast<Tab *>(tab);
    return suited ? new Page(*suited) : nullptr;
}

} // namespace

TabPage *makePage(BaseTab *tab)
{
    for (const auto make : {makeFor<DecodeTab, DecodePage>, makeFor<EncodeTab, EncodePage>, makeFor<ChecksumTab, ChecksumPage>,
                            makeFor<LossyTab, LossyPage>, makeFor<FixTab, FixPage>,
                            makeFor<SHNtoolTab, SHNtoolPage>, makeFor<TagsTab, TagsPage>,
                            makeFor<UtilTab, UtilPage>}) {
        if (TabPage *const page = make(tab))
            return page;
    }
    return nullptr;
}

} // namespace nurv
