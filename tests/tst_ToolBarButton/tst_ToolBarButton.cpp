// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "ToolBarButton.h"

#include <QApplication>
#include <QBackingStore>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QtTest>
#include <functional>

namespace
{

constexpr QSize kSizePx(60, 26);
constexpr int kStripHeightPx = 7;
constexpr QRect kStrip(0, 5, 60, kStripHeightPx);

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

/// A button in a shown window, and the pixels of the window.
template <typename Button>
class Shown
{
public:
    explicit Shown(const QColor& background = Qt::white)
    {
        m_bar.setPalette(QPalette(background));
        m_bar.resize(kSizePx);
        button.setParent(&m_bar);
        button.setPalette(QApplication::palette());
        button.setFixedSize(kSizePx);
        button.setIcon(icon());
        m_bar.show();
        if (!QTest::qWaitForWindowExposed(&m_bar))
            qFatal("the window does not come");
        paintWhatAsked();
    }
    void paintWhatAsked() const { QApplication::processEvents(); }
    void uncover(const QRect& area) { m_bar.repaint(area); }
    void uncoverInStrips()
    {
        for (int top = 0; top < kSizePx.height(); top += kStripHeightPx)
            uncover(QRect(0, top, kSizePx.width(), kStripHeightPx));
    }
    QImage pixels() const
    {
        const auto* window = dynamic_cast<QImage*>(m_bar.backingStore()->paintDevice());
        return window->copy(QRect(QPoint(), kSizePx * window->devicePixelRatio()));
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
    void looksAsAnyButtonFromRightToLeft();
    void looksAsAnyButtonOnAnyBackground();
    void uncoveredPartIsCopied();
    void buttonThatAsksIsDrawnAnew();
    void buttonThatIsPartlyCoveredIsDrawnAnew();
    void changeWhileHiddenIsDrawn();
    void changeOfSizeIsDrawn();
    void grabbedButtonLeavesTheWindowAsItIs();
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
    any.paintWhatAsked();
    QCOMPARE(ours.pixels(), any.pixels());
    ours.uncoverInStrips();
    QCOMPARE(ours.pixels(), any.pixels());
}

void tst_ToolBarButton::looksAsAnyButtonFromRightToLeft()
{
    QApplication::setLayoutDirection(Qt::RightToLeft);
    {
        Shown<QPushButton> any;
        Shown<ToolBarButton> ours;
        any.button.setText("done");
        ours.button.setText("done");
        any.paintWhatAsked();
        ours.uncoverInStrips();
        QCOMPARE(ours.pixels(), any.pixels());
    }
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

void tst_ToolBarButton::looksAsAnyButtonOnAnyBackground()
{
    const Shown<QPushButton> any(QColor(90, 140, 30));
    Shown<ToolBarButton> ours(QColor(90, 140, 30));
    ours.uncoverInStrips();
    QCOMPARE(ours.pixels(), any.pixels());
}

void tst_ToolBarButton::uncoveredPartIsCopied()
{
    CountingStyle style;
    Shown<ToolBarButton> shown;
    shown.button.setStyle(&style);
    shown.paintWhatAsked();
    const QImage before = shown.pixels();
    const int drawn = style.count;
    QVERIFY(drawn > 0);
    shown.uncoverInStrips();
    QCOMPARE(shown.pixels(), before);
    QCOMPARE(style.count, drawn);
}

// Each step of an animation, for which a button looks different although nothing of it changed.
void tst_ToolBarButton::buttonThatAsksIsDrawnAnew()
{
    CountingStyle style;
    Shown<ToolBarButton> shown;
    shown.button.setStyle(&style);
    shown.paintWhatAsked();
    for (int step = 0; step < 3; ++step) {
        const int drawn = style.count;
        const QImage before = shown.pixels();
        shown.button.update();
        shown.paintWhatAsked();
        QCOMPARE(style.count, drawn + 1);
        const QImage after = shown.pixels();
        QVERIFY(after != before);
        shown.uncoverInStrips();
        QCOMPARE(shown.pixels(), after);
    }
}

void tst_ToolBarButton::buttonThatIsPartlyCoveredIsDrawnAnew()
{
    Shown<QPushButton> any;
    Shown<ToolBarButton> ours;
    QWidget cover(ours.button.parentWidget());
    cover.setPalette(QPalette(Qt::red));
    cover.setAutoFillBackground(true);
    cover.setGeometry(kSizePx.width() / 2, 0, kSizePx.width(), kSizePx.height());
    cover.show();
    ours.paintWhatAsked();
    any.button.setText("done");
    ours.button.setText("done");
    any.paintWhatAsked();
    const QRect seen(QPoint(), QSize(kSizePx.width() / 2, kSizePx.height()));
    QCOMPARE(ours.pixels().copy(seen), any.pixels().copy(seen));
    QCOMPARE(ours.pixels().pixelColor(50, 10), QColor(Qt::red));
    cover.hide();
    ours.paintWhatAsked();
    QCOMPARE(ours.pixels(), any.pixels());
}

void tst_ToolBarButton::changeWhileHiddenIsDrawn()
{
    Shown<QPushButton> any;
    Shown<ToolBarButton> ours;
    for (QPushButton* button : {&any.button, static_cast<QPushButton*>(&ours.button)}) {
        button->hide();
        button->setText("done");
        button->show();
    }
    any.paintWhatAsked();
    ours.uncoverInStrips();
    QCOMPARE(ours.pixels(), any.pixels());
}

void tst_ToolBarButton::changeOfSizeIsDrawn()
{
    Shown<QPushButton> any;
    Shown<ToolBarButton> ours;
    for (QPushButton* button : {&any.button, static_cast<QPushButton*>(&ours.button)})
        button->setFixedSize(kSizePx - QSize(20, 6));
    any.paintWhatAsked();
    ours.uncoverInStrips();
    QCOMPARE(ours.pixels(), any.pixels());
}

// The picture that is grabbed has nothing behind the button's round corners.
void tst_ToolBarButton::grabbedButtonLeavesTheWindowAsItIs()
{
    Shown<ToolBarButton> shown(QColor(90, 140, 30));
    const QImage before = shown.pixels();
    QPixmap transparent(kSizePx);
    transparent.fill(Qt::transparent);
    shown.button.render(&transparent, QPoint(), QRegion(), QWidget::RenderFlags());
    shown.uncoverInStrips();
    QCOMPARE(shown.pixels(), before);
}

QTEST_MAIN(tst_ToolBarButton)
#include "tst_ToolBarButton.moc"
