// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/DockMenuController.h"

#include "app/NURVController.h"
#include "app/ScriptedPrompts.h"
#include "checksum/ChecksumTab.h"
#include "convert/DecodeTab.h"
#include "desktop/NullDesktopServices.h"
#include "fix/FixTab.h"
#include "toolbox/Toolbox.h"

#include <QFile>
#include <QMap>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class DockMenuControllerTest : public ::testing::Test {
protected:
    ScriptedPrompts prompts;
    NullDesktopServices services;
    NURVController controller{prompts, services, toolbox()};
    DecodeTab decodeTab{controller};
    FixTab fixTab{controller};
    DockMenuController dock{controller};
};

/// The groups of the desktop file, each with its lines "key=value".
QMap<QString, QMap<QString, QString>> desktopFile()
{
    QFile file(QStringLiteral(NURV_DESKTOP_FILE));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QMap<QString, QMap<QString, QString>> groups;
    QString group;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (const QString &line : lines) {
        if (line.startsWith(u'['))
            group = line.mid(1).chopped(1);
        else if (line.contains(u'='))
            groups[group].insert(line.section(u'=', 0, 0), line.section(u'=', 1));
    }
    return groups;
}

} // namespace

TEST_F(DockMenuControllerTest, SelectsThePageOfATag)
{
    dock.selectTab(4);
    EXPECT_EQ(controller.selectedTabViewItem(), u"fix SBE"_s);
    dock.selectTab(0);
    EXPECT_EQ(controller.selectedTabViewItem(), u"decode"_s);
    dock.selectTab(99);
    EXPECT_EQ(controller.selectedTabViewItem(), u"decode"_s);
}

TEST_F(DockMenuControllerTest, SelectsThePageOfAnAction)
{
    EXPECT_TRUE(dock.selectTab(u"fix-sbe"_s));
    EXPECT_EQ(controller.selectedTabViewItem(), u"fix SBE"_s);
    EXPECT_TRUE(dock.selectTab(u"about"_s));
    EXPECT_EQ(controller.selectedTabViewItem(), u"about"_s);
}

TEST_F(DockMenuControllerTest, LeavesThePageForAnActionOfNoneAndForAToolThatIsNotThere)
{
    EXPECT_TRUE(dock.selectTab(u"fix-sbe"_s));
    for (const QString &action : {u"lossy"_s, u"nothing"_s, QString(), u"Fix-SBE"_s, u"fix SBE"_s})
        EXPECT_FALSE(dock.selectTab(action)) << qPrintable(action);
    EXPECT_EQ(controller.selectedTabViewItem(), u"fix SBE"_s);
    EXPECT_EQ(dock.actions(), (QStringList{u"decode"_s, u"fix-sbe"_s, u"about"_s}));
}

TEST(DesktopFile, HasAnActionForEveryToolThatIsThere)
{
    const auto groups = desktopFile();
    QStringList expected;
    for (const Tool &tool : toolbox()) {
        if (tool.makeTab)
            expected.append(DockMenuController::actionOf(tool.label));
    }
    EXPECT_EQ(groups[u"Desktop Entry"_s][u"Actions"_s], expected.join(u';') + u';');
    for (const Tool &tool : toolbox()) {
        if (!tool.makeTab)
            continue;
        const QString action = DockMenuController::actionOf(tool.label);
        const auto group = groups[u"Desktop Action "_s + action];
        EXPECT_EQ(group[u"Exec"_s], u"nurv-workbench --page "_s + action);
        EXPECT_EQ(group[u"Name"_s], QString::fromUtf8(tool.title));
    }
}

} // namespace nurv::test
