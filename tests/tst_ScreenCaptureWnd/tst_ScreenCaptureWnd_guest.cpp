// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"
#include "Screen.h"

#include <QClipboard>
#include <QDir>
#include <QMimeData>
#include <QStyle>
#include <QTemporaryDir>
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

} // namespace

/// The library as a guest in an application, whose property it leaves alone.
class tst_ScreenCaptureWnd_guest : public CaptureTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void everythingIsLeftAsItWas_data();
    void everythingIsLeftAsItWas();
    void onlyTheKnownLinesArePrinted();

private:
    void useEveryTool();
};

void tst_ScreenCaptureWnd_guest::init()
{
    BehaviourTest::init();
    m_receiver.reset(new Receiver);
    QGuiApplication::clipboard()->setText("the application's own");
    QGuiApplication::setOverrideCursor(Qt::WhatsThisCursor);
}

void tst_ScreenCaptureWnd_guest::cleanup()
{
    QGuiApplication::restoreOverrideCursor();
    QVERIFY(!QGuiApplication::overrideCursor());
    qApp->setStyleSheet(QString());
    CaptureTest::cleanup();
}

void tst_ScreenCaptureWnd_guest::useEveryTool()
{
    QPoint from(50, 50);
    for (const MainItem tool : kTools) {
        m_capture->choose(tool);
        m_capture->stroke(from, from + QPoint(50, 70));
        from += QPoint(40, 0);
    }
    QCoreApplication::processEvents();
}

void tst_ScreenCaptureWnd_guest::everythingIsLeftAsItWas_data()
{
    QTest::addColumn<QString>("styleSheet");
    QTest::addColumn<bool>("quitOnLastWindowClosed");
    QTest::newRow("an application that quits with its last window") << QString() << true;
    QTest::newRow("one that stays") << QString() << false;
    QTest::newRow("one with a style sheet") << QString("QPushButton { padding: 12px }") << false;
}

void tst_ScreenCaptureWnd_guest::everythingIsLeftAsItWas()
{
    QFETCH(QString, styleSheet);
    QFETCH(bool, quitOnLastWindowClosed);
    qApp->setStyleSheet(styleSheet);
    QGuiApplication::setQuitOnLastWindowClosed(quitOnLastWindowClosed);
    const QTemporaryDir dir;
    const ApplicationState before;
    Desktop desktop(1);
    for (const bool finish : {true, false}) {
        restart();
        QVERIFY(QTest::qWaitForWindowActive(window()));
        compare(ApplicationState(), before);
        m_capture->drag(QPoint(100, 100), QPoint(600, 400));
        compare(ApplicationState(), before);
        useEveryTool();
        compare(ApplicationState(), before);
        m_capture->saveAs(QString());
        m_capture->saveAs(dir.filePath("saved.png"));
        QVERIFY(QFile::remove(dir.filePath("saved.png")));
        compare(ApplicationState(), before);
        if (finish)
            window()->accept();
        else
            window()->reject();
        deliver();
        QVERIFY(m_capture->isGone());
        compare(ApplicationState(), before);
    }
    QCOMPARE(m_receiver->count, 2);
}

// Those about the style sheet with the stray brace, which stays as it stands.
void tst_ScreenCaptureWnd_guest::onlyTheKnownLinesArePrinted()
{
    static QStringList messages;
    messages.clear();
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { messages << text; });
    Desktop desktop(2);
    restart();
    QVERIFY(QTest::qWaitForWindowActive(window()));
    m_capture->drag(QPoint(100, 100), QPoint(600, 400));
    useEveryTool();
    window()->accept();
    deliver();
    QVERIFY(m_capture->isGone());
    qInstallMessageHandler(before);
    QStringList objects;
    for (const QString& message : qAsConst(messages)) {
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

QTEST_MAIN(tst_ScreenCaptureWnd_guest)
#include "tst_ScreenCaptureWnd_guest.moc"
