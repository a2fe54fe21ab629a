// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TextHistory.h"

#include <algorithm>
#include <utility>

namespace nurv {

namespace {

constexpr std::size_t kMostSteps = 1000;
constexpr qsizetype kMostCharacters = 64 * 1000 * 1000;
/// A character of two units; more at once was pasted.
constexpr qsizetype kTypedAtOnce = 2;

qsizetype sizeOf(const TextChange &change)
{
    return change.removed.size() + change.inserted.size();
}

bool isPieceOfLine(const QString &text)
{
    return !text.isEmpty() && text.size() <= kTypedAtOnce && !text.contains(u'\n');
}

/// Adds what was typed or deleted next to it; false when it is no neighbour.
bool join(TextChange &step, const TextChange &next)
{
    if (next.removed.isEmpty() && isPieceOfLine(next.inserted) && !step.inserted.isEmpty()
        && next.start == step.start + step.inserted.size()) {
        step.inserted += next.inserted;
        return true;
    }
    if (!next.inserted.isEmpty() || !isPieceOfLine(next.removed) || !step.inserted.isEmpty())
        return false;
    if (next.start + next.removed.size() == step.start) {
        step.removed.prepend(next.removed);
        step.start = next.start;
        return true;
    }
    if (next.start != step.start)
        return false;
    step.removed += next.removed;
    return true;
}

} // namespace

QString TextChange::appliedTo(const QString &text) const
{
    QString changed = text;
    changed.replace(start, removed.size(), inserted);
    return changed;
}

TextChange changeBetween(QStringView before, QStringView after)
{
    const qsizetype shorter = std::min(before.size(), after.size());
    const auto firstOther = std::mismatch(before.begin(), before.begin() + shorter, after.begin()).first;
    qsizetype start = firstOther - before.begin();
    if (start > 0 && before[start - 1].isHighSurrogate())
        --start;
    const qsizetype most = shorter - start;
    qsizetype same = std::mismatch(before.rbegin(), before.rbegin() + most, after.rbegin()).first - before.rbegin();
    if (same > 0 && before[before.size() - same].isLowSurrogate())
        --same;
    return {start, before.sliced(start, before.size() - same - start).toString(),
            after.sliced(start, after.size() - same - start).toString()};
}

void TextHistory::add(const QString &name, const TextChange &change)
{
    if (!change.isEmpty())
        append({name, change});
}

void TextHistory::addTyping(const QString &name, const TextChange &change)
{
    if (change.isEmpty())
        return;
    const bool isLast = m_done > 0 && m_done == m_steps.size();
    if (isLast && m_steps.back().isOpen && join(m_steps.back().change, change)) {
        m_characters += sizeOf(change);
        return;
    }
    const bool mayGrow = change.removed.isEmpty() ? isPieceOfLine(change.inserted)
                                                  : change.inserted.isEmpty() && isPieceOfLine(change.removed);
    append({name, change, mayGrow});
}

void TextHistory::append(Step step)
{
    while (m_steps.size() > m_done) {
        m_characters -= sizeOf(m_steps.back().change);
        m_steps.pop_back();
    }
    m_characters += sizeOf(step.change);
    m_steps.push_back(std::move(step));
    ++m_done;
    forgetOldest();
}

/// The last step can always be undone.
void TextHistory::forgetOldest()
{
    while (m_steps.size() > 1 && (m_steps.size() > kMostSteps || m_characters > kMostCharacters)) {
        m_characters -= sizeOf(m_steps.front().change);
        m_steps.pop_front();
        --m_done;
    }
}

std::optional<QString> TextHistory::undoName() const
{
    return m_done > 0 ? std::optional(m_steps[m_done - 1].name) : std::nullopt;
}

std::optional<QString> TextHistory::redoName() const
{
    return m_done < m_steps.size() ? std::optional(m_steps[m_done].name) : std::nullopt;
}

TextChange TextHistory::undo()
{
    Q_ASSERT(m_done > 0);
    --m_done;
    m_steps[m_done].isOpen = false;
    return m_steps[m_done].change.reversed();
}

TextChange TextHistory::redo()
{
    Q_ASSERT(m_done < m_steps.size());
    m_steps[m_done].isOpen = false;
    return m_steps[m_done++].change;
}

} // namespace nurv
