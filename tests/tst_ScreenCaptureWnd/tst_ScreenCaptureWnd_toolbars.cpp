// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"
#include "Pictures.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QIcon>
#include <QRegularExpression>
#include <QSet>
#include <QToolTip>
#include <QTranslator>

namespace
{

const QRect kRegion(QPoint(300, 100), QPoint(699, 299));
constexpr QSize kToolSizePx(30, 26);
constexpr QSize kDoneSizePx(60, 26);
constexpr QSize kFontBoxSizePx(45, 26);
constexpr QSize kSeparatorSizePx(3, 26);
constexpr QSize kLayoutDecides(-1, -1);
constexpr int kReadableContrast = 128;

QImage iconFile(const QString& name)
{
    return QPixmap(":/scribble/" + name + ".png").toImage();
}

bool hasFixedSize(const QWidget* widget, const QSize& size)
{
    return widget->minimumSize() == size && widget->maximumSize() == size;
}

QString accessibleName(QWidget* widget)
{
    return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
}

/// Translates every text of the classes that it is asked for by putting it into brackets.
class Brackets : public QTranslator
{
public:
    QString translate(const char* context, const char* text, const char* /*disambiguation*/,
                      int /*n*/) const override
    {
        const QString name(context);
        if (name != "ScreenCaptureWnd" && name != "PenWidthWidget")
            return {};
        return QString("[%1]").arg(text);
    }
    bool isEmpty() const override { return false; }
};

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

/// The darkest and the lightest grey of a picture.
QPair<int, int> greys(const QImage& image)
{
    QPair<int, int> found(255, 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            found.first = qMin(found.first, qGray(image.pixel(x, y)));
            found.second = qMax(found.second, qGray(image.pixel(x, y)));
        }
    }
    return found;
}

/// Whether something dark is written on white.
bool isReadable(QWidget* widget)
{
    const auto [darkest, lightest] = greys(widget->grab().toImage());
    return lightest - darkest > kReadableContrast && lightest > 240;
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

/// What stands in the two tool bars and how it looks, also in an application with a style sheet or
/// with a dark theme.
class tst_ScreenCaptureWnd_toolbars : public CaptureTest
{
    Q_OBJECT

private slots:
    void cleanup();
    void barsAreHiddenWhiteChildren_data();
    void barsAreHiddenWhiteChildren();
    void barsHoldTheirItemsInARow();
    void mainBarItem_data();
    void mainBarItem();
    void separatorsShowTheLine();
    void redoHasTheSizeThatTheLayoutGives();
    void doneIsTheOnlyDefaultButton();
    void fontSizesAreOffered();
    void blurPanelHasALabelAndASlider();
    void everyConnectionIsMade();
    void commandsDoWhatTheirSlotsDo_data();
    void commandsDoWhatTheirSlotsDo();
    void everyToolHasAnIconOfItsOwn();
    void everyControlHasATranslatedName();

    void barsKeepTheirSizesUnderAStyleSheet_data();
    void barsKeepTheirSizesUnderAStyleSheet();
    void withoutAStyleSheetTheWindowHasNone();

    void textsAreReadableInADarkTheme();
    void toolTipsAreReadableInADarkTheme();
    void whatCannotBePressedIsPaleInADarkTheme();
    void textIsTypedAsThePaletteShowsInADarkTheme();

private:
    /// Begins a capture in an application with a dark theme.
    void restartInTheDark();
};

void tst_ScreenCaptureWnd_toolbars::cleanup()
{
    CaptureTest::cleanup();
    qApp->setStyleSheet(QString());
    QApplication::setPalette(QPalette());
    QToolTip::setPalette(QPalette());
}

void tst_ScreenCaptureWnd_toolbars::barsAreHiddenWhiteChildren_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("main") << "mainToolBar";
    QTest::newRow("sub") << "subToolBar";
}

