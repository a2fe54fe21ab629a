// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later

// A file manager for tests: a small window from which the files of the command
// line can be dragged. Ends after the drag; status 0 when they were dropped.

#include <QApplication>
#include <QDir>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QTimer>
#include <QUrl>

namespace {

class Source final : public QLabel {
public:
    Source() : QLabel(QStringLiteral("drag me"))
    {
        setWindowTitle(QStringLiteral("drag source"));
        setFixedSize(160, 120);
    }

protected:
    void mouseMoveEvent(QMouseEvent *) override
    {
        QList<QUrl> urls;
        const QStringList paths = QApplication::arguments().mid(1);
        for (const QString &path : paths)
            urls.append(QUrl::fromLocalFile(QDir::current().absoluteFilePath(path)));
        auto *const files = new QMimeData;
        files->setUrls(urls);
        auto *const drag = new QDrag(this);
        drag->setMimeData(files);
        const int status = drag->exec(Qt::CopyAction) == Qt::CopyAction ? 0 : 1;
        // The target fetches the data after the drop: the source has to stay.
        QTimer::singleShot(3000, this, [status] { QApplication::exit(status); });
    }
};

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    Source source;
    source.show();
    return QApplication::exec();
}
