// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later

// Renders the windows with real content into PNG files:
//
//     nurv_screenshots FOLDER [light|dark]

#include "app/BatchWatch.h"
#include "app/ExamplePanels.h"
#include "app/NURVController.h"
#include "app/NURVStringGetterPanel.h"
#include "app/NURVTrimCharsPanel.h"
#include "app/TrackNameInputController.h"
#include "checksum/ChecksumTab.h"
#include "convert/DecodeTab.h"
#include "convert/EncodeTab.h"
#include "desktop/NullDesktopServices.h"
#include "fix/FixTab.h"
#include "lossy/LossyTab.h"
#include "settings/SettingsStore.h"
#include "shntool/SHNtoolTab.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"
#include "TagFixtures.h"
#include "tagging/TagFiles.h"
#include "tagging/TagsTab.h"
#include "toolbox/Toolbox.h"
#include "ui/DarkPalette.h"
#include "ui/DesktopPrompts.h"
#include "ui/FileListView.h"
#include "ui/JobInState.h"
#include "ui/LegiblePalette.h"
#include "ui/LegibleStyle.h"
#include "ui/MainWindow.h"
#include "ui/OutputWindow.h"
#include "ui/pages/AboutPage.h"
#include "ui/pages/TabPage.h"
#include "ui/PanelDialog.h"
#include "ui/PreferencesWindow.h"
#include "ui/StatusWindow.h"
#include "ui/TrackNameEditor.h"
#include "ui/TrackNameWindow.h"
#include "util/UtilTab.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QSignalSpy>
#include <QTabWidget>
#include <QVariantAnimation>

#include <chrono>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

constexpr QSize kWindowSize{860, 690};

QStringList concert(const QString &extension)
{
    const QString folder = u"/home/anna/Music/Live/1997-08-16 Aula Magna/"_s;
    const QStringList songs{u"Tuning and Welcome"_s,  u"River of Glass"_s,         u"The Long Way Down"_s,
                            u"Ré mineur"_s,           u"Northern Line"_s,          u"Interlude (harmonium)"_s,
                            u"Paper Boats"_s,         u"A Thousand Small Lamps"_s, u"Encore Break"_s,
                            u"Sleepwalkers' Waltz"_s, u"Goodnight, City"_s};
    QStringList paths;
    for (qsizetype number = 0; number < songs.size(); ++number)
        paths.append(folder + u"%1 %2.%3"_s.arg(number + 1).arg(songs.at(number), extension));
    return paths;
}

void save(QWidget &widget, const QString &path)
{
    handleWaitingEvents();
    if (!widget.grab().save(path, "PNG", 0))
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
}

void showPages(NURVController &controller, MainWindow &window, const QDir &folder, const QString &suffix)
{
    window.resize(kWindowSize);
    window.show();
    controller.selectTab(u"decode"_s);
    window.page(u"decode"_s)->fileList()->clearFocus();
    save(window, folder.filePath(u"decode-empty-%1.png"_s.arg(suffix)));
    controller.tab(u"decode"_s)->addMatchedFiles(concert(u"flac"_s));
    save(window, folder.filePath(u"decode-%1.png"_s.arg(suffix)));
    controller.selectTab(u"encode"_s);
    controller.tab(u"encode"_s)->addMatchedFiles(concert(u"wav"_s));
    FileListView *const list = window.page(u"encode"_s)->fileList();
    list->setFocus();
    list->setCurrentIndex(list->model()->index(3, 0));
    save(window, folder.filePath(u"encode-%1.png"_s.arg(suffix)));
    auto *const about = window.findChild<AboutPage *>();
    QSignalSpy checked(about, &AboutPage::programsChecked);
    controller.selectTab(u"about"_s);
    if (!waitUntil([&] { return !checked.isEmpty(); }))
        std::fprintf(stderr, "the programs were not looked for\n");
    save(window, folder.filePath(u"about-%1.png"_s.arg(suffix)));
}

/// Every format with its options, a picture each.
void showFormats(EncodeTab &encodeTab, DecodeTab &decodeTab, MainWindow &window, const QDir &folder,
                 const QString &suffix)
{
    NURVController &controller = encodeTab.nurvController();
    controller.selectTab(u"encode"_s);
    for (const QString &format : {u"SHN"_s, u"WV"_s, u"FLAC"_s, u"TTA"_s, u"APE"_s, u"M4A"_s}) {
        encodeTab.outputFormatMatrix.selectTitle(format);
        save(window, folder.filePath(u"encode-%1-%2.png"_s.arg(format.toLower(), suffix)));
    }
    controller.selectTab(u"decode"_s);
    for (const QString &format : {u"WAV"_s, u"AIFF"_s}) {
        decodeTab.outputFormatMatrix.selectTitle(format);
        save(window, folder.filePath(u"decode-%1-%2.png"_s.arg(format.toLower(), suffix)));
    }
}

