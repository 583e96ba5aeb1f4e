// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"
#include "BehaviourTest.h"
#include "Files.h"
#include "ToolBarsProbe.h"

#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

Q_DECLARE_METATYPE(MainItem)

namespace
{

using Items = QList<MainItem>;

const QRect kRegion(QPoint(300, 100), QPoint(699, 299));
constexpr QSize kWindow(1000, 600);
constexpr int kBarHeight = 30;
constexpr int kFreshSubBarHeight = 30;
constexpr int kPenSubBarHeight = 38;

const QList<QColor> kStored{QColor(1, 2, 3), QColor(4, 5, 6), QColor(7, 8, 9), QColor(10, 11, 12)};
const QColor kSkyBlue(56, 148, 228);

/// What is in the settings file, in the order of kPenTools.
QList<QColor> writtenColors(const QString& directory)
{
    QList<QColor> colors;
    QSettings settings(directory + "/screencapture.ini", QSettings::IniFormat);
    for (const char* key : {"scribbleColor", "arrowColor", "rectColor", "ellipseColor"})
        colors << QColor::fromRgba(settings.value(QString("pen_color/%1").arg(key)).toUInt());
    return colors;
}

QByteArrayList writtenKeys(const QString& directory)
{
    QByteArrayList keys;
    const QString file = directory + "/screencapture.ini";
    for (const QString& key : QSettings(file, QSettings::IniFormat).allKeys())
        keys << key.toLatin1();
    std::sort(keys.begin(), keys.end());
    return keys;
}

/// Where the sub bar stands and how large it is when it is shown.
class ShowWatch : public QObject
{
public:
    explicit ShowWatch(const ToolBarsProbe& capture)
        : m_capture(capture)
    {
        capture.subBar()->installEventFilter(this);
    }
    QPoint mainBarPos;
    QPoint subBarPos;
    bool canvasWasThere = false;
    int paintType = -1;
    QList<QSize> sizesAfter;
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Show) {
            mainBarPos = m_capture.mainBar()->pos();
            subBarPos = m_capture.subBar()->pos();
            canvasWasThere = m_capture.canvas() && m_capture.canvas()->isVisible();
            paintType = ScribbleAreaAccess::paintType(*m_capture.canvas());
            sizesAfter.clear();
        } else if (event->type() == QEvent::Resize) {
            sizesAfter << m_capture.subBar()->size();
        }
        return false;
    }

private:
    const ToolBarsProbe& m_capture;
};

} // namespace

/// What choosing a tool and changing its settings does.
class tst_ScreenCaptureWnd_tools : public BehaviourTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void firstToolMakesTheCanvas();
    void canvasHasItsLook();
    void canvasStaysBelowTheBars();
    void canvasIsReusedAfterAReset();
    void regionIsFrozen();
    void invisibleRegionTakesATool();
    void barsArePlacedBeforeTheSubBarIsShown();
    void placementUsesTheEarlierHeight_data();
    void placementUsesTheEarlierHeight();
    void barsStayWhenTheToolChanges();

    void toolDecidesWhatIsShown_data();
    void toolDecidesWhatIsShown();
    void oneToolIsCheckedAtATime();
    void clickOnTheCheckedToolKeepsIt_data();
    void clickOnTheCheckedToolKeepsIt();
    void toolIsApplied_data();
    void toolIsApplied();
    void arrowStartsInItsLayout();
    void firstCheckedToolIsUsed_data();
    void firstCheckedToolIsUsed();
    void settingsGoToTheFirstCheckedTool_data();
    void settingsGoToTheFirstCheckedTool();
    void settingsOfThePenAreShown_data();
    void settingsOfThePenAreShown();
    void textLeavesPaletteAndWidth();

    void widthGoesToThePen_data();
    void widthGoesToThePen();
    void widthOutOfRangeGoesToThePenAsItIs();
    void mosaicIsFifteenWider();
    void widthGoesNowhere_data();
    void widthGoesNowhere();
    void widthsAreNotStored();
    void fontSizeGoesToTheText();
    void fontSizeGoesNowhereWithoutText_data();
    void fontSizeGoesNowhereWithoutText();
    void blurGoesToTheCanvas();

    void canvasStartsWithTheStoredColors();
    void colorGoesToPenAndFile_data();
    void colorGoesToPenAndFile();
    void textColorGoesToTheTextOnly();
    void textHasTheShownColorUntilOneIsChosenForIt();
    void colorWithoutAPenOnlyRewritesTheFile_data();
    void colorWithoutAPenOnlyRewritesTheFile();
    void penColorChangedIsNeverEmitted();

    void resetPutsTheBarsAway();
    void redoIsEnabledWhileItIsPossible();
    void newEditDisablesRedo_data();
    void newEditDisablesRedo();
    void editCommittedForThePictureDisablesRedo();
    void doubleClickOnTheCanvasFinishes();
    void settingsNeedACanvas();

