// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "FakePortal.h"
#include "Files.h"

#include "ScreenCaptureWnd.h"

#include <QApplication>
#include <QFileDialog>
#include <QGraphicsView>
#include <QScreen>
#include <QTimer>
#include <QUrl>
#include <QWindow>

namespace
{

constexpr uint kGranted = 0;
constexpr uint kRefused = 1;

QVector<QGraphicsView*> shownViews()
{
    QVector<QGraphicsView*> views;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* view = qobject_cast<QGraphicsView*>(widget);
        if (view && view->isVisible())
            views << view;
    }
    return views;
}

QImage pictureOf(const QSize& size)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::red);
    return picture;
}

QSize desktopSize()
{
    return QGuiApplication::primaryScreen()->virtualSize();
}

} // namespace

/// The life of the capture window in a Wayland session, in which the test stands in for the portal.
class tst_wayland_window : public BehaviourTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void viewsGoWithTheWindow();
    void keptWindowMayBeShownAgain();
    void captureIsNotTheLastWindow();
    void windowMayBeDeletedWhenTheCaptureEnds_data();
    void windowMayBeDeletedWhenTheCaptureEnds();
    void windowMayBeDeletedWhileTheDialogIsOpen();
    void captureThatEndedStaysEnded_data();
    void captureThatEndedStaysEnded();
    void failureIsOfTheLastCapture();
    void keptWindowThatFailedFailsAgain();
    void pictureOfAnotherShapeIsNone_data();
    void pictureOfAnotherShapeIsNone();
    void windowIsTheSameWhileThePictureIsAwaited();

private:
    /// A capture of a picture that is there at once.
    void show(bool deletesItself = true);
    /// A capture whose picture the portal is asked for.
    void ask(bool deletesItself = true);
    QDBusMessage call();
    void answer(const QImage& picture);
    QString fileName() const { return QString::fromStdString(m_scratch.path("shot.png")); }

    const Scratch m_scratch;
    std::unique_ptr<FakePortal> m_portal;
    QPointer<ScreenCaptureWnd> m_window;
    int m_ends = 0;
};

void tst_wayland_window::init()
{
    BehaviourTest::init();
    QApplication::setQuitOnLastWindowClosed(false);
    m_portal = std::make_unique<FakePortal>();
    m_ends = 0;
}

void tst_wayland_window::cleanup()
{
    delete m_window;
    m_portal.reset();
    QTRY_VERIFY(shownViews().isEmpty());
    BehaviourTest::cleanup();
}

void tst_wayland_window::show(bool deletesItself)
{
    m_window = ScreenCaptureWnd::captureOf(pictureOf(desktopSize()));
    m_window->setAttribute(Qt::WA_DeleteOnClose, deletesItself);
    connect(m_window, &ScreenCaptureWnd::captureFinished, this, [this] { ++m_ends; });
    m_window->showFullDesktop(true);
    QTRY_COMPARE(shownViews().size(), QGuiApplication::screens().size());
    for (const QGraphicsView* view : shownViews())
        QVERIFY(QTest::qWaitForWindowExposed(view->windowHandle()));
}

void tst_wayland_window::ask(bool deletesItself)
{
    m_window = ScreenCaptureWnd::screenCaptureWnd();
    m_window->setAttribute(Qt::WA_DeleteOnClose, deletesItself);
    connect(m_window, &ScreenCaptureWnd::captureFinished, this, [this] { ++m_ends; });
    m_window->showFullDesktop(true);
    m_portal->reply(call());
}

QDBusMessage tst_wayland_window::call()
{
    if (!QTest::qWaitFor([this] { return !m_portal->calls.isEmpty(); }, kPatienceMs))
        qFatal("the portal is not asked");
    return m_portal->calls.last();
}

void tst_wayland_window::answer(const QImage& picture)
{
    picture.save(fileName());
    m_portal->respond(call(), kGranted, {{"uri", QUrl::fromLocalFile(fileName()).toString()}});
}

// A slot that waits, for an answer of the user's or a file, sees the desktop as it is.
void tst_wayland_window::viewsGoWithTheWindow()
{
    show();
    int shownInTheSlot = -1;
    connect(
        m_window, &ScreenCaptureWnd::captureFinished, this,
        [&] { shownInTheSlot = shownViews().size(); }, Qt::QueuedConnection);
    m_window->reject();
    QTRY_COMPARE(shownInTheSlot, 0);
}

void tst_wayland_window::keptWindowMayBeShownAgain()
{
    show(false);
    m_window->reject();
    QTRY_VERIFY(shownViews().isEmpty());
    m_window->show();
    QTRY_COMPARE(shownViews().size(), QGuiApplication::screens().size());
    m_window->reject();
    QCOMPARE(m_ends, 2);
}

// Qt quits where the application runs only.
void tst_wayland_window::captureIsNotTheLastWindow()
{
    constexpr int kExitedByTheTest = 5;
    QApplication::setQuitOnLastWindowClosed(true);
    show();
    connect(
        m_window, &QObject::destroyed, qApp, [] { QCoreApplication::exit(kExitedByTheTest); },
        Qt::QueuedConnection);
    QTimer::singleShot(0, this, [] { shownViews().first()->windowHandle()->close(); });
    QCOMPARE(QApplication::exec(), kExitedByTheTest);
    QCOMPARE(m_ends, 1);
}

