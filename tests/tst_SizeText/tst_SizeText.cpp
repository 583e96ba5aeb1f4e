// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "SizeText.h"

#include <QPainter>
#include <QtTest>
#include <climits>
#include <functional>

namespace
{

constexpr QRect kArea(7, 11, 100, 28);
const QSize kSizes[] = {{0, 0},     {1, 1},       {9, 10},      {23, 45},      {100, 67},
                        {89, 1234}, {1920, 1080}, {7680, 4320}, {98765, 43210}};

using Drawing = std::function<void(QPainter& painter, const QSize& size)>;
using State = std::function<void(QPainter& painter)>;

QImage drawn(const QFont& font, const QSize& size, const QTransform& transform,
             const Drawing& drawing)
{
    QImage image(400, 120, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setTransform(transform);
    painter.setPen(Qt::white);
    painter.setFont(font);
    drawing(painter, size);
    return image;
}

void drawLaidOut(QPainter& painter, const QSize& size)
{
    painter.drawText(kArea, Qt::AlignCenter,
                     QString("%1 x %2").arg(size.width()).arg(size.height()));
}

} // namespace

Q_DECLARE_METATYPE(State)

class tst_SizeText : public BehaviourTest
{
    Q_OBJECT

private slots:
    void looksAsLaidOutText_data();
    void looksAsLaidOutText();
    void longestSizeIsDrawn();
    void followsThePaintersFont();
    void followsThePaintersState_data();
    void followsThePaintersState();
    void followsTheDevicesResolution();
};

void tst_SizeText::looksAsLaidOutText_data()
{
    QTest::addColumn<QFont>("font");
    QTest::addColumn<QTransform>("transform");

    const QTransform none;
    QFont stretched("Courier New", 14);
    stretched.setLetterSpacing(QFont::AbsoluteSpacing, 3);
    QFont unhinted("Courier New", 14);
    unhinted.setHintingPreference(QFont::PreferNoHinting);
    QFont underlined("Courier New", 14);
    underlined.setUnderline(true);
    QTest::newRow("equally wide") << QFont("Courier New", 14) << none;
    QTest::newRow("bold") << QFont("Courier New", 14, QFont::Bold) << none;
    QTest::newRow("slanted") << QFont("Courier New", 14, -1, true) << none;
    QTest::newRow("underlined") << underlined << none;
    QTest::newRow("another size") << QFont("Courier New", 11) << none;
    QTest::newRow("stretched") << stretched << none;
    QTest::newRow("unhinted") << unhinted << none;
    QTest::newRow("digits of other widths") << QFont("Sans", 14) << none;
    QTest::newRow("serif") << QFont("Serif", 13) << none;
    QTest::newRow("moved") << QFont("Courier New", 14) << QTransform::fromTranslate(30, 40);
    QTest::newRow("moved by a part of a pixel")
        << QFont("Courier New", 14) << QTransform::fromTranslate(0.4, 0.7);
    QTest::newRow("scaled") << QFont("Courier New", 14) << QTransform::fromScale(1.5, 1.5);
    QTest::newRow("turned") << QFont("Courier New", 14) << QTransform().translate(50, 0).rotate(20);
}

void tst_SizeText::looksAsLaidOutText()
{
    QFETCH(QFont, font);
    QFETCH(QTransform, transform);
    SizeText text;
    for (const QSize& size : kSizes) {
        const QImage expected = drawn(font, size, transform, drawLaidOut);
        const QImage actual = drawn(font, size, transform, [&text](QPainter& painter, QSize s) {
            text.draw(painter, kArea, s);
        });
        QVERIFY(expected != drawn(font, size, transform, [](QPainter&, QSize) {}));
        QCOMPARE(actual, expected);
    }
}

void tst_SizeText::longestSizeIsDrawn()
{
    const QFont font("Courier New", 6);
    SizeText text;
    for (const QSize& size : {QSize(INT_MAX, INT_MAX), QSize(INT_MIN, INT_MIN), QSize(-1, 5)}) {
        const QImage expected = drawn(font, size, QTransform(), drawLaidOut);
        const QImage actual = drawn(font, size, QTransform(), [&text](QPainter& painter, QSize s) {
            text.draw(painter, kArea, s);
        });
        QCOMPARE(actual, expected);
    }
}

void tst_SizeText::followsThePaintersFont()
{
    SizeText text;
    const QSize size(640, 480);
    for (const QFont& font : {QFont("Courier New", 14), QFont("Sans", 12), QFont("Courier New", 9),
                              QFont("Courier New", 14), QFont()}) {
        const QImage actual = drawn(font, size, QTransform(), [&text](QPainter& painter, QSize s) {
            text.draw(painter, kArea, s);
        });
        QCOMPARE(actual, drawn(font, size, QTransform(), drawLaidOut));
    }
}

void tst_SizeText::followsThePaintersState_data()
{
    QTest::addColumn<State>("state");

    QTest::newRow("pen") << State([](QPainter& painter) { painter.setPen(QColor(200, 30, 90)); });
    QTest::newRow("translucent pen")
        << State([](QPainter& painter) { painter.setPen(QColor(0, 255, 0, 128)); });
    QTest::newRow("right to left")
        << State([](QPainter& painter) { painter.setLayoutDirection(Qt::RightToLeft); });
    // Cuts off what the area does not.
    QTest::newRow("clip") << State(
        [](QPainter& painter) { painter.setClipRect(QRect(30, 0, 20, 25)); });
}

void tst_SizeText::followsThePaintersState()
{
    QFETCH(State, state);
    SizeText text;
    for (const QSize& size : kSizes) {
        const auto inState = [&](const Drawing& drawing) {
            return drawn(QFont("Courier New", 14), size, QTransform(),
                         [&](QPainter& painter, const QSize& s) {
                             state(painter);
                             drawing(painter, s);
                             painter.fillRect(QRect(45, 0, 2, 120), Qt::red);
                         });
        };
        const QImage actual =
            inState([&text](QPainter& painter, QSize s) { text.draw(painter, kArea, s); });
        QCOMPARE(actual, inState(drawLaidOut));
    }
}

void tst_SizeText::followsTheDevicesResolution()
{
    SizeText text;
    const auto onDevice = [](int dotsPerMeter, const Drawing& drawing) {
        QImage image(400, 120, QImage::Format_ARGB32_Premultiplied);
        image.setDotsPerMeterX(dotsPerMeter);
        image.setDotsPerMeterY(dotsPerMeter);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.setPen(Qt::white);
        painter.setFont(QFont("Courier New", 9));
        drawing(painter, QSize(64, 48));
        return image;
    };
    constexpr int kDotsPerMeter[] = {3780, 5669, 3780};
    for (const int dotsPerMeter : kDotsPerMeter) {
        const QImage actual = onDevice(
            dotsPerMeter, [&text](QPainter& painter, QSize s) { text.draw(painter, kArea, s); });
        QCOMPARE(actual, onDevice(dotsPerMeter, drawLaidOut));
    }
    QVERIFY(onDevice(kDotsPerMeter[0], drawLaidOut) != onDevice(kDotsPerMeter[1], drawLaidOut));
}

QTEST_MAIN(tst_SizeText)
#include "tst_SizeText.moc"