void tst_ScreenCaptureWnd_toolbars::barsAreHiddenWhiteChildren()
{
    QFETCH(QString, name);
    auto* bar = window()->findChild<QWidget*>(name);
    QCOMPARE(bar->parentWidget(), window());
    QCOMPARE(bar->metaObject()->className(), "QWidget");
    QVERIFY(bar->isHidden());
    QCOMPARE(bar->styleSheet(), QString("background:rgba(255,255,255,100%)"));
    // Opaque, so that the window beneath does not paint it with each move of the region.
    QVERIFY(bar->autoFillBackground());
    QVERIFY(bar->testAttribute(Qt::WA_SetCursor));
    QCOMPARE(bar->cursor().shape(), Qt::ArrowCursor);
    // A press between the buttons is no press on the window.
    m_capture->drag(kRegion);
    bar->show();
    QTest::mouseClick(bar, Qt::RightButton, {}, QPoint(0, 0));
    QTest::mouseDClick(bar, Qt::LeftButton, {}, QPoint(0, 0));
    QVERIFY(window()->isVisible());
    QVERIFY(m_capture->region()->isVisible());
}

void tst_ScreenCaptureWnd_toolbars::barsHoldTheirItemsInARow()
{
    QWidget* const mainBar = m_capture->mainBar();
    QWidget* const subBar = m_capture->subBar();
    QWidget other;
    for (const QWidget* bar : {mainBar, subBar}) {
        const auto* layout = qobject_cast<QHBoxLayout*>(bar->layout());
        QVERIFY(layout);
        QCOMPARE(layout->count(), bar == mainBar ? int(MainItemCount) : int(SubItemCount));
        const int margin = bar == mainBar ? 2 : 0;
        QCOMPARE(layout->contentsMargins(), QMargins(margin, margin, margin, margin));
        QCOMPARE(layout->spacing(), QHBoxLayout(&other).spacing());
        for (int i = 0; i < layout->count(); ++i) {
            QCOMPARE(layout->stretch(i), 0);
            QCOMPARE(layout->itemAt(i)->widget()->parentWidget(), bar);
        }
        QCOMPARE(bar->maximumWidth(), QWIDGETSIZE_MAX);
    }
    QCOMPARE(mainBar->minimumHeight(), 30);
    QCOMPARE(mainBar->maximumHeight(), 30);
    QCOMPARE(subBar->minimumSize(), QSize(0, 0));
    QCOMPARE(subBar->maximumHeight(), QWIDGETSIZE_MAX);
    const char* const subBarClasses[] = {"QLabel", "QComboBox", "PenWidthWidget",
                                         "QLabel", "QWidget",   "ColorWidget"};
    for (int i = 0; i < SubItemCount; ++i)
        QCOMPARE(m_capture->at(SubItem(i))->metaObject()->className(), subBarClasses[i]);
}

void tst_ScreenCaptureWnd_toolbars::mainBarItem_data()
{
    QTest::addColumn<MainItem>("item");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("checkable");
    QTest::addColumn<QKeySequence>("shortcut");

    const QKeySequence none;
    const auto row = [](const char* icon, MainItem item, const char* toolTip, const QSize& size,
                        bool checkable, const QKeySequence& shortcut) {
        QTest::newRow(icon) << item << QString() << toolTip << size << checkable << shortcut;
    };
    row("pen", Scribble, "scribble", kToolSizePx, true, none);
    row("text", Text, "text", kToolSizePx, true, none);
    row("arrow", Arrow, "Arrow", kToolSizePx, true, none);
    row("rect", Rectangle, "Rectangle", kToolSizePx, true, none);
    row("circle", Ellipse, "Ellipse", kToolSizePx, true, none);
    row("mosaic", Mosaic, "Mosaic", kToolSizePx, true, none);
    row("undo", Undo, "undo", kToolSizePx, false, QKeySequence::Undo);
    row("redo", Redo, "redo", kLayoutDecides, false, QKeySequence::Redo);
    row("save", Save, "save", kToolSizePx, false, none);
    row("close", Close, "close", kToolSizePx, false, none);
    QTest::newRow("done") << Done << "done" << QString() << kDoneSizePx << false << none;
}

void tst_ScreenCaptureWnd_toolbars::mainBarItem()
{
    QFETCH(MainItem, item);
    QFETCH(QString, text);
    QFETCH(QString, toolTip);
    QFETCH(QSize, size);
    QFETCH(bool, checkable);
    QFETCH(QKeySequence, shortcut);
    const QPushButton* button = m_capture->button(item);
    QVERIFY(button);
    QCOMPARE(button->metaObject()->className(), "QPushButton");
    const QImage icon = iconFile(QTest::currentDataTag());
    QVERIFY(!icon.isNull());
    QCOMPARE(button->icon().pixmap(16, 16).toImage(), icon);
    QCOMPARE(button->text(), text);
    QCOMPARE(button->toolTip(), toolTip);
    QCOMPARE(button->isCheckable(), checkable);
    QVERIFY(!button->isChecked());
    QCOMPARE(button->shortcut(), shortcut);
    QCOMPARE(button->isEnabled(), item != Redo);
    if (size != kLayoutDecides)
        QVERIFY(hasFixedSize(button, size));
}

