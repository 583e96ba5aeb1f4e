// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Pictures.h"
#include "XServer.h"

#include <QApplication>
#include <QLineEdit>
#include <QLineF>
#include <QProcess>
#include <QScreen>
#include <QTemporaryDir>
#include <QtMath>

#include <functional>

namespace
{

// So long a failing test waits. A desktop needs less than a second.
constexpr int kDesktopPatienceMs = 5000;
// By then a window manager has given a new window the keyboard, if it does.
constexpr int kSettleMs = 1000;
constexpr int kSettledLooks = 20;
constexpr int kStillPictures = 3;
// An output of the dummy driver that no arrangement of screens uses.
const char* const kSpareOutput = "DUMMY3";
constexpr QSize kNotesSizePx(300, 200);

bool isManagerRefusing()
{
    return qgetenv("manager") == "refusing";
}

bool hasPanel()
{
    return qgetenv("panel") != "none";
}

bool eventually(const std::function<bool()>& condition)
{
    return QTest::qWaitFor(condition, kDesktopPatienceMs);
}

// What has failed once is not waited for again.
bool waitFor(const std::function<bool()>& condition)
{
    return QTest::currentTestFailed() ? condition() : eventually(condition);
}

QString text(const QPoint& p)
{
    return QStringLiteral("%1,%2").arg(p.x()).arg(p.y());
}

QString text(const QRect& r)
{
    return QStringLiteral("%1x%2+%3+%4").arg(r.width()).arg(r.height()).arg(r.x()).arg(r.y());
}

/// The place that places() wrote into a pixel.
QString placeIn(QRgb pixel)
{
    const QPoint tile(qBlue(pixel) / 16, qBlue(pixel) % 16);
    return text(tile * 256 + QPoint(qRed(pixel), qGreen(pixel)));
}

/// Where two pictures differ first; empty where they are equal.
QString difference(const QImage& actual, const QImage& expected)
{
    if (actual == expected)
        return {};
    if (actual.size() != expected.size())
        return QStringLiteral("%1x%2 instead of %3x%4 pixels")
            .arg(actual.width())
            .arg(actual.height())
            .arg(expected.width())
            .arg(expected.height());
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            const QRgb a = actual.pixel(x, y);
            const QRgb e = expected.pixel(x, y);
            if (qRed(a) != qRed(e) || qGreen(a) != qGreen(e) || qBlue(a) != qBlue(e))
                return QStringLiteral("pixel %1 is #%2 instead of #%3 (as at %4 instead of %5)")
                    .arg(text(QPoint(x, y)))
                    .arg(a & 0xffffff, 6, 16, QChar('0'))
                    .arg(e & 0xffffff, 6, 16, QChar('0'))
                    .arg(placeIn(a), placeIn(e));
        }
    }
    return {};
}

/// The screens as they are at the start, the primary one first.
const QList<QRect>& screens()
{
    static const QList<QRect> all = [] {
        QList<QRect> result;
        for (const QScreen* screen : QGuiApplication::screens())
            result << screen->geometry();
        return result;
    }();
    return all;
}

/// The words for xrandr that make the screens as they are.
QStringList arrangement()
{
    QStringList words;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect r = screen->geometry();
        words << "--output" << screen->name() << "--mode"
              << QStringLiteral("own-%1x%2").arg(r.width()).arg(r.height()) << "--pos"
              << QStringLiteral("%1x%2").arg(r.x()).arg(r.y());
    }
    return words << "--output" << QGuiApplication::primaryScreen()->name() << "--primary"
                 << "--output" << kSpareOutput << "--off";
}

void run(const QString& program, const QStringList& words)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(program, words);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
}

/// Real input through the X server.
void input(const QStringList& words)
{
    run("xdotool", words);
}

QRect between(const QPoint& a, const QPoint& b)
{
    return {QPoint(qMin(a.x(), b.x()), qMin(a.y(), b.y())),
            QPoint(qMax(a.x(), b.x()), qMax(a.y(), b.y()))};
}

struct Drag {
    QPoint from;
    QPoint to;
};

