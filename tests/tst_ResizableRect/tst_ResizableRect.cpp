// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"
#include "BehaviourTest.h"
#include "Host.h"
#include "Pictures.h"
#include "Repainted.h"
#include "ResizableRect.h"

#include <QMetaMethod>
#include <QTranslator>
#include <functional>

namespace
{

const QColor kColor(0x88, 0x88, 0xff);

QImage canvas()
{
    QImage image(140, 90, QImage::Format_RGB32);
    image.fill(QColor(200, 180, 160));
    return image;
}

QImage rendered(ResizableRect& rect)
{
    return drawnOn(canvas(), [&](QPainter& painter) { rect.render(painter); });
}

/// Border and handles, in the order of their numbers.
void drawFrame(QPainter& painter, const QRect& r, bool solid)
{
    QPen pen(QBrush(kColor), 1.0, solid ? Qt::SolidLine : Qt::DashLine, Qt::RoundCap,
             Qt::RoundJoin);
    painter.setPen(pen);
    painter.drawRect(r);
    pen.setStyle(Qt::SolidLine);
    painter.setPen(pen);
    painter.setBrush(solid ? kColor : QColor(Qt::white));
    const int w = r.width();
    const int h = r.height();
    // A handle of 8 pixels is centred one pixel outside the left and top edges.
    for (const QPoint& offset :
         {QPoint(0, h / 2), QPoint(w, h / 2), QPoint(w / 2, 0), QPoint(w / 2, h), QPoint(0, 0),
          QPoint(w, 0), QPoint(0, h), QPoint(w, h)})
        painter.drawRect(QRect(r.topLeft() + offset - QPoint(4, 4), QSize(8, 8)));
}

/// Where the bright pixels of an area are.
QRect inkIn(const QImage& image, const QRect& area)
{
    constexpr int kBright = 180;
    QRect ink;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (qGray(image.pixel(x, y)) > kBright)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

/// Puts "DejaVu Sans Mono" in the place of "Courier New".
class OtherFont : public QTranslator
{
public:
    QString translate(const char* context, const char* text, const char* /*comment*/,
                      int /*n*/) const override
    {
        const bool asked = QByteArray(context) == "QObject" && QByteArray(text) == "Courier New";
        return asked ? QStringLiteral("DejaVu Sans Mono") : QString();
    }
    bool isEmpty() const override { return false; }
};

} // namespace

/// Geometry, setters, arrow tables and painting.
class tst_ResizableRect : public BehaviourTest
{
    Q_OBJECT

private slots:
    void numbersAndSignalAreInterface();
    void newRectangleIsHiddenAndAsGiven();
    void onlyClampingNeedsAWidget();
    void everyHandleHasItsEdges();
    void wherePoint_data();
    void wherePoint();
    void occupiedAreaIsThatOfPenAndLabel_data();
    void occupiedAreaIsThatOfPenAndLabel();
    void clampsToTheWidgetAndOneMorePixel_data();
    void clampsToTheWidgetAndOneMorePixel();
    void limitsTakeThePlaceOfTheWidget();
    void setRectEmitsOnceAndClamps();
    void signalComesAfterTheHandlesAndBeforeTheRepaint();
    void settersRepaint();
    void arrowMapIsBuiltByChaining();
    void arrowTables_data();
    void arrowTables();
    void frameIsThatOfDrawRect_data();
    void frameIsThatOfDrawRect();
    void labelIsPaintedOnTop_data();
    void labelIsPaintedOnTop();
    void labelOfALongSizeShowsAllDigits_data();
    void labelOfALongSizeShowsAllDigits();
    void painterStateIsChanged();
};

void tst_ResizableRect::numbersAndSignalAreInterface()
{
    using R = ResizableRect;
    const int inOrder[] = {R::SECTION_INSIDE,      R::SECTION_OUTSIDE,     R::SECTION_BORDER,
                           R::SECTION_LEFT,        R::SECTION_RIGHT,       R::SECTION_TOP,
                           R::SECTION_BOTTOM,      R::SECTION_TOP_LEFT,    R::SECTION_TOP_RIGHT,
                           R::SECTION_BOTTOM_LEFT, R::SECTION_BOTTOM_RIGHT};
    for (int id = -3; id <= 7; ++id)
        QCOMPARE(inOrder[id + 3], id);
    QCOMPARE(int(R::ARROW_TAIL), 1);
    QCOMPARE(int(R::ARROW_HEAD), 2);

    const QMetaObject& meta = R::staticMetaObject;
    QCOMPARE(meta.className(), "ResizableRect");
    const int offset = meta.methodOffset();
    QCOMPARE(meta.method(offset).methodSignature(), QByteArray("rectChanged(QRect,bool)"));
    QCOMPARE(meta.method(offset + 1).methodSignature(), QByteArray("rectChanged(QRect)"));
}

void tst_ResizableRect::newRectangleIsHiddenAndAsGiven()
{
    Host host;
    ResizableRect rect(&host, edges(-50, 500, -80, 900));
    QCOMPARE(rect.parent(), &host);
    QVERIFY(!rect.isVisible());
    QVERIFY(!rect.isSizeInforVisible());
    QCOMPARE(rect.rect(), edges(-80, 500, -50, 900));
    QCOMPARE(rect.getColor(), kColor);
    QCOMPARE(rect.mousePressSection(), -2);
}

void tst_ResizableRect::onlyClampingNeedsAWidget()
{
    ResizableRect rect(nullptr, kRect);
    rect.setVisible(true);
    rect.setColor(Qt::red);
    rect.setBorderSolidPaint(true);
    rect.setSizeInforVisible(true);
    QCOMPARE(rect.getColor(), QColor(Qt::red));
    QCOMPARE(rect.rect(), kRect);
    SKIP_WITHOUT_ASSERTIONS();
    QRect r = kRect;
    const auto needsAWidget = [](const std::function<void()>& action) {
        return failedAssertion(action).contains("m_widget != NULL");
    };
    QVERIFY(needsAWidget([&] { rect.ensureSizingRectInWidget(r); }));
    QVERIFY(needsAWidget([&] { rect.ensureMovingRectInWidget(r); }));
    QVERIFY(needsAWidget([&] { rect.isRectInWidget(r); }));
    QVERIFY(needsAWidget([&] { rect.setRect(r); }));
}

void tst_ResizableRect::everyHandleHasItsEdges()
{
    const Qt::Edges expected[] = {Qt::LeftEdge,
                                  Qt::RightEdge,
                                  Qt::TopEdge,
                                  Qt::BottomEdge,
                                  Qt::TopEdge | Qt::LeftEdge,
                                  Qt::TopEdge | Qt::RightEdge,
                                  Qt::BottomEdge | Qt::LeftEdge,
                                  Qt::BottomEdge | Qt::RightEdge};
    for (int id = 0; id < 8; ++id)
        QCOMPARE(ResizableRect::edgesOf(id), expected[id]);
    for (int id : {-3, -2, -1, 8, 99})
        QCOMPARE(ResizableRect::edgesOf(id), Qt::Edges());
}

void tst_ResizableRect::wherePoint_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QPoint>("p");
    QTest::addColumn<int>("section");
    for (int id = 0; id < 8; ++id)
        QTest::addRow("handle %d", id) << kRect << anchorOf(id) << id;
    QTest::newRow("first pixel of the top-left handle") << kRect << QPoint(6, 6) << 4;
    QTest::newRow("last pixel of the bottom-right handle") << kRect << QPoint(113, 63) << 7;
    QTest::newRow("band above the top edge") << kRect << QPoint(20, 7) << -1;
    QTest::newRow("outermost row of the band") << kRect << QPoint(30, 6) << -1;
    QTest::newRow("beyond the band") << kRect << QPoint(30, 5) << -2;
    QTest::newRow("innermost row of the band") << kRect << QPoint(30, 13) << -1;
    QTest::newRow("first row inside") << kRect << QPoint(30, 14) << -3;
    QTest::newRow("band below the bottom edge") << kRect << QPoint(30, 63) << -1;
    QTest::newRow("below the band") << kRect << QPoint(30, 64) << -2;
    // The squares of left, top and top-left all hold these points.
    const QRect small(100, 100, 8, 8);
    QTest::newRow("left beats top") << small << QPoint(100, 102) << 0;
    QTest::newRow("top beats top-left") << small << QPoint(101, 99) << 2;
    // Qt finds points inside an inverted rectangle.
    QTest::newRow("inside of a flat one") << QRect(100, 100, 60, 6) << QPoint(115, 103) << -3;
    QTest::newRow("inverted, on its raw corner")
        << edges(200, 150, 100, 50) << QPoint(199, 149) << 4;
}

