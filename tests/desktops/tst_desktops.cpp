// SPDX-License-Identifier: MIT
#include "tst_desktops.h"

#include "Input.h"
#include "Pictures.h"
#include "Reports.h"
#include "Screens.h"
#include "Waiting.h"

#include <QApplication>
#include <QScreen>
#include <QtMath>

namespace
{

// By then a window manager has given a new window the keyboard, if it does.
constexpr int kSettleMs = 1000;
constexpr int kSettledLooks = 20;
// So many of the overlay's coordinates above a region, and beside a narrow one, its size label may
// cover.
constexpr int kSizeLabelBand = 64;

} // namespace

void tst_desktops::overlayIsTheDimmedDesktop_data()
{
    QTest::addColumn<bool>("again");
    QTest::newRow("from the first") << false;
    QTest::newRow("after having been a window") << true;
}

void tst_desktops::overlayIsTheDimmedDesktop()
{
    QFETCH(bool, again);
    startCapture();
    if (again) {
        m_host->ask("be a window");
        m_host->ask("be the overlay");
    }
    checkOverlay();
    // It is made of whole coordinates, on whichever screen.
    const qreal largestRatio = m_host->largestRatio();
    const int beyond = largestRatio == 1 ? 0 : qCeil(largestRatio);
    const QRect overlay = where("ScreenCaptureWnd");
    QVERIFY(overlay.contains(m_server->desktop()));
    QVERIFY(m_server->desktop().adjusted(0, 0, beyond, beyond).contains(overlay));
    keyToCapture("Escape");
    expectEnd("cancelled");
    // The window has had the keyboard, and not every window manager gives it back.
    if (again)
        m_server->setFocus(static_cast<xcb_window_t>(m_notes->winId()));
}

void tst_desktops::loupeShowsThePixelsAroundThePointer_data()
{
    QTest::addColumn<QPoint>("pointer");
    for (const QRect& screen : screens())
        QTest::newRow(qPrintable(text(screen))) << screen.center() + QPoint(51, 37);
}

// From the first look on, before the pointer moves. Between the frame and the cross hair.
void tst_desktops::loupeShowsThePixelsAroundThePointer()
{
    constexpr int side = 16;
    constexpr int centre = 7;
    QFETCH(QPoint, pointer);
    input(at(pointer));
    startCapture();
    const auto isShown = [&](const QPoint& inSource) {
        const QRect loupe = where("MagnifierWidget");
        const QPoint seen = loupe.topLeft() + QPoint((inSource.x() + 0.5) * loupe.width() / side,
                                                     (inSource.y() + 0.5) * loupe.height() / side);
        return m_server->picture().pixel(seen) ==
               m_atStart.pixel(pointer - QPoint(centre, centre) + inSource);
    };
    for (const QPoint& p : {QPoint(3, 3), QPoint(12, 3), QPoint(3, 12), QPoint(12, 12)})
        QVERIFY2(waitFor([&] { return isShown(p); }), qPrintable(text(p)));
    keyToCapture("Escape");
    expectEnd("cancelled");
}

void tst_desktops::regionIsDelivered_data()
{
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<QPoint>("to");
    const auto row = [](const QPoint& from, const QPoint& to) {
        QTest::newRow(qPrintable(text(from) + " to " + text(to))) << from << to;
    };
    for (const QRect& screen : screens()) {
        row(screen.center(), screen.center() - QPoint(211, 123));
        row(screen.topLeft(), screen.bottomRight());
    }
    for (const Drag& drag : dragsAcross())
        row(drag.from, drag.to);
}

void tst_desktops::regionIsDelivered()
{
    QFETCH(QPoint, from);
    QFETCH(QPoint, to);
    startCapture();
    select(from, to);
    keyToCapture("Return");
    expectDelivered(between(from, to));
}

void tst_desktops::keysReachTheCapture_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("afterDrag");
    QTest::addColumn<QString>("end");
    QTest::newRow("Escape without a click") << "Escape" << false << "cancelled";
    QTest::newRow("Escape") << "Escape" << true << "cancelled";
    QTest::newRow("Return") << "Return" << true << "captured";
    QTest::newRow("Enter on the number pad") << "KP_Enter" << true << "captured";
}

