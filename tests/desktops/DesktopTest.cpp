// SPDX-License-Identifier: MIT
#include "DesktopTest.h"

#include "Input.h"
#include "Pictures.h"
#include "Reports.h"
#include "Screens.h"
#include "Waiting.h"

namespace
{

constexpr int kStillPictures = 3;
constexpr QSize kNotesSizePx(300, 200);

bool hasPanel()
{
    return qgetenv("panel") != "none";
}

} // namespace

Picture::Picture(const QImage& picture, Qt::WindowFlags flags)
    : QWidget(nullptr, flags)
    , m_picture(picture)
{
    setFixedSize(picture.size());
}

void Picture::paintEvent(QPaintEvent* /*event*/)
{
    QPainter(this).drawImage(0, 0, m_picture);
}

bool DesktopTest::isManagerRefusing()
{
    return qgetenv("manager") == "refusing";
}

// The desktop covers the root window, which a compositing manager does not show.
void DesktopTest::initTestCase()
{
    m_server.reset(new XServer);
    m_arrangement = arrangement();
    QRect all;
    for (const QRect& screen : screens())
        all |= screen;
    QCOMPARE(all, m_server->desktop());
    // The managers that know what a desktop is keep it below the panel; to the others it is nothing
    // that they manage.
    const bool isManaged = qgetenv("panel") == "xfce4-panel";
    m_desktop.reset(
        new Picture(places(m_server->desktop().size()),
                    isManaged ? Qt::FramelessWindowHint : Qt::X11BypassWindowManagerHint));
    // A compositing manager does not composite what an opaque window covers wholly.
    m_desktop->setAttribute(Qt::WA_TranslucentBackground);
    m_desktop->move(0, 0);
    // Qt 6 tells the server of it only where there is a native window.
    m_desktop->winId();
    m_desktop->setAttribute(Qt::WA_X11NetWmWindowTypeDesktop, isManaged);
    m_desktop->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_desktop.data()));
    m_desktop->lower();
    QVERIFY2(eventually([this] { return isDesktopBelowPanel(); }), "the desktop is not seen");
    // Of a fixed size, so that a tiling manager lets it float.
    m_notes.reset(new Picture(noise(kNotesSizePx),
                              isManagerRefusing() ? Qt::X11BypassWindowManagerHint : Qt::Window));
    m_notes->setWindowTitle("Notes");
    m_line = new QLineEdit(m_notes.data());
    m_line->setGeometry(20, 20, 200, 30);
    m_notes->move(screens().first().topLeft() + QPoint(60, 90));
    m_notes->show();
    QVERIFY2(eventually([this] { return areNotesSeen(); }), "the other window is not seen");
}

// The panel is at the top of one of the screens, or of all.
bool DesktopTest::isDesktopBelowPanel() const
{
    const QImage seen = m_server->picture();
    const auto isDesktop = [&](const QPoint& p) { return placeIn(seen.pixel(p)) == text(p); };
    bool isPanelSeen = false;
    for (const QRect& screen : screens()) {
        if (!isDesktop(screen.bottomRight()))
            return false;
        isPanelSeen = isPanelSeen || !isDesktop(screen.topLeft() + QPoint(200, 5));
    }
    return isPanelSeen == hasPanel();
}

bool DesktopTest::areNotesSeen() const
{
    const QPoint corner(kNotesSizePx.width() - 1, kNotesSizePx.height() - 1);
    return m_server->picture().pixel(m_notes->mapToGlobal(corner)) ==
           noise(kNotesSizePx).pixel(corner);
}

void DesktopTest::init()
{
    BehaviourTest::init();
    m_screensChanged = false;
    m_line->clear();
    m_line->setFocus();
    // Not every window manager notices that its window lost the focus to a process that was killed.
    QVERIFY(eventually([this] {
        m_notes->activateWindow();
        m_server->setFocus(static_cast<xcb_window_t>(m_notes->winId()));
        return hasKeyboard();
    }));
    input(at(beneathLine()));
    m_before = stillPicture();
    m_atStart = m_before;
}

// Of a panel and of a window's frame nobody says when they are painted.
QImage DesktopTest::stillPicture()
{
    int equal = 0;
    QImage picture;
    eventually([&] {
        const QImage now = m_server->picture();
        equal = now == picture ? equal + 1 : 0;
        picture = now;
        return equal == kStillPictures;
    });
    return picture;
}

void DesktopTest::cleanup()
{
    m_host.reset();
    if (m_screensChanged)
        run("xrandr", m_arrangement);
    else
        expectAsBefore();
    m_server->ungrab();
    m_line->clear();
    BehaviourTest::cleanup();
}

// As the server and as that program see it.
bool DesktopTest::hasKeyboard() const
{
    return m_server->focus() == m_notes->winId() && m_line->hasFocus();
}

QPoint DesktopTest::beneathLine() const
{
    return m_notes->mapToGlobal(QPoint(150, 150));
}

QRect DesktopTest::overNotes() const
{
    return {m_notes->mapToGlobal(QPoint(20, 60)), QSize(250, 130)};
}