void tst_ResizableRect::wherePoint()
{
    QFETCH(QRect, rect);
    QFETCH(QPoint, p);
    QFETCH(int, section);
    const ResizableRect subject(nullptr, rect);
    QCOMPARE(subject.wherePoint(p), section);
    QCOMPARE(subject.contains(p), section != -2);
}

void tst_ResizableRect::occupiedAreaIsThatOfPenAndLabel_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("labelled");
    QTest::addColumn<QRect>("occupied");
    QTest::newRow("no pen") << 0 << false << edges(46, 56, 74, 84);
    QTest::newRow("at least 8") << 3 << false << edges(46, 56, 74, 84);
    QTest::newRow("half of 9") << 9 << false << edges(46, 56, 74, 84);
    QTest::newRow("half of 10") << 10 << false << edges(45, 55, 75, 85);
    QTest::newRow("label above") << 0 << true << edges(46, 32, 149, 84);
}

void tst_ResizableRect::occupiedAreaIsThatOfPenAndLabel()
{
    QFETCH(int, width);
    QFETCH(bool, labelled);
    QFETCH(QRect, occupied);
    ResizableRect rect(nullptr, QRect(50, 60, 20, 20));
    if (width > 0)
        rect.setGraphPenWidth(width);
    rect.setSizeInforVisible(labelled);
    QCOMPARE(rect.occupiedRect(), occupied);
}

