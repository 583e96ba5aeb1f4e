// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"
#include "BehaviourTest.h"
#include "ColorWidget.h"
#include "Pictures.h"

#include <QMetaMethod>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(Qt::MouseButton)

namespace
{

const QColor kPalette[2][8] = {
    {QColor(0, 0, 0), QColor(128, 128, 128), QColor(128, 0, 0), QColor(247, 136, 58),
     QColor(48, 132, 48), QColor(56, 90, 211), QColor(128, 0, 128), QColor(0, 153, 153)},
    {QColor(255, 255, 255), QColor(192, 192, 192), QColor(251, 56, 56), QColor(255, 255, 0),
     QColor(153, 204, 0), QColor(56, 148, 228), QColor(243, 27, 243), QColor(22, 220, 220)}};
const int kLefts[8] = {38, 55, 72, 89, 106, 123, 140, 157};
const int kTops[2] = {4, 21};

const QColor kGray(160, 160, 164);
const QColor kNowhere(1, 2, 3);

QRect cell(int row, int col)
{
    return {kLefts[col], kTops[row], 13, 13};
}

/// The palette as it looks with `current` in its box. The outlines' last column and row lie on what
/// they frame.
PixelDrawing drawing(const QColor& current)
{
    PixelDrawing d(QSize(174, 38));
    d.fill(4, 4, 30, 30, current);
    d.frame(3, 3, 33, 33, kGray);
    for (int row = 0; row < 2; ++row) {
        for (int col = 0; col < 8; ++col) {
            const QRect r = cell(row, col);
            d.fill(r.left(), r.top(), 13, 13, kPalette[row][col]);
            d.frame(r.left() - 1, r.top() - 1, r.right(), r.bottom(), kGray);
        }
    }
    return d;
}

/// The mouse in front of a palette.
class Palette : public ColorWidget
{
public:
    Palette()
        : ColorWidget(nullptr)
    {
    }
    void move(const QPoint& p, Qt::MouseButtons buttons = Qt::NoButton)
    {
        send(QEvent::MouseMove, p, Qt::NoButton, buttons);
    }
    void press(const QPoint& p, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonPress, p, button, button);
    }
    void leave()
    {
        QEvent event(QEvent::Leave);
        QApplication::sendEvent(this, &event);
    }

private:
    void send(QEvent::Type type, const QPoint& p, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, p, button, buttons, Qt::NoModifier);
        QApplication::sendEvent(this, &event);
    }
};

} // namespace

class tst_ColorWidget : public BehaviourTest
{
    Q_OBJECT

private slots:
    void isAPlainChildOfFixedSizeWithMouseTracking();
    void metaObjectHasTheOneSignal();
    void cellsAreSeventeenPixelsApart();
    void cellOutsideTheGridIsAsserted();
    void paintsBoxAndCells();
    void paintsAnInvalidColorAtFirst();
    void paintsAnyColorInTheBoxOnly();
    void paintsTheHoverFrameLast_data();
    void paintsTheHoverFrameLast();
    void hovers_data();
    void hovers();
    void hoversNothingBetweenTheCells();
    void hoversAlsoWhileAButtonIsHeld();
    void clickTakesEachColor();
    void clickTakesTheHoveredCellWhereverThePressIs();
    void clickWithoutHoverDoesNothing();
    void clickAfterLeavingDoesNothing();
    void otherButtonsDoNothing_data();
    void otherButtonsDoNothing();
    void clickOnTheCurrentColorIsSilent();
    void invalidColorDiffersFromBlack();
    void colorIsCurrentWhenItIsAnnounced();
    void setColorIsSilent();
    void repaintsAlsoWhenNothingChanges();
    void repaintsAfterAClickOnTheCurrentColor();
};

void tst_ColorWidget::isAPlainChildOfFixedSizeWithMouseTracking()
{
    QWidget parent;
    ColorWidget palette(&parent);
    QCOMPARE(palette.parentWidget(), &parent);
    QVERIFY(!palette.isWindow());
    QVERIFY(palette.hasMouseTracking());
    QCOMPARE(palette.size(), QSize(174, 38));
    QCOMPARE(palette.minimumSize(), QSize(174, 38));
    QCOMPARE(palette.maximumSize(), QSize(174, 38));
    QVERIFY(palette.children().isEmpty());
}