private:
    /// Makes the region, and puts a tool in the hand.
    void annotate(MainItem tool) { m_capture->annotate(kRegion, tool); }
    static void eachTool();
    static void eachPairIn(const Items& order);

    QScopedPointer<QTemporaryDir> m_settings;
    QScopedPointer<ToolBarsProbe> m_capture;
};

void tst_ScreenCaptureWnd_tools::init()
{
    BehaviourTest::init();
    m_settings.reset(new QTemporaryDir);
    ScreenCaptureTool::init(m_settings->path());
    remember(kStored);
    m_capture.reset(new ToolBarsProbe);
    m_capture->window()->resize(kWindow);
    m_capture->window()->show();
}

void tst_ScreenCaptureWnd_tools::cleanup()
{
    m_capture.reset();
    m_settings.reset();
    BehaviourTest::cleanup();
}

void tst_ScreenCaptureWnd_tools::eachTool()
{
    QTest::addColumn<MainItem>("tool");
    for (const MainItem tool : kTools)
        QTest::newRow(nameOf(tool)) << tool;
}

void tst_ScreenCaptureWnd_tools::eachPairIn(const Items& order)
{
    QTest::addColumn<MainItem>("first");
    QTest::addColumn<MainItem>("second");
    for (int i = 0; i < order.size(); ++i) {
        for (int j = i + 1; j < order.size(); ++j)
            QTest::addRow("%s before %s", nameOf(order[i]), nameOf(order[j]))
                << order[i] << order[j];
    }
}

void tst_ScreenCaptureWnd_tools::firstToolMakesTheCanvas()
{
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    QVERIFY(!m_capture->canvas());
    m_capture->choose(Scribble);
    QVERIFY(m_capture->canvas());
    QCOMPARE(m_capture->canvas()->geometry(), kRegion);
    QVERIFY(m_capture->canvas()->isVisible());
    QVERIFY(m_capture->subBar()->isVisible());
    for (const MainItem tool : kTools)
        m_capture->choose(tool);
    QCOMPARE(m_capture->window()->findChildren<ScribbleArea*>().size(), 1);
}