void tst_ResizableRect::clampsToTheWidgetAndOneMorePixel_data()
{
    QTest::addColumn<QRect>("given");
    QTest::addColumn<QRect>("moved");
    QTest::addColumn<QRect>("sized");
    QTest::newRow("reaching the size")
        << edges(0, 0, 400, 300) << edges(0, 0, 400, 300) << edges(0, 0, 400, 300);
    QTest::newRow("beyond left and top")
        << edges(-7, -3, 50, 60) << edges(0, 0, 57, 63) << edges(0, 0, 50, 60);
    QTest::newRow("beyond right and bottom")
        << edges(300, 200, 410, 306) << edges(290, 194, 400, 300) << edges(300, 200, 400, 300);
    QTest::newRow("too large, the far edge wins")
        << edges(-10, -10, 500, 400) << edges(-110, -110, 400, 300) << edges(0, 0, 400, 300);
    QTest::newRow("inverted") << edges(450, 350, -1, -2) << edges(450, 350, -1, -2)
                              << edges(400, 300, 0, 0);
}

void tst_ResizableRect::clampsToTheWidgetAndOneMorePixel()
{
    QFETCH(QRect, given);
    QFETCH(QRect, moved);
    QFETCH(QRect, sized);
    Host host;
    ResizableRect rect(&host, QRect());
    QRect r = given;
    rect.ensureMovingRectInWidget(r);
    QCOMPARE(r, moved);
    r = given;
    rect.ensureSizingRectInWidget(r);
    QCOMPARE(r, sized);
    QCOMPARE(rect.isRectInWidget(given), given == sized);
}

