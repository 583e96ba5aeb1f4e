// SPDX-License-Identifier: MIT
// Takes one capture after the other, each with every tool, and looks whether anything grows:
//   soak [--captures N]
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Holdings.h"
#include "ScreenCaptureTool.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QPixmapCache>
#include <QSettings>
#include <QTemporaryDir>
#include <cstdio>

namespace
{

constexpr int kDefaultCaptures = 2000;
// What is held is compared with what was held after so many captures.
constexpr int kWarmUp = 100;
// Done, save and close, Escape, close: as many as divide the hundred, so that the same was done
// last whenever is counted.
constexpr int kEnds = 4;
constexpr qint64 kMaxGrowthBytes = 2 * 1024 * 1024;
const QRect kRegion(QPoint(60, 60), QPoint(540, 360));

void printUnknown(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    if (!isKnownWarning(text))
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

void useEachTool(const CaptureProbe& capture)
{
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    for (const MainItem tool : kTools) {
        capture.choose(tool);
        capture.stroke(QPoint(50, 50), QPoint(250, 180));
        if (tool == Text)
            QTest::keyClicks(capture.canvas()->findChild<QTextEdit*>(), "soaked");
        else if (tool == Mosaic)
            capture.blurSlider()->setValue(12);
        else
            capture.pickColor(1, 2);
    }
    capture.window()->undo();
    capture.window()->redo();
    QCoreApplication::processEvents();
}

void saveAs(ScreenCaptureWnd* window, const QString& name)
{
    QTimer::singleShot(0, window, [name] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        dialog->findChild<QLineEdit*>()->setText(name);
        static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
    });
    window->save();
}

/// False when the result did not come as it should.
bool takeCapture(int number, const QString& directory)
{
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    QCoreApplication::processEvents();
    useEachTool(capture);

    const int end = number % kEnds;
    const QString file = directory + "/soaked.png";
    if (end == 1)
        saveAs(capture.window(), file);
    if (end == 0)
        capture.button(Done)->click();
    else if (end == 2)
        QTest::keyClick(capture.window(), Qt::Key_Escape);
    else
        capture.button(Close)->click();
    deliver();
    const bool delivered = receiver.count == 1 && receiver.finished == (end == 0) &&
                           receiver.image.isNull() == (end != 0);
    return delivered && capture.isGone() && (end != 1 || QFile::remove(file));
}

QString verdict(const Holdings& before, const Holdings& after, int captures)
{
    QString text = before.missing() + after.missing() + before.growthUntil(after);
    const qint64 growth = after.residentBytes - before.residentBytes;
    const qint64 untrimmed = after.untrimmedBytes - before.untrimmedBytes;
    std::printf("soak: memory grew by %lld KiB in %d captures, untrimmed by %lld KiB\n",
                static_cast<long long>(growth / 1024), captures - kWarmUp,
                static_cast<long long>(untrimmed / 1024));
    if (growth > kMaxGrowthBytes)
        text += QString("memory: %1 KiB more\n").arg(growth / 1024);
    return text;
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(printUnknown);
    countObjects();
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    // Qt keeps painted icons for some 30 seconds and up to 10 MiB, which is not this library's
    // doing.
    QPixmapCache::setCacheLimit(0);
    QTemporaryDir directory;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, directory.path());
    ScreenCaptureTool::init(directory.path());

    const QStringList arguments = QApplication::arguments();
    const int captures =
        arguments.value(1) == "--captures" ? arguments.value(2).toInt() : kDefaultCaptures;
    Holdings before;
    Holdings after;
    for (int number = 1; number <= captures; ++number) {
        if (!takeCapture(number, directory.path())) {
            std::fprintf(stderr, "soak: capture %d did not end as it should\n", number);
            return 1;
        }
        if (number % kWarmUp != 0)
            continue;
        after = Holdings::now();
        if (number == kWarmUp)
            before = after;
        std::printf("soak: %d: %s\n", number, qPrintable(after.text()));
        std::fflush(stdout);
    }
    const QString grown = verdict(before, after, captures - captures % kWarmUp);
    if (!grown.isEmpty())
        std::fprintf(stderr, "soak: not as after %d captures\n%s", kWarmUp, qPrintable(grown));
    return grown.isEmpty() ? 0 : 1;
}