/// Every encoder and mode of the lossy tool, and every command of the checksum tool.
void showModes(LossyTab &lossyTab, ChecksumTab &checksumTab, MainWindow &window, const QDir &folder, const QString &suffix)
{
    lossyTab.nurvController().selectTab(u"lossy"_s);
    lossyTab.addMatchedFiles(concert(u"flac"_s));
    for (const auto &[encoder, matrix] : {std::pair{u"LAME MP3"_s, &lossyTab.mp3Matrix}, std::pair{u"AAC"_s, &lossyTab.aacMatrix},
                                          std::pair{u"Opus"_s, &lossyTab.opusMatrix}}) {
        lossyTab.outputFormatMatrix.selectTitle(encoder);
        for (const QString &mode : matrix->titles()) {
            matrix->selectTitle(mode);
            save(window, folder.filePath(u"lossy-%1-%2-%3.png"_s.arg(encoder, mode, suffix).toLower().replace(u' ', u'-')));
        }
    }
    checksumTab.nurvController().selectTab(u"checksum"_s);
    checksumTab.addMatchedFiles(concert(u"flac"_s));
    for (const int command : {ChecksumTab::VerifyLossless, ChecksumTab::CreateList, ChecksumTab::VerifyLists}) {
        checksumTab.commandOptions.setSelectedIndex(command);
        save(window, folder.filePath(u"checksum-%1-%2.png"_s.arg(command).arg(suffix)));
    }
}

/// Every command of the tool, and what a preview looks like.
void showShntool(SHNtoolTab &tab, MainWindow &window, const QDir &folder, const QString &suffix)
{
    tab.nurvController().selectTab(u"shntool"_s);
    tab.addMatchedFiles(concert(u"flac"_s));
    tab.shnLenMatrix.setSelectedIndex(2);
    for (const QString &command : tab.shntoolCommandMatrix.titles()) {
        tab.shntoolCommandMatrix.selectTitle(command);
        save(window, folder.filePath(u"shntool-%1-%2.png"_s.arg(command, suffix)));
    }
}

/// Every command, with the formats and totals of a disc.
void showUtil(UtilTab &tab, MainWindow &window, const QDir &folder, const QString &suffix)
{
    tab.nurvController().selectTab(u"util"_s);
    const TestFolder files;
    QStringList paths;
    for (const QString &title : {u"Lantern Song"_s, u"Ninth Street"_s, u"River of Glass"_s})
        paths.append(writeWav(files.path(u"al1977-05-07 t%1 %2.wav"_s.arg(paths.size() + 1).arg(title)),
                              {.rate = 96000, .bits = 24, .seconds = 4.0 + 0.7 * static_cast<double>(paths.size())}));
    tab.addMatchedFiles(paths);
    save(window, folder.filePath(u"util-none-%1.png"_s.arg(suffix)));
    for (const QString &command : tab.utilCommandMatrix.titles()) {
        tab.setCommand(command);
        if (command == UtilTab::kDvdAudioDisc)
            tab.findFormatInfo();
        save(window, folder.filePath(u"util-%1-%2.png"_s.arg(command, suffix).toLower().replace(u' ', u'-')));
    }
    tab.clearFiles();
}

/// One file, and several that differ.
void showTags(TagsTab &tab, MainWindow &window, const QDir &folder, const QString &suffix)
{
    tab.nurvController().selectTab(u"Tags"_s);
    const TestFolder files;
    QStringList paths;
    for (const QString &title : {u"River of Glass"_s, u"Lantern Song"_s, u"Ninth Street"_s}) {
        TagsObject record;
        record.setTitleText(title);
        record.setAlbumText(u"Aula Magna, Lisbon"_s);
        record.setDateText(title.startsWith(u'N') ? u"1978"_s : u"1977"_s);
        record.setTrackText(QString::number(paths.size() + 1));
        if (!title.startsWith(u'L'))
            record.setAlbumArt(picture(300, 300, QColor(170, 60, 40)));
        paths.append(writeTaggableFlac(files, u"al1977-05-07 t%1 %2.flac"_s.arg(paths.size() + 1).arg(title)));
        tagFiles::write(paths.last(), record, false);
    }
    tab.addMatchedFiles(paths);
    tab.finishReading();
    save(window, folder.filePath(u"tags-several-%1.png"_s.arg(suffix)));
    tab.setSelectedRows({0});
    tab.finishReading();
    // The picture is scaled by a worker.
    auto *const well = window.findChild<QLabel *>(u"albumArtImageView"_s);
    static_cast<void>(waitUntil([well] { return !well->pixmap(Qt::ReturnByValue).isNull(); }));
    save(window, folder.filePath(u"tags-one-%1.png"_s.arg(suffix)));
    tab.clearFiles();
}