void DesktopTest::expectAsBefore()
{
    input(at(beneathLine()));
    QVERIFY2(eventually([this] { return hasKeyboard(); }), "the focus is not given back");
    QString seen;
    const bool asBefore = eventually([&] {
        seen = difference(m_server->picture(), m_before);
        return seen.isEmpty();
    });
    QVERIFY2(asBefore, qPrintable("afterwards " + seen));
    QVERIFY2(eventually([this] { return m_server->grabPointer(); }), "the pointer is grabbed");
    QVERIFY2(eventually([this] { return m_server->grabKeyboard(); }), "the keyboard is grabbed");
    m_server->ungrab();
    QVERIFY2(m_line->text().isEmpty(),
             qPrintable("the other window was given the keys " + m_line->text()));
    key("x");
    QVERIFY2(eventually([this] { return m_line->text() == "x"; }), "keys go elsewhere afterwards");
}

// The overlay is there when it has changed the picture.
void DesktopTest::startCapture()
{
    m_host.reset(new HostProcess);
    QVERIFY2(waitFor([this] { return !where("ScreenCaptureWnd").isEmpty(); }),
             "the capture does not start");
    QVERIFY2(waitFor([this] { return m_server->picture() != m_atStart; }),
             "the capture is not seen");
    m_ratio = m_host->ratio();
    QVERIFY(m_ratio > 0);
    const QString expected = scaleSettings().value("ratio");
    if (!expected.isEmpty())
        QCOMPARE(QString::number(m_ratio), expected);
}

QRect DesktopTest::where(const QString& name)
{
    const HostProcess::Place place = m_host->place(name);
    if (place.window == XCB_NONE)
        return {};
    return place.inWindow.translated(m_server->geometry(place.window).topLeft());
}

bool DesktopTest::isAbove(const QString& name)
{
    const HostProcess::Place place = m_host->place(name);
    if (place.window == XCB_NONE)
        return false;
    const QRect r = place.inWindow.translated(m_server->geometry(place.window).topLeft())
                        .adjusted(3, 3, -3, -3);
    for (const QPoint& p :
         {r.center(), r.topLeft(), r.topRight(), r.bottomLeft(), r.bottomRight()}) {
        if (!m_server->isTopmost(place.window, p))
            return false;
    }
    return true;
}

QString DesktopTest::overlayDifference(const QRect& screen)
{
    const QRect loupe = where("MagnifierWidget");
    return difference(without(m_server->picture(), loupe).copy(screen),
                      without(dimmed(m_atStart), loupe).copy(screen));
}

void DesktopTest::checkOverlay()
{
    QString seen;
    for (const QRect& screen : screens()) {
        const bool right = waitFor([&] {
            seen = overlayDifference(screen);
            return seen.isEmpty();
        });
        QVERIFY2(right, qPrintable("screen " + text(screen) + ": " + seen + "; overlay at " +
                                   text(where("ScreenCaptureWnd"))));
    }
}

void DesktopTest::key(const QString& name)
{
    input({"key", name});
}

void DesktopTest::keyToCapture(const QString& name)
{
    waitFor([this] {
        return m_server->focus() == m_host->place("ScreenCaptureWnd").window || m_host->hasEnded();
    });
    key(name);
}

void DesktopTest::click(const QPoint& p)
{
    input(at(p) + QStringList{"click", "1"});
}

void DesktopTest::press(const QPoint& from, const QPoint& to)
{
    input(at(from) + QStringList{"mousedown", "1"} + at((from + to) / 2) + at(to));
}

void DesktopTest::drag(const QPoint& from, const QPoint& to)
{
    press(from, to);
    input({"mouseup", "1"});
}

// The tool bar says that the release has come.
void DesktopTest::select(const QPoint& from, const QPoint& to)
{
    drag(from, to);
    QVERIFY2(waitFor([this] { return !where("mainToolBar").isEmpty(); }),
             "the drag does not reach the capture");
}

void DesktopTest::select(const QRect& region)
{
    select(region.topLeft(), region.bottomRight());
}

void DesktopTest::clickOn(const QString& name)
{
    const QRect r = where(name);
    QVERIFY2(!r.isEmpty(), qPrintable("there is no " + name));
    click(r.center());
}

void DesktopTest::expectEnd(const QString& how)
{
    const QString end = m_host->end();
    if (end != how)
        m_host->kill();
    QCOMPARE(end, how);
}

QPoint DesktopTest::coordinatesAt(const QPoint& pixel) const
{
    const auto coordinate = [this](int edge) {
        int result = 0;
        while (qRound((result + 1) * m_ratio) <= edge)
            ++result;
        return result;
    };
    return {coordinate(pixel.x()), coordinate(pixel.y())};
}

QRect DesktopTest::pixelsOf(const QRect& area) const
{
    const auto edge = [this](int coordinate) { return qRound(coordinate * m_ratio); };
    return {QPoint(edge(area.left()), edge(area.top())),
            QPoint(edge(area.right() + 1) - 1, edge(area.bottom() + 1) - 1)};
}

QRect DesktopTest::selected(const QRect& dragged) const
{
    const QRect region(coordinatesAt(dragged.topLeft()), coordinatesAt(dragged.bottomRight()));
    return pixelsOf(region) & m_server->desktop();
}

void DesktopTest::expectDelivered(const QRect& dragged)
{
    expectEnd("captured");
    if (QTest::currentTestFailed())
        return;
    const QRect region = selected(dragged);
    const QString seen = difference(m_host->picture(), m_atStart.copy(region));
    QVERIFY2(seen.isEmpty(), qPrintable("region " + text(region) + ": " + seen));
}