void tst_ScreenCaptureWnd_tools::canvasHasItsLook()
{
    annotate(Scribble);
    const ScribbleArea* canvas = m_capture->canvas();
    QCOMPARE(canvas->parentWidget(), m_capture->window());
    QVERIFY(!canvas->isWindow());
    QVERIFY(canvas->windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(canvas->styleSheet(),
             QString("background:rgba(0,0,0,0%); border-width:0; border-style:outset}"));
}

void tst_ScreenCaptureWnd_tools::canvasStaysBelowTheBars()
{
    m_capture->annotate(QRect(QPoint(0, 0), QPoint(999, 599)), Scribble);
    const QObjectList& children = m_capture->window()->children();
    QCOMPARE(children.indexOf(m_capture->canvas()) + 1, children.indexOf(m_capture->mainBar()));
    for (const QWidget* bar : {m_capture->mainBar(), m_capture->subBar()}) {
        QVERIFY(m_capture->canvas()->geometry().contains(bar->geometry()));
        const QWidget* found = m_capture->window()->childAt(bar->geometry().topLeft());
        QVERIFY(found == bar || bar->isAncestorOf(found));
    }
}

void tst_ScreenCaptureWnd_tools::canvasIsReusedAfterAReset()
{
    annotate(Scribble);
    ScribbleArea* canvas = m_capture->canvas();
    m_capture->stroke(QPoint(10, 10), QPoint(50, 50));
    QVERIFY(canvas->canUndo());
    remember({Qt::red, Qt::red, Qt::red, Qt::red});
    m_capture->window()->reset();
    QVERIFY(canvas->isHidden());

    const QRect other(QPoint(20, 30), QPoint(219, 179));
    m_capture->annotate(other, Rectangle);
    QCOMPARE(m_capture->window()->findChildren<ScribbleArea*>(), QList<ScribbleArea*>{canvas});
    QVERIFY(canvas->isVisible());
    QCOMPARE(canvas->geometry(), other);
    QVERIFY(!canvas->canUndo());
    // The stored colours are read when the canvas is made, and not again.
    QCOMPARE(m_capture->penColors(), kStored);
}

void tst_ScreenCaptureWnd_tools::regionIsFrozen()
{
    annotate(Ellipse);
    m_capture->drag(kRegion.center(), kRegion.center() + QPoint(40, 40));
    QCOMPARE(m_capture->region()->rect(), kRegion);
    m_capture->window()->reset();
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    m_capture->drag(kRegion.center(), kRegion.center() + QPoint(40, 40));
    QCOMPARE(m_capture->region()->rect(), kRegion.translated(40, 40));
}

void tst_ScreenCaptureWnd_tools::invisibleRegionTakesATool()
{
    m_capture->click(QPoint(400, 300), Qt::LeftButton);
    QVERIFY(!m_capture->region()->isVisible());
    for (const MainItem tool : kTools)
        m_capture->choose(tool);
    QVERIFY(m_capture->window()->scribbledImage().isNull());
}

void tst_ScreenCaptureWnd_tools::barsArePlacedBeforeTheSubBarIsShown()
{
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    const ShowWatch watch(*m_capture);
    m_capture->choose(Mosaic);
    QVERIFY(watch.canvasWasThere);
    QCOMPARE(watch.mainBarPos, m_capture->mainBar()->pos());
    QCOMPARE(watch.subBarPos, m_capture->mainBar()->geometry().bottomLeft() + QPoint(0, 2));
    QCOMPARE(m_capture->subBar()->pos(), watch.subBarPos);
    QCOMPARE(watch.paintType, int(ScribbleArea::PAINT_SCRIBBLE));
    QCOMPARE(watch.sizesAfter.last(), m_capture->subBar()->size());
}

// The region ends so low that the sub bar fits below it at its first height, but not at the height
// that it has with a tool.
void tst_ScreenCaptureWnd_tools::placementUsesTheEarlierHeight_data()
{
    QTest::addColumn<int>("bottom");
    QTest::addColumn<int>("firstTop");
    QTest::addColumn<int>("secondTop");
    const int top = kRegion.top();
    const int last = kWindow.height() - 1;
    const int freshNeed = kBarHeight + kFreshSubBarHeight + 2 + 6;
    const int penNeed = kBarHeight + kPenSubBarHeight + 2 + 6;
    QTest::newRow("room for both") << last - penNeed << last - penNeed + 6 << last - penNeed + 6;
    QTest::newRow("just too low for the later height")
        << last - penNeed + 1 << last - penNeed + 7 << top - penNeed;
    QTest::newRow("just right for the earlier height")
        << last - freshNeed << last - freshNeed + 6 << top - penNeed;
    QTest::newRow("too low for both") << last - freshNeed + 1 << top - freshNeed << top - penNeed;
}

void tst_ScreenCaptureWnd_tools::placementUsesTheEarlierHeight()
{
    QFETCH(int, bottom);
    QFETCH(int, firstTop);
    QFETCH(int, secondTop);
    const QRect region(kRegion.topLeft(), QPoint(kRegion.right(), bottom));
    QCOMPARE(m_capture->subBar()->height(), kFreshSubBarHeight);
    for (const int mainTop : {firstTop, secondTop}) {
        m_capture->annotate(region, Scribble);
        QCOMPARE(m_capture->subBar()->height(), kPenSubBarHeight);
        const QPoint place(region.right() - m_capture->mainBar()->width(), mainTop);
        QCOMPARE(m_capture->mainBar()->pos(), place);
        QCOMPARE(m_capture->subBar()->pos(), place + QPoint(0, kBarHeight - 1 + 2));
        m_capture->window()->reset();
    }
}

void tst_ScreenCaptureWnd_tools::barsStayWhenTheToolChanges()
{
    const QRect region(kRegion.topLeft(), QPoint(kRegion.right(), 531));
    m_capture->annotate(region, Text);
    const QPoint mainBar = m_capture->mainBar()->pos();
    const QPoint subBar = m_capture->subBar()->pos();
    for (const MainItem tool : {Scribble, Mosaic, Text, Arrow}) {
        m_capture->choose(tool);
        QCOMPARE(m_capture->mainBar()->pos(), mainBar);
        QCOMPARE(m_capture->subBar()->pos(), subBar);
    }
}

void tst_ScreenCaptureWnd_tools::toolDecidesWhatIsShown_data()
{
    QTest::addColumn<MainItem>("before");
    QTest::addColumn<MainItem>("tool");
    for (const MainItem before : kTools) {
        for (const MainItem tool : kTools) {
            if (before != tool)
                QTest::addRow("%s after %s", nameOf(tool), nameOf(before)) << before << tool;
        }
    }
}

void tst_ScreenCaptureWnd_tools::toolDecidesWhatIsShown()
{
    QFETCH(MainItem, before);
    QFETCH(MainItem, tool);
    annotate(before);
    m_capture->choose(tool);
    const bool text = tool == Text;
    const bool mosaic = tool == Mosaic;
    QCOMPARE(m_capture->at(FontLabel)->isVisible(), text);
    QCOMPARE(m_capture->at(FontBox)->isVisible(), text);
    QCOMPARE(m_capture->at(WidthPicker)->isVisible(), !text);
    QVERIFY(m_capture->at(SubSeparator)->isVisible());
    QCOMPARE(m_capture->at(BlurPanel)->isVisible(), mosaic);
    QCOMPARE(m_capture->at(Palette)->isVisible(), !mosaic);
    QCOMPARE(m_capture->subBar()->size(),
             m_capture->subBar()->layout()->minimumSize() + QSize(mosaic ? 10 : 0, 0));
    // Nothing but what is shown takes room.
    int width = 0;
    int shown = 0;
    for (int i = 0; i < SubItemCount; ++i) {
        const QWidget* widget = m_capture->at(SubItem(i));
        if (!widget->isVisible())
            continue;
        width += widget->minimumWidth() ? widget->minimumWidth() : widget->sizeHint().width();
        ++shown;
    }
    width += (shown - 1) * m_capture->subBar()->layout()->spacing();
    QCOMPARE(m_capture->subBar()->width(), width + (mosaic ? 10 : 0));
}

void tst_ScreenCaptureWnd_tools::oneToolIsCheckedAtATime()
{
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    QCOMPARE(m_capture->checkedTools(), Items());
    for (const MainItem before : kTools) {
        for (const MainItem tool : kTools) {
            if (before == tool)
                continue;
            m_capture->choose(before);
            m_capture->choose(tool);
            QCOMPARE(m_capture->checkedTools(), Items{tool});
        }
        m_capture->choose(before == Mosaic ? Scribble : Mosaic);
    }
}

void tst_ScreenCaptureWnd_tools::clickOnTheCheckedToolKeepsIt_data()
{
    eachTool();
}

// The second click unchecks the button; the third checks it and is undone by the exclusion.
void tst_ScreenCaptureWnd_tools::clickOnTheCheckedToolKeepsIt()
{
    QFETCH(MainItem, tool);
    annotate(tool);
    const int type = ScribbleAreaAccess::paintType(*m_capture->canvas());
    const int graph = ScribbleAreaAccess::graphState(*m_capture->canvas());
    const QRect bar = m_capture->subBar()->geometry();
    for (int click = 2; click <= 4; ++click) {
        m_capture->choose(tool);
        QCOMPARE(m_capture->checkedTools(), Items());
        QCOMPARE(ScribbleAreaAccess::paintType(*m_capture->canvas()), type);
        QCOMPARE(ScribbleAreaAccess::graphState(*m_capture->canvas()), graph);
        QCOMPARE(m_capture->subBar()->geometry(), bar);
        QVERIFY(m_capture->subBar()->isVisible());
    }
    const MainItem other = tool == Text ? Rectangle : Text;
    m_capture->choose(other);
    QCOMPARE(m_capture->checkedTools(), Items{other});
    m_capture->choose(tool);
    QCOMPARE(m_capture->checkedTools(), Items{tool});
}

void tst_ScreenCaptureWnd_tools::toolIsApplied_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::addColumn<int>("paintType");
    QTest::addColumn<int>("graphState");
    const int untouched = 77;
    QTest::newRow("pen") << Scribble << 0 << untouched;
    QTest::newRow("text") << Text << 1 << untouched;
    QTest::newRow("rectangle") << Rectangle << 2 << 0;
    QTest::newRow("ellipse") << Ellipse << 2 << 1;
    QTest::newRow("arrow") << Arrow << 2 << 2;
    QTest::newRow("mosaic") << Mosaic << 3 << untouched;
}