void tst_ResizableRect::limitsTakeThePlaceOfTheWidget()
{
    Host host;
    ResizableRect rect(&host, QRect());
    rect.setLimits(QRect(50, 60, 100, 80));
    QRect moved(0, 0, 30, 20);
    rect.ensureMovingRectInWidget(moved);
    QCOMPARE(moved, QRect(50, 60, 30, 20));
    moved.translate(500, 500);
    rect.ensureMovingRectInWidget(moved);
    QCOMPARE(moved, QRect(120, 120, 30, 20));
    QVERIFY(rect.isRectInWidget(moved));
    QVERIFY(!rect.isRectInWidget(moved.translated(1, 0)));
    QVERIFY(!rect.isRectInWidget(QRect(50, 59, 10, 10)));
    rect.setRect(QRect(QPoint(0, 0), QPoint(300, 200)));
    QCOMPARE(rect.rect(), QRect(50, 60, 100, 80));
    rect.setLimits(QRect());
    rect.setRect(QRect(10, 20, 100, 50));
    QCOMPARE(rect.rect(), QRect(10, 20, 100, 50));
}

void tst_ResizableRect::setRectEmitsOnceAndClamps()
{
    Host host;
    host.resize(1920, 1080);
    ResizableRect rect(&host, QRect());
    QSignalSpy spy(&rect, SIGNAL(rectChanged(QRect, bool)));
    QSignalSpy oneArgument(&rect, SIGNAL(rectChanged(QRect)));
    rect.setRect(edges(-20, 30, 2000, 40));
    QCOMPARE(rect.rect(), edges(0, 30, 1920, 40));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0), QList<QVariant>({edges(0, 30, 1920, 40), true}));
    QCOMPARE(oneArgument.count(), 1);
}

void tst_ResizableRect::signalComesAfterTheHandlesAndBeforeTheRepaint()
{
    Host host;
    ResizableRect rect(&host, QRect(50, 60, 40, 30));
    PaintedRegion painted(host);
    int section = ResizableRect::SECTION_OUTSIDE;
    QRegion paintedBefore;
    QObject::connect(&rect, &ResizableRect::rectChanged, &host, [&] {
        section = rect.wherePoint(QPoint(200, 150));
        // What was asked for so far is painted now; nothing should have been.
        painted.region = QRegion();
        QApplication::sendPostedEvents(&host, QEvent::UpdateRequest);
        paintedBefore = painted.region;
    });
    const QRect old = rect.occupiedRect();
    const QRegion all = repaintedBy(host, [&] { rect.setRect(QRect(200, 150, 20, 20)); });
    QCOMPARE(section, int(ResizableRect::SECTION_TOP_LEFT));
    QCOMPARE(paintedBefore, QRegion());
    QCOMPARE(all, QRegion(old | rect.occupiedRect()));
}

void tst_ResizableRect::settersRepaint()
{
    const struct {
        const char* name;
        std::function<void(ResizableRect&)> set;
        bool repaints;
    } setters[] = {
        {"visible", [](ResizableRect& r) { r.setVisible(true); }, true},
        {"solid", [](ResizableRect& r) { r.setBorderSolidPaint(true); }, true},
        {"color", [](ResizableRect& r) { r.setColor(Qt::red); }, true},
        {"label", [](ResizableRect& r) { r.setSizeInforVisible(true); }, true},
        // Intended: the label's own area is left to the next repaint.
        {"no label", [](ResizableRect& r) { r.setSizeInforVisible(false); }, true},
        {"enabled", [](ResizableRect& r) { r.setEnabled(false); }, false},
        {"pen width", [](ResizableRect& r) { r.setGraphPenWidth(40); }, false},
        {"arrow", [](ResizableRect& r) { r.setArrowHead(QPoint()); }, false},
    };
    Host host;
    ResizableRect rect(&host, QRect(150, 100, 60, 40));
    for (const auto& setter : setters) {
        const QRegion painted = repaintedBy(host, [&] { setter.set(rect); });
        QVERIFY2(painted == (setter.repaints ? QRegion(rect.occupiedRect()) : QRegion()),
                 setter.name);
    }
}