void tst_ScreenCaptureWnd_toolbars::separatorsShowTheLine()
{
    for (QWidget* item : {m_capture->at(FirstSeparator), m_capture->at(SecondSeparator),
                          m_capture->at(SubSeparator)}) {
        const auto* separator = qobject_cast<QLabel*>(item);
        QVERIFY(separator);
        QCOMPARE(separator->pixmap(Qt::ReturnByValue).toImage(), iconFile("sep"));
        QVERIFY(hasFixedSize(separator, kSeparatorSizePx));
        QVERIFY(separator->toolTip().isEmpty());
    }
}

// Intended: it alone has no size of its own.
void tst_ScreenCaptureWnd_toolbars::redoHasTheSizeThatTheLayoutGives()
{
    const QPushButton* redo = m_capture->button(Redo);
    QCOMPARE(redo->minimumSize(), QSize(0, 0));
    QCOMPARE(redo->maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
    m_capture->drag(kRegion);
    QCOMPARE(redo->width(), redo->sizeHint().width());
    QCOMPARE(m_capture->mainBar()->width(), m_capture->mainBar()->layout()->sizeHint().width());
}

void tst_ScreenCaptureWnd_toolbars::doneIsTheOnlyDefaultButton()
{
    for (const QPushButton* button : window()->findChildren<QPushButton*>()) {
        QVERIFY(!button->autoDefault());
        QCOMPARE(button->isDefault(), button == m_capture->button(Done));
    }
}

void tst_ScreenCaptureWnd_toolbars::fontSizesAreOffered()
{
    const auto* label = qobject_cast<QLabel*>(m_capture->at(FontLabel));
    QCOMPARE(label->pixmap(Qt::ReturnByValue).toImage(), iconFile("text"));
    QCOMPARE(label->margin(), 6);
    const QComboBox* box = m_capture->fontBox();
    QStringList items;
    for (int i = 0; i < box->count(); ++i)
        items << box->itemText(i);
    QCOMPARE(items, QStringList({"8", "9", "10", "11", "12", "14", "16", "18", "20", "22"}));
    QCOMPARE(box->currentIndex(), 0);
    QVERIFY(!box->isEditable());
    QVERIFY(hasFixedSize(box, kFontBoxSizePx));
}

void tst_ScreenCaptureWnd_toolbars::blurPanelHasALabelAndASlider()
{
    const QWidget* panel = m_capture->at(BlurPanel);
    QVERIFY(hasFixedSize(panel, QSize(140, 20)));
    const auto* layout = qobject_cast<QHBoxLayout*>(panel->layout());
    QCOMPARE(layout->contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(layout->count(), 2);
    QCOMPARE(qobject_cast<QLabel*>(layout->itemAt(0)->widget())->text(), QString("Blur"));
    const QSlider* slider = m_capture->blurSlider();
    QCOMPARE(layout->itemAt(1)->widget(), slider);
    QVERIFY(hasFixedSize(slider, QSize(80, 20)));
    QCOMPARE(slider->orientation(), Qt::Horizontal);
    QCOMPARE(slider->minimum(), 4);
    QCOMPARE(slider->maximum(), 20);
    QCOMPARE(slider->singleStep(), 1);
    QCOMPARE(slider->pageStep(), 1);
    QCOMPARE(slider->value(), 4);
    QCOMPARE(slider->toolTip(), QString("Blur"));
}

// A connection by names that do not exist says so only when it is to be made.
void tst_ScreenCaptureWnd_toolbars::everyConnectionIsMade()
{
    m_capture.reset();
    static QStringList failures;
    failures.clear();
    const QtMessageHandler handler =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
            if (message.startsWith("QObject::connect: "))
                failures << message;
        });
    const auto restore = qScopeGuard([=] { qInstallMessageHandler(handler); });
    QVERIFY(!connect(this, SIGNAL(missing()), this, SLOT(deleteLater())));
    QCOMPARE(failures.size(), 1);
    failures.clear();

    restart();
    m_capture->drag(kRegion);
    for (const MainItem tool : kTools)
        m_capture->choose(tool);
    QCOMPARE(failures, QStringList());
}

