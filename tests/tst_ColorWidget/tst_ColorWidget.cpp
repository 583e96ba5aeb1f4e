// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"
#include "BehaviourTest.h"
#include "ColorWidget.h"
#include "Mouse.h"
#include "Pictures.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QtTest>
#include <functional>

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
const QPoint kFirstCell(40, 6);
const QPoint kGap(52, 6);
const QPoint kLastCell(160, 25);

QRect cell(int row, int col)
{
    return {kLefts[col], kTops[row], 13, 13};
}

/// The colour of the cell at `p`, invalid between the cells.
QColor colorAt(const QPoint& p)
{
    for (int i = 0; i < 16; ++i) {
        if (cell(i / 8, i % 8).contains(p))
            return kPalette[i / 8][i % 8];
    }
    return {};
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

/// A palette and the mouse in front of it.
struct Palette : ColorWidget, Mouse {
    Palette()
        : ColorWidget(nullptr)
        , Mouse(this)
    {
        setColor(kNowhere);
    }
    using Mouse::move;
    void leave()
    {
        QEvent event(QEvent::Leave);
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
    void paintsTheCurrentColorInTheBox();
    void paintsTheHoverFrameLast();
    void clickTakesTheColorOfTheCell();
    void clickTakesTheHoveredCellWhereverThePressIs();
    void clickDoesNothingWithoutHoverOrWithOtherButtons();
    void clickOnTheCurrentColorIsSilent();
    void setColorIsSilent();
    void repaintsAlsoWhenNothingChanges();
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
    for (int i = 0; i < 16; ++i)
        QCOMPARE(palette.cellRect(i / 8, i % 8), cell(i / 8, i % 8));
    SKIP_WITHOUT_ASSERTIONS();
    const QByteArray row = failedAssertion([&] { palette.cellRect(2, 0); });
    QVERIFY2(row.contains("\"row < ROWS\""), row);
    const QByteArray col = failedAssertion([&] { palette.cellRect(0, 8); });
    QVERIFY2(col.contains("\"col < COLS\""), col);
}

// What a painter makes of an invalid colour, the first one, is black.
void tst_ColorWidget::paintsTheCurrentColorInTheBox()
{
    ColorWidget palette(nullptr);
    QCOMPARE(palette.color(), QColor());
    QCOMPARE(painted(palette), drawing(Qt::black).image());
    for (const QColor& color : {kPalette[1][3], kNowhere}) {
        palette.setColor(color);
        QCOMPARE(palette.color(), color);
        QCOMPARE(painted(palette), drawing(color).image());
    }
}

void tst_ColorWidget::paintsTheHoverFrameLast()
{
    Palette palette;
    for (int i = 0; i < 16; ++i) {
        const QRect r = cell(i / 8, i % 8);
        palette.hover(r.center());
        PixelDrawing expected = drawing(kNowhere);
        expected.frame(r.left() - 1, r.top() - 1, r.right(), r.bottom(), Qt::white);
        expected.frame(r.left() - 2, r.top() - 2, r.right() + 1, r.bottom() + 1, kGray);
        QCOMPARE(painted(palette), expected.image());
        palette.leave();
        QCOMPARE(painted(palette), drawing(kNowhere).image());
    }
}

// Hovers whether or not a button is held.
void tst_ColorWidget::clickTakesTheColorOfTheCell()
{
    Palette palette;
    QColor announced;
    QColor current;
    connect(&palette, &ColorWidget::currentColorChanged, this, [&](const QColor& color) {
        announced = color;
        current = palette.color();
    });
    for (int y = -20; y < 60; ++y) {
        for (int x = -20; x < 200; ++x) {
            const QPoint p(x, y);
            announced = QColor();
            palette.setColor(kNowhere);
            palette.move(p, (x + y) % 2 == 0 ? Qt::NoButton : Qt::RightButton);
            palette.press(p);
            const bool asExpected =
                announced == colorAt(p) && (!announced.isValid() || current == announced);
            QVERIFY2(asExpected, qPrintable(QString("(%1, %2)").arg(x).arg(y)));
        }
    }
}

void tst_ColorWidget::clickTakesTheHoveredCellWhereverThePressIs()
{
    Palette palette;
    palette.hover(QPoint(60, 6));
    palette.press(kLastCell);
    QCOMPARE(palette.color(), kPalette[0][1]);
    palette.hover(QPoint(130, 25));
    palette.press(kGap);
    QCOMPARE(palette.color(), kPalette[1][5]);
}

void tst_ColorWidget::clickDoesNothingWithoutHoverOrWithOtherButtons()
{
    Palette palette;
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.press(kFirstCell);
    palette.hover(kFirstCell);
    palette.hover(kGap);
    palette.press(kFirstCell);
    palette.hover(kFirstCell);
    palette.leave();
    palette.press(kFirstCell);
    palette.hover(kFirstCell);
    palette.press(kFirstCell, Qt::RightButton);
    palette.press(kFirstCell, Qt::MiddleButton);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(palette.color(), kNowhere);
}

void tst_ColorWidget::clickOnTheCurrentColorIsSilent()
{
    Palette palette;
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.hover(kLastCell);
    palette.press(kLastCell);
    palette.press(kLastCell);
    QCOMPARE(spy.count(), 1);
}

void tst_ColorWidget::setColorIsSilent()
{
    Palette palette;
    QSignalSpy spy(&palette, &ColorWidget::currentColorChanged);
    palette.setColor(kPalette[1][2]);
    palette.setColor(QColor());
    QCOMPARE(spy.count(), 0);
    // An invalid colour is painted as black, but differs from it.
    palette.hover(kFirstCell);
    palette.press(kFirstCell);
    QCOMPARE(spy.count(), 1);
}

void tst_ColorWidget::repaintsAlsoWhenNothingChanges()
{
    Palette palette;
    palette.show();
    QVERIFY(QTest::qWaitForWindowExposed(&palette));
    QCoreApplication::processEvents();
    const std::function<void()> causes[] = {[&] { palette.setColor(kNowhere); },
                                            [&] { palette.hover(kGap); },
                                            [&] { palette.hover(kLastCell); },
                                            [&] { palette.hover(kLastCell); },
                                            [&] { palette.press(kLastCell); },
                                            [&] { palette.press(kLastCell); },
                                            [&] { palette.leave(); },
                                            [&] { palette.leave(); }};
    for (const auto& cause : causes) {
        PaintCounter paints(palette);
        cause();
        QTRY_COMPARE(paints.count, 1);
        QCOMPARE(paints.area, QRegion(palette.rect()));
    }
}

QTEST_MAIN(tst_ColorWidget)
#include "tst_ColorWidget.moc"