void tst_ColorWidget::metaObjectHasTheOneSignal()
{
    const QMetaObject& meta = ColorWidget::staticMetaObject;
    QCOMPARE(meta.className(), "ColorWidget");
    QCOMPARE(meta.methodCount(), meta.methodOffset() + 1);
    const QMetaMethod method = meta.method(meta.methodOffset());
    QCOMPARE(method.methodSignature(), QByteArray("currentColorChanged(QColor)"));
    QCOMPARE(method.methodType(), QMetaMethod::Signal);
}

void tst_ColorWidget::cellsAreSeventeenPixelsApart()
{
    Palette palette;
    for (int row = 0; row < 2; ++row) {
        for (int col = 0; col < 8; ++col)
            QCOMPARE(palette.cellRect(row, col), cell(row, col));
    }
}

void tst_ColorWidget::cellOutsideTheGridIsAsserted()
{
    SKIP_WITHOUT_ASSERTIONS();
    Palette palette;
    const QByteArray row = failedAssertion([&] { palette.cellRect(2, 0); });
    QVERIFY2(row.contains("\"row < ROWS\""), row);
    const QByteArray col = failedAssertion([&] { palette.cellRect(0, 8); });
    QVERIFY2(col.contains("\"col < COLS\""), col);
    QCOMPARE(failedAssertion([&] { palette.cellRect(1, 7); }), QByteArray());
}

void tst_ColorWidget::paintsBoxAndCells()
{
    Palette palette;
    palette.setColor(QColor(255, 255, 0));
    QCOMPARE(painted(palette), drawing(QColor(255, 255, 0)).image());
}

// What a painter makes of an invalid colour is black.
void tst_ColorWidget::paintsAnInvalidColorAtFirst()
{
    Palette palette;
    QCOMPARE(painted(palette), drawing(Qt::black).image());
}

void tst_ColorWidget::paintsAnyColorInTheBoxOnly()
{
    Palette palette;
    palette.setColor(kNowhere);
    QCOMPARE(painted(palette), drawing(kNowhere).image());
}

void tst_ColorWidget::paintsTheHoverFrameLast_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("col");
    for (int row = 0; row < 2; ++row) {
        for (int col = 0; col < 8; ++col)
            QTest::addRow("cell %d, %d", row, col) << row << col;
    }
}

void tst_ColorWidget::paintsTheHoverFrameLast()
{
    QFETCH(int, row);
    QFETCH(int, col);
    Palette palette;
    palette.setColor(kNowhere);
    const QRect r = cell(row, col);
    palette.move(r.center());
    PixelDrawing expected = drawing(kNowhere);
    expected.frame(r.left() - 1, r.top() - 1, r.right(), r.bottom(), Qt::white);
    expected.frame(r.left() - 2, r.top() - 2, r.right() + 1, r.bottom() + 1, kGray);
    QCOMPARE(painted(palette), expected.image());
    palette.leave();
    QCOMPARE(painted(palette), drawing(kNowhere).image());
}

