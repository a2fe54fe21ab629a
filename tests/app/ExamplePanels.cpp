// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ExamplePanels.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace nurv::test {

Panel PrefixPanel::panel()
{
    const auto objection = [this] {
        if (prefix.text().isEmpty())
            return u"Type what the names are to start with."_s;
        return prefix.text().contains(u'/') ? u"A prefix with a slash would name a folder."_s : QString();
    };
    return {.title = u"Batch Rename"_s,
            .message = u"Enter the Prefix that you want the files to start with:"_s,
            .fields = {{.name = u"prefix"_s,
                        .caption = u"&Prefix:"_s,
                        .control = &prefix,
                        .hint = u"The number of the file comes behind it."_s,
                        .objection = objection}},
            .buttons = okAndCancel()};
}

Panel TrimPanel::panel()
{
    return {.title = u"Remove Characters"_s,
            .fields = {{.name = u"number"_s, .caption = u"&Number of characters:"_s, .control = &number},
                       {.name = u"position"_s, .caption = u"&From the:"_s, .control = &position}},
            .buttons = okAndCancel()};
}

Panel CustomTagsPanel::panel()
{
    const auto objection = [this] {
        for (int row = 0; row < tags.rowCount(); ++row) {
            if (tags.pairs().at(row).name.isEmpty() && !tags.pairs().at(row).value.isEmpty())
                return u"Row %1 has a value without a name."_s.arg(row + 1);
        }
        return QString();
    };
    return {.title = u"Custom Tags"_s,
            .message = u"Fields that only FLAC files take:"_s,
            .fields = {{.name = u"custom"_s, .control = &tags, .objection = objection}},
            .buttons = {{.title = u"Done"_s}}};
}

Panel NamesPanel::panel()
{
    std::vector<PanelButton> buttons{
        {.title = u"&Load…"_s, .role = PanelButton::Role::Stay, .action = [this] { load(); }},
        {.title = u"&Remove Characters…"_s, .role = PanelButton::Role::Stay, .action = [this] { trimSelectedLines(); }}};
    for (const PanelButton &button : okAndCancel())
        buttons.push_back(button);
    return {.title = u"Track Names"_s,
            .message = u"One name a line:"_s,
            .fields = {{.name = u"names"_s, .caption = u"&Names:"_s, .control = &names}},
            .buttons = buttons};
}

void NamesPanel::load()
{
    const std::optional<QString> path = m_prompts.chooseFile(
        {.title = u"Choose file with track names"_s, .extensions = {u"txt"_s}, .option = u"names-file"_s});
    if (!path)
        return;
    QFile file(*path);
    if (file.open(QIODevice::ReadOnly))
        names.setText(QString::fromUtf8(file.readAll()));
}

void NamesPanel::trimSelectedLines()
{
    TrimPanel trim;
    if (!m_prompts.runPanel(trim.panel()) || names.selectionLength() == 0)
        return;
    const QString text = names.text();
    const qsizetype start = names.selectionStart();
    const qsizetype end = start + names.selectionLength();
    QString trimmed;
    for (const QString &line : text.sliced(start, end - start).split(u'\n')) {
        const qsizetype number = trim.number.integerValue();
        if (line.size() >= number)
            trimmed += (trim.position.selectedIndex() == 0 ? line.sliced(number) : line.chopped(number)) + u'\n';
    }
    const QString behind = text.sliced(end);
    names.setText(text.first(start) + trimmed + (behind.startsWith(u'\n') ? behind.sliced(1) : behind));
}

Panel OptionsPanel::panel()
{
    return {.title = u"Options"_s,
            .fields = {{.name = u"advice"_s, .control = &advice},
                       {.name = u"on"_s, .caption = u"&Switch it on"_s, .control = &isOn},
                       {.name = u"level"_s, .caption = u"&Level:"_s, .control = &level}},
            .buttons = okAndCancel()};
}

} // namespace nurv::test
