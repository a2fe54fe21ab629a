// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/NURVCustomTagsPanel.h"

#include "app/Panel.h"
#include "app/UserPrompts.h"
#include "text/TextNumbers.h"

using namespace Qt::StringLiterals;

namespace nurv {

void NURVCustomTagsPanel::runPanel()
{
    if (!m_customTagDictionary)
        m_customTagDictionary.emplace();
    // There is nothing to take back: however it is left, its rows count.
    static_cast<void>(m_prompts.runPanel(
        {.title = u"Custom Tags"_s,
         .message = u"Further fields of FLAC files: a name and a value in each row. Fields without a row stay as they "
                    u"are, unless "
                    "empty fields are written."_s,
         .fields = {{.name = u"custom"_s, .control = &m_rows, .hint = u"Names and values of fields"_s}},
         .buttons = {{.title = u"OK"_s}}}));
    fillTagsDictionary();
}

void NURVCustomTagsPanel::fillTags(const Tags &tags)
{
    if (!tags.isEmpty() && !m_customTagDictionary)
        m_customTagDictionary.emplace();
    int row = 1;
    for (auto tag = tags.cbegin(); tag != tags.cend(); ++tag, ++row) {
        m_customTagDictionary->insert(tag.key(), tag.value());
        setValue(tag.key(), tag.value(), row);
    }
}

void NURVCustomTagsPanel::fillTagsDictionary()
{
    m_customTagDictionary.emplace();
    for (const PairsControl::Pair &pair : m_rows.pairs())
        m_customTagDictionary->insert(stringValue(pair.name), stringValue(pair.value));
}

QString NURVCustomTagsPanel::stringValue(const QString &text)
{
    return trimWhitespaceAndNewlines(text);
}

void NURVCustomTagsPanel::clearTags()
{
    m_rows.clear();
}

QString NURVCustomTagsPanel::customTagNameText(int row) const
{
    return m_rows.pairs().value(row - 1).name;
}

QString NURVCustomTagsPanel::customTagValueText(int row) const
{
    return m_rows.pairs().value(row - 1).value;
}

void NURVCustomTagsPanel::setValue(const QString &name, const QString &value, int row)
{
    m_rows.setPair(row - 1, {.name = name, .value = value});
}

} // namespace nurv
