// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "PenWidthWidget.h"
#include "Pictures.h"

#include <QMetaMethod>
#include <QSlider>
#include <QtTest>

using Widths = QList<int>;

class tst_PenWidthWidget : public BehaviourTest
{
    Q_OBJECT

private slots:
    void isAPlainChildOfFixedSize();
    void metaObjectHasSignalAndSlot();
    void sliderHasItsSettings();
    void setWidthAnnounces_data();
    void setWidthAnnounces();
    void sliderAnnouncesEachValueOnce();
    void paintsASquareOfTheWidth();
    void repaintsAlsoWhenNothingChanges();

private:
    /// Keeps what is announced. The slider has its value by then.
    Widths m_announced;
    void listenTo(const PenWidthWidget& picker)
    {
        m_announced.clear();
        connect(&picker, &PenWidthWidget::currentWidthChanged, this, [&](int width) {
            m_announced << width;
            QCOMPARE(picker.findChild<QSlider*>()->value(), qBound(1, width, 30));
        });
    }
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
    const QSlider* slider = picker.findChild<QSlider*>();
    QCOMPARE(slider->parentWidget(), &picker);
    QCOMPARE(slider->orientation(), Qt::Horizontal);
    QCOMPARE(slider->minimum(), 1);
    QCOMPARE(slider->maximum(), 30);
    QCOMPARE(slider->singleStep(), 1);
    QCOMPARE(slider->pageStep(), 5);
    QCOMPARE(slider->value(), 1);
    QCOMPARE(slider->geometry(), QRect(3, 9, 60, 20));
    QCOMPARE(slider->accessibleName(), QString("Pen width"));
    // A click on it leaves the keys to the text that is typed.
    QCOMPARE(slider->focusPolicy(), Qt::TabFocus);
}

void tst_PenWidthWidget::setWidthAnnounces_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("width");
    QTest::addColumn<Widths>("announcements");
    QTest::newRow("a change twice") << 10 << 20 << Widths{20, 20};
    QTest::newRow("the same once") << 10 << 10 << Widths{10};
    QTest::newRow("too wide: the slider's value, then the argument") << 10 << 50 << Widths{30, 50};
    QTest::newRow("too wide for a slider at its end") << 30 << 50 << Widths{50};
    QTest::newRow("zero") << 10 << 0 << Widths{1, 0};
    QTest::newRow("negative for a slider at its end") << 1 << -7 << Widths{-7};
}

void tst_PenWidthWidget::setWidthAnnounces()
{
    QFETCH(int, before);
    QFETCH(int, width);
    PenWidthWidget picker(nullptr);
    picker.setWidth(before);
    listenTo(picker);
    picker.setWidth(width);
    QTEST(m_announced, "announcements");
}

void tst_PenWidthWidget::sliderAnnouncesEachValueOnce()
{
    PenWidthWidget picker(nullptr);
    listenTo(picker);
    for (const int value : {2, 3, 4, 4, 3})
        picker.findChild<QSlider*>()->setSliderPosition(value);
    QCOMPARE(m_announced, Widths({2, 3, 4, 3}));
}

// The box's centre is (81, 18): an even side has one pixel more to the right and below of it. What
// the slider shows is painted, announced or not.
void tst_PenWidthWidget::paintsASquareOfTheWidth()
{
    PenWidthWidget picker(nullptr);
    picker.findChild<QSlider*>()->blockSignals(true);
    for (int width = 1; width <= 30; ++width) {
        picker.findChild<QSlider*>()->setValue(width);
        PixelDrawing expected(QSize(101, 38));
        expected.frame(66, 3, 97, 34, QColor(160, 160, 164));
        const int before = (width - 1) / 2;
        expected.fill(81 - before, 18 - before, width, width, QColor(0, 0, 255));
        QCOMPARE(painted(picker, QWidget::RenderFlags()), expected.image());
    }
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
    picker.findChild<QSlider*>()->setValue(11);
    QTRY_COMPARE(paints.count, 2);
    QCOMPARE(paints.area, QRegion(picker.rect()));
}

QTEST_MAIN(tst_PenWidthWidget)
#include "tst_PenWidthWidget.moc"