void tst_ResizableRect::arrowMapIsBuiltByChaining()
{
    ArrowMap map;
    ArrowMap& same = map << ArrowMapValue(4, 5) << ArrowMapValue(1, 0) << ArrowMapValue(4, 7);
    QCOMPARE(&same, &map);
    QCOMPARE(map.size(), 2);
    QCOMPARE(map[4], 7);
    QCOMPARE(map[1], 0);
}

void tst_ResizableRect::arrowTables_data()
{
    QTest::addColumn<QRect>("flip");
    QTest::addColumn<QPoint>("head");
    QTest::addColumn<QPoint>("tail");
    const QPoint topLeft = kRect.topLeft();
    const QPoint topRight = kRect.topRight();
    const QPoint bottomLeft = kRect.bottomLeft();
    const QPoint bottomRight = kRect.bottomRight();
    QTest::newRow("nothing") << QRect(0, 0, 5, 5) << topRight << bottomLeft;
    QTest::newRow("width 0, height 0") << QRect(0, 0, 0, 0) << topRight << bottomLeft;
    QTest::newRow("horizontally") << QRect(0, 0, -1, 5) << topLeft << bottomRight;
    QTest::newRow("horizontally, height 0") << QRect(0, 0, -1, 0) << topLeft << bottomRight;
    QTest::newRow("vertically") << QRect(0, 0, 5, -1) << bottomRight << topLeft;
    QTest::newRow("vertically, width 0") << QRect(0, 0, 0, -1) << bottomRight << topLeft;
    QTest::newRow("both") << QRect(0, 0, -1, -1) << bottomLeft << topRight;
}

void tst_ResizableRect::arrowTables()
{
    QFETCH(QRect, flip);
    QFETCH(QPoint, head);
    QFETCH(QPoint, tail);
    ResizableRect rect(nullptr, kRect);
    rect.initArrow();
    QCOMPARE(rect.arrowHead(), kRect.topRight());
    QCOMPARE(rect.arrowTail(), kRect.bottomLeft());
    rect.updateArrowRect(flip);
    QCOMPARE(rect.arrowHead(), head);
    QCOMPARE(rect.arrowTail(), tail);
}

void tst_ResizableRect::frameIsThatOfDrawRect_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<qreal>("scale");
    QTest::newRow("upright") << QRect(20, 20, 60, 40) << 1.0;
    QTest::newRow("empty") << QRect(30, 30, 0, 0) << 1.0;
    QTest::newRow("without width") << QRect(30, 30, 0, 20) << 1.0;
    QTest::newRow("one pixel") << QRect(30, 30, 1, 1) << 1.0;
    QTest::newRow("later handles cover earlier ones") << QRect(40, 40, 10, 10) << 1.0;
    QTest::newRow("inverted") << edges(80, 60, 20, 10) << 1.0;
    QTest::newRow("over the edge") << QRect(-10, -10, 300, 200) << 1.0;
    QTest::newRow("twice as dense") << QRect(10, 10, 30, 20) << 2.0;
}

void tst_ResizableRect::frameIsThatOfDrawRect()
{
    QFETCH(QRect, rect);
    QFETCH(qreal, scale);
    for (const bool solid : {false, true}) {
        // The border is filled with the brush that the painter has.
        for (const QBrush& brush : {QBrush(Qt::NoBrush), QBrush(Qt::darkGreen)}) {
            ResizableRect frame(nullptr, rect);
            frame.setBorderSolidPaint(solid);
            const QImage actual = drawnOn(canvas(), [&](QPainter& painter) {
                painter.scale(scale, scale);
                painter.setBrush(brush);
                painter.setRenderHint(QPainter::Antialiasing);
                frame.render(painter);
            });
            QCOMPARE(actual, drawnOn(canvas(), [&](QPainter& painter) {
                         painter.scale(scale, scale);
                         painter.setBrush(brush);
                         drawFrame(painter, rect, solid);
                     }));
        }
    }
}

