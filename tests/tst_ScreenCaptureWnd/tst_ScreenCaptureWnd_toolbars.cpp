// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "ToolBarsProbe.h"

#include <QAccessible>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QIcon>
#include <QSet>
#include <QTimer>
#include <QTranslator>

namespace
{

constexpr QSize kLayoutDecides(-1, -1);
const QRect kRegion(QPoint(300, 100), QPoint(699, 299));

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

} // namespace

/// What stands in the two tool bars, and what its commands do.
class tst_ScreenCaptureWnd_toolbars : public BehaviourTest
{
    Q_OBJECT

private slots:
    void barsAreHiddenWhiteChildren_data();
    void barsAreHiddenWhiteChildren();
    void mainBarHasThirteenItemsAtADistance();
    void mainBarItem_data();
    void mainBarItem();
    void separatorsShowTheLine_data();
    void separatorsShowTheLine();
    void redoHasTheSizeThatTheLayoutGives();
    void redoIsDisabledAtFirst();
    void doneIsTheOnlyDefaultButton();
    void subBarHasSixItems();
    void subBarItemHasItsClass_data();
    void subBarItemHasItsClass();
    void fontSizeLabelShowsTheTextIcon();
    void fontSizesAreOffered();
    void blurPanelHasALabelAndASlider();
    void settingsGoToTheWindow();
    void commands_data();
    void commands();
    void saveButtonAsksForAName();
    void mainBarAppearsWithTheRegion();
    void everyControlHasAnAccessibleName();
    void everyTextIsTranslated();
};

void tst_ScreenCaptureWnd_toolbars::barsAreHiddenWhiteChildren_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("main") << "mainToolBar";
    QTest::newRow("sub") << "subToolBar";
}

void tst_ScreenCaptureWnd_toolbars::barsAreHiddenWhiteChildren()
{
    QFETCH(QString, name);
    ToolBarsProbe capture;
    auto* bar = capture.window()->findChild<QWidget*>(name);
    QCOMPARE(bar->parentWidget(), capture.window());
    QCOMPARE(bar->metaObject()->className(), "QWidget");
    QVERIFY(bar->isHidden());
    QCOMPARE(bar->styleSheet(), QString("background:rgba(255,255,255,100%)"));
    // Opaque, so that the window beneath does not paint it with each move of the region.
    QVERIFY(bar->autoFillBackground());
    QVERIFY(bar->testAttribute(Qt::WA_SetCursor));
    QCOMPARE(bar->cursor().shape(), Qt::ArrowCursor);
    QVERIFY(qobject_cast<QHBoxLayout*>(bar->layout()));
    capture.window()->showFullDesktop(true);
    QVERIFY(bar->isHidden());
}

void tst_ScreenCaptureWnd_toolbars::mainBarHasThirteenItemsAtADistance()
{
    ToolBarsProbe capture;
    const auto* layout = qobject_cast<QHBoxLayout*>(capture.mainBar()->layout());
    QCOMPARE(layout->count(), int(MainItemCount));
    QCOMPARE(layout->contentsMargins(), QMargins(2, 2, 2, 2));
    QWidget other;
    QCOMPARE(layout->spacing(), QHBoxLayout(&other).spacing());
    for (int i = 0; i < layout->count(); ++i) {
        QCOMPARE(layout->stretch(i), 0);
        QVERIFY(layout->itemAt(i)->widget());
        QCOMPARE(layout->itemAt(i)->widget()->parentWidget(), capture.mainBar());
    }
    QCOMPARE(capture.mainBar()->minimumHeight(), 30);
    QCOMPARE(capture.mainBar()->maximumHeight(), 30);
    QCOMPARE(capture.mainBar()->maximumWidth(), QWIDGETSIZE_MAX);
}