void tst_ScreenCaptureWnd_tools::toolIsApplied()
{
    QFETCH(MainItem, tool);
    QFETCH(int, paintType);
    QFETCH(int, graphState);
    annotate(tool == Text ? Mosaic : Text);
    m_capture->canvas()->setGraphState(77);
    m_capture->choose(tool);
    QCOMPARE(ScribbleAreaAccess::paintType(*m_capture->canvas()), paintType);
    QCOMPARE(ScribbleAreaAccess::graphState(*m_capture->canvas()), graphState);
}

void tst_ScreenCaptureWnd_tools::arrowStartsInItsLayout()
{
    annotate(Rectangle);
    auto* frame = m_capture->canvas()->findChild<ResizableRect*>();
    const QRect r(20, 30, 100, 80);
    frame->setRect(r);
    QCOMPARE(frame->arrowHead(), r.topLeft());
    m_capture->choose(Arrow);
    frame->setRect(r);
    QCOMPARE(frame->arrowTail(), r.bottomLeft());
    QCOMPARE(frame->arrowHead(), r.topRight());
}

void tst_ScreenCaptureWnd_tools::firstCheckedToolIsUsed_data()
{
    eachPairIn({Scribble, Text, Rectangle, Arrow, Ellipse, Mosaic});
}

void tst_ScreenCaptureWnd_tools::firstCheckedToolIsUsed()
{
    QFETCH(MainItem, first);
    QFETCH(MainItem, second);
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    m_capture->button(first)->setChecked(true);
    m_capture->button(second)->setChecked(true);
    m_capture->window()->onPaintTypeChanged();
    const int paintType = ScribbleAreaAccess::paintType(*m_capture->canvas());
    const int graphState = ScribbleAreaAccess::graphState(*m_capture->canvas());
    m_capture->button(second)->setChecked(false);
    m_capture->choose(first == Mosaic ? Text : Mosaic);
    m_capture->choose(first);
    QCOMPARE(paintType, ScribbleAreaAccess::paintType(*m_capture->canvas()));
    QCOMPARE(graphState, ScribbleAreaAccess::graphState(*m_capture->canvas()));
}