/// From each screen to another, also over what no screen shows and with corners there.
QVector<Drag> dragsAcross()
{
    QVector<Drag> drags;
    for (const QRect& a : screens()) {
        for (const QRect& b : screens()) {
            if (a == b)
                continue;
            if (a.x() <= b.x())
                drags << Drag{a.center(), b.center()};
            if (a.right() > b.left() && a.top() < b.bottom())
                drags << Drag{a.topRight(), b.bottomLeft()};
        }
    }
    return drags;
}

QStringList at(const QPoint& p)
{
    return {"mousemove", QString::number(p.x()), QString::number(p.y())};
}

/// A window with a picture as background, outside the window manager's reach or as an ordinary one.
class Picture : public QWidget
{
public:
    Picture(const QImage& picture, Qt::WindowFlags flags)
        : QWidget(nullptr, flags)
        , m_picture(picture)
    {
        setFixedSize(picture.size());
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override { QPainter(this).drawImage(0, 0, m_picture); }

private:
    QImage m_picture;
};

/// The process that takes the capture.
class Host
{
public:
    Host()
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // Its scale factor is not this program's.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(qEnvironmentVariable("scale_name"), qEnvironmentVariable("scale_value"));
        m_process.setProcessEnvironment(environment);
        m_process.start(QCoreApplication::applicationDirPath() + "/desktop-host",
                        {m_scratch.filePath("picture.bmp")});
        m_process.waitForStarted();
    }
    ~Host() { kill(); }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    bool lives() const { return m_process.state() == QProcess::Running; }
    bool hasEnded() const { return !m_end.isEmpty() || !lives(); }

    /// Empty where there is no answer, because the capture has ended or hangs.
    QString ask(const QString& question)
    {
        m_process.write(question.toUtf8() + '\n');
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(kDesktopPatienceMs))
                return {};
        }
        QString line = QString::fromUtf8(m_process.readLine()).trimmed();
        if (line == "captured" || line == "cancelled") {
            m_end = line;
            return {};
        }
        return line;
    }

    struct Place {
        xcb_window_t window = XCB_NONE;
        QRect inWindow;
    };
    Place place(const QString& name)
    {
        const QStringList words = ask("where " + name).split(' ');
        if (words.size() != 5)
            return {};
        return {words[0].toUInt(),
                QRect(words[1].toInt(), words[2].toInt(), words[3].toInt(), words[4].toInt())};
    }
    QString content(const QString& name) { return ask("content " + name); }
    /// The physical pixels of each of the overlay's coordinates.
    qreal ratio() { return ask("ratio ScreenCaptureWnd").toDouble(); }

    /// "captured" or "cancelled"; empty where the capture does not end.
    QString end()
    {
        eventually([this] { return !lives() || m_process.canReadLine(); });
        if (m_end.isEmpty())
            m_end = QString::fromUtf8(m_process.readLine()).trimmed();
        m_process.waitForFinished(kDesktopPatienceMs);
        return m_end;
    }
    QImage picture() const { return QImage(m_scratch.filePath("picture.bmp")); }

private:
    QTemporaryDir m_scratch;
    QProcess m_process;
    QString m_end;
};

} // namespace

/// Captures by another process on a desktop as people have it, with real input. The desktop is the
/// one that tests/desktops/desktop has started.
class tst_desktops : public BehaviourTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void overlayIsTheDimmedDesktop();
    void regionIsDelivered_data();
    void regionIsDelivered();
    void keysReachTheCapture_data();
    void keysReachTheCapture();
    void tabGoesThroughTheToolBar();
    void strokeIsUndoneAndRedone();
    void strokeLiesWhereItIsDrawn();
    void mosaicLiesWhereItIsDrawn();
    void typedTextArrives_data();
    void typedTextArrives();
    void windowThatOpensChangesNothing_data();
    void windowThatOpensChangesNothing();
    void toolBarStandsOnOneScreen();
    void saveDialogStandsAboveAndSaves();
    void saveDialogIsCancelled();
    void fontSizeListStandsAbove();
    void toolTipStandsAbove();
    void dialogOfTheHostStandsAbove();
    void killedProcessLeavesNothing_data();
    void killedProcessLeavesNothing();
    void grabOfAnotherProgramDoesNoHarm_data();
    void grabOfAnotherProgramDoesNoHarm();
    void changeOfScreensNeverGivesAWrongPicture_data();
    void changeOfScreensNeverGivesAWrongPicture();

