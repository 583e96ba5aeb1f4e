// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "ScribbleArea.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTextEdit>
#include <QToolTip>

namespace
{

constexpr int kReadableContrast = 128;

/// Whether something dark is written on white.
bool isReadable(QWidget* widget)
{
    const QImage image = widget->grab().toImage();
    int lightest = 0;
    int darkest = 255;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            lightest = qMax(lightest, qGray(image.pixel(x, y)));
            darkest = qMin(darkest, qGray(image.pixel(x, y)));
        }
    }
    return lightest - darkest > kReadableContrast && lightest > 240;
}

int darkest(const QImage& image)
{
    int found = 255;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            found = qMin(found, qGray(image.pixel(x, y)));
    }
    return found;
}

QWidget* visibleToolTip()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("QTipLabel") && widget->isVisible())
            return widget;
    }
    return nullptr;
}

} // namespace

/// The white tool bars in an application with a dark theme.
class tst_ScreenCaptureWnd_dark_theme : public BehaviourTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void textsAreReadable();
    void toolTipsAreReadable();
    void whatCannotBePressedIsPale();
    void textIsTypedAsThePaletteShows();
};

void tst_ScreenCaptureWnd_dark_theme::initTestCase()
{
    QPalette dark(QColor(40, 40, 40), QColor(30, 30, 30));
    dark.setColor(QPalette::ToolTipText, Qt::white);
    dark.setColor(QPalette::ToolTipBase, Qt::black);
    QApplication::setPalette(dark);
    QToolTip::setPalette(dark);
    QVERIFY(qGray(dark.color(QPalette::ButtonText).rgb()) > kReadableContrast);
}

void tst_ScreenCaptureWnd_dark_theme::textsAreReadable()
{
    CaptureProbe capture;
    QWidget* subToolBar = capture.window()->findChild<QWidget*>("subToolBar");
    int texts = 0;
    for (QLabel* label : subToolBar->findChildren<QLabel*>()) {
        if (label->text().isEmpty())
            continue;
        QVERIFY(isReadable(label));
        ++texts;
    }
    QCOMPARE(texts, 1);
    QVERIFY(isReadable(subToolBar->findChild<QComboBox*>()));
    QPushButton* done = capture.toolBar()->findChildren<QPushButton*>().last();
    QCOMPARE(done->text(), QString("done"));
    done->setIcon(QIcon());
    QVERIFY(isReadable(done));
}

void tst_ScreenCaptureWnd_dark_theme::toolTipsAreReadable()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(QPoint(100, 100), QPoint(300, 300));
    QPushButton* pen = capture.toolBar()->findChildren<QPushButton*>().first();
    QVERIFY(pen->isVisible());
    QHelpEvent ask(QEvent::ToolTip, QPoint(5, 5), pen->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(pen, &ask);
    QTRY_VERIFY(visibleToolTip());
    QVERIFY(isReadable(visibleToolTip()));
    QToolTip::hideText();
}

void tst_ScreenCaptureWnd_dark_theme::whatCannotBePressedIsPale()
{
    CaptureProbe capture;
    QPushButton* redo = capture.toolBar()->findChildren<QPushButton*>().at(7);
    QCOMPARE(redo->toolTip(), QString("redo"));
    QVERIFY(!redo->isEnabled());
    const int pale = darkest(redo->grab().toImage());
    redo->setEnabled(true);
    QVERIFY(pale > darkest(redo->grab().toImage()) + 32);
}

// The theme's own text colour would not be seen on a white page.
void tst_ScreenCaptureWnd_dark_theme::textIsTypedAsThePaletteShows()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(QPoint(100, 100), QPoint(300, 300));
    capture.toolBar()->findChildren<QPushButton*>().at(1)->click();
    auto* canvas = capture.window()->findChild<ScribbleArea*>();
    QTest::mousePress(canvas, Qt::LeftButton, {}, QPoint(20, 20));
    QMouseEvent move(QEvent::MouseMove, QPoint(150, 90), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(canvas, &move);
    QTest::mouseRelease(canvas, Qt::LeftButton, {}, QPoint(150, 90));
    auto* text = canvas->findChild<QTextEdit*>();
    QTest::keyClicks(text, "HHH");
    QImage page(text->size(), QImage::Format_RGB32);
    page.fill(Qt::white);
    text->clearFocus();
    text->render(&page, QPoint(), QRegion(), QWidget::DrawChildren);
    QVERIFY(darkest(page) < 64);
}

QTEST_MAIN(tst_ScreenCaptureWnd_dark_theme)
#include "tst_ScreenCaptureWnd_dark_theme.moc"