// Not the order in which the tool is chosen.
void tst_ScreenCaptureWnd_tools::settingsGoToTheFirstCheckedTool_data()
{
    eachPairIn({Scribble, Text, Rectangle, Ellipse, Arrow, Mosaic});
}

void tst_ScreenCaptureWnd_tools::settingsGoToTheFirstCheckedTool()
{
    QFETCH(MainItem, first);
    QFETCH(MainItem, second);
    annotate(Text);
    m_capture->choose(Mosaic);
    m_capture->choose(first);
    m_capture->button(second)->setChecked(true);
    QList<int> widths = m_capture->penWidths();
    QList<QColor> colors = kStored;
    const int index = Items({Scribble, Arrow, Rectangle, Ellipse}).indexOf(first);
    if (index >= 0) {
        widths[index] = 23;
        colors[index] = kSkyBlue;
    }
    m_capture->window()->onPenWidthChanged(23);
    m_capture->window()->onPenColorChanged(kSkyBlue);
    QCOMPARE(m_capture->penWidths(), widths);
    QCOMPARE(m_capture->penColors(), colors);
    QCOMPARE(rememberedColors(), colors);
    const auto* text = m_capture->canvas()->findChild<QTextEdit*>();
    QCOMPARE(text->textColor().rgb() == kSkyBlue.rgb(), first == Text);
}

void tst_ScreenCaptureWnd_tools::settingsOfThePenAreShown_data()
{
    QTest::addColumn<MainItem>("tool");
    for (const MainItem tool : kPenTools)
        QTest::newRow(nameOf(tool)) << tool;
}

void tst_ScreenCaptureWnd_tools::settingsOfThePenAreShown()
{
    QFETCH(MainItem, tool);
    annotate(Text);
    int width = 11;
    for (const MainItem each : kPenTools) {
        m_capture->setPen(each, QPen(QColor(width, 100, 200), width));
        width += 3;
    }
    const QList<int> widths = m_capture->penWidths();
    const QList<QColor> colors = m_capture->penColors();
    m_capture->choose(tool);
    QCOMPARE(m_capture->widthSlider()->value(), m_capture->pen(tool).width());
    QCOMPARE(m_capture->shownColor(), m_capture->pen(tool).color());
    QCOMPARE(m_capture->penWidths(), widths);
    QCOMPARE(m_capture->penColors(), colors);
}

void tst_ScreenCaptureWnd_tools::textLeavesPaletteAndWidth()
{
    annotate(Rectangle);
    m_capture->widthPicker()->setWidth(9);
    m_capture->pickColor(1, 5);
    m_capture->choose(Text);
    QCOMPARE(m_capture->shownColor(), kSkyBlue);
    QCOMPARE(m_capture->widthSlider()->value(), 9);
}

void tst_ScreenCaptureWnd_tools::widthGoesToThePen_data()
{
    eachTool();
}

void tst_ScreenCaptureWnd_tools::widthGoesToThePen()
{
    QFETCH(MainItem, tool);
    annotate(tool);
    QList<int> expected = m_capture->penWidths();
    const int index = Items({Scribble, Arrow, Rectangle, Ellipse, Mosaic}).indexOf(tool);
    m_capture->widthSlider()->setValue(22);
    if (index >= 0)
        expected[index] = tool == Mosaic ? 37 : 22;
    QCOMPARE(m_capture->penWidths(), expected);
}