void tst_ColorWidget::hovers_data()
{
    QTest::addColumn<QPoint>("p");
    QTest::addColumn<QColor>("color");
    const QColor none;
    QTest::newRow("in the first cell") << QPoint(40, 6) << kPalette[0][0];
    QTest::newRow("its first pixel") << QPoint(38, 4) << kPalette[0][0];
    QTest::newRow("its last pixel") << QPoint(50, 16) << kPalette[0][0];
    QTest::newRow("right of its last pixel") << QPoint(51, 16) << none;
    QTest::newRow("below its last pixel") << QPoint(50, 17) << none;
    QTest::newRow("gap after it") << QPoint(52, 6) << none;
    QTest::newRow("last pixel of that gap") << QPoint(54, 6) << none;
    QTest::newRow("second cell") << QPoint(55, 6) << kPalette[0][1];
    QTest::newRow("left of the grid, column 0 by truncation") << QPoint(36, 6) << none;
    QTest::newRow("above the grid, row 0 by truncation") << QPoint(40, 3) << none;
    QTest::newRow("left and above") << QPoint(37, 3) << none;
    QTest::newRow("a whole pitch left") << QPoint(21, 6) << none;
    QTest::newRow("a whole pitch above") << QPoint(40, -13) << none;
    QTest::newRow("in the box") << QPoint(18, 18) << none;
    QTest::newRow("gap between the rows") << QPoint(40, 20) << none;
    QTest::newRow("second row") << QPoint(40, 21) << kPalette[1][0];
    QTest::newRow("in the last cell") << QPoint(160, 25) << kPalette[1][7];
    QTest::newRow("its last pixel of all") << QPoint(169, 33) << kPalette[1][7];
    QTest::newRow("right of the grid, still column 7") << QPoint(170, 25) << none;
    QTest::newRow("column 8") << QPoint(174, 25) << none;
    QTest::newRow("below the grid, still row 1") << QPoint(160, 34) << none;
    QTest::newRow("row 2") << QPoint(160, 38) << none;
    QTest::newRow("far outside") << QPoint(-1000, 5000) << none;
}

void tst_ColorWidget::hovers()
{
    QFETCH(QPoint, p);
    QFETCH(QColor, color);
    Palette palette;
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.move(p);
    palette.press(p);
    QCOMPARE(spy.count(), color.isValid() ? 1 : 0);
    if (color.isValid())
        QCOMPARE(spy.at(0).at(0).value<QColor>(), color);
}

void tst_ColorWidget::hoversNothingBetweenTheCells()
{
    Palette palette;
    QColor chosen;
    connect(&palette, &ColorWidget::currentColorChanged, this,
            [&chosen](const QColor& c) { chosen = c; });
    for (int y = -20; y < 60; ++y) {
        for (int x = -20; x < 200; ++x) {
            QColor expected;
            for (int i = 0; i < 16; ++i) {
                if (cell(i / 8, i % 8).contains(x, y))
                    expected = kPalette[i / 8][i % 8];
            }
            chosen = QColor();
            palette.setColor(QColor());
            palette.move(QPoint(x, y));
            palette.press(QPoint(x, y));
            QVERIFY2(chosen == expected, qPrintable(QString("(%1, %2)").arg(x).arg(y)));
        }
    }
}

void tst_ColorWidget::hoversAlsoWhileAButtonIsHeld()
{
    Palette palette;
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.move(QPoint(60, 25), Qt::RightButton);
    palette.press(QPoint(60, 25));
    QCOMPARE(spy.at(0).at(0).value<QColor>(), kPalette[1][1]);
}

void tst_ColorWidget::clickTakesEachColor()
{
    Palette palette;
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    for (int row = 0; row < 2; ++row) {
        for (int col = 0; col < 8; ++col) {
            const QPoint p = cell(row, col).center();
            palette.move(p);
            palette.press(p);
            QCOMPARE(spy.takeFirst().at(0).value<QColor>(), kPalette[row][col]);
            QCOMPARE(painted(palette).pixelColor(18, 18), kPalette[row][col]);
        }
    }
    QVERIFY(spy.isEmpty());
}

void tst_ColorWidget::clickTakesTheHoveredCellWhereverThePressIs()
{
    Palette palette;
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.move(QPoint(60, 6));
    palette.press(QPoint(160, 25));
    QCOMPARE(spy.takeFirst().at(0).value<QColor>(), kPalette[0][1]);
    palette.move(QPoint(130, 25));
    palette.press(QPoint(52, 6));
    QCOMPARE(spy.takeFirst().at(0).value<QColor>(), kPalette[1][5]);
    QVERIFY(spy.isEmpty());
}

