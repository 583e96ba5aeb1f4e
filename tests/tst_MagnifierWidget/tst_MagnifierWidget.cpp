// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "MagnifierWidget.h"
#include "Pictures.h"

#include <QPainter>
#include <QtTest>
#include <functional>

namespace
{

const QColor kCross(0x00, 0xaa, 0xcc);

/// What the loupe paints over `image`, which is as large.
QImage underFramesAndCross(const QImage& image, const QSize& size, const QColor& color)
{
    const int width = size.width();
    const int height = size.height();
    return drawnOn(image, [&](QPainter& painter) {
        painter.setPen(Qt::black);
        painter.drawRect(0, 0, width - 1, height - 1);
        painter.setPen(Qt::white);
        painter.drawRect(1, 1, width - 3, height - 3);
        painter.setPen(QPen(QBrush(color), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawLine(3, height / 2, width - 4, height / 2);
        painter.drawLine(width / 2, 3, width / 2, height - 4);
    });
}

} // namespace

class tst_MagnifierWidget : public BehaviourTest
{
    Q_OBJECT

private slots:
    void isAPlainChildWidgetOfItsOwn();
    void imageIsStretchedUnsmoothedUnderFramesAndCross_data();
    void imageIsStretchedUnsmoothedUnderFramesAndCross();
    void nullImageLeavesFramesAndCross_data();
    void nullImageLeavesFramesAndCross();
    void changesRepaint();
    void mouseReachesWhatLiesBeneath();
};

void tst_MagnifierWidget::isAPlainChildWidgetOfItsOwn()
{
    QWidget parent;
    MagnifierWidget loupe(&parent);
    QCOMPARE(loupe.parentWidget(), &parent);
    QVERIFY(!loupe.isWindow());
    QCOMPARE(loupe.metaObject()->className(), "MagnifierWidget");
    QCOMPARE(loupe.metaObject()->methodCount(), QWidget::staticMetaObject.methodCount());
    loupe.setSize(64);
    QCOMPARE(loupe.size(), QSize(64, 64));
}

void tst_MagnifierWidget::imageIsStretchedUnsmoothedUnderFramesAndCross_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<qreal>("pixelRatio");
    QTest::newRow("square") << QSize(16, 16) << 1.0;
    QTest::newRow("uneven") << QSize(8, 20) << 1.0;
    QTest::newRow("of a dense screen") << QSize(16, 16) << 2.0;
}

void tst_MagnifierWidget::imageIsStretchedUnsmoothedUnderFramesAndCross()
{
    QFETCH(QSize, size);
    QFETCH(qreal, pixelRatio);
    QImage source = noise(size);
    source.setDevicePixelRatio(pixelRatio);
    MagnifierWidget loupe(nullptr);
    loupe.setSize(80);
    loupe.setOrigImage(source);
    loupe.setCrossColor(kCross);

    QImage blocks(80, 80, QImage::Format_RGB32);
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 80; ++x)
            blocks.setPixel(x, y, source.pixel(x * size.width() / 80, y * size.height() / 80));
    }
    QCOMPARE(painted(loupe), underFramesAndCross(blocks, loupe.size(), kCross));
}

void tst_MagnifierWidget::nullImageLeavesFramesAndCross_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QColor>("cross");
    QTest::newRow("as the window shows it") << QSize(80, 80) << kCross;
    QTest::newRow("without a colour") << QSize(80, 80) << QColor();
    QTest::newRow("odd sides, halved downwards") << QSize(51, 51) << kCross;
    QTest::newRow("sides that differ") << QSize(100, 60) << kCross;
}

// As fine as the screen is.
void tst_MagnifierWidget::nullImageLeavesFramesAndCross()
{
    QFETCH(QSize, size);
    QFETCH(QColor, cross);
    MagnifierWidget loupe(nullptr);
    loupe.resize(size);
    if (cross.isValid())
        loupe.setCrossColor(cross);
    const qreal scale = loupe.devicePixelRatioF();
    QImage actual(size * scale, QImage::Format_RGB32);
    actual.setDevicePixelRatio(scale);
    actual.fill(Qt::magenta);
    const QImage expected = underFramesAndCross(actual, size, cross);
    loupe.render(&actual, QPoint(), QRegion(), QWidget::RenderFlags());
    QCOMPARE(actual, expected);
}

void tst_MagnifierWidget::changesRepaint()
{
    MagnifierWidget loupe(nullptr);
    loupe.setSize(80);
    loupe.show();
    QVERIFY(QTest::qWaitForWindowExposed(&loupe));
    QCoreApplication::processEvents();
    const std::function<void()> causes[] = {[&] { loupe.setOrigImage(noise(QSize(16, 16))); },
                                            [&] { loupe.setCrossColor(kCross); },
                                            [&] { loupe.setSize(80); }};
    for (const auto& cause : causes) {
        PaintCounter paints(loupe);
        cause();
        QTRY_COMPARE(paints.count, 1);
    }
}

void tst_MagnifierWidget::mouseReachesWhatLiesBeneath()
{
    QWidget parent;
    parent.resize(200, 200);
    MagnifierWidget loupe(&parent);
    loupe.setSize(80);
    loupe.move(50, 50);
    parent.show();
    QVERIFY(!parent.childAt(60, 60));
}

QTEST_MAIN(tst_MagnifierWidget)
#include "tst_MagnifierWidget.moc"
