// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "MagnifierWidget.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>

namespace
{

const QColor kCross(0x00, 0xaa, 0xcc);

QImage noise(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    QRandomGenerator random(7);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, 0xff000000u | random.generate());
    }
    return image;
}

/// What the widget paints, over a colour that occurs nowhere else.
QImage painted(QWidget& widget)
{
    QImage image(widget.size(), QImage::Format_RGB32);
    image.fill(Qt::magenta);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

void paintFrames(QPainter& painter, int side)
{
    painter.setPen(Qt::black);
    painter.drawRect(0, 0, side - 1, side - 1);
    painter.setPen(Qt::white);
    painter.drawRect(1, 1, side - 3, side - 3);
}

void paintCrossHair(QPainter& painter, int side, const QColor& color)
{
    painter.setPen(QPen(QBrush(color), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawLine(3, side / 2, side - 4, side / 2);
    painter.drawLine(side / 2, 3, side / 2, side - 4);
}

} // namespace

class tst_MagnifierWidget : public BehaviourTest
{
    Q_OBJECT

private slots:
    void isAPlainChildWidgetOfItsOwn();
    void imageIsMagnifiedUnsmoothedUnderFramesAndCross();
    void eachSourcePixelIsABlock();
    void nullImageLeavesFramesAndCross();
    void framesAndCrossFollowBothSides();
    void imageOfADenseScreenFillsTheLoupe();
    void framesAndCrossAreAsFineAsTheScreen();
    void unevenImageIsStretched();
    void oddSizesHalveDownwards();
    void crossColorIsInvalidAtFirst();
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

void tst_MagnifierWidget::imageIsMagnifiedUnsmoothedUnderFramesAndCross()
{
    const QImage source = noise(16, 16);
    MagnifierWidget loupe(nullptr);
    loupe.setSize(80);
    loupe.setOrigImage(source);
    loupe.setCrossColor(kCross);

    QImage expected(80, 80, QImage::Format_RGB32);
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 80; ++x)
            expected.setPixel(x, y, source.pixel(x / 5, y / 5));
    }
    QPainter painter(&expected);
    paintFrames(painter, 80);
    paintCrossHair(painter, 80, kCross);
    painter.end();
    QCOMPARE(painted(loupe), expected);
}

void tst_MagnifierWidget::eachSourcePixelIsABlock()
{
    const QImage source = noise(16, 16);
    MagnifierWidget loupe(nullptr);
    loupe.setSize(80);
    loupe.setOrigImage(source);
    loupe.setCrossColor(kCross);
    const QImage image = painted(loupe);
    for (int y = 15; y < 20; ++y) {
        for (int x = 20; x < 25; ++x)
            QCOMPARE(image.pixel(x, y), source.pixel(4, 3));
    }
    // The cross-hair's ends, and the frames that it stays off.
    QCOMPARE(image.pixelColor(40, 40), kCross);
    QCOMPARE(image.pixelColor(3, 40), kCross);
    QCOMPARE(image.pixelColor(76, 40), kCross);
    QCOMPARE(image.pixelColor(40, 3), kCross);
    QCOMPARE(image.pixelColor(40, 76), kCross);
    QCOMPARE(image.pixelColor(1, 40), QColor(Qt::white));
    QCOMPARE(image.pixelColor(78, 40), QColor(Qt::white));
    QCOMPARE(image.pixelColor(0, 40), QColor(Qt::black));
    QCOMPARE(image.pixelColor(79, 40), QColor(Qt::black));
}

void tst_MagnifierWidget::nullImageLeavesFramesAndCross()
{
    MagnifierWidget loupe(nullptr);
    loupe.setSize(80);
    loupe.setCrossColor(kCross);
    QImage expected(80, 80, QImage::Format_RGB32);
    expected.fill(Qt::magenta);
    QPainter painter(&expected);
    paintFrames(painter, 80);
    paintCrossHair(painter, 80, kCross);
    painter.end();
    QCOMPARE(painted(loupe), expected);
}

void tst_MagnifierWidget::imageOfADenseScreenFillsTheLoupe()
{
    QImage source = noise(16, 16);
    MagnifierWidget loupe(nullptr);
    loupe.setSize(80);
    loupe.setOrigImage(source);
    const QImage expected = painted(loupe);
    source.setDevicePixelRatio(2);
    loupe.setOrigImage(source);
    QCOMPARE(painted(loupe), expected);
}

void tst_MagnifierWidget::framesAndCrossAreAsFineAsTheScreen()
{
    MagnifierWidget loupe(nullptr);
    loupe.setSize(80);
    loupe.setCrossColor(kCross);
    const qreal scale = loupe.devicePixelRatioF();
    QImage actual(loupe.size() * scale, QImage::Format_RGB32);
    actual.setDevicePixelRatio(scale);
    actual.fill(Qt::magenta);
    QImage expected = actual;
    loupe.render(&actual, QPoint(), QRegion(), QWidget::RenderFlags());
    QPainter painter(&expected);
    paintFrames(painter, 80);
    paintCrossHair(painter, 80, kCross);
    painter.end();
    QCOMPARE(actual, expected);
}

void tst_MagnifierWidget::unevenImageIsStretched()
{
    const QImage source = noise(8, 20);
    MagnifierWidget loupe(nullptr);
    loupe.setSize(80);
    loupe.setOrigImage(source);
    const QImage image = painted(loupe);
    QCOMPARE(image.pixel(13, 13), source.pixel(1, 3));
    QCOMPARE(image.pixel(73, 61), source.pixel(7, 15));
}

void tst_MagnifierWidget::oddSizesHalveDownwards()
{
    MagnifierWidget loupe(nullptr);
    loupe.setSize(51);
    loupe.setCrossColor(kCross);
    const QImage image = painted(loupe);
    for (int offset = -1; offset <= 1; ++offset)
        QCOMPARE(image.pixelColor(10, 25 + offset), kCross);
    QCOMPARE(image.pixelColor(10, 23), QColor(Qt::magenta));
    QCOMPARE(image.pixelColor(10, 27), QColor(Qt::magenta));
}

void tst_MagnifierWidget::crossColorIsInvalidAtFirst()
{
    MagnifierWidget loupe(nullptr);
    loupe.setSize(80);
    QImage expected(80, 80, QImage::Format_RGB32);
    expected.fill(Qt::magenta);
    QPainter painter(&expected);
    paintFrames(painter, 80);
    paintCrossHair(painter, 80, QColor());
    painter.end();
    QCOMPARE(painted(loupe), expected);
}

void tst_MagnifierWidget::changesRepaint()
{
    struct Counter : QObject {
        int paints = 0;
        bool eventFilter(QObject* /*watched*/, QEvent* event) override
        {
            paints += event->type() == QEvent::UpdateRequest;
            return false;
        }
    } counter;
    MagnifierWidget loupe(nullptr);
    loupe.setSize(80);
    loupe.show();
    QVERIFY(QTest::qWaitForWindowExposed(&loupe));
    QCoreApplication::processEvents();
    loupe.installEventFilter(&counter);
    loupe.setOrigImage(noise(16, 16));
    QTRY_COMPARE(counter.paints, 1);
    loupe.setCrossColor(kCross);
    QTRY_COMPARE(counter.paints, 2);
    loupe.setSize(80);
    QTRY_COMPARE(counter.paints, 3);
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

void tst_MagnifierWidget::framesAndCrossFollowBothSides()
{
    MagnifierWidget widget(nullptr);
    widget.resize(100, 60);
    widget.setCrossColor(kCross);
    QImage expected(100, 60, QImage::Format_RGB32);
    expected.fill(Qt::magenta);
    QPainter painter(&expected);
    painter.setPen(Qt::black);
    painter.drawRect(0, 0, 99, 59);
    painter.setPen(Qt::white);
    painter.drawRect(1, 1, 97, 57);
    painter.setPen(QPen(QBrush(kCross), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawLine(3, 30, 96, 30);
    painter.drawLine(50, 3, 50, 56);
    painter.end();
    QCOMPARE(painted(widget), expected);
}

QTEST_MAIN(tst_MagnifierWidget)
#include "tst_MagnifierWidget.moc"
