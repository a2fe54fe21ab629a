// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/OutputJournal.h"

#include "base/Log.h"
#include "base/NurvFailure.h"
#include "journal/FileIdentity.h"
#include "journal/JournalContents.h"
#include "journal/JournalFile.h"
#include "journal/JournalLine.h"
#include "journal/StaleJournal.h"
#include "journal/TemporaryJournal.h"

#include <QFile>
#include <QHash>

#include <exception>
#include <memory>
#include <mutex>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// What is noted nowhere is never removed either.
class SilentJournal final : public OutputJournal {
public:
    void markBegun(const QString &) override {}
    void markEnded(const QString &) override {}
    void noteAside(const QString &, const QString &) override {}
    void forgetAside(const QString &) override {}
    void flush() override {}
};

struct OutputState {
    qsizetype number = 0;
    bool isBeingMade = false;
    bool isAside = false;
};

using OutputStates = QHash<QString, OutputState>;

class FileJournal final : public OutputJournal {
public:
    FileJournal(OutputStates outputs, std::unique_ptr<JournalFile> file, StaleNotes staleNotes)
        : m_outputs(std::move(outputs)), m_file(std::move(file)), m_staleNotes(std::move(staleNotes))
    {
    }

    ~FileJournal() override
    {
        if (m_openCount == 0)
            m_file->remove();
    }

    void markBegun(const QString &output) override
    {
        const std::scoped_lock lock(m_lock);
        OutputState *const state = find(output);
        if (state == nullptr)
            return;
        // What stands there from now on is no longer what a killed run left.
        m_staleNotes.noteMadeAnew(QFile::encodeName(output));
        m_openCount += std::exchange(state->isBeingMade, true) ? 0 : 1;
        m_file->append(journalLine({"begun", numberOf(*state), QByteArray::number(static_cast<qint64>(fileClockNow())),
                                    FolderMark::of(QFile::encodeName(output)).toText()}));
    }

    void markEnded(const QString &output) override
    {
        const std::scoped_lock lock(m_lock);
        OutputState *const state = find(output);
        if (state == nullptr)
            return;
        m_openCount -= std::exchange(state->isBeingMade, false) ? 1 : 0;
        m_file->append(journalLine({"ended", numberOf(*state)}));
    }

    void noteAside(const QString &output, const QString &aside) override
    {
        const std::scoped_lock lock(m_lock);
        OutputState *const state = find(output);
        if (state == nullptr)
            return;
        m_openCount += std::exchange(state->isAside, true) ? 0 : 1;
        // The file may have changed since the batch began.
        const NameState file = NameState::of(QFile::encodeName(output), false);
        m_file->append(journalLine({"aside", numberOf(*state), QFile::encodeName(aside), file.toText()}));
        m_file->flush();
    }

    void forgetAside(const QString &output) override
    {
        const std::scoped_lock lock(m_lock);
        OutputState *const state = find(output);
        if (state == nullptr)
            return;
        m_openCount -= std::exchange(state->isAside, false) ? 1 : 0;
        m_file->append(journalLine({"back", numberOf(*state)}));
    }

    void flush() override
    {
        const std::scoped_lock lock(m_lock);
        m_file->flush();
    }

private:
    OutputState *find(const QString &output)
    {
        const auto found = m_outputs.find(output);
        if (found != m_outputs.end())
            return &found.value();
        qCWarning(journalLog).noquote() << "Not planned:" << output;
        return nullptr;
    }

    static QByteArray numberOf(const OutputState &state) { return QByteArray::number(state.number); }

    std::mutex m_lock;
    OutputStates m_outputs;
    const std::unique_ptr<JournalFile> m_file;
    StaleNotes m_staleNotes;
    qsizetype m_openCount = 0; ///< of what a crash would leave behind now
};

std::shared_ptr<OutputJournal> beginFile(const std::vector<OutputJournal::Planned> &outputs)
{
    QByteArray lines;
    OutputStates states;
    states.reserve(static_cast<qsizetype>(outputs.size()));
    for (const OutputJournal::Planned &planned : outputs) {
        const qsizetype number = states.size();
        // Of two sources with one output only the first is converted.
        if (states.contains(planned.output))
            continue;
        states.insert(planned.output, {.number = number});
        const QByteArray output = QFile::encodeName(planned.output);
        const QByteArray source = QFile::encodeName(planned.source);
        lines += journalLine({"plan", QByteArray::number(number), output, NameState::of(output, false).toText(), source,
                              NameState::of(source, true).toText()});
    }
    StaleNotes staleNotes =
        StaleNotes::find([&states](const QByteArray &output) { return states.contains(QFile::decodeName(output)); });
    auto file = std::make_unique<JournalFile>(lines);
    return std::make_shared<FileJournal>(std::move(states), std::move(file), std::move(staleNotes));
}

} // namespace

OutputJournal::~OutputJournal() = default;

std::shared_ptr<OutputJournal> OutputJournal::begin(const std::vector<Planned> &outputs)
{
    if (outputs.empty())
        return std::make_shared<SilentJournal>();
    try {
        return beginFile(outputs);
    } catch (const NurvFailure &failure) {
        qCWarning(journalLog).noquote() << "After a crash nothing will be known of this batch:" << failure.reason();
    } catch (const std::exception &failure) {
        qCWarning(journalLog) << "After a crash nothing will be known of this batch:" << failure.what();
    }
    return std::make_shared<SilentJournal>();
}

void OutputJournal::prepareForTemporaries()
{
    TemporaryJournal::instance().prepare();
}

void OutputJournal::noteTemporary(const QString &path)
{
    TemporaryJournal::instance().note(QFile::encodeName(path));
}

void OutputJournal::forgetTemporary(const QString &path)
{
    TemporaryJournal::instance().forget(QFile::encodeName(path));
}

} // namespace nurv