void tst_ResizableRect::labelIsPaintedOnTop_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QRect>("label");
    QTest::addColumn<QString>("text");
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("above") << QRect(10, 30, 100, 50) << QRect(10, 2, 100, 28) << "100 x 50"
                           << Qt::LeftToRight;
    QTest::newRow("just above") << QRect(10, 28, 100, 50) << QRect(10, 0, 100, 28) << "100 x 50"
                                << Qt::LeftToRight;
    QTest::newRow("inside, as wide as the label")
        << QRect(10, 27, 640, 480) << QRect(10, 27, 100, 28) << "640 x 480" << Qt::LeftToRight;
    QTest::newRow("beyond the right edge")
        << QRect(120, 40, 20, 20) << QRect(120, 12, 100, 28) << "20 x 20" << Qt::LeftToRight;
    QTest::newRow("right to left")
        << QRect(10, 10, 502, 80) << QRect(10, 10, 100, 28) << "502 x 80" << Qt::RightToLeft;
}

void tst_ResizableRect::labelIsPaintedOnTop()
{
    QFETCH(QRect, rect);
    QFETCH(QRect, label);
    QFETCH(QString, text);
    QFETCH(Qt::LayoutDirection, direction);
    ResizableRect frame(nullptr, rect);
    frame.setSizeInforVisible(true);
    QCOMPARE(frame.sizeInforPaintRect(), label);
    const QImage actual = drawnOn(canvas(), [&](QPainter& painter) {
        painter.setLayoutDirection(direction);
        frame.render(painter);
    });
    QCOMPARE(actual, drawnOn(canvas(), [&](QPainter& painter) {
                 drawFrame(painter, rect, false);
                 painter.fillRect(label, QColor(0, 0, 0, 128));
                 painter.setPen(Qt::white);
                 painter.setFont(QFont("Courier New", 14));
                 painter.drawText(label, Qt::AlignCenter, text);
             }));
}

void tst_ResizableRect::labelOfALongSizeShowsAllDigits_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("full HD") << QSize(1920, 1080);
    QTest::newRow("8K") << QSize(7680, 4320);
    QTest::newRow("largest widget") << QSize(16777215, 16777215);
}

// A digit that is cut off would not tell these apart.
void tst_ResizableRect::labelOfALongSizeShowsAllDigits()
{
    QFETCH(QSize, size);
    const QRect label(20, 12, 100, 28);
    const auto labelled = [&](const QSize& s) {
        ResizableRect rect(nullptr, QRect(QPoint(20, 40), s));
        rect.setSizeInforVisible(true);
        return rendered(rect);
    };
    const QImage image = labelled(size);
    QVERIFY(labelled(size - QSize(1000, 0)).copy(label) != image.copy(label));
    QVERIFY(labelled(size - QSize(0, 1)).copy(label) != image.copy(label));

    // In the middle, and as high as a text that fits.
    const QRect ink = inkIn(image, label);
    const QRect fitting = inkIn(labelled(QSize(192, 108)), label);
    QVERIFY(qAbs(ink.center().x() - label.center().x()) <= 3);
    QVERIFY(qAbs(ink.top() - fitting.top()) <= 1 && qAbs(ink.bottom() - fitting.bottom()) <= 1);
}

void tst_ResizableRect::painterStateIsChanged()
{
    ResizableRect rect(nullptr, kRect);
    rect.setSizeInforVisible(true);
    QImage image = canvas();
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, true);
    rect.render(painter);
    QVERIFY(!painter.testRenderHint(QPainter::Antialiasing));
    QCOMPARE(painter.pen().color(), QColor(Qt::white));
    QCOMPARE(painter.brush(), QBrush(QColor(0, 0, 0, 128)));
    QCOMPARE(painter.font().pointSize(), 14);
    QCOMPARE(painter.font().family(), QString("Courier New"));
    QCOMPARE(painter.font().weight(), int(QFont::Normal));
    QVERIFY(!painter.font().italic());

    OtherFont translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    rect.render(painter);
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(painter.font().family(), QString("DejaVu Sans Mono"));
}

QTEST_MAIN(tst_ResizableRect)
#include "tst_ResizableRect.moc"