// The last announcement is the argument, which the slider could not take.
void tst_ScreenCaptureWnd_tools::widthOutOfRangeGoesToThePenAsItIs()
{
    annotate(Ellipse);
    m_capture->widthPicker()->setWidth(50);
    QCOMPARE(m_capture->widthSlider()->value(), 30);
    QCOMPARE(m_capture->pen(Ellipse).width(), 50);
    m_capture->choose(Text);
    m_capture->choose(Ellipse);
    QCOMPARE(m_capture->pen(Ellipse).width(), 50);
}

void tst_ScreenCaptureWnd_tools::mosaicIsFifteenWider()
{
    annotate(Mosaic);
    QCOMPARE(m_capture->widthSlider()->value(), 1);
    QCOMPARE(m_capture->pen(Mosaic).width(), 16);
    m_capture->widthSlider()->setValue(12);
    QCOMPARE(m_capture->pen(Mosaic).width(), 27);
    m_capture->choose(Rectangle);
    QCOMPARE(m_capture->widthSlider()->value(), 2);
    m_capture->choose(Mosaic);
    QCOMPARE(m_capture->widthSlider()->value(), 12);
    QCOMPARE(m_capture->pen(Mosaic).width(), 27);
    QCOMPARE(m_capture->penWidths(), QList<int>({2, 6, 2, 2, 27}));
}

void tst_ScreenCaptureWnd_tools::widthGoesNowhere_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::addColumn<bool>("unchecked");
    QTest::newRow("text") << Text << false;
    for (const MainItem tool : kTools)
        QTest::addRow("%s, unchecked", nameOf(tool)) << tool << true;
}

void tst_ScreenCaptureWnd_tools::widthGoesNowhere()
{
    QFETCH(MainItem, tool);
    QFETCH(bool, unchecked);
    annotate(tool);
    if (unchecked)
        m_capture->choose(tool);
    const QList<int> widths = m_capture->penWidths();
    m_capture->widthPicker()->setWidth(23);
    QCOMPARE(m_capture->penWidths(), widths);
}

void tst_ScreenCaptureWnd_tools::widthsAreNotStored()
{
    QVERIFY(QFile::remove(m_settings->filePath("screencapture.ini")));
    annotate(Scribble);
    m_capture->widthPicker()->setWidth(20);
    QVERIFY(!QFile::exists(m_settings->filePath("screencapture.ini")));
}

void tst_ScreenCaptureWnd_tools::fontSizeGoesToTheText()
{
    annotate(Text);
    for (const int index : {9, 5, 0}) {
        m_capture->fontBox()->setCurrentIndex(index);
        const auto* box = m_capture->canvas()->findChild<QTextEdit*>();
        QVERIFY(box);
        QCOMPARE(QString::number(box->font().pointSize()), m_capture->fontBox()->itemText(index));
    }
}

void tst_ScreenCaptureWnd_tools::fontSizeGoesNowhereWithoutText_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::addColumn<bool>("unchecked");
    for (const MainItem tool : kTools)
        QTest::addRow("%s%s", nameOf(tool), tool == Text ? ", unchecked" : "")
            << tool << (tool == Text);
}

void tst_ScreenCaptureWnd_tools::fontSizeGoesNowhereWithoutText()
{
    QFETCH(MainItem, tool);
    QFETCH(bool, unchecked);
    annotate(Text);
    m_capture->fontBox()->setCurrentIndex(7);
    if (unchecked || tool != Text)
        m_capture->choose(tool);
    m_capture->fontBox()->setCurrentIndex(9);
    QCOMPARE(m_capture->canvas()->findChild<QTextEdit*>()->font().pointSize(), 18);
}

void tst_ScreenCaptureWnd_tools::blurGoesToTheCanvas()
{
    annotate(Mosaic);
    QCOMPARE(ScribbleAreaAccess::mosaicBlur(*m_capture->canvas()), 2);
    m_capture->blurSlider()->setValue(13);
    QCOMPARE(ScribbleAreaAccess::mosaicBlur(*m_capture->canvas()), 13);
    m_capture->blurSlider()->triggerAction(QSlider::SliderPageStepAdd);
    QCOMPARE(ScribbleAreaAccess::mosaicBlur(*m_capture->canvas()), 14);
}

