// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FileArrivals.h"

#include "app/BaseTab.h"
#include "app/NURVController.h"
#include "app/PathNames.h"
#include "app/UserPrompts.h"
#include "base/GuiThread.h"
#include "base/WorkerThreads.h"
#include "settings/SettingsStore.h"

#include <QMap>
#include <QPointer>
#include <QSet>

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// The pages that files go to by their extensions.
const QString kDecode = u"decode"_s;
const QString kEncode = u"encode"_s;
const QString kChecksum = u"checksum"_s;

} // namespace

void FileArrivals::receive(const Arrival &arrival)
{
    if (arrival.isEmpty())
        return;
    Q_EMIT searchBegan(arrival.label);
    // The controller outlives the worker, which gives up when the application quits.
    workerThreads::startOrRun([this, self = QPointer<FileArrivals>(this), arrival] {
        postToGuiThread([self, label = arrival.label, found = search(arrival)] {
            if (!self)
                return;
            Q_EMIT self->searchEnded(label);
            self->deliver(label, found);
        });
    });
}

FileIntake FileArrivals::search(const Arrival &arrival) const
{
    const SearchRules rules{
        .look = [&](const QString &path, bool isGiven) { return look(arrival, path, isGiven); },
        .mustStop = [this] { return m_controller.mustStopSearching(); },
        .givenFilesMustBeReadable = arrival.door == Door::CommandLine,
        .skipsGivenNames = arrival.door != Door::List,
    };
    FileIntake found;
    for (const QString &path : arrival.paths)
        collectFiles(path, rules, found);
    found.unreadableNames = arrival.refusedNames + found.unreadableNames;
    return found;
}

FileVerdict FileArrivals::look(const Arrival &arrival, const QString &path, bool isGiven) const
{
    if (arrival.makesJob && !arrival.makesJob(path))
        return FileVerdict::OtherKind;
    switch (arrival.door) {
    case Door::List: return m_controller.look(arrival.label, path, FileRule::ByContents);
    case Door::CommandLine:
        return m_controller.look(arrival.label, path,
                                 isGiven ? FileRule::ByContents : FileRule::ByExtensionAndAppleLossless);
    case Door::Application: break;
    }
    const bool isTaken = !m_controller.tab(arrival.label)
                         || m_controller.look(arrival.label, path, FileRule::ByExtension) == FileVerdict::Taken;
    return isTaken ? FileVerdict::Taken : FileVerdict::PassedOver;
}

void FileArrivals::deliver(const QString &label, const FileIntake &found)
{
    if (label == NURVController::kAboutLabel)
        m_controller.whenListsMayChange([self = QPointer<FileArrivals>(this), found] {
            if (self)
                self->routeByExtension(found);
        });
    else if (BaseTab *const page = m_controller.tab(label))
        page->addCollected(found);
    Q_EMIT delivered(label, found);
}

void FileArrivals::routeByExtension(const FileIntake &found)
{
    static const QStringList compressed{u"FLAC"_s, u"SHN"_s, u"WV"_s, u"TTA"_s, u"M4A"_s, u"APE"_s};
    QMap<QString, FileIntake> filesOfPage;
    // Of all the pages that the files select one after the other only the last
    // stays, so only that one is shown.
    QString lastPage;
    QSet<QString> unknownKinds;
    for (qsizetype i = 0; i < found.accepted.size(); ++i) {
        const QString &path = found.accepted.at(i);
        const QString extension = formatWord(path);
        QString page;
        if (compressed.contains(extension))
            page = kDecode;
        else if (m_controller.extensions(kEncode).contains(extension))
            page = kEncode;
        else if (m_controller.extensions(kDecode).contains(extension))
            page = kDecode;
        else if (m_controller.extensions(kChecksum).contains(extension))
            page = kChecksum;

        // A folder may well hold covers and notes.
        if (!m_controller.tab(page) && found.bases.value(i).isEmpty())
            unknownKinds.insert(extension.isEmpty() ? lastPathComponent(path) : extension);
        if (page.isEmpty()) {
            lastPage = kEncode;
        } else if (m_controller.tab(page)) {
            filesOfPage[page].accept(path, found.bases.value(i));
            lastPage = page;
        }
    }
    for (auto it = filesOfPage.cbegin(); it != filesOfPage.cend(); ++it)
        m_controller.tab(it.key())->addMatchedFiles(it.value().accepted, it.value().bases);
    if (!lastPage.isEmpty())
        m_controller.showPage(lastPage);
    QStringList kinds = unknownKinds.values();
    kinds.sort();
    const bool tellsSkipped = SettingsStore::instance().boolean(u"warnOnFilesSkipped"_s);
    if (const std::optional<Alert> skipped = skippedAlert(found, tellsSkipped, kinds))
        m_controller.prompts().ask(*skipped);
}

} // namespace nurv