void tst_desktops::keysReachTheCapture()
{
    QFETCH(QString, name);
    QFETCH(bool, afterDrag);
    QFETCH(QString, end);
    startCapture();
    if (afterDrag)
        select(QRect(screens().first().center(), QSize(100, 80)));
    keyToCapture(name);
    expectEnd(end);
}

void tst_desktops::tabGoesThroughTheToolBar()
{
    startCapture();
    select(QRect(screens().first().topLeft() + QPoint(100, 150), QSize(500, 300)));
    keyToCapture("Tab");
    key("space");
    QVERIFY2(waitFor([this] { return !where("subToolBar").isEmpty(); }),
             "the first button is not pressed");
    keyToCapture("Escape");
    expectEnd("cancelled");
}

void tst_desktops::windowThatOpensChangesNothing_data()
{
    QTest::addColumn<Qt::WindowFlags>("flags");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("end");
    for (const char* name : {"Escape", "Return"}) {
        const char* const end = name == QByteArray("Escape") ? "cancelled" : "captured";
        const QByteArray key(name);
        QTest::newRow("window, " + key) << Qt::WindowFlags(Qt::Window) << name << end;
        QTest::newRow("dialog, " + key) << Qt::WindowFlags(Qt::Dialog) << name << end;
        QTest::newRow("window that stays on top, " + key)
            << Qt::WindowFlags(Qt::Window | Qt::WindowStaysOnTopHint) << name << end;
    }
}

void tst_desktops::windowThatOpensChangesNothing()
{
    QFETCH(Qt::WindowFlags, flags);
    QFETCH(QString, name);
    QFETCH(QString, end);
    if (isManagerRefusing())
        QSKIP("no window opens");
    const QRect region(screens().first().center() - QPoint(150, 100), QSize(211, 123));
    startCapture();
    if (end == "captured")
        select(region);
    {
        const QImage overlay = stillPicture();
        bool wasGivenFocus = false;
        Picture other(noise(QSize(320, 240), 2), flags);
        connect(qApp, &QGuiApplication::focusWindowChanged, &other, [&](const QWindow* window) {
            wasGivenFocus = wasGivenFocus || window == other.windowHandle();
        });
        auto* line = new QLineEdit(&other);
        line->setFocus();
        other.move(region.topLeft() - QPoint(50, 50));
        other.show();
        other.raise();
        other.activateWindow();
        const auto id = static_cast<xcb_window_t>(other.winId());
        QVERIFY2(waitFor([&] { return m_server->isViewable(id); }), "the window does not open");
        QString seen;
        const bool covered = waitFor([&] {
            seen = difference(m_server->picture(), overlay);
            return seen.isEmpty();
        });
        QVERIFY2(covered,
                 qPrintable("beside the window at " + text(m_server->geometry(id)) + ": " + seen));
        static_cast<void>(QTest::qWaitFor([&] { return wasGivenFocus; }, kSettleMs));
        // A window manager may insist a few times.
        const xcb_window_t capture = m_host->place("ScreenCaptureWnd").window;
        int looks = 0;
        const bool isSettled = waitFor([&] {
            looks = m_server->focus() == capture ? looks + 1 : 0;
            return looks == kSettledLooks;
        });
        QVERIFY2(isSettled, "the window has the keyboard again and again");
        keyToCapture(name);
        if (end == "captured")
            expectDelivered(region);
        else
            expectEnd(end);
        QVERIFY2(line->text().isEmpty(), "the window was given keys");
    }
    m_notes->activateWindow();
}

// Undoing a bare region drops it.
void tst_desktops::toolBarStandsOnOneScreen()
{
    startCapture();
    for (const Drag& drag : dragsEverywhere()) {
        select(drag.from, drag.to);
        const QRect region = between(drag.from, drag.to);
        // The last coordinate may lie on two screens.
        const QRect screen = screenOf(region.bottomRight());
        const QRect next = screenOf(selected(region).bottomRight());
        QRect bar;
        const bool isThere = waitFor([&] {
            bar = where("mainToolBar");
            return !bar.isEmpty() && (screen.contains(bar) || next.contains(bar)) &&
                   isAbove("mainToolBar");
        });
        QVERIFY2(isThere, qPrintable("tool bar at " + text(bar) + " for region " + text(region) +
                                     ", not on " + text(screen)));
        keyToCapture("ctrl+z");
        QVERIFY2(waitFor([this] { return where("mainToolBar").isEmpty(); }),
                 qPrintable("Ctrl+Z does not drop " + text(region)));
    }
    keyToCapture("Escape");
    expectEnd("cancelled");
}