void tst_ScreenCaptureWnd_tools::canvasStartsWithTheStoredColors()
{
    annotate(Text);
    QCOMPARE(m_capture->penColors(), kStored);
    // Nothing else of the pens is touched.
    QCOMPARE(m_capture->penWidths(), QList<int>({2, 6, 2, 2, 16}));
    QCOMPARE(m_capture->shownColor(), QColor(Qt::black));
}

void tst_ScreenCaptureWnd_tools::colorGoesToPenAndFile_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < 4; ++i)
        QTest::newRow(nameOf(kPenTools[i])) << i;
}

void tst_ScreenCaptureWnd_tools::colorGoesToPenAndFile()
{
    QFETCH(int, index);
    annotate(kPenTools[index]);
    const QPen before = m_capture->pen(kPenTools[index]);
    m_capture->pickColor(1, 5);
    QList<QColor> expected = kStored;
    expected[index] = kSkyBlue;
    QCOMPARE(m_capture->penColors(), expected);
    QCOMPARE(rememberedColors(), expected);
    QCOMPARE(writtenColors(m_settings->path()), expected);
    QPen after = before;
    after.setColor(kSkyBlue);
    QCOMPARE(m_capture->pen(kPenTools[index]), after);
    // The next canvas has it as well.
    m_capture.reset();
    m_capture.reset(new ToolBarsProbe);
    m_capture->window()->resize(kWindow);
    m_capture->window()->show();
    annotate(Text);
    QCOMPARE(m_capture->penColors(), expected);
}

void tst_ScreenCaptureWnd_tools::textColorGoesToTheTextOnly()
{
    annotate(Text);
    QVERIFY(QFile::remove(m_settings->filePath("screencapture.ini")));
    m_capture->pickColor(1, 5);
    QCOMPARE(m_capture->canvas()->findChild<QTextEdit*>()->textColor(), kSkyBlue);
    QCOMPARE(m_capture->penColors(), kStored);
    QCOMPARE(rememberedColors(), kStored);
    QCOMPARE(writtenColors(m_settings->path()), kStored);
    QCOMPARE(writtenKeys(m_settings->path()),
             QByteArrayList({"pen_color/arrowColor", "pen_color/ellipseColor",
                             "pen_color/rectColor", "pen_color/scribbleColor"}));
}

void tst_ScreenCaptureWnd_tools::textHasTheShownColorUntilOneIsChosenForIt()
{
    const auto textColor = [this] {
        return m_capture->canvas()->findChild<QTextEdit*>()->textColor().rgb();
    };
    annotate(Text);
    QCOMPARE(textColor(), QColor(Qt::black).rgb());
    for (const MainItem tool : {Scribble, Ellipse}) {
        m_capture->choose(tool);
        m_capture->choose(Text);
        QCOMPARE(textColor(), m_capture->pen(tool).color().rgb());
        QCOMPARE(textColor(), m_capture->shownColor().rgb());
    }
    m_capture->pickColor(1, 5);
    m_capture->choose(Scribble);
    m_capture->choose(Text);
    QCOMPARE(textColor(), kSkyBlue.rgb());
}

void tst_ScreenCaptureWnd_tools::colorWithoutAPenOnlyRewritesTheFile_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::addColumn<bool>("unchecked");
    QTest::newRow("mosaic") << Mosaic << false;
    for (const MainItem tool : kTools)
        QTest::addRow("%s, unchecked", nameOf(tool)) << tool << true;
}

void tst_ScreenCaptureWnd_tools::colorWithoutAPenOnlyRewritesTheFile()
{
    QFETCH(MainItem, tool);
    QFETCH(bool, unchecked);
    annotate(tool);
    if (unchecked)
        m_capture->choose(tool);
    QVERIFY(QFile::remove(m_settings->filePath("screencapture.ini")));
    m_capture->pickColor(1, 5);
    QCOMPARE(m_capture->penColors(), kStored);
    QCOMPARE(rememberedColors(), kStored);
    QCOMPARE(writtenColors(m_settings->path()), kStored);
    const auto* text = m_capture->canvas()->findChild<QTextEdit*>();
    QVERIFY(!text || text->textColor().rgb() == QColor(Qt::black).rgb());
}

void tst_ScreenCaptureWnd_tools::penColorChangedIsNeverEmitted()
{
    QSignalSpy spy(m_capture->window(), &ScreenCaptureWnd::penColorChanged);
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    for (const MainItem tool : kTools) {
        m_capture->choose(tool);
        m_capture->pickColor(0, tool);
    }
    QCOMPARE(rememberedColors(), QList<QColor>({QColor(0, 0, 0), QColor(128, 0, 0),
                                                QColor(247, 136, 58), QColor(48, 132, 48)}));
    QCOMPARE(spy.count(), 0);
}