void tst_ScreenCaptureWnd_toolbars::mainBarItem_data()
{
    QTest::addColumn<int>("item");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("checkable");
    QTest::addColumn<QKeySequence>("shortcut");

    const QSize usual(30, 26);
    const QKeySequence none;
    const auto row = [&](MainItem item, const char* icon, const char* toolTip, const QSize& size,
                         bool checkable, const QKeySequence& shortcut) {
        QTest::newRow(icon) << int(item) << icon << QString() << toolTip << size << checkable
                            << shortcut;
    };
    row(Scribble, "pen", "scribble", usual, true, none);
    row(Text, "text", "text", usual, true, none);
    row(Arrow, "arrow", "Arrow", usual, true, none);
    row(Rectangle, "rect", "Rectangle", usual, true, none);
    row(Ellipse, "circle", "Ellipse", usual, true, none);
    row(Mosaic, "mosaic", "Mosaic", usual, true, none);
    row(Undo, "undo", "undo", usual, false, QKeySequence::Undo);
    row(Redo, "redo", "redo", kLayoutDecides, false, QKeySequence::Redo);
    row(Save, "save", "save", usual, false, none);
    row(Close, "close", "close", usual, false, none);
    QTest::newRow("done") << int(Done) << "done" << QString("done") << QString() << QSize(60, 26)
                          << false << none;
}

void tst_ScreenCaptureWnd_toolbars::mainBarItem()
{
    QFETCH(int, item);
    QFETCH(QString, icon);
    QFETCH(QString, text);
    QFETCH(QString, toolTip);
    QFETCH(QSize, size);
    QFETCH(bool, checkable);
    QFETCH(QKeySequence, shortcut);
    ToolBarsProbe capture;
    const QPushButton* button = capture.button(MainItem(item));
    QVERIFY(button);
    QCOMPARE(button->metaObject()->className(), "QPushButton");
    QVERIFY(!iconFile(icon).isNull());
    QCOMPARE(button->icon().pixmap(16, 16).toImage(), iconFile(icon));
    QCOMPARE(button->text(), text);
    QCOMPARE(button->toolTip(), toolTip);
    QCOMPARE(button->isCheckable(), checkable);
    QVERIFY(!button->isChecked());
    QCOMPARE(button->shortcut(), shortcut);
    QVERIFY(!button->autoDefault());
    QCOMPARE(button->isEnabled(), item != Redo);
    if (size != kLayoutDecides)
        QVERIFY(hasFixedSize(button, size));
}

void tst_ScreenCaptureWnd_toolbars::separatorsShowTheLine_data()
{
    QTest::addColumn<bool>("main");
    QTest::addColumn<int>("item");
    QTest::newRow("before undo") << true << int(FirstSeparator);
    QTest::newRow("before close") << true << int(SecondSeparator);
    QTest::newRow("in the sub bar") << false << int(SubSeparator);
}

void tst_ScreenCaptureWnd_toolbars::separatorsShowTheLine()
{
    QFETCH(bool, main);
    QFETCH(int, item);
    ToolBarsProbe capture;
    const auto* separator =
        qobject_cast<QLabel*>(main ? capture.at(MainItem(item)) : capture.at(SubItem(item)));
    QVERIFY(separator);
    QCOMPARE(separator->pixmap(Qt::ReturnByValue).toImage(), iconFile("sep"));
    QVERIFY(hasFixedSize(separator, QSize(3, 26)));
    QVERIFY(separator->toolTip().isEmpty());
}