void showFix(FixTab &tab, MainWindow &window, const QDir &folder, const QString &suffix)
{
    tab.nurvController().selectTab(u"fix SBE"_s);
    tab.addMatchedFiles(concert(u"shn"_s));
    for (const QString &format : tab.outputFormatMatrix.titles()) {
        tab.outputFormatMatrix.selectTitle(format);
        save(window, folder.filePath(u"fix-%1-%2.png"_s.arg(format.toLower(), suffix)));
    }
}

void showRows(NURVTaskQueue &queue, StatusWindow &status, const QDir &folder, const QString &suffix)
{
    std::vector<std::shared_ptr<JobInState>> jobs;
    for (const QString &path : concert(u"wav"_s).mid(0, 8))
        jobs.push_back(std::make_shared<JobInState>(queue, path.section(u'/', -1)));
    // With a limit of three: the first three run, and each that ends starts the next.
    for (const auto &job : jobs) {
        job->showTitle();
        queue.addTask(job);
    }
    jobs[0]->finish();
    jobs[1]->show(u"Encoding"_s, 34.0);
    jobs[1]->write(u"2 River of Glass.wav: ERROR: unexpected end of file\n"_s);
    jobs[1]->finish(true);
    Q_EMIT queue.taskSettled(jobs[1]);
    jobs[2]->show(u"Encoding"_s, 52.0);
    jobs[2]->setCancelled(true);
    jobs[2]->finish();
    jobs[3]->show(u"Encoding"_s, 71.0);
    jobs[4]->show(u"Verifying"_s, 18.0);
    jobs[5]->show(u"Copying tags"_s, 0.0);
    jobs[5]->startIndeterminateProgressBar();
    status.resize(440, 650);
    status.bringToFront();
    handleWaitingEvents();
    status.list()->clearFocus();
    save(status, folder.filePath(u"status-%1.png"_s.arg(suffix)));
}

/// The strip below the pages: while jobs run, after some have failed, and when all have ended.
void showStrip(NURVController &controller, MainWindow &window, const QDir &folder, const QString &suffix)
{
    NURVTaskQueue &queue = controller.taskQueue();
    BatchWatch &batch = window.batch();
    controller.selectTab(u"encode"_s);
    const QString output = u"/home/anna/Music/Live/1997-08-16 Aula Magna/"_s;
    const TestFolder sources;
    std::vector<std::shared_ptr<JobInState>> jobs;
    const auto end = [&](std::size_t place, bool failed) {
        JobInState &job = *jobs[place];
        job.ownOutcome().sourceBytes = 48'000'000;
        job.ownOutcome().outputBytes = 29'760'000;
        job.ownOutcome().output = failed ? QString() : output + job.title();
        job.finish(failed);
        Q_EMIT queue.taskSettled(jobs[place]);
    };
    for (const QString &path : concert(u"flac"_s)) {
        jobs.push_back(std::make_shared<JobInState>(queue, path.section(u'/', -1)));
        // The first ones are short, so that some minutes are left after seconds.
        QFile source(sources.write(jobs.back()->title(), {}));
        source.resize(jobs.size() <= 4 ? 2'000'000 : 60'000'000);
        jobs.back()->setSourcePath(source.fileName());
        jobs.back()->showTitle();
        jobs.back()->dropResults();
        queue.addTask(jobs.back());
    }
    const auto shoot = [&](const QString &name) {
        batch.flush();
        window.statusWindow()->hide();
        save(window, folder.filePath(u"strip-%1-%2.png"_s.arg(name, suffix)));
        window.statusWindow()->bringToFront();
        save(*window.statusWindow(), folder.filePath(u"strip-status-%1-%2.png"_s.arg(name, suffix)));
    };
    shoot(u"begin"_s);
    // An estimate wants a speed.
    static_cast<void>(waitUntil([&, since = std::chrono::steady_clock::now()] {
        return std::chrono::steady_clock::now() - since > std::chrono::seconds(4);
    }));
    for (std::size_t place = 0; place < 4; ++place)
        end(place, false);
    jobs[4]->show(u"Encoding"_s, 40.0);
    jobs[5]->show(u"Encoding"_s, 25.0);
    jobs[6]->show(u"Encoding"_s, 31.0);
    shoot(u"running"_s);
    end(4, true);
    end(5, true);
    shoot(u"failures"_s);
    window.resize(640, 480);
    shoot(u"small"_s);
    queue.showOutputWindow(u"report"_s, u"1 Tuning and Welcome.flac"_s);
    for (OutputWindow *const report : window.outputWindows())
        report->close();
    for (std::size_t place = 6; place < jobs.size(); ++place)
        end(place, false);
    shoot(u"over-small"_s);
    window.resize(kWindowSize);
    shoot(u"over"_s);
    queue.removeAllErrors();
    window.statusWindow()->hide();
}