private:
    bool isDesktopBelowPanel() const;
    bool areNotesSeen() const;
    void startCapture();
    QImage stillPicture();
    bool hasKeyboard() const;
    QPoint beneathLine() const;
    QRect where(const QString& name);
    bool isAbove(const QString& name);
    QString overlayDifference(const QRect& screen);
    void checkOverlay();
    void press(const QPoint& from, const QPoint& to);
    void drag(const QPoint& from, const QPoint& to);
    void select(const QPoint& from, const QPoint& to);
    void select(const QRect& region);
    void click(const QPoint& p);
    void clickOn(const QString& name);
    void key(const QString& name);
    void keyToCapture(const QString& name);
    void openSaveDialog(const QRect& region);
    void expectEnd(const QString& how);
    QRect overNotes() const;
    void drawOver(const QRect& region, const QString& tool, const QPoint& from, const QPoint& to);
    QImage regionBefore(const QRect& dragged) const;
    QPoint inCanvas(const QRect& dragged, const QPoint& p) const;
    QPoint coordinatesAt(const QPoint& pixel) const;
    QRect selected(const QRect& dragged) const;
    void expectDelivered(const QRect& dragged);
    void expectAsBefore();

    QScopedPointer<XServer> m_server;
    QScopedPointer<Picture> m_desktop;
    QScopedPointer<Picture> m_notes;
    QLineEdit* m_line = nullptr;
    QScopedPointer<Host> m_host;
    QImage m_before;
    QImage m_atStart;
    QStringList m_arrangement;
    bool m_screensChanged = false;
    qreal m_ratio = 1;
};

// The desktop covers the root window, which a compositing manager does not show.
void tst_desktops::initTestCase()
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
    m_desktop->setAttribute(Qt::WA_X11NetWmWindowTypeDesktop, isManaged);
    // A compositing manager does not composite what an opaque window covers wholly.
    m_desktop->setAttribute(Qt::WA_TranslucentBackground);
    m_desktop->move(0, 0);
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

/// The panel is at the top of one of the screens, or of all.
bool tst_desktops::isDesktopBelowPanel() const
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

bool tst_desktops::areNotesSeen() const
{
    const QPoint corner(kNotesSizePx.width() - 1, kNotesSizePx.height() - 1);
    return m_server->picture().pixel(m_notes->mapToGlobal(corner)) ==
           noise(kNotesSizePx).pixel(corner);
}

void tst_desktops::init()
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
QImage tst_desktops::stillPicture()
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

void tst_desktops::cleanup()
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

/// Whether keys go to the line of the other program, as the server and as that program see it.
bool tst_desktops::hasKeyboard() const
{
    return m_server->focus() == m_notes->winId() && m_line->hasFocus();
}

/// In the other program's window, because with some window managers the focus follows the pointer.
QPoint tst_desktops::beneathLine() const
{
    return m_notes->mapToGlobal(QPoint(150, 150));
}

void tst_desktops::expectAsBefore()
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
void tst_desktops::startCapture()
{
    m_host.reset(new Host);
    QVERIFY2(waitFor([this] { return !where("ScreenCaptureWnd").isEmpty(); }),
             "the capture does not start");
    QVERIFY2(waitFor([this] { return m_server->picture() != m_atStart; }),
             "the capture is not seen");
    m_ratio = m_host->ratio();
    QVERIFY(m_ratio > 0);
}

/// The widget's rectangle on the root window.
QRect tst_desktops::where(const QString& name)
{
    const Host::Place place = m_host->place(name);
    if (place.window == XCB_NONE)
        return {};
    return place.inWindow.translated(m_server->geometry(place.window).topLeft());
}

