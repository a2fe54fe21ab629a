// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later

// A process that uses journals as jobs do, and is killed in the middle of it:
//
//   journal_holder STEP...
//
//   plan=OUTPUT|SOURCE   one more output of the batch
//   begin                notes the batch
//   begun=OUTPUT  ended=OUTPUT  aside=OUTPUT|PATH  back=OUTPUT  temporary=PATH  gone=PATH
//   write=PATH|TEXT      writes a file, and rename=FROM|TO renames one
//   start=PROGRAM|ARGUMENT...  starts a program as a child, which outlives this process
//   full                 from here on no journal can grow, as on a full disk
//   finish               lets go of the batch
//   ready                writes "ready" and waits for a signal
//   kill                 kills itself
#include "journal/JournalFolder.h"
#include "journal/OutputJournal.h"
#include "process/ChildProcess.h"
#include "process/ProcessEnvironment.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <memory>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace nurv;

namespace {

void fillTheDisk()
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = 0;
    for (const QFileInfo &journal : QDir(journalFolderPath()).entryInfoList(QDir::Files))
        limit.rlim_cur = std::max(limit.rlim_cur, static_cast<rlim_t>(journal.size()));
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

struct Holder {
    std::vector<OutputJournal::Planned> planned;
    std::shared_ptr<OutputJournal> journal;
    std::vector<std::unique_ptr<ChildProcess>> children;

    bool take(const QString &step);
    bool useJournal(const QString &verb, const QStringList &words);
    bool useFiles(const QString &verb, const QStringList &words);
    bool start(const QStringList &words);
};

bool Holder::take(const QString &step)
{
    const QString verb = step.section(u'=', 0, 0);
    const QStringList words = step.section(u'=', 1).split(u'|');
    if (verb == u"plan" && words.size() == 2) {
        planned.push_back({.output = words[0], .source = words[1]});
    } else if (verb == u"begin") {
        journal = OutputJournal::begin(planned);
    } else if (verb == u"full") {
        fillTheDisk();
    } else if (verb == u"finish") {
        journal.reset();
    } else if (verb == u"ready") {
        std::puts("ready");
        std::fflush(stdout);
        ::pause();
    } else if (verb == u"kill") {
        std::raise(SIGKILL);
    } else if (verb == u"start") {
        return start(words);
    } else {
        return useFiles(verb, words) || useJournal(verb, words);
    }
    return true;
}

bool Holder::useJournal(const QString &verb, const QStringList &words)
{
    if (verb == u"temporary")
        OutputJournal::noteTemporary(words[0]);
    else if (verb == u"gone")
        OutputJournal::forgetTemporary(words[0]);
    else if (!journal)
        return false;
    else if (verb == u"begun")
        journal->markBegun(words[0]);
    else if (verb == u"ended")
        journal->markEnded(words[0]);
    else if (verb == u"aside" && words.size() == 2)
        journal->noteAside(words[0], words[1]);
    else if (verb == u"back")
        journal->forgetAside(words[0]);
    else
        return false;
    return true;
}

bool Holder::useFiles(const QString &verb, const QStringList &words)
{
    if (words.size() != 2)
        return false;
    if (verb == u"rename")
        return std::rename(QFile::encodeName(words[0]).constData(), QFile::encodeName(words[1]).constData()) == 0;
    QFile file(words[0]);
    return verb == u"write" && file.open(QIODevice::WriteOnly) && file.write(words[1].toUtf8()) >= 0;
}

bool Holder::start(const QStringList &words)
{
    children.push_back(std::make_unique<ChildProcess>());
    const ChildCommand command{.launchPath = words[0],
                               .arguments = words.sliced(1),
                               .environment = processEnvironment(),
                               .workingDirectory = {}};
    return !children.back()->start(command);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Holder holder;
    for (int i = 1; i < argc; ++i) {
        if (!holder.take(QFile::decodeName(argv[i]))) {
            std::fprintf(stderr, "cannot do: %s\n", argv[i]);
            return 2;
        }
    }
    return 0;
}