void showOutput(UserPrompts &prompts, const QDir &folder, const QString &suffix)
{
    OutputWindow output(prompts);
    QString text;
    for (const QString &path : concert(u"flac"_s)) {
        const QString name = path.section(u'/', -1);
        text += name.startsWith(u"2 "_s)
                    ? name + u": ERROR while decoding data\n"_s
                    : u"%1: ok, %2 samples\n"_s.arg(name.leftJustified(34)).arg(7'560'000 + 13 * text.size());
    }
    output.setTextValue(text, u"1 Tuning and Welcome.flac"_s);
    output.resize(680, 380);
    output.show();
    output.showFindBar();
    output.findChild<QLineEdit *>(u"findField"_s)->setText(u"error"_s);
    output.findNext();
    save(output, folder.filePath(u"output-%1.png"_s.arg(suffix)));
}

/// Both pages, and what is said of endings and lines that cannot be taken.
void showPreferences(MainWindow &main, const QDir &folder, const QString &suffix)
{
    main.findChild<QAction *>(u"preferencesAction"_s)->trigger();
    PreferencesWindow &window = *main.preferencesWindow();
    if (!waitUntil([&] { return window.isActiveWindow(); }))
        std::fprintf(stderr, "the preferences have no keyboard\n");
    save(window, folder.filePath(u"preferences-general-%1.png"_s.arg(suffix)));
    const auto showPage = [&window](int index) {
        window.preferencesTab()->setCurrentIndex(index);
        const int wanted = window.findChild<QVariantAnimation *>() ? window.findChild<QVariantAnimation *>()->endValue().toInt() : 0;
        if (wanted > 0 && !waitUntil([&] { return window.height() == wanted; }))
            std::fprintf(stderr, "the preferences have no height\n");
    };
    showPage(1);
    save(window, folder.filePath(u"preferences-metadata-%1.png"_s.arg(suffix)));
    auto *const ending = window.findChild<QLineEdit *>(u"ffpExtension"_s);
    ending->setFocus();
    ending->selectAll();
    ending->insert(u"lists/ffp"_s);
    Q_EMIT ending->textEdited(ending->text());
    save(window, folder.filePath(u"preferences-refused-%1.png"_s.arg(suffix)));
    window.close();
}

/// The panels that the tests ask with, as a user has begun to fill them.
void showPanels(UserPrompts &prompts, const QDir &folder, const QString &suffix)
{
    const auto shoot = [&](const Panel &panel, const QString &name) {
        PanelDialog dialog(panel, nullptr);
        dialog.show();
        dialog.activateWindow();
        if (!waitUntil([&] { return dialog.isActiveWindow(); }))
            std::fprintf(stderr, "the panel has no keyboard\n");
        save(dialog, folder.filePath(u"panel-%1-%2.png"_s.arg(name, suffix)));
    };
    PrefixPanel prefix;
    shoot(prefix.panel(), u"prefix"_s);
    prefix.prefix.setText(u"gd1977-05-08d1t"_s);
    shoot(prefix.panel(), u"prefix-filled"_s);
    TrimPanel trim;
    trim.number.setIntegerValue(3);
    shoot(trim.panel(), u"trim"_s);
    CustomTagsPanel tags;
    tags.tags.setPair(0, {.name = u"TAPER"_s, .value = u"Anna Lind"_s});
    tags.tags.setPair(1, {.name = u"LINEAGE"_s, .value = u"SBD > DAT > CDR > EAC > SHN"_s});
    tags.tags.setPair(2, {.name = {}, .value = u"Aula Magna"_s});
    shoot(tags.panel(), u"tags"_s);
    NamesPanel names(prompts);
    QString text;
    for (const QString &path : concert(u"flac"_s))
        text += path.section(u'/', -1).chopped(5) + u'\n';
    names.names.setText(text);
    shoot(names.panel(), u"names"_s);
    OptionsPanel options;
    shoot(options.panel(), u"options"_s);
}

