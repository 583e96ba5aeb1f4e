// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTextEdit>

namespace
{

constexpr QSize kToolSizePx(30, 26);
constexpr QSize kDoneSizePx(60, 26);
constexpr QSize kSeparatorSizePx(3, 26);

/// What is written in the middle of a white button, its frame left aside.
QRect inkOf(QWidget* widget)
{
    constexpr int kFramePx = 3;
    const QImage image = widget->grab().toImage();
    QRect ink;
    for (int y = kFramePx; y < image.height() - kFramePx; ++y) {
        for (int x = kFramePx; x < image.width() - kFramePx; ++x) {
            if (qGray(image.pixel(x, y)) < 128)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

} // namespace

/// The tool bars in an application that has a style sheet.
class tst_ScreenCaptureWnd_application_styles : public BehaviourTest
{
    Q_OBJECT

private slots:
    void cleanup();
    void barsKeepTheirSizes_data() { styleSheets(); }
    void barsKeepTheirSizes();
    void theBarsOwnStyleSheetStays_data() { styleSheets(); }
    void theBarsOwnStyleSheetStays();
    void doneIsWrittenInFull_data() { styleSheets(); }
    void doneIsWrittenInFull();
    void theChosenToolIsMarked_data() { styleSheets(); }
    void theChosenToolIsMarked();
    void textHasTheChosenSize_data() { styleSheets(); }
    void textHasTheChosenSize();
    void withoutAStyleSheetTheWindowHasNone();

private:
    static void styleSheets();
    void captureWith(const QString& styleSheet);
    QPushButton* tool(int index) const { return m_tools.at(index); }

    QScopedPointer<CaptureProbe> m_capture;
    QList<QPushButton*> m_tools;
};

void tst_ScreenCaptureWnd_application_styles::styleSheets()
{
    QTest::addColumn<QString>("styleSheet");
    QTest::newRow("frames, padding and a font size")
        << "QPushButton { background: #444; color: white; border: 3px solid red; padding: 12px }"
           "QLabel { color: yellow } * { font-size: 20px }";
    QTest::newRow("sizes and margins for every widget")
        << "QWidget { background: #222; color: #eee; border: 1px solid #888; min-height: 40px;"
           "margin: 5px } QSlider::handle { background: green } QComboBox { background: black }";
    QTest::newRow("wide buttons") << "QPushButton { min-width: 90px; min-height: 32px }";
}

void tst_ScreenCaptureWnd_application_styles::cleanup()
{
    m_capture.reset();
    qApp->setStyleSheet(QString());
    BehaviourTest::cleanup();
}

void tst_ScreenCaptureWnd_application_styles::captureWith(const QString& styleSheet)
{
    qApp->setStyleSheet(styleSheet);
    m_capture.reset(new CaptureProbe);
    m_capture->window()->showFullDesktop(true);
    m_capture->drag(QPoint(20, 20), QPoint(600, 300));
    m_tools = m_capture->toolBar()->findChildren<QPushButton*>();
}

void tst_ScreenCaptureWnd_application_styles::barsKeepTheirSizes()
{
    QFETCH(QString, styleSheet);
    captureWith(styleSheet);
    for (int i = 0; i < m_tools.size(); ++i) {
        const bool last = i == m_tools.size() - 1;
        const bool redo = tool(i)->toolTip() == "redo";
        if (!redo)
            QCOMPARE(tool(i)->size(), last ? kDoneSizePx : kToolSizePx);
        QVERIFY(m_capture->toolBar()->rect().contains(tool(i)->geometry()));
    }
    QCOMPARE(m_capture->toolBar()->height(), 30);
    for (QLabel* separator : m_capture->toolBar()->findChildren<QLabel*>())
        QCOMPARE(separator->size(), kSeparatorSizePx);

    auto* subBar = m_capture->window()->findChild<QWidget*>("subToolBar");
    tool(1)->click();
    QCOMPARE(subBar->findChild<QComboBox*>()->size(), QSize(45, 26));
    tool(5)->click();
    for (QSlider* slider : subBar->findChildren<QSlider*>())
        QCOMPARE(slider->height(), 20);
    QVERIFY(subBar->height() <= 40);
}

void tst_ScreenCaptureWnd_application_styles::theBarsOwnStyleSheetStays()
{
    QFETCH(QString, styleSheet);
    captureWith(styleSheet);
    for (const char* name : {"mainToolBar", "subToolBar"})
        QCOMPARE(m_capture->window()->findChild<QWidget*>(name)->styleSheet(),
                 QString("background:rgba(255,255,255,100%)"));
}

void tst_ScreenCaptureWnd_application_styles::doneIsWrittenInFull()
{
    QFETCH(QString, styleSheet);
    captureWith(styleSheet);
    QPushButton* done = m_tools.last();
    done->setIcon(QIcon());
    const QRect ink = inkOf(done);
    const QFontMetrics metrics(done->font());
    QVERIFY(ink.width() >= metrics.tightBoundingRect("done").width() - 2);
    QVERIFY(ink.height() >= metrics.tightBoundingRect("done").height() - 2);
    // In the middle, with the icon's room beside it.
    QVERIFY(ink.width() <= kDoneSizePx.width() - 20);
    QVERIFY(qAbs(ink.center().x() - done->rect().center().x()) <= 3);
}

void tst_ScreenCaptureWnd_application_styles::theChosenToolIsMarked()
{
    QFETCH(QString, styleSheet);
    captureWith(styleSheet);
    const QImage before = tool(0)->grab().toImage();
    tool(0)->click();
    QVERIFY(tool(0)->isChecked());
    const QImage chosen = tool(0)->grab().toImage();
    QVERIFY(chosen != before);
    tool(1)->click();
    QVERIFY(tool(0)->grab().toImage() != chosen);
    QVERIFY(inkOf(tool(0)).isValid());
    QCOMPARE(tool(1)->size(), kToolSizePx);
}

void tst_ScreenCaptureWnd_application_styles::textHasTheChosenSize()
{
    QFETCH(QString, styleSheet);
    captureWith(styleSheet);
    tool(1)->click();
    auto* box = m_capture->window()->findChild<QComboBox*>();
    for (const char* size : {"22", "9"}) {
        box->setCurrentText(size);
        auto* text = m_capture->window()->findChild<QTextEdit*>();
        QCOMPARE(text->font().pointSize(), QString(size).toInt());
        QCOMPARE(box->size(), QSize(45, 26));
    }
}

void tst_ScreenCaptureWnd_application_styles::withoutAStyleSheetTheWindowHasNone()
{
    captureWith(QString());
    QCOMPARE(m_capture->window()->styleSheet(), QString());
    tool(1)->click();
    m_capture->window()->findChild<QComboBox*>()->setCurrentText("22");
    QCOMPARE(m_capture->window()->styleSheet(), QString());
    QCOMPARE(m_capture->window()->findChild<QTextEdit*>()->font().pointSize(), 22);
}

QTEST_MAIN(tst_ScreenCaptureWnd_application_styles)
#include "tst_ScreenCaptureWnd_application_styles.moc"