/// Whether the widget is above everything else at its centre and its corners.
bool tst_desktops::isAbove(const QString& name)
{
    const Host::Place place = m_host->place(name);
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

QString tst_desktops::overlayDifference(const QRect& screen)
{
    const QRect loupe = where("MagnifierWidget");
    return difference(without(m_server->picture(), loupe).copy(screen),
                      without(dimmed(m_atStart), loupe).copy(screen));
}

void tst_desktops::checkOverlay()
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

void tst_desktops::overlayIsTheDimmedDesktop()
{
    startCapture();
    checkOverlay();
    // It is made of whole coordinates.
    const int beyond = m_ratio == 1 ? 0 : qCeil(m_ratio);
    const QRect overlay = where("ScreenCaptureWnd");
    QVERIFY(overlay.contains(m_server->desktop()));
    QVERIFY(m_server->desktop().adjusted(0, 0, beyond, beyond).contains(overlay));
    keyToCapture("Escape");
    expectEnd("cancelled");
}

void tst_desktops::key(const QString& name)
{
    input({"key", name});
}

/// A key for the capture, when it has had the time to take the keyboard.
void tst_desktops::keyToCapture(const QString& name)
{
    waitFor([this] {
        return m_server->focus() == m_host->place("ScreenCaptureWnd").window || m_host->hasEnded();
    });
    key(name);
}

void tst_desktops::click(const QPoint& p)
{
    input(at(p) + QStringList{"click", "1"});
}

/// Drags without letting go.
void tst_desktops::press(const QPoint& from, const QPoint& to)
{
    input(at(from) + QStringList{"mousedown", "1"} + at((from + to) / 2) + at(to));
}

void tst_desktops::drag(const QPoint& from, const QPoint& to)
{
    press(from, to);
    input({"mouseup", "1"});
}

/// The tool bar says that the release has come.
void tst_desktops::select(const QPoint& from, const QPoint& to)
{
    drag(from, to);
    QVERIFY2(waitFor([this] { return !where("mainToolBar").isEmpty(); }),
             "the drag does not reach the capture");
}

void tst_desktops::select(const QRect& region)
{
    select(region.topLeft(), region.bottomRight());
}

void tst_desktops::clickOn(const QString& name)
{
    const QRect r = where(name);
    QVERIFY2(!r.isEmpty(), qPrintable("there is no " + name));
    click(r.center());
}

void tst_desktops::expectEnd(const QString& how)
{
    const QString end = m_host->end();
    if (end != how)
        m_host->kill();
    QCOMPARE(end, how);
}

/// The overlay's coordinates that lie on a pixel.
QPoint tst_desktops::coordinatesAt(const QPoint& pixel) const
{
    const auto coordinate = [this](int edge) {
        int result = 0;
        while (qRound((result + 1) * m_ratio) <= edge)
            ++result;
        return result;
    };
    return {coordinate(pixel.x()), coordinate(pixel.y())};
}

/// The physical pixels of the region that a drag over these selects. The overlay's coordinates are
/// as many pixels wide as its ratio says, and so are those at the region's edges.
QRect tst_desktops::selected(const QRect& dragged) const
{
    const auto edge = [this](int coordinate) { return qRound(coordinate * m_ratio); };
    const QPoint first = coordinatesAt(dragged.topLeft());
    const QPoint last = coordinatesAt(dragged.bottomRight());
    const QRect region(QPoint(edge(first.x()), edge(first.y())),
                       QPoint(edge(last.x() + 1) - 1, edge(last.y() + 1) - 1));
    return region & m_server->desktop();
}

void tst_desktops::expectDelivered(const QRect& dragged)
{
    expectEnd("captured");
    if (QTest::currentTestFailed())
        return;
    const QRect region = selected(dragged);
    const QString seen = difference(m_host->picture(), m_atStart.copy(region));
    QVERIFY2(seen.isEmpty(), qPrintable("region " + text(region) + ": " + seen));
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

void tst_desktops::strokeIsUndoneAndRedone()
{
    const QPoint start = screens().first().topLeft() + QPoint(100, 150);
    const QPoint onStroke = start + QPoint(100, 50);
    const QColor before = m_atStart.pixelColor(onStroke);
    const auto isBefore = [&] { return m_server->picture().pixelColor(onStroke) == before; };
    startCapture();
    select(QRect(start, QSize(500, 300)));
    QVERIFY(waitFor(isBefore));
    clickOn("scribble");
    QVERIFY(waitFor([this] { return !where("subToolBar").isEmpty(); }));
    drag(start + QPoint(50, 50), start + QPoint(150, 50));
    QVERIFY2(waitFor([&] { return !isBefore(); }), "no stroke is drawn");
    const QColor stroke = m_server->picture().pixelColor(onStroke);
    keyToCapture("ctrl+z");
    QVERIFY2(waitFor(isBefore), "Ctrl+Z does not undo");
    keyToCapture("ctrl+shift+z");
    QVERIFY2(waitFor([&] { return m_server->picture().pixelColor(onStroke) == stroke; }),
             "Ctrl+Shift+Z does not redo");
    keyToCapture("Return");
    expectEnd("captured");
    QCOMPARE(m_host->picture().pixelColor(onStroke - start), stroke);
}

/// Noise, of which each pixel tells its place.
QRect tst_desktops::overNotes() const
{
    return {m_notes->mapToGlobal(QPoint(20, 60)), QSize(250, 130)};
}

/// Delivers the region with a stroke of the tool over it.
void tst_desktops::drawOver(const QRect& region, const QString& tool, const QPoint& from,
                            const QPoint& to)
{
    startCapture();
    select(region);
    clickOn(tool);
    QVERIFY(waitFor([this] { return !where("subToolBar").isEmpty(); }));
    drag(from, to);
    keyToCapture("Return");
    expectEnd("captured");
}

/// The pixels of the region that a drag over `dragged` selects.
QImage tst_desktops::regionBefore(const QRect& dragged) const
{
    QImage picture = m_atStart.copy(selected(dragged));
    picture.setDevicePixelRatio(m_ratio);
    return picture;
}

/// The coordinates of the canvas over that region for a pixel of the screen.
QPoint tst_desktops::inCanvas(const QRect& dragged, const QPoint& p) const
{
    return (QPointF(p) / m_ratio).toPoint() - coordinatesAt(dragged.topLeft());
}

void tst_desktops::strokeLiesWhereItIsDrawn()
{
    const QRect region = overNotes();
    const QPoint from = region.topLeft() + QPoint(40, 30);
    const QPoint to = from + QPoint(150, 0);
    drawOver(region, "scribble", from, to);
    const QImage picture = m_host->picture();
    QImage expected = regionBefore(region);
    QCOMPARE(picture.size(), expected.size());
    const QColor color = picture.pixelColor(inCanvas(region, from) * m_ratio);
    QPainter painter(&expected);
    painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawLine(inCanvas(region, from), inCanvas(region, (from + to) / 2));
    painter.drawLine(inCanvas(region, (from + to) / 2), inCanvas(region, to));
    painter.end();
    const QString seen = difference(picture, expected);
    QVERIFY2(seen.isEmpty(), qPrintable(seen));
}

// The edge of the brush is not looked at: there a pixel may be either.
void tst_desktops::mosaicLiesWhereItIsDrawn()
{
    constexpr int blockSide = 2;
    constexpr int brush = 16;
    const QRect region = overNotes();
    const QPoint from = region.topLeft() + QPoint(60, 60);
    const QPoint to = from + QPoint(120, 0);
    drawOver(region, "Mosaic", from, to);
    const QImage picture = m_host->picture();
    const QImage before = regionBefore(region);
    const QImage blocks = inBlocks(before, blockSide);
    QCOMPARE(picture.size(), before.size());
    const QPointF start = inCanvas(region, from);
    const QPointF end = inCanvas(region, to);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QPointF p = QPointF(x + 0.5, y + 0.5) / m_ratio;
            const qreal away =
                QLineF(p, QPointF(qBound(start.x(), p.x(), end.x()), start.y())).length();
            if (qAbs(away - brush / 2) < 2)
                continue;
            const QImage& expected = away < brush / 2 ? blocks : before;
            const QColor actual = picture.pixelColor(x, y);
            QVERIFY2(actual.rgb() == expected.pixelColor(x, y).rgb(),
                     qPrintable(text(QPoint(x, y)) + " is " + actual.name()));
        }
    }
}