void tst_ScreenCaptureWnd_tools::resetPutsTheBarsAway()
{
    annotate(Arrow);
    m_capture->stroke(QPoint(10, 10), QPoint(60, 60));
    m_capture->window()->reset();
    QVERIFY(m_capture->mainBar()->isHidden());
    QVERIFY(m_capture->subBar()->isHidden());
    QVERIFY(m_capture->canvas()->isHidden());
    QCOMPARE(m_capture->checkedTools(), Items());
    QVERIFY(!m_capture->button(Redo)->isEnabled());
    // The button that was chosen before can be chosen again at the first click.
    annotate(Arrow);
    QCOMPARE(m_capture->checkedTools(), Items{Arrow});
    QVERIFY(m_capture->subBar()->isVisible());
}

void tst_ScreenCaptureWnd_tools::redoIsEnabledWhileItIsPossible()
{
    annotate(Scribble);
    const QPushButton* redo = m_capture->button(Redo);
    m_capture->stroke(QPoint(10, 10), QPoint(50, 50));
    m_capture->stroke(QPoint(10, 50), QPoint(50, 10));
    QVERIFY(!redo->isEnabled());
    m_capture->choose(Undo);
    QVERIFY(redo->isEnabled());
    m_capture->choose(Undo);
    QVERIFY(redo->isEnabled());
    m_capture->choose(Redo);
    QVERIFY(redo->isEnabled());
    m_capture->choose(Redo);
    QVERIFY(!redo->isEnabled());
    QVERIFY(!m_capture->canvas()->canRedo());
    m_capture->choose(Undo);
    m_capture->window()->reset();
    QVERIFY(!redo->isEnabled());
}

void tst_ScreenCaptureWnd_tools::newEditDisablesRedo_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::newRow("pen") << Scribble;
    QTest::newRow("mosaic") << Mosaic;
    QTest::newRow("rectangle, committed by another tool") << Rectangle;
}

void tst_ScreenCaptureWnd_tools::newEditDisablesRedo()
{
    QFETCH(MainItem, tool);
    annotate(Text);
    m_capture->choose(Scribble);
    m_capture->stroke(QPoint(10, 10), QPoint(50, 50));
    m_capture->choose(Undo);
    QVERIFY(m_capture->button(Redo)->isEnabled());
    if (tool != Scribble)
        m_capture->choose(tool);
    m_capture->stroke(QPoint(10, 50), QPoint(50, 10));
    QCoreApplication::processEvents();
    if (tool == Rectangle) {
        QVERIFY(m_capture->button(Redo)->isEnabled());
        m_capture->choose(Scribble);
    }
    QVERIFY(!m_capture->canvas()->canRedo());
    QVERIFY(!m_capture->button(Redo)->isEnabled());
}

void tst_ScreenCaptureWnd_tools::editCommittedForThePictureDisablesRedo()
{
    annotate(Scribble);
    m_capture->stroke(QPoint(10, 10), QPoint(50, 50));
    m_capture->choose(Undo);
    m_capture->choose(Rectangle);
    m_capture->stroke(QPoint(10, 50), QPoint(50, 10));
    QCoreApplication::processEvents();
    QVERIFY(m_capture->button(Redo)->isEnabled());
    m_capture->window()->scribbledImage();
    QVERIFY(!m_capture->canvas()->canRedo());
    QVERIFY(!m_capture->button(Redo)->isEnabled());
}

void tst_ScreenCaptureWnd_tools::doubleClickOnTheCanvasFinishes()
{
    Receiver receiver;
    m_capture->window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    annotate(Rectangle);
    QTest::mouseDClick(m_capture->canvas(), Qt::LeftButton);
    deliver();
    QCOMPARE(receiver.count, 1);
    QVERIFY(receiver.finished);
}

void tst_ScreenCaptureWnd_tools::settingsNeedACanvas()
{
    SKIP_WITHOUT_ASSERTIONS();
    ScreenCaptureWnd* window = m_capture->window();
    const QByteArray condition = "\"m_scribbleArea != NULL\"";
    QVERIFY(failedAssertion([window] { window->onFontSizeChanged("8"); }).contains(condition));
    QVERIFY(failedAssertion([window] { window->onPenWidthChanged(3); }).contains(condition));
    QVERIFY(failedAssertion([window] { window->onPenColorChanged(Qt::red); }).contains(condition));
}

QTEST_MAIN(tst_ScreenCaptureWnd_tools)
#include "tst_ScreenCaptureWnd_tools.moc"
