// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/FieldWords.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

template<typename... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};

QString kindOf(const NumberControl &control)
{
    const QString range =
        u"a whole number from %1 to %2"_s.arg(control.minimum()).arg(control.maximum());
    return control.step() == 1 ? range : range + u" in steps of %1"_s.arg(control.step());
}

QString refusal(const QString &kind, const QString &word)
{
    return u"takes %1, not \"%2\""_s.arg(kind, word);
}

QString take(NumberControl &control, const QString &word)
{
    bool isNumber = false;
    const int number = word.toInt(&isNumber);
    const bool isOnStep = (std::int64_t{number} - control.minimum()) % control.step() == 0;
    if (!isNumber || number < control.minimum() || number > control.maximum() || !isOnStep)
        return refusal(kindOf(control), word);
    control.setIntegerValue(number);
    return {};
}

/// "NAME=VALUE"; a value may hold further equals signs.
QString take(PairsControl &control, const QStringList &words)
{
    if (words.size() > control.rowCount())
        return u"can be given %1 times at most, not %2 times"_s.arg(control.rowCount()).arg(words.size());
    QList<PairsControl::Pair> pairs(control.rowCount());
    for (qsizetype row = 0; row < words.size(); ++row) {
        const qsizetype equals = words.at(row).indexOf(u'=');
        if (equals < 1)
            return refusal(u"NAME=VALUE"_s, words.at(row));
        pairs[row] = {.name = words.at(row).first(equals), .value = words.at(row).sliced(equals + 1)};
    }
    for (int row = 0; row < control.rowCount(); ++row)
        control.setPair(row, pairs.at(row));
    return {};
}

} // namespace

bool mustBeAnswered(const PanelField &field)
{
    const bool isFreeToStay =
        std::holds_alternative<LabelControl *>(field.control) || std::holds_alternative<CheckControl *>(field.control);
    return !isFreeToStay && !field.base().isHidden() && field.base().isEnabled();
}

bool takesSeveral(const PanelField &field)
{
    return std::holds_alternative<PairsControl *>(field.control) || std::holds_alternative<LinesControl *>(field.control);
}

QString kindOfWords(const PanelField &field)
{
    return std::visit(Overloaded{
                          [](const NumberControl *control) { return kindOf(*control); },
                          [](const ChoiceControl *control) { return control->titles().join(u" or "_s); },
                          [](const PairsControl *) { return u"NAME=VALUE"_s; },
                          [](const Control *) { return QString(); },
                      },
                      field.control);
}

QString wordOf(const PanelField &field)
{
    return std::visit(Overloaded{
                          [](const NumberControl *control) { return control->stringValue(); },
                          [](const ChoiceControl *control) { return control->selectedTitle(); },
                          [](const TextControl *control) { return control->text(); },
                          [](const Control *) { return QString(); },
                      },
                      field.control);
}

QString takeWords(const PanelField &field, const QStringList &words)
{
    if (words.isEmpty())
        return {};
    const QString &word = words.last();
    return std::visit(Overloaded{
                          [&](NumberControl *control) { return take(*control, word); },
                          [&](ChoiceControl *control) {
                              return control->selectTitle(word) ? QString() : refusal(kindOfWords(field), word);
                          },
                          [&](TextControl *control) {
                              control->setText(word);
                              return QString();
                          },
                          [&](PairsControl *control) { return take(*control, words); },
                          [&](LinesControl *control) {
                              control->setText(words.join(u'\n') + u'\n');
                              return QString();
                          },
                          [](CheckControl *control) {
                              control->setOn(true);
                              return QString();
                          },
                          [](LabelControl *) { return QString(); },
                      },
                      field.control);
}

} // namespace nurv