void tst_desktops::typedTextArrives_data()
{
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QString>("text");
    QTest::newRow("typed") << QStringList{"type", "Harbour 46"} << "Harbour 46";
    QTest::newRow("composed") << QStringList{"key", "dead_acute", "e", "a"} << "\u00e9a";
}

void tst_desktops::typedTextArrives()
{
    QFETCH(QStringList, keys);
    QFETCH(QString, text);
    const QRect region(screens().first().topLeft() + QPoint(100, 150), QSize(500, 300));
    startCapture();
    select(region);
    clickOn("text");
    QVERIFY(waitFor([this] { return !where("subToolBar").isEmpty(); }));
    const QRect box(region.topLeft() + QPoint(50, 50), QSize(200, 100));
    drag(box.topLeft(), box.bottomRight());
    QVERIFY2(waitFor([this] { return !where("QTextEdit").isEmpty(); }), "there is no text box");
    input(keys);
    QVERIFY2(waitFor([&] { return m_host->content("QTextEdit") == text; }),
             qPrintable("the text box holds " + m_host->content("QTextEdit")));
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

namespace
{

/// In the middle of each screen and at its edges, over all of it, and across screens.
QVector<Drag> dragsEverywhere()
{
    QVector<Drag> drags = dragsAcross();
    for (const QRect& r : screens()) {
        for (const int x : {r.left(), r.center().x(), r.right() - 100}) {
            for (const int y : {r.top(), r.center().y(), r.bottom() - 50})
                drags << Drag{QPoint(x, y), QPoint(x + 100, y + 50)};
        }
        drags << Drag{r.topLeft(), r.bottomRight()};
    }
    return drags;
}

/// The screen on which `p` is, or the nearest one.
QRect screenOf(const QPoint& p)
{
    const auto distance = [&p](const QRect& screen) {
        return (p - QPoint(qBound(screen.left(), p.x(), screen.right()),
                           qBound(screen.top(), p.y(), screen.bottom())))
            .manhattanLength();
    };
    QRect result = screens().first();
    for (const QRect& other : screens()) {
        if (distance(other) < distance(result))
            result = other;
    }
    return result;
}

} // namespace

// Undoing a bare region drops it.
void tst_desktops::toolBarStandsOnOneScreen()
{
    startCapture();
    for (const Drag& drag : dragsEverywhere()) {
        select(drag.from, drag.to);
        const QRect region = between(drag.from, drag.to);
        const QRect screen = screenOf(region.bottomRight());
        QRect bar;
        const bool isThere = waitFor([&] {
            bar = where("mainToolBar");
            return !bar.isEmpty() && screen.contains(bar) && isAbove("mainToolBar");
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
    const QTemporaryDir scratch;
    const QString file = scratch.filePath("saved.bmp");
    openSaveDialog(region);
    const QRect name = where("fileNameEdit");
    input(at(name.center()) + QStringList{"click", "--repeat", "3", "1"});
    input({"key", "ctrl+a"});
    input({"type", file});
    QVERIFY2(waitFor([&] { return m_host->content("fileNameEdit") == file; }),
             qPrintable("the dialog was given the keys " + m_host->content("fileNameEdit")));
    key("Return");
    QVERIFY2(waitFor([this] { return where("QFileDialog").isEmpty(); }), "the dialog stays");
    const QString seen = difference(QImage(file), m_atStart.copy(selected(region)));
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
    if (m_host->end() != "cancelled")
        expectDelivered(region);
}

QTEST_MAIN(tst_desktops)
#include "tst_desktops.moc"