/// The track-names window: empty, with a loaded set list, and with trimmed lines.
void showTrackNames(UserPrompts &prompts, const QDir &folder, const QString &suffix)
{
    TrackNameInputController names(prompts);
    TrackNameWindow window(names);
    names.show(11);
    if (!waitUntil([&] { return window.isActiveWindow(); }))
        std::fprintf(stderr, "the track names have no keyboard\n");
    save(window, folder.filePath(u"names-empty-%1.png"_s.arg(suffix)));
    QByteArray setList("The Lamplighters, Aula Magna\n08/16/1997\n\n");
    for (const QString &path : concert(u"flac"_s).mid(0, 9))
        setList += path.section(u'/', -1).chopped(5).toUtf8() + " (4:31)\n";
    const TestFolder files;
    names.loadTrackNames(files.write(u"lamplighters1997-08-16.txt"_s, setList));
    save(window, folder.filePath(u"names-loaded-%1.png"_s.arg(suffix)));
    window.editor()->selectAll();
    save(window, folder.filePath(u"names-selected-%1.png"_s.arg(suffix)));
}

/// The small panels that tools share.
void showSmallPanels(const QDir &folder, const QString &suffix)
{
    class Camera final : public UserPrompts {
    public:
        explicit Camera(QString path) : m_path(std::move(path)) {}
        QString ask(const Alert &) override { return {}; }
        QStringList choose(const FileChooser &) override { return {}; }
        bool runPanel(const Panel &panel) override
        {
            PanelDialog dialog(panel, nullptr);
            dialog.show();
            dialog.activateWindow();
            if (!waitUntil([&] { return dialog.isActiveWindow(); }))
                std::fprintf(stderr, "the panel has no keyboard\n");
            save(dialog, m_path);
            return false;
        }

    private:
        QString m_path;
    };
    Camera trim(folder.filePath(u"trim-%1.png"_s.arg(suffix)));
    (void)NURVTrimCharsPanel(trim).runPanel();
    Camera string(folder.filePath(u"string-%1.png"_s.arg(suffix)));
    (void)NURVStringGetterPanel(string).runPanel(
        {}, u"Enter the Prefix that you want the files to start with:"_s, u"gd1977-05-08d1t"_s);
}

int render(const QDir &folder, const QString &suffix)
{
    QApplication::setStyle(new LegibleStyle);
    QApplication::setPalette(LegiblePalette::corrected(suffix == u"dark"_s ? darkPalette() : QApplication::palette()));
    SettingsStore::instance().setPersistence(SettingsStore::Persistence::MemoryOnly);
    NURVController::registerDefaults(toolbox());
    SettingsStore::instance().setValue(u"maxThreads"_s, 3);
    DesktopPrompts prompts;
    NullDesktopServices services;
    NURVController controller(prompts, services, toolbox());
    DecodeTab decodeTab(controller);
    EncodeTab encodeTab(controller);
    ChecksumTab checksumTab(controller);
    FixTab fixTab(controller);
    SHNtoolTab shntoolTab(controller);
    UtilTab utilTab(controller);
    TagsTab tagsTab(controller);
    LossyTab lossyTab(controller);
    MainWindow window(controller);
    showPages(controller, window, folder, suffix);
    showFormats(encodeTab, decodeTab, window, folder, suffix);
    showFix(fixTab, window, folder, suffix);
    showShntool(shntoolTab, window, folder, suffix);
    showUtil(utilTab, window, folder, suffix);
    showTags(tagsTab, window, folder, suffix);
    showModes(lossyTab, checksumTab, window, folder, suffix);
    showStrip(controller, window, folder, suffix);
    showRows(controller.taskQueue(), *window.statusWindow(), folder, suffix);
    showOutput(prompts, folder, suffix);
    showPreferences(window, folder, suffix);
    window.hide();
    showPanels(prompts, folder, suffix);
    showTrackNames(prompts, folder, suffix);
    showSmallPanels(folder, suffix);
    return 0;
}

} // namespace

} // namespace nurv::test

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "usage: nurv_screenshots FOLDER [light|dark]\n");
        return 2;
    }
    return nurv::test::render(QDir(arguments.at(1)), arguments.value(2, u"light"_s));
}