void tst_ScreenCaptureWnd_toolbars::commandsDoWhatTheirSlotsDo_data()
{
    QTest::addColumn<MainItem>("item");
    QTest::addColumn<bool>("drops");
    QTest::addColumn<bool>("asks");
    QTest::newRow("undo") << Undo << true << false;
    QTest::newRow("redo, disabled") << Redo << false << false;
    QTest::newRow("save") << Save << false << true;
}

// Close and done are among the endings.
void tst_ScreenCaptureWnd_toolbars::commandsDoWhatTheirSlotsDo()
{
    QFETCH(MainItem, item);
    QFETCH(bool, drops);
    QFETCH(bool, asks);
    m_capture->drag(kRegion);
    bool asked = false;
    if (asks) {
        whileSaving([&asked](QFileDialog& dialog) {
            asked = true;
            dialog.reject();
        });
    }
    QTest::mouseClick(m_capture->at(item), Qt::LeftButton);
    QCOMPARE(asked, asks);
    QCOMPARE(m_capture->mainBar()->isHidden(), drops);
}

// To assistive tools the name of a combo box is its value here.
void tst_ScreenCaptureWnd_toolbars::everyToolHasAnIconOfItsOwn()
{
    QVector<QImage> icons;
    for (const MainItem tool : kTools) {
        const QImage icon = m_capture->button(tool)->icon().pixmap(16, 16).toImage();
        QVERIFY2(!icon.isNull(), nameOf(tool));
        QVERIFY2(!icons.contains(icon), nameOf(tool));
        icons << icon;
    }
}

void tst_ScreenCaptureWnd_toolbars::everyControlHasATranslatedName()
{
    Brackets brackets;
    QVERIFY(QCoreApplication::installTranslator(&brackets));
    restart();
    QCoreApplication::removeTranslator(&brackets);
    QStringList names = {m_capture->fontBox()->accessibleName(),
                         accessibleName(m_capture->widthSlider()),
                         accessibleName(m_capture->blurSlider()),
                         accessibleName(m_capture->palette()), m_capture->button(Done)->text()};
    QStringList texts = {m_capture->blurSlider()->toolTip(),
                         m_capture->at(BlurPanel)->findChild<QLabel*>()->text()};
    for (const MainItem item : kTools + Tools{Undo, Redo, Save, Close}) {
        names << accessibleName(m_capture->at(item));
        texts << m_capture->at(item)->toolTip();
    }
    QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), 15);
    const QRegularExpression bracketed("^\\[.+\\]$");
    for (const QString& text : names + texts)
        QVERIFY2(bracketed.match(text).hasMatch(), qPrintable(text));
}

void tst_ScreenCaptureWnd_toolbars::barsKeepTheirSizesUnderAStyleSheet_data()
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

void tst_ScreenCaptureWnd_toolbars::barsKeepTheirSizesUnderAStyleSheet()
{
    QFETCH(QString, styleSheet);
    qApp->setStyleSheet(styleSheet);
    restart();
    m_capture->drag(QPoint(20, 20), QPoint(600, 300));
    QCOMPARE(m_capture->mainBar()->height(), 30);
    for (const MainItem item : kTools + Tools{Undo, Redo, Save, Close, Done}) {
        const QWidget* button = m_capture->at(item);
        QVERIFY(m_capture->mainBar()->rect().contains(button->geometry()));
        if (item != Redo)
            QCOMPARE(button->size(), item == Done ? kDoneSizePx : kToolSizePx);
    }
    for (const MainItem item : {FirstSeparator, SecondSeparator})
        QCOMPARE(m_capture->at(item)->size(), kSeparatorSizePx);

    // The chosen tool is marked, and what is written is written in full.
    QPushButton* pen = m_capture->button(Scribble);
    const QImage before = pen->grab().toImage();
    pen->click();
    const QImage chosen = pen->grab().toImage();
    QVERIFY(chosen != before);
    m_capture->choose(Text);
    QVERIFY(pen->grab().toImage() != chosen);
    QVERIFY(inkOf(pen).isValid());
    QCOMPARE(m_capture->at(Text)->size(), kToolSizePx);
    QPushButton* done = m_capture->button(Done);
    done->setIcon(QIcon());
    const QRect ink = inkOf(done);
    const QRect text = QFontMetrics(done->font()).tightBoundingRect("done");
    QVERIFY(ink.width() >= text.width() - 2);
    QVERIFY(ink.height() >= text.height() - 2);
    // In the middle, with the icon's room beside it.
    QVERIFY(ink.width() <= kDoneSizePx.width() - 20);
    QVERIFY(qAbs(ink.center().x() - done->rect().center().x()) <= 3);

    // So do the settings.
    QCOMPARE(m_capture->fontBox()->size(), kFontBoxSizePx);
    for (const char* size : {"22", "9"}) {
        m_capture->fontBox()->setCurrentText(size);
        QCOMPARE(m_capture->textBox()->font().pointSize(), QString(size).toInt());
        QCOMPARE(m_capture->fontBox()->size(), kFontBoxSizePx);
    }
    m_capture->choose(Mosaic);
    for (const QSlider* slider : {m_capture->widthSlider(), m_capture->blurSlider()})
        QCOMPARE(slider->height(), 20);
    QVERIFY(m_capture->subBar()->height() <= 40);
    for (const QWidget* bar : {m_capture->mainBar(), m_capture->subBar()})
        QCOMPARE(bar->styleSheet(), QString("background:rgba(255,255,255,100%)"));
}