using End = std::function<void(QGraphicsView* view)>;
Q_DECLARE_METATYPE(End)

void tst_wayland_window::windowMayBeDeletedWhenTheCaptureEnds_data()
{
    QTest::addColumn<End>("end");
    QTest::newRow("by a click") << End([](QGraphicsView* view) {
        QTest::mouseClick(view->viewport(), Qt::RightButton, {}, QPoint(100, 100));
    });
    QTest::newRow("by a key") << End(
        [](QGraphicsView* view) { QTest::keyClick(view, Qt::Key_Escape); });
    QTest::newRow("by the compositor") << End([](QGraphicsView* view) { view->close(); });
}

void tst_wayland_window::windowMayBeDeletedWhenTheCaptureEnds()
{
    QFETCH(End, end);
    show();
    connect(m_window, &ScreenCaptureWnd::captureFinished, this, [this] { delete m_window; });
    end(shownViews().last());
    QTRY_VERIFY(!m_window);
    QTRY_VERIFY(shownViews().isEmpty());
    QCOMPARE(m_ends, 1);
}

void tst_wayland_window::windowMayBeDeletedWhileTheDialogIsOpen()
{
    show();
    QTimer deletion;
    connect(&deletion, &QTimer::timeout, this, [this] {
        if (m_window->findChild<QFileDialog*>()->isVisible())
            delete m_window;
    });
    deletion.start(1);
    m_window->save();
    QVERIFY(!m_window);
}

using Way = std::function<void(ScreenCaptureWnd* window)>;
Q_DECLARE_METATYPE(Way)

void tst_wayland_window::captureThatEndedStaysEnded_data()
{
    QTest::addColumn<Way>("end");
    QTest::addColumn<bool>("deletesItself");
    const auto rows = [](const char* name, const Way& end) {
        QTest::newRow(name) << end << true;
        QTest::newRow((name + std::string(", and is kept")).c_str()) << end << false;
    };
    rows("rejected", [](ScreenCaptureWnd* window) { window->reject(); });
    rows("accepted", [](ScreenCaptureWnd* window) { window->accept(); });
    rows("closed", [](ScreenCaptureWnd* window) { window->close(); });
}

void tst_wayland_window::captureThatEndedStaysEnded()
{
    QFETCH(Way, end);
    QFETCH(bool, deletesItself);
    ask(deletesItself);
    answer(pictureOf(desktopSize()));
    end(m_window);
    QCOMPARE(m_ends, 1);
    QTRY_VERIFY(!QFile::exists(fileName()));
    QTRY_COMPARE(m_window.isNull(), deletesItself);
    QVERIFY(shownViews().isEmpty());
    QCOMPARE(m_ends, 1);
}

void tst_wayland_window::failureIsOfTheLastCapture()
{
    ask();
    m_portal->respond(call(), kRefused, {});
    QTRY_VERIFY(!m_window);
    QCOMPARE(m_ends, 1);
    QCOMPARE(ScreenCaptureWnd::failure(), QString("The screenshot was not permitted."));
    m_portal->calls.clear();
    ask();
    m_window->close();
    QCOMPARE(m_ends, 2);
    QCOMPARE(ScreenCaptureWnd::failure(), QString());
}

void tst_wayland_window::keptWindowThatFailedFailsAgain()
{
    ask(false);
    m_portal->respond(call(), kRefused, {});
    QTRY_COMPARE(m_ends, 1);
    m_window->showFullDesktop(true);
    QTRY_COMPARE(m_ends, 2);
    QVERIFY(shownViews().isEmpty());
}

void tst_wayland_window::pictureOfAnotherShapeIsNone_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("half") << QSize(desktopSize().width() / 2, desktopSize().height());
    QTest::newRow("turned") << desktopSize().transposed();
}

void tst_wayland_window::pictureOfAnotherShapeIsNone()
{
    QFETCH(QSize, size);
    ask();
    answer(pictureOf(size));
    QTRY_COMPARE(m_ends, 1);
    QCOMPARE(ScreenCaptureWnd::failure(), QString("The picture is not that of the whole desktop."));
}

void tst_wayland_window::windowIsTheSameWhileThePictureIsAwaited()
{
    ask();
    QCOMPARE(ScreenCaptureWnd::screenCaptureWnd(), m_window.data());
    m_window->hide();
    m_window->show();
    QVERIFY(!m_window->isVisible());
    QVERIFY(m_window->captureImage().isNull());
    m_window->hide();
    answer(pictureOf(desktopSize()));
    QTRY_VERIFY(!QFile::exists(fileName()));
    QVERIFY(!m_window->isVisible());
    m_window->showFullDesktop(true);
    QTRY_COMPARE(shownViews().size(), QGuiApplication::screens().size());
    m_window->reject();
    QCOMPARE(m_ends, 1);
}

QTEST_MAIN(tst_wayland_window)

#include "tst_wayland_window.moc"
