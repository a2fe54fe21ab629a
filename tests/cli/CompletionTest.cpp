// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "PseudoTerminal.h"

#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

/// The words that bash offers for the last one of `words`, sorted.
QStringList completionsOf(const QStringList &words)
{
    const QString script = u"source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); COMPREPLY=(); "
                           "_nurv; printf '%s\\n' \"${COMPREPLY[@]}\""_s;
    const ProgramResult result = runProgram(
        u"bash"_s,
        QStringList{u"--norc"_s, u"-c"_s, script, u"bash"_s, QString::fromLocal8Bit(NURV_COMPLETION)} + words);
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    QStringList offered = QString::fromUtf8(result.output).split(u'\n', Qt::SkipEmptyParts);
    offered.sort();
    return offered;
}

/// The options that the command's own help lists, sorted.
QStringList optionsInHelp(const QString &command)
{
    QStringList options;
    const QByteArray help = runNurv({command, u"--help"_s}).output;
    for (const QByteArray &line : help.split('\n')) {
        if (line.startsWith("  --"))
            options.append(QString::fromUtf8(line.trimmed().split(' ').first().split('=').first()));
    }
    options.sort();
    return options;
}

} // namespace

TEST(Completion, OffersTheCommands)
{
    EXPECT_EQ(completionsOf({u"nurv"_s, u""_s}), (QStringList{u"--help"_s, u"--version"_s, u"checksum"_s, u"decode"_s, u"doctor"_s, u"encode"_s, u"fix"_s, u"lossy"_s, u"recover"_s, u"settings"_s, u"shntool"_s, u"tags"_s, u"util"_s}));
    EXPECT_EQ(completionsOf({u"nurv"_s, u"en"_s}), QStringList{u"encode"_s});
}

TEST(Completion, OffersExactlyTheOptionsThatTheHelpLists)
{
    for (const QString &command : {u"encode"_s, u"decode"_s, u"fix"_s, u"doctor"_s, u"recover"_s, u"settings"_s})
        EXPECT_EQ(completionsOf({u"nurv"_s, command, u"--"_s}), optionsInHelp(command)) << qPrintable(command);
}

TEST(Completion, OffersTheSameInFish)
{
    for (const QString &command : {u"encode"_s, u"decode"_s, u"fix"_s, u"doctor"_s, u"recover"_s, u"settings"_s}) {
        const ProgramResult result = runProgram(
            u"fish"_s, {u"--no-config"_s, u"-c"_s, u"source $argv[1]; complete -C $argv[2]"_s,
                        QString::fromLocal8Bit(NURV_FISH_COMPLETION), u"nurv "_s + command + u" --"_s});
        QStringList offered;
        for (const QByteArray &line : result.output.split('\n')) {
            if (!line.isEmpty())
                offered.append(QString::fromUtf8(line.split('\t').first()).remove(u'='));
        }
        offered.sort();
        EXPECT_EQ(offered, optionsInHelp(command)) << result.errors.constData();
    }
}

TEST(Completion, IsAScriptThatZshReadsWithEveryOption)
{
    const QString script = QString::fromLocal8Bit(NURV_ZSH_COMPLETION);
    const ProgramResult read = runProgram(u"zsh"_s, {u"-f"_s, u"-n"_s, script});
    EXPECT_EQ(read.exitStatus, 0) << read.errors.constData();
    QFile file(script);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    for (const QString &command : {u"encode"_s, u"decode"_s, u"fix"_s, u"doctor"_s, u"recover"_s, u"settings"_s}) {
        const QString branch = text.section(u"    "_s + command + u")\n"_s, 1).section(u";;"_s, 0, 0);
        for (const QString &option : optionsInHelp(command))
            EXPECT_TRUE(branch.contains(u'\'' + option + u'=') || branch.contains(u'\'' + option + u'['))
                << qPrintable(command + u' ' + option);
    }
}

TEST(Completion, OffersTheValuesOfAnOption)
{
    EXPECT_EQ(completionsOf({u"nurv"_s, u"encode"_s, u"--format"_s, u""_s}),
              (QStringList{u"ape"_s, u"flac"_s, u"m4a"_s, u"shn"_s, u"tta"_s, u"wv"_s}));
    EXPECT_EQ(completionsOf({u"nurv"_s, u"decode"_s, u"--format"_s, u"a"_s}), QStringList{u"aiff"_s});
    EXPECT_EQ(completionsOf({u"nurv"_s, u"encode"_s, u"--mode"_s, u""_s}), (QStringList{u"fast"_s, u"high"_s}));
    EXPECT_EQ(completionsOf({u"nurv"_s, u"fix"_s, u"--md5"_s, u""_s}), (QStringList{u"disc"_s, u"none"_s, u"one"_s}));
}

TEST(Completion, OffersTheKeysOfSettingsAndTheirWords)
{
    const QList<QJsonObject> objects = jsonLines(runNurv({u"settings"_s, u"--json"_s}).output);
    QStringList keys;
    for (const QJsonObject &object : objects) {
        if (object[u"type"_s].toString() == u"setting")
            keys.append(object[u"key"_s].toString());
    }
    keys.sort();
    EXPECT_GT(keys.size(), 25);
    EXPECT_EQ(completionsOf({u"nurv"_s, u"settings"_s, u""_s}), keys);
    EXPECT_EQ(completionsOf({u"nurv"_s, u"settings"_s, u"encodeO"_s}), QStringList{u"encodeOutputFormat"_s});
    EXPECT_EQ(completionsOf({u"nurv"_s, u"settings"_s, u"warnOnDelete"_s, u""_s}), (QStringList{u"off"_s, u"on"_s}));
    const auto fish = [](const QString &line) {
        const ProgramResult result = runProgram(u"fish"_s, {u"--no-config"_s, u"-c"_s, u"source $argv[1]; complete -C $argv[2]"_s,
                                                            QString::fromLocal8Bit(NURV_FISH_COMPLETION), line});
        QStringList offered;
        for (const QByteArray &offer : result.output.split('\n')) {
            if (!offer.isEmpty())
                offered.append(QString::fromUtf8(offer.split('\t').first()));
        }
        offered.sort();
        return offered;
    };
    EXPECT_EQ(fish(u"nurv settings "_s), keys);
    EXPECT_EQ(fish(u"nurv settings trashOrDelete "_s), (QStringList{u"delete"_s, u"trash"_s}));
    EXPECT_EQ(fish(u"nurv settings ffpExtension "_s), QStringList());
}

TEST(Completion, CompletesAValueBehindAnEqualsSignWhereTheUserTypesIt)
{
    PseudoTerminal terminal(120, 24, u"/bin/bash"_s, {u"--norc"_s, u"--noprofile"_s, u"-i"_s});
    terminal.type("source '" + QByteArray(NURV_COMPLETION) + "' && echo is''ready\n");
    ASSERT_TRUE(terminal.waitFor("isready")) << terminal.received().constData();
    terminal.type("nurv encode --format=fl\t");
    EXPECT_TRUE(terminal.waitFor("--format=flac")) << terminal.received().constData();
}