void tst_ColorWidget::clickWithoutHoverDoesNothing()
{
    Palette palette;
    palette.setColor(kNowhere);
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.press(QPoint(40, 6));
    palette.move(QPoint(40, 6));
    palette.move(QPoint(52, 6));
    palette.press(QPoint(40, 6));
    QCOMPARE(spy.count(), 0);
    QCOMPARE(painted(palette), drawing(kNowhere).image());
}

void tst_ColorWidget::clickAfterLeavingDoesNothing()
{
    Palette palette;
    palette.setColor(kNowhere);
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.move(QPoint(40, 6));
    palette.leave();
    palette.press(QPoint(40, 6));
    QCOMPARE(spy.count(), 0);
    QCOMPARE(painted(palette), drawing(kNowhere).image());
}

void tst_ColorWidget::otherButtonsDoNothing_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("middle") << Qt::MiddleButton;
}

void tst_ColorWidget::otherButtonsDoNothing()
{
    QFETCH(Qt::MouseButton, button);
    Palette palette;
    palette.setColor(kNowhere);
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.move(QPoint(60, 6));
    palette.press(QPoint(60, 6), button);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(painted(palette).pixelColor(18, 18), kNowhere);
}

void tst_ColorWidget::clickOnTheCurrentColorIsSilent()
{
    Palette palette;
    palette.setColor(QColor(22, 220, 220));
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.move(QPoint(160, 25));
    palette.press(QPoint(160, 25));
    QCOMPARE(spy.count(), 0);
    palette.setColor(kNowhere);
    palette.press(QPoint(160, 25));
    palette.press(QPoint(160, 25));
    QCOMPARE(spy.count(), 1);
}

void tst_ColorWidget::invalidColorDiffersFromBlack()
{
    Palette palette;
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.move(QPoint(40, 6));
    palette.press(QPoint(40, 6));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<QColor>(), QColor(0, 0, 0));
}

void tst_ColorWidget::colorIsCurrentWhenItIsAnnounced()
{
    Palette palette;
    QColor shown;
    connect(&palette, &ColorWidget::currentColorChanged, this,
            [&] { shown = painted(palette).pixelColor(18, 18); });
    palette.move(QPoint(60, 6));
    palette.press(QPoint(60, 6));
    QCOMPARE(shown, kPalette[0][1]);
}

void tst_ColorWidget::setColorIsSilent()
{
    Palette palette;
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.setColor(kPalette[1][2]);
    palette.setColor(kNowhere);
    palette.setColor(QColor());
    QCOMPARE(spy.count(), 0);
}

void tst_ColorWidget::repaintsAlsoWhenNothingChanges()
{
    Palette palette;
    palette.setColor(kNowhere);
    palette.show();
    QVERIFY(QTest::qWaitForWindowExposed(&palette));
    QCoreApplication::processEvents();
    PaintCounter paints(palette);
    palette.setColor(kNowhere);
    QTRY_COMPARE(paints.count, 1);
    palette.move(QPoint(52, 6));
    QTRY_COMPARE(paints.count, 2);
    palette.move(QPoint(40, 6));
    QTRY_COMPARE(paints.count, 3);
    palette.move(QPoint(40, 6));
    QTRY_COMPARE(paints.count, 4);
    palette.leave();
    QTRY_COMPARE(paints.count, 5);
    palette.leave();
    QTRY_COMPARE(paints.count, 6);
    QCOMPARE(paints.area, QRegion(palette.rect()));
}

void tst_ColorWidget::repaintsAfterAClickOnTheCurrentColor()
{
    Palette palette;
    palette.setColor(kPalette[1][7]);
    palette.show();
    QVERIFY(QTest::qWaitForWindowExposed(&palette));
    palette.move(QPoint(160, 25));
    QCoreApplication::processEvents();
    PaintCounter paints(palette);
    palette.press(QPoint(160, 25));
    QTRY_COMPARE(paints.count, 1);
    palette.setColor(kNowhere);
    QTRY_COMPARE(paints.count, 2);
    palette.press(QPoint(160, 25));
    QTRY_COMPARE(paints.count, 3);
}

QTEST_MAIN(tst_ColorWidget)
#include "tst_ColorWidget.moc"
