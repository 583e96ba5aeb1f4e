// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "PenWidthWidget.h"
#include "Pictures.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QSlider>
#include <QtTest>

using Widths = QList<int>;

Q_DECLARE_METATYPE(QSlider::SliderAction)

namespace
{

const QColor kGray(160, 160, 164);
const QColor kBlue(0, 0, 255);

QSlider* sliderOf(const PenWidthWidget& picker)
{
    return picker.findChild<QSlider*>();
}

Widths announced(const QSignalSpy& spy)
{
    Widths widths;
    for (const QList<QVariant>& arguments : spy)
        widths << arguments.at(0).toInt();
    return widths;
}

} // namespace

class tst_PenWidthWidget : public BehaviourTest
{
    Q_OBJECT

private slots:
    void isAPlainChildOfFixedSize();
    void metaObjectHasSignalAndSlot();
    void sliderHasItsSettings();
    void setWidthAnnounces_data();
    void setWidthAnnounces();
    void changedWidthIsSetWhenItIsAnnounced();
    void sliderAnnouncesEachValueOnce();
    void pageStepIsFive_data();
    void pageStepIsFive();
    void paintsASquareOfTheWidth_data();
    void paintsASquareOfTheWidth();
    void previewIsPaintedFromTheSlider();
    void repaintsAlsoWhenNothingChanges();
};

void tst_PenWidthWidget::isAPlainChildOfFixedSize()
{
    QWidget parent;
    PenWidthWidget picker(&parent);
    QCOMPARE(picker.parentWidget(), &parent);
    QVERIFY(!picker.isWindow());
    QCOMPARE(picker.size(), QSize(101, 38));
    QCOMPARE(picker.minimumSize(), QSize(101, 38));
    QCOMPARE(picker.maximumSize(), QSize(101, 38));
}

void tst_PenWidthWidget::metaObjectHasSignalAndSlot()
{
    const QMetaObject& meta = PenWidthWidget::staticMetaObject;
    QCOMPARE(meta.className(), "PenWidthWidget");
    QCOMPARE(meta.methodCount(), meta.methodOffset() + 2);
    const QMetaMethod signal = meta.method(meta.methodOffset());
    QCOMPARE(signal.methodSignature(), QByteArray("currentWidthChanged(int)"));
    QCOMPARE(signal.methodType(), QMetaMethod::Signal);
    const QMetaMethod slot = meta.method(meta.methodOffset() + 1);
    QCOMPARE(slot.methodSignature(), QByteArray("setWidth(int)"));
    QCOMPARE(slot.methodType(), QMetaMethod::Slot);
}

void tst_PenWidthWidget::sliderHasItsSettings()
{
    PenWidthWidget picker(nullptr);
    QCOMPARE(picker.findChildren<QWidget*>().size(), 1);
    const QSlider* slider = sliderOf(picker);
    QCOMPARE(slider->parentWidget(), &picker);
    QCOMPARE(slider->orientation(), Qt::Horizontal);
    QCOMPARE(slider->minimum(), 1);
    QCOMPARE(slider->maximum(), 30);
    QCOMPARE(slider->singleStep(), 1);
    QCOMPARE(slider->pageStep(), 5);
    QCOMPARE(slider->value(), 1);
    QCOMPARE(slider->geometry(), QRect(3, 9, 60, 20));
    QVERIFY(!slider->accessibleName().isEmpty());
}

void tst_PenWidthWidget::setWidthAnnounces_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("value");
    QTest::addColumn<Widths>("announcements");
    QTest::newRow("a change twice") << 10 << 20 << 20 << Widths{20, 20};
    QTest::newRow("the same once") << 10 << 10 << 10 << Widths{10};
    QTest::newRow("too wide: the slider's value, then the argument")
        << 10 << 50 << 30 << Widths{30, 50};
    QTest::newRow("too wide for a slider at its end") << 30 << 50 << 30 << Widths{50};
    QTest::newRow("zero") << 10 << 0 << 1 << Widths{1, 0};
    QTest::newRow("negative for a slider at its end") << 1 << -7 << 1 << Widths{-7};
    QTest::newRow("narrowest") << 10 << 1 << 1 << Widths{1, 1};
    QTest::newRow("widest") << 10 << 30 << 30 << Widths{30, 30};
}