void tst_ScreenCaptureWnd_toolbars::redoHasTheSizeThatTheLayoutGives()
{
    ToolBarsProbe capture;
    const QPushButton* redo = capture.button(Redo);
    QCOMPARE(redo->minimumSize(), QSize(0, 0));
    QCOMPARE(redo->maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
    capture.window()->showFullDesktop(true);
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    QCOMPARE(redo->width(), redo->sizeHint().width());
    QCOMPARE(capture.mainBar()->width(), capture.mainBar()->layout()->sizeHint().width());
}

void tst_ScreenCaptureWnd_toolbars::redoIsDisabledAtFirst()
{
    ToolBarsProbe capture;
    QVERIFY(!capture.button(Redo)->isEnabled());
    QVERIFY(capture.button(Undo)->isEnabled());
}

void tst_ScreenCaptureWnd_toolbars::doneIsTheOnlyDefaultButton()
{
    ToolBarsProbe capture;
    QList<QPushButton*> defaults;
    for (QPushButton* button : capture.window()->findChildren<QPushButton*>()) {
        QVERIFY(!button->autoDefault());
        if (button->isDefault())
            defaults << button;
    }
    QCOMPARE(defaults, QList<QPushButton*>{capture.button(Done)});
}

void tst_ScreenCaptureWnd_toolbars::subBarHasSixItems()
{
    ToolBarsProbe capture;
    const auto* layout = qobject_cast<QHBoxLayout*>(capture.subBar()->layout());
    QCOMPARE(layout->count(), int(SubItemCount));
    QCOMPARE(layout->contentsMargins(), QMargins(0, 0, 0, 0));
    for (int i = 0; i < layout->count(); ++i) {
        QCOMPARE(layout->stretch(i), 0);
        QCOMPARE(layout->itemAt(i)->widget()->parentWidget(), capture.subBar());
    }
    QCOMPARE(capture.subBar()->minimumSize(), QSize(0, 0));
    QCOMPARE(capture.subBar()->maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
}

void tst_ScreenCaptureWnd_toolbars::subBarItemHasItsClass_data()
{
    QTest::addColumn<int>("item");
    QTest::addColumn<QByteArray>("className");
    QTest::newRow("font size label") << int(FontLabel) << QByteArray("QLabel");
    QTest::newRow("font size box") << int(FontBox) << QByteArray("QComboBox");
    QTest::newRow("width picker") << int(WidthPicker) << QByteArray("PenWidthWidget");
    QTest::newRow("separator") << int(SubSeparator) << QByteArray("QLabel");
    QTest::newRow("blur panel") << int(BlurPanel) << QByteArray("QWidget");
    QTest::newRow("palette") << int(Palette) << QByteArray("ColorWidget");
}

void tst_ScreenCaptureWnd_toolbars::subBarItemHasItsClass()
{
    QFETCH(int, item);
    QFETCH(QByteArray, className);
    ToolBarsProbe capture;
    QCOMPARE(QByteArray(capture.at(SubItem(item))->metaObject()->className()), className);
}

void tst_ScreenCaptureWnd_toolbars::fontSizeLabelShowsTheTextIcon()
{
    ToolBarsProbe capture;
    const auto* label = qobject_cast<QLabel*>(capture.at(FontLabel));
    QCOMPARE(label->pixmap(Qt::ReturnByValue).toImage(), iconFile("text"));
    QCOMPARE(label->margin(), 6);
}

void tst_ScreenCaptureWnd_toolbars::fontSizesAreOffered()
{
    ToolBarsProbe capture;
    const QComboBox* box = capture.fontBox();
    QStringList items;
    for (int i = 0; i < box->count(); ++i)
        items << box->itemText(i);
    QCOMPARE(items, QStringList({"8", "9", "10", "11", "12", "14", "16", "18", "20", "22"}));
    QCOMPARE(box->currentIndex(), 0);
    QVERIFY(!box->isEditable());
    QVERIFY(hasFixedSize(box, QSize(45, 26)));
}

void tst_ScreenCaptureWnd_toolbars::blurPanelHasALabelAndASlider()
{
    ToolBarsProbe capture;
    const QWidget* panel = capture.at(BlurPanel);
    QVERIFY(hasFixedSize(panel, QSize(140, 20)));
    const auto* layout = qobject_cast<QHBoxLayout*>(panel->layout());
    QCOMPARE(layout->contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(layout->count(), 2);
    const auto* label = qobject_cast<QLabel*>(layout->itemAt(0)->widget());
    QCOMPARE(label->text(), QString("Blur"));
    const QSlider* slider = capture.blurSlider();
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

void tst_ScreenCaptureWnd_toolbars::settingsGoToTheWindow()
{
    ToolBarsProbe capture;
    const QObject* window = capture.window();
    QVERIFY(disconnect(capture.fontBox(), SIGNAL(currentIndexChanged(QString)), window,
                       SLOT(onFontSizeChanged(QString))));
    QVERIFY(disconnect(capture.widthPicker(), SIGNAL(currentWidthChanged(int)), window,
                       SLOT(onPenWidthChanged(int))));
    QVERIFY(disconnect(capture.blurSlider(), SIGNAL(valueChanged(int)), window,
                       SLOT(onMosaicBlurChanged(int))));
    QVERIFY(disconnect(capture.palette(), SIGNAL(currentColorChanged(QColor)), window,
                       SLOT(onPenColorChanged(QColor))));
}

void tst_ScreenCaptureWnd_toolbars::commands_data()
{
    QTest::addColumn<int>("item");
    QTest::addColumn<int>("results");
    QTest::addColumn<bool>("finished");
    QTest::newRow("undo drops the region") << int(Undo) << 0 << false;
    QTest::newRow("close cancels") << int(Close) << 1 << false;
    QTest::newRow("done finishes") << int(Done) << 1 << true;
}

void tst_ScreenCaptureWnd_toolbars::commands()
{
    QFETCH(int, item);
    QFETCH(int, results);
    QFETCH(bool, finished);
    ToolBarsProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    QTest::mouseClick(capture.at(MainItem(item)), Qt::LeftButton);
    QVERIFY(capture.mainBar()->isHidden() || results == 1);
    deliver();
    QCOMPARE(receiver.count, results);
    QCOMPARE(receiver.finished, finished);
    QCOMPARE(capture.isGone(), results == 1);
}

void tst_ScreenCaptureWnd_toolbars::saveButtonAsksForAName()
{
    ToolBarsProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    bool asked = false;
    QTimer::singleShot(0, qApp, [&asked] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        asked = dialog != nullptr;
        if (dialog)
            dialog->reject();
    });
    capture.button(Save)->click();
    QVERIFY(asked);
    QVERIFY(capture.mainBar()->isVisible());
}

void tst_ScreenCaptureWnd_toolbars::mainBarAppearsWithTheRegion()
{
    ToolBarsProbe capture;
    capture.window()->showFullDesktop(true);
    capture.press(kRegion.topLeft());
    capture.move(kRegion.bottomRight());
    QVERIFY(capture.mainBar()->isHidden());
    capture.release(kRegion.bottomRight());
    QVERIFY(capture.mainBar()->isVisible());
    QVERIFY(capture.subBar()->isHidden());
    QVERIFY(capture.checkedTools().isEmpty());
    const QPoint place(kRegion.right() - capture.mainBar()->width(), kRegion.bottom() + 6);
    QCOMPARE(capture.mainBar()->pos(), place);
}

void tst_ScreenCaptureWnd_toolbars::everyControlHasAnAccessibleName()
{
    ToolBarsProbe capture;
    QSet<QString> names;
    for (const MainItem item :
         {Scribble, Text, Arrow, Rectangle, Ellipse, Mosaic, Undo, Redo, Save, Close, Done})
        names << accessibleName(capture.at(item));
    // To assistive tools the name of a combo box is its value here.
    names << capture.fontBox()->accessibleName() << accessibleName(capture.widthSlider());
    names << accessibleName(capture.blurSlider()) << accessibleName(capture.palette());
    QVERIFY(!names.contains(QString()));
    QCOMPARE(names.size(), 15);
}

void tst_ScreenCaptureWnd_toolbars::everyTextIsTranslated()
{
    Brackets brackets;
    QVERIFY(QCoreApplication::installTranslator(&brackets));
    ToolBarsProbe capture;
    QCoreApplication::removeTranslator(&brackets);
    const QRegularExpression bracketed("^\\[.+\\]$");
    for (const MainItem item :
         {Scribble, Text, Arrow, Rectangle, Ellipse, Mosaic, Undo, Redo, Save, Close}) {
        QVERIFY2(bracketed.match(capture.at(item)->toolTip()).hasMatch(),
                 qPrintable(capture.at(item)->toolTip()));
        QVERIFY(bracketed.match(accessibleName(capture.at(item))).hasMatch());
    }
    QCOMPARE(capture.button(Done)->text(), QString("[done]"));
    QCOMPARE(capture.blurSlider()->toolTip(), QString("[Blur]"));
    QCOMPARE(capture.at(BlurPanel)->findChild<QLabel*>()->text(), QString("[Blur]"));
    QVERIFY(bracketed.match(accessibleName(capture.blurSlider())).hasMatch());
    QVERIFY(bracketed.match(accessibleName(capture.widthSlider())).hasMatch());
    QVERIFY(bracketed.match(capture.fontBox()->accessibleName()).hasMatch());
    QVERIFY(bracketed.match(accessibleName(capture.palette())).hasMatch());
}

QTEST_MAIN(tst_ScreenCaptureWnd_toolbars)
#include "tst_ScreenCaptureWnd_toolbars.moc"