void tst_ScreenCaptureWnd_toolbars::withoutAStyleSheetTheWindowHasNone()
{
    QCOMPARE(window()->styleSheet(), QString());
    m_capture->annotate(kRegion, Text);
    m_capture->fontBox()->setCurrentText("22");
    QCOMPARE(window()->styleSheet(), QString());
}

void tst_ScreenCaptureWnd_toolbars::restartInTheDark()
{
    QPalette dark(QColor(40, 40, 40), QColor(30, 30, 30));
    dark.setColor(QPalette::ToolTipText, Qt::white);
    dark.setColor(QPalette::ToolTipBase, Qt::black);
    QApplication::setPalette(dark);
    QToolTip::setPalette(dark);
    QVERIFY(qGray(dark.color(QPalette::ButtonText).rgb()) > kReadableContrast);
    restart();
    m_capture->drag(kRegion);
}

void tst_ScreenCaptureWnd_toolbars::textsAreReadableInADarkTheme()
{
    restartInTheDark();
    QVERIFY(isReadable(m_capture->at(BlurPanel)->findChild<QLabel*>()));
    QVERIFY(isReadable(m_capture->fontBox()));
    QPushButton* done = m_capture->button(Done);
    done->setIcon(QIcon());
    QVERIFY(isReadable(done));
}

void tst_ScreenCaptureWnd_toolbars::toolTipsAreReadableInADarkTheme()
{
    restartInTheDark();
    QPushButton* pen = m_capture->button(Scribble);
    QHelpEvent ask(QEvent::ToolTip, QPoint(5, 5), pen->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(pen, &ask);
    QTRY_VERIFY(visibleToolTip());
    QVERIFY(isReadable(visibleToolTip()));
    QToolTip::hideText();
}

void tst_ScreenCaptureWnd_toolbars::whatCannotBePressedIsPaleInADarkTheme()
{
    restartInTheDark();
    QPushButton* redo = m_capture->button(Redo);
    QVERIFY(!redo->isEnabled());
    const int pale = greys(redo->grab().toImage()).first;
    redo->setEnabled(true);
    QVERIFY(pale > greys(redo->grab().toImage()).first + 32);
}

// The theme's own text colour would not be seen on a white page.
void tst_ScreenCaptureWnd_toolbars::textIsTypedAsThePaletteShowsInADarkTheme()
{
    restartInTheDark();
    m_capture->choose(Text);
    m_capture->stroke(QPoint(20, 20), QPoint(150, 90));
    QTextEdit* text = m_capture->textBox();
    QTest::keyClicks(text, "HHH");
    QImage page(text->size(), QImage::Format_RGB32);
    page.fill(Qt::white);
    text->clearFocus();
    text->render(&page, QPoint(), QRegion(), QWidget::DrawChildren);
    QVERIFY(greys(page).first < 64);
}

QTEST_MAIN(tst_ScreenCaptureWnd_toolbars)
#include "tst_ScreenCaptureWnd_toolbars.moc"