void tst_PenWidthWidget::setWidthAnnounces()
{
    QFETCH(int, before);
    QFETCH(int, width);
    QFETCH(int, value);
    QFETCH(Widths, announcements);
    PenWidthWidget picker(nullptr);
    picker.setWidth(before);
    QSignalSpy spy(&picker, &PenWidthWidget::currentWidthChanged);
    picker.setWidth(width);
    QCOMPARE(sliderOf(picker)->value(), value);
    QCOMPARE(announced(spy), announcements);
}

void tst_PenWidthWidget::changedWidthIsSetWhenItIsAnnounced()
{
    PenWidthWidget picker(nullptr);
    Widths seen;
    connect(&picker, &PenWidthWidget::currentWidthChanged, this,
            [&] { seen << sliderOf(picker)->value(); });
    picker.setWidth(17);
    QCOMPARE(seen, Widths({17, 17}));
}

void tst_PenWidthWidget::sliderAnnouncesEachValueOnce()
{
    PenWidthWidget picker(nullptr);
    QSignalSpy spy(&picker, &PenWidthWidget::currentWidthChanged);
    for (const int value : {2, 3, 4, 4, 3})
        sliderOf(picker)->setSliderPosition(value);
    QCOMPARE(announced(spy), Widths({2, 3, 4, 3}));
}

void tst_PenWidthWidget::pageStepIsFive_data()
{
    QTest::addColumn<QSlider::SliderAction>("action");
    QTest::addColumn<int>("value");
    QTest::newRow("step up") << QSlider::SliderSingleStepAdd << 11;
    QTest::newRow("step down") << QSlider::SliderSingleStepSub << 9;
    QTest::newRow("page up") << QSlider::SliderPageStepAdd << 15;
    QTest::newRow("page down") << QSlider::SliderPageStepSub << 5;
}

void tst_PenWidthWidget::pageStepIsFive()
{
    QFETCH(QSlider::SliderAction, action);
    QFETCH(int, value);
    PenWidthWidget picker(nullptr);
    picker.setWidth(10);
    QSignalSpy spy(&picker, &PenWidthWidget::currentWidthChanged);
    sliderOf(picker)->triggerAction(action);
    QCOMPARE(announced(spy), Widths({value}));
}

void tst_PenWidthWidget::paintsASquareOfTheWidth_data()
{
    QTest::addColumn<int>("width");
    for (int width = 1; width <= 30; ++width)
        QTest::addRow("%d", width) << width;
}

// The box's centre is (81, 18): an even side has one pixel more to the right and below of it.
void tst_PenWidthWidget::paintsASquareOfTheWidth()
{
    QFETCH(int, width);
    PenWidthWidget picker(nullptr);
    picker.setWidth(width);
    PixelDrawing expected(QSize(101, 38));
    expected.frame(66, 3, 97, 34, kGray);
    const int before = (width - 1) / 2;
    expected.fill(81 - before, 18 - before, width, width, kBlue);
    QCOMPARE(painted(picker, QWidget::RenderFlags()), expected.image());
}

void tst_PenWidthWidget::previewIsPaintedFromTheSlider()
{
    PenWidthWidget picker(nullptr);
    sliderOf(picker)->blockSignals(true);
    sliderOf(picker)->setValue(9);
    const QImage image = painted(picker, QWidget::RenderFlags());
    QCOMPARE(image.pixelColor(77, 14), kBlue);
    QCOMPARE(image.pixelColor(85, 22), kBlue);
    QCOMPARE(image.pixelColor(76, 14), QColor(Qt::magenta));
    QCOMPARE(image.pixelColor(86, 22), QColor(Qt::magenta));
}

void tst_PenWidthWidget::repaintsAlsoWhenNothingChanges()
{
    PenWidthWidget picker(nullptr);
    picker.setWidth(10);
    picker.show();
    QVERIFY(QTest::qWaitForWindowExposed(&picker));
    QCoreApplication::processEvents();
    PaintCounter paints(picker);
    picker.setWidth(10);
    QTRY_COMPARE(paints.count, 1);
    QCOMPARE(paints.area, QRegion(picker.rect()));
    sliderOf(picker)->setValue(11);
    QTRY_COMPARE(paints.count, 2);
    QCOMPARE(paints.area, QRegion(picker.rect()));
}

QTEST_MAIN(tst_PenWidthWidget)
#include "tst_PenWidthWidget.moc"