void tst_desktops::openSaveDialog(const QRect& region)
{
    startCapture();
    select(region);
    clickOn("save");
    QVERIFY2(waitFor([this] { return !where("QFileDialog").isEmpty(); }), "no dialog opens");
    QVERIFY2(waitFor([this] { return isAbove("QFileDialog"); }),
             qPrintable("the dialog at " + text(where("QFileDialog")) + " is covered"));
}

void tst_desktops::saveDialogStandsAboveAndSaves()
{
    const QRect region(screens().first().center() - QPoint(150, 100), QSize(211, 123));
    const QString file = "saved.bmp";
    openSaveDialog(region);
    const QRect name = where("fileNameEdit");
    input(at(name.center()) + QStringList{"click", "--repeat", "3", "1"});
    input({"key", "ctrl+a"});
    input({"type", file});
    QVERIFY2(waitFor([&] { return m_host->content("fileNameEdit") == file; }),
             qPrintable("the dialog was given the keys " + m_host->content("fileNameEdit")));
    key("Return");
    QVERIFY2(waitFor([this] { return where("QFileDialog").isEmpty(); }), "the dialog stays");
    const QString seen = difference(m_host->written(file), m_atStart.copy(selected(region)));
    QVERIFY2(seen.isEmpty(), qPrintable("saved region " + text(region) + ": " + seen));
    QVERIFY(waitFor([this] { return where("mainToolBar").isEmpty(); }));
    checkOverlay();
    keyToCapture("Escape");
    expectEnd("cancelled");
}

void tst_desktops::saveDialogIsCancelled()
{
    const QRect region(screens().last().center() - QPoint(150, 100), QSize(211, 123));
    openSaveDialog(region);
    key("Escape");
    QVERIFY2(waitFor([this] { return where("QFileDialog").isEmpty(); }),
             "Escape does not reach the dialog");
    keyToCapture("Return");
    expectDelivered(region);
}

void tst_desktops::fontSizeListStandsAbove()
{
    const QString list = "QComboBoxPrivateContainer";
    startCapture();
    select(QRect(screens().first().topLeft() + QPoint(100, 150), QSize(500, 300)));
    clickOn("text");
    QVERIFY(waitFor([this] { return !where("QComboBox").isEmpty(); }));
    clickOn("QComboBox");
    QVERIFY2(waitFor([&] { return !where(list).isEmpty(); }), "no list opens");
    QVERIFY2(waitFor([&] { return isAbove(list); }), "the list is covered");
    key("Down");
    key("Return");
    QVERIFY2(waitFor([&] { return where(list).isEmpty(); }), "keys do not reach the list");
    QCOMPARE(m_host->content("QComboBox"), QString("9"));
    keyToCapture("Escape");
    expectEnd("cancelled");
}

void tst_desktops::toolTipStandsAbove()
{
    startCapture();
    select(QRect(screens().first().topLeft() + QPoint(100, 150), QSize(500, 300)));
    const QPoint button = where("Mosaic").center();
    input(at(button - QPoint(1, 0)));
    input(at(button));
    QVERIFY2(waitFor([this] { return !where("QTipLabel").isEmpty(); }), "no tool tip opens");
    // It lets the mouse through, so what a click reaches tells nothing of it. It is as white as the
    // bar.
    const bool isSeen = waitFor([this] {
        const QPoint inside = where("QTipLabel").bottomRight() - QPoint(3, 3);
        const QImage now = m_server->picture();
        return now.rect().contains(inside) && now.pixelColor(inside) == Qt::white;
    });
    QVERIFY2(isSeen, qPrintable("the tool tip at " + text(where("QTipLabel")) + " is covered"));
    keyToCapture("Escape");
    expectEnd("cancelled");
}

