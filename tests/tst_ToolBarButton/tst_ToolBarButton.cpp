// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "ToolBarButton.h"

#include <QApplication>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QtTest>
#include <functional>

namespace
{

constexpr QSize kSizePx(60, 26);
constexpr QRect kStrip(0, 5, 60, 7);

/// Counts how often a button is drawn, each time in another colour.
class CountingStyle : public QProxyStyle
{
public:
    CountingStyle()
        : QProxyStyle(QStyleFactory::create("Fusion"))
    {
    }
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override
    {
        if (element == CE_PushButton)
            painter->fillRect(option->rect, QColor::fromHsv(++count * 30 % 360, 255, 255));
        else
            QProxyStyle::drawControl(element, option, painter, widget);
    }
    mutable int count = 0;
};

/// A button in a shown window, as the window's pixels show it.
template <typename Button>
class Shown
{
public:
    Shown()
    {
        m_bar.setPalette(QPalette(Qt::white));
        m_bar.resize(kSizePx);
        button.setParent(&m_bar);
        button.setPalette(QApplication::palette());
        button.setFixedSize(kSizePx);
        button.setIcon(icon());
        m_bar.show();
        if (!QTest::qWaitForWindowExposed(&m_bar))
            qFatal("the window does not come");
        QApplication::processEvents();
    }
    QWidget& bar() { return m_bar; }
    QImage whole() { return part(QRect(QPoint(), kSizePx)); }
    QImage part(const QRect& area)
    {
        const qreal scale = m_bar.devicePixelRatioF();
        QImage image(kSizePx * scale, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::white);
        button.render(&image, area.topLeft(), area, QWidget::RenderFlags());
        return image;
    }

private:
    static QIcon icon()
    {
        QPixmap pixmap(16, 16);
        pixmap.fill(QColor(200, 60, 20, 128));
        return QIcon(pixmap);
    }
    QWidget m_bar;

public:
    Button button;
};

using Change = std::function<void(QPushButton& button)>;

void changeNothing(QPushButton& /*button*/) {}

} // namespace

Q_DECLARE_METATYPE(Change)

class tst_ToolBarButton : public BehaviourTest
{
    Q_OBJECT

private slots:
    void looksAsAnyButton_data();
    void looksAsAnyButton();
    void changedLookIsPainted_data();
    void changedLookIsPainted();
    void uncoveredPartIsCopied();
    void buttonThatAsksIsDrawnAnew();
    void buttonThatIsPartlyHiddenIsDrawnAnew();
    void changeWhileHiddenIsDrawn();
    void changeOfSizeIsDrawn();
};

void tst_ToolBarButton::looksAsAnyButton_data()
{
    QTest::addColumn<Change>("change");

    QTest::newRow("plain") << Change(changeNothing);
    QTest::newRow("checked") << Change([](QPushButton& button) {
        button.setCheckable(true);
        button.setChecked(true);
    });
    QTest::newRow("pressed") << Change([](QPushButton& button) { button.setDown(true); });
    QTest::newRow("disabled") << Change([](QPushButton& button) { button.setEnabled(false); });
    QTest::newRow("default") << Change([](QPushButton& button) { button.setDefault(true); });
    QTest::newRow("flat") << Change([](QPushButton& button) { button.setFlat(true); });
    QTest::newRow("text") << Change([](QPushButton& button) { button.setText("done"); });
    QTest::newRow("text in another font") << Change([](QPushButton& button) {
        button.setText("done");
        button.setFont(QFont("Serif", 7, QFont::Bold));
    });
    QTest::newRow("right to left") << Change([](QPushButton& button) {
        button.setText("done");
        button.setLayoutDirection(Qt::RightToLeft);
    });
    QTest::newRow("dark palette") << Change([](QPushButton& button) {
        button.setText("done");
        button.setPalette(QPalette(QColor(40, 40, 60)));
    });
    QTest::newRow("style sheet") << Change([](QPushButton& button) {
        button.setText("done");
        button.setStyleSheet("color: red; border: 2px solid rgba(0, 0, 255, 50%)");
    });
}

