// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Screen.h"

#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMimeData>
#include <QMutex>
#include <QPushButton>
#include <QStyle>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolTip>
#include <clocale>

namespace
{

/// All that the application owns and the library has to leave alone.
struct ApplicationState {
    QString styleSheet = qApp->styleSheet();
    QStyle* style = QApplication::style();
    QPalette palette = QApplication::palette();
    QPalette toolTipPalette = QToolTip::palette();
    QFont font = QApplication::font();
    QCursor* overrideCursor = QGuiApplication::overrideCursor();
    QString clipboardText = QGuiApplication::clipboard()->text();
    QStringList clipboardFormats = QGuiApplication::clipboard()->mimeData()->formats();
    bool ownsClipboard = QGuiApplication::clipboard()->ownsClipboard();
    bool quitOnLastWindowClosed = QGuiApplication::quitOnLastWindowClosed();
    bool quitLock = QCoreApplication::isQuitLockEnabled();
    QString workingDirectory = QDir::currentPath();
    QByteArray locale = std::setlocale(LC_ALL, nullptr);
    QString organization = QCoreApplication::organizationName();
};

void compare(const ApplicationState& now, const ApplicationState& before)
{
    QCOMPARE(now.styleSheet, before.styleSheet);
    QCOMPARE(now.style, before.style);
    QCOMPARE(now.palette, before.palette);
    QCOMPARE(now.toolTipPalette, before.toolTipPalette);
    QCOMPARE(now.font, before.font);
    QCOMPARE(now.overrideCursor, before.overrideCursor);
    QCOMPARE(now.clipboardText, before.clipboardText);
    QCOMPARE(now.clipboardFormats, before.clipboardFormats);
    QCOMPARE(now.ownsClipboard, before.ownsClipboard);
    QCOMPARE(now.quitOnLastWindowClosed, before.quitOnLastWindowClosed);
    QCOMPARE(now.quitLock, before.quitLock);
    QCOMPARE(now.workingDirectory, before.workingDirectory);
    QCOMPARE(now.locale, before.locale);
    QCOMPARE(now.organization, before.organization);
}

QMutex s_mutex;
QStringList s_messages;
QtMessageHandler s_next = nullptr;

void collectMessages(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    {
        const QMutexLocker lock(&s_mutex);
        s_messages << message;
    }
    s_next(type, context, message);
}

} // namespace

/// The library as a guest in an application.
class tst_ScreenCaptureWnd_in_application : public BehaviourTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void everythingIsLeftAsItWas_data();
    void everythingIsLeftAsItWas();
    void onlyTheKnownLinesArePrinted();

private:
    static QPushButton* button(const CaptureProbe& capture, int index);
    static void useEveryTool(const CaptureProbe& capture);
    static void saveTo(const CaptureProbe& capture, const QString& name);
};

void tst_ScreenCaptureWnd_in_application::init()
{
    BehaviourTest::init();
    QGuiApplication::clipboard()->setText("the application's own");
    QGuiApplication::setOverrideCursor(Qt::WhatsThisCursor);
}

void tst_ScreenCaptureWnd_in_application::cleanup()
{
    QGuiApplication::restoreOverrideCursor();
    QVERIFY(!QGuiApplication::overrideCursor());
    BehaviourTest::cleanup();
}

QPushButton* tst_ScreenCaptureWnd_in_application::button(const CaptureProbe& capture, int index)
{
    return capture.toolBar()->findChildren<QPushButton*>().at(index);
}

void tst_ScreenCaptureWnd_in_application::useEveryTool(const CaptureProbe& capture)
{
    constexpr int kTools = 6;
    for (int i = 0; i < kTools; ++i) {
        button(capture, i)->click();
        movePointer(QPoint(150 + 40 * i, 150));
        xdotool({"mousedown", "1"});
        movePointer(QPoint(180 + 40 * i, 170));
        movePointer(QPoint(200 + 40 * i, 220));
        xdotool({"mouseup", "1"});
        QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::MouseButtons());
    }
}

void tst_ScreenCaptureWnd_in_application::saveTo(const CaptureProbe& capture, const QString& name)
{
    QTimer::singleShot(0, capture.window(), [&capture, name] {
        auto* dialog = capture.window()->findChild<QFileDialog*>();
        QVERIFY(QTest::qWaitForWindowExposed(dialog));
        dialog->findChild<QLineEdit*>()->setText(name);
        static_cast<QDialog*>(dialog)->done(name.isEmpty() ? QDialog::Rejected : QDialog::Accepted);
    });
    capture.window()->save();
}

void tst_ScreenCaptureWnd_in_application::everythingIsLeftAsItWas_data()
{
    QTest::addColumn<QString>("styleSheet");
    QTest::addColumn<bool>("quitOnLastWindowClosed");
    QTest::newRow("an application that quits with its last window") << QString() << true;
    QTest::newRow("one that stays") << QString() << false;
    QTest::newRow("one with a style sheet") << QString("QPushButton { padding: 12px }") << false;
}

void tst_ScreenCaptureWnd_in_application::everythingIsLeftAsItWas()
{
    QFETCH(QString, styleSheet);
    QFETCH(bool, quitOnLastWindowClosed);
    qApp->setStyleSheet(styleSheet);
    QGuiApplication::setQuitOnLastWindowClosed(quitOnLastWindowClosed);
    const QTemporaryDir dir;
    const ApplicationState before;
    Desktop desktop(1);
    for (const bool finish : {true, false}) {
        CaptureProbe capture;
        Receiver receiver;
        capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
        capture.window()->showFullDesktop(true);
        QVERIFY(QTest::qWaitForWindowActive(capture.window()));
        compare(ApplicationState(), before);
        capture.drag(QPoint(100, 100), QPoint(600, 400));
        compare(ApplicationState(), before);
        useEveryTool(capture);
        compare(ApplicationState(), before);
        saveTo(capture, QString());
        saveTo(capture, dir.filePath("saved.png"));
        QVERIFY(QFile::remove(dir.filePath("saved.png")));
        compare(ApplicationState(), before);
        if (finish)
            capture.window()->accept();
        else
            capture.window()->reject();
        deliver();
        QCOMPARE(receiver.count, 1);
        QVERIFY(capture.isGone());
        compare(ApplicationState(), before);
    }
    qApp->setStyleSheet(QString());
}

void tst_ScreenCaptureWnd_in_application::onlyTheKnownLinesArePrinted()
{
    s_messages.clear();
    s_next = qInstallMessageHandler(collectMessages);
    {
        Desktop desktop(2);
        CaptureProbe capture;
        capture.window()->showFullDesktop(true);
        QVERIFY(QTest::qWaitForWindowActive(capture.window()));
        capture.drag(QPoint(100, 100), QPoint(600, 400));
        useEveryTool(capture);
        capture.window()->accept();
        deliver();
        QVERIFY(capture.isGone());
    }
    qInstallMessageHandler(s_next);
    QStringList objects;
    for (const QString& message : qAsConst(s_messages)) {
        // Qt asks after a window that the test before has closed.
        if (message.startsWith("QXcbConnection: XCB error: 3 (BadWindow)"))
            continue;
        QVERIFY2(message.startsWith("Could not parse stylesheet of object "), qPrintable(message));
        objects << message.section(' ', 6).section('(', 0, 0);
    }
    objects.removeDuplicates();
    objects.sort();
    QCOMPARE(objects, QStringList({"MagnifierWidget", "QTextEdit", "ScribbleArea"}));
}

QTEST_MAIN(tst_ScreenCaptureWnd_in_application)
#include "tst_ScreenCaptureWnd_in_application.moc"