void tst_desktops::dialogOfTheHostStandsAbove()
{
    const QString dialog = "dialog of the host";
    const QString line = "line of the dialog";
    startCapture();
    m_host->ask("open");
    QVERIFY2(waitFor([&] { return !where(dialog).isEmpty(); }), "no dialog opens");
    QVERIFY2(waitFor([&] { return isAbove(dialog); }), "the dialog is covered");
    clickOn(line);
    input({"type", "abc"});
    QVERIFY2(waitFor([&] { return m_host->content(line) == "abc"; }),
             "keys do not reach the dialog");
    key("Escape");
    QVERIFY2(waitFor([&] { return where(dialog).isEmpty(); }), "the dialog stays");
    keyToCapture("Escape");
    expectEnd("cancelled");
}

void tst_desktops::killedProcessLeavesNothing_data()
{
    QTest::addColumn<QString>("when");
    for (const char* when : {"idle", "dragging", "dialog"})
        QTest::newRow(when) << when;
}

void tst_desktops::killedProcessLeavesNothing()
{
    QFETCH(QString, when);
    const QRect region(screens().first().center() - QPoint(150, 100), QSize(211, 123));
    if (when == "dialog")
        openSaveDialog(region);
    else
        startCapture();
    const xcb_window_t overlay = m_host->place("ScreenCaptureWnd").window;
    if (when == "dragging")
        press(region.topLeft(), region.bottomRight());
    m_host->kill();
    if (when == "dragging")
        input({"mouseup", "1"});
    QVERIFY(waitFor([&] { return !m_server->isViewable(overlay); }));
    input(at(beneathLine()));
    key("k");
    QVERIFY2(waitFor([this] { return m_line->text() == "k"; }), "keys go nowhere");
    m_line->clear();
    // Not every window manager notices that its window has lost the focus.
    m_server->setFocus(static_cast<xcb_window_t>(m_notes->winId()));
}

void tst_desktops::grabOfAnotherProgramDoesNoHarm_data()
{
    QTest::addColumn<bool>("pointer");
    QTest::addColumn<bool>("keyboard");
    QTest::addColumn<bool>("released");
    QTest::addColumn<bool>("byMouse");
    QTest::newRow("keyboard, ended by mouse") << false << true << false << true;
    QTest::newRow("keyboard, released, ended by key") << false << true << true << false;
    QTest::newRow("pointer, ended by key") << true << false << false << false;
    QTest::newRow("pointer, released, ended by mouse") << true << false << true << true;
    QTest::newRow("both, released, ended by mouse") << true << true << true << true;
    QTest::newRow("both, released, ended by key") << true << true << true << false;
}

void tst_desktops::grabOfAnotherProgramDoesNoHarm()
{
    QFETCH(bool, pointer);
    QFETCH(bool, keyboard);
    QFETCH(bool, released);
    QFETCH(bool, byMouse);
    if (pointer)
        QVERIFY(m_server->grabPointer());
    if (keyboard)
        QVERIFY(m_server->grabKeyboard());
    // A window manager may take a grab for a loss of the focus.
    m_atStart = stillPicture();
    startCapture();
    checkOverlay();
    if (released)
        m_server->ungrab();
    if (byMouse)
        input({"click", "3"});
    else
        key("Escape");
    const QString end = m_host->end();
    m_server->ungrab();
    QCOMPARE(end, QString("cancelled"));
}

void tst_desktops::moveCaptureTo(const QRect& place)
{
    const xcb_window_t id = m_host->place("ScreenCaptureWnd").window;
    m_server->setGeometry(id, place);
    // The host learns of its place, and of the ratio there, only in time.
    const QString screen = QGuiApplication::screenAt(place.center())->name();
    QVERIFY(waitFor([&] { return m_host->screen() == screen; }));
    m_ratio = m_host->ratio();
    QVERIFY(waitFor([&] {
        // The host's own size is in whole coordinates.
        const QSize rest = where("ScreenCaptureWnd").size() - place.size();
        return m_server->geometry(id) == place && qAbs(rest.width()) < m_ratio &&
               qAbs(rest.height()) < m_ratio;
    }));
}