void tst_ToolBarButton::looksAsAnyButton()
{
    QFETCH(Change, change);
    Shown<QPushButton> any;
    Shown<ToolBarButton> ours;
    change(any.button);
    change(ours.button);
    QCOMPARE(ours.whole(), any.whole());
    QCOMPARE(ours.part(kStrip), any.part(kStrip));
}

void tst_ToolBarButton::changedLookIsPainted_data()
{
    looksAsAnyButton_data();
}

// The window paints what asks for it, and afterwards a part that was uncovered.
void tst_ToolBarButton::changedLookIsPainted()
{
    QFETCH(Change, change);
    Shown<QPushButton> any;
    Shown<ToolBarButton> ours;
    ours.whole();
    change(any.button);
    change(ours.button);
    QApplication::processEvents();
    ours.bar().repaint(kStrip);
    QCOMPARE(ours.part(kStrip), any.part(kStrip));
}

void tst_ToolBarButton::uncoveredPartIsCopied()
{
    CountingStyle style;
    Shown<ToolBarButton> shown;
    shown.button.setStyle(&style);
    QApplication::processEvents();
    const QImage before = shown.whole();
    const int drawn = style.count;
    QVERIFY(drawn > 0);
    for (int top = 0; top < kSizePx.height(); top += kStrip.height()) {
        const QRect strip(0, top, kSizePx.width(), qMin(kStrip.height(), kSizePx.height() - top));
        QCOMPARE(shown.part(strip).copy(strip), before.copy(strip));
        shown.bar().repaint(strip);
    }
    QCOMPARE(style.count, drawn);
}

// Each step of an animation, for which a button looks different although nothing of it changed.
void tst_ToolBarButton::buttonThatAsksIsDrawnAnew()
{
    CountingStyle style;
    Shown<ToolBarButton> shown;
    shown.button.setStyle(&style);
    shown.whole();
    for (int step = 0; step < 3; ++step) {
        const int drawn = style.count;
        const QImage before = shown.part(kStrip);
        shown.button.update();
        QApplication::processEvents();
        QCOMPARE(style.count, drawn + 1);
        QVERIFY(shown.part(kStrip) != before);
        QCOMPARE(style.count, drawn + 1);
    }
}

void tst_ToolBarButton::buttonThatIsPartlyHiddenIsDrawnAnew()
{
    CountingStyle style;
    Shown<ToolBarButton> shown;
    shown.button.setStyle(&style);
    shown.button.move(kSizePx.width() / 2, 0);
    QApplication::processEvents();
    const int drawn = style.count;
    shown.button.update();
    QApplication::processEvents();
    QCOMPARE(style.count, drawn + 1);
    shown.bar().repaint(kStrip);
    QCOMPARE(style.count, drawn + 1);
}

void tst_ToolBarButton::changeWhileHiddenIsDrawn()
{
    CountingStyle style;
    Shown<ToolBarButton> shown;
    shown.button.setStyle(&style);
    const QImage before = shown.part(kStrip);
    shown.button.hide();
    shown.button.setText("changed");
    shown.button.show();
    QVERIFY(shown.part(kStrip) != before);
}

void tst_ToolBarButton::changeOfSizeIsDrawn()
{
    Shown<QPushButton> any;
    Shown<ToolBarButton> ours;
    for (QPushButton* button : {&any.button, static_cast<QPushButton*>(&ours.button)})
        button->setFixedSize(kSizePx - QSize(20, 6));
    QCOMPARE(ours.part(kStrip), any.part(kStrip));
    QCOMPARE(ours.whole(), any.whole());
}

QTEST_MAIN(tst_ToolBarButton)
#include "tst_ToolBarButton.moc"