void tst_desktops::windowThatIsMovedDeliversWhatLiesUnderIt_data()
{
    QTest::addColumn<QRect>("first");
    QTest::addColumn<QRect>("second");
    constexpr QSize side(420, 420);
    for (const QRect& from : screens()) {
        for (const QRect& to : screens()) {
            const QRect first(from.topLeft() + QPoint(151, 121), side);
            const QRect second(to.topLeft() + QPoint(211, 182), side);
            QTest::newRow(qPrintable(text(first) + " to " + text(second))) << first << second;
        }
    }
}

// The screens may be of different ratios. A window manager would have a say in where it stands.
void tst_desktops::windowThatIsMovedDeliversWhatLiesUnderIt()
{
    QFETCH(QRect, first);
    QFETCH(QRect, second);
    if (qgetenv("manager") != "none")
        QSKIP("it has a window manager");
    startCapture();
    m_host->ask("be a window");
    moveCaptureTo(first);
    const QRect dragged(30, 90, 131, 91);
    const QRect region(coordinatesAt(dragged.topLeft()), coordinatesAt(dragged.bottomRight()));
    select(dragged.translated(first.topLeft()));
    moveCaptureTo(second);
    const QRect pixels = pixelsOf(region).translated(second.topLeft());
    const int frame = qCeil(kFrameBand * m_ratio);
    const QRect inner = pixels.adjusted(frame, frame, -frame, -frame);
    const int label = qCeil(kSizeLabelBand * m_ratio);
    const QRect outer = pixels.adjusted(-frame, -label, label, frame);
    const int beyond = qCeil(m_ratio) - 1;
    const QRect whole = second.adjusted(0, 0, -beyond, -beyond);
    // The host cuts off parts of pixels where it says how large the bar is.
    const QRect bar = where("mainToolBar").adjusted(-1, -1, 1, 1);
    const auto surround = [&](const QImage& picture) {
        return without(without(picture, outer), bar).copy(whole);
    };
    QString seen;
    const bool isShown = waitFor([&] {
        const QImage now = m_server->picture();
        seen = difference(now.copy(inner), m_atStart.copy(inner)) +
               difference(surround(now), surround(dimmed(m_atStart)));
        return seen.isEmpty();
    });
    QVERIFY2(isShown, qPrintable("the window shows something else: " + seen));
    keyToCapture("Return");
    expectEnd("captured");
    // Nobody else gives it back without a window manager.
    m_server->setFocus(static_cast<xcb_window_t>(m_notes->winId()));
    seen = difference(m_host->picture(), m_atStart.copy(pixels));
    QVERIFY2(seen.isEmpty(), qPrintable("region " + text(pixels) + ": " + seen));
}

void tst_desktops::changeOfScreensNeverGivesAWrongPicture_data()
{
    QTest::addColumn<QStringList>("change");
    const QString last = QGuiApplication::screens().last()->name();
    const QSize swapped = screens().last().size().transposed();
    const QString beside = QString::number(m_server->desktop().width()) + "x0";
    QTest::newRow("added") << QStringList{"--output",    kSpareOutput, "--mode",
                                          "own-640x480", "--pos",      beside};
    if (screens().size() > 1)
        QTest::newRow("removed") << QStringList{"--output", last, "--off"};
    QTest::newRow("rotated") << QStringList{
        "--output", last, "--mode",
        QStringLiteral("own-%1x%2").arg(swapped.width()).arg(swapped.height())};
    QTest::newRow("resized") << QStringList{"--output", last, "--mode", "own-640x480"};
}

// Either the capture is cancelled, or what it delivers is right.
void tst_desktops::changeOfScreensNeverGivesAWrongPicture()
{
    QFETCH(QStringList, change);
    const QRect region(screens().first().topLeft() + QPoint(100, 150), QSize(211, 123));
    m_screensChanged = true;
    startCapture();
    run("xrandr", change);
    drag(region.topLeft(), region.bottomRight());
    QVERIFY(waitFor([this] { return m_host->hasEnded() || !where("mainToolBar").isEmpty(); }));
    keyToCapture("Return");
    if (m_host->end() != "failed: The screens have changed.")
        expectDelivered(region);
}

QTEST_MAIN(tst_desktops)
