// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"
#include "CaptureProbe.h"
#include "Pictures.h"
#include "ScreenCaptureTool.h"

#include <QSettings>
#include <QTemporaryDir>

namespace
{

const QRect kRegion(QPoint(300, 100), QPoint(699, 299));
constexpr QSize kWindow(1000, 600);
const QImage kDesktop = noise(kWindow);
constexpr int kBarHeight = 30;
constexpr int kFreshSubBarHeight = 30;
constexpr int kPenSubBarHeight = 38;

/// Those whose colour is stored.
const Tools kPenTools{Scribble, Arrow, Rectangle, Ellipse};
using Colors = QList<QColor>;
const Colors kStored{QColor(1, 2, 3), QColor(4, 5, 6), QColor(7, 8, 9), QColor(10, 11, 12)};
const QColor kSkyBlue(56, 148, 228);

/// What the facade remembers, in the order of kPenTools.
Colors rememberedColors()
{
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    return {colors.scribbleColor, colors.arrowColor, colors.rectColor, colors.ellipseColor};
}

void remember(const Colors& pens)
{
    ScreenCaptureToolColors colors;
    colors.scribbleColor = pens.at(0);
    colors.arrowColor = pens.at(1);
    colors.rectColor = pens.at(2);
    colors.ellipseColor = pens.at(3);
    ScreenCaptureTool::setPenColor(colors);
}

/// What is in the settings file: the keys, and their colours in the order of kPenTools.
QPair<QStringList, Colors> written(const QString& file)
{
    const QSettings settings(file, QSettings::IniFormat);
    Colors colors;
    for (const char* key : {"scribbleColor", "arrowColor", "rectColor", "ellipseColor"})
        colors << QColor::fromRgba(settings.value(QString("pen_color/%1").arg(key)).toUInt());
    return {settings.allKeys(), colors};
}

const QRect kStroke(QPoint(60, 60), QPoint(200, 160));

QImage withMosaic(QImage image)
{
    constexpr int kBrushPx = 16;
    QImage brushed(image.size(), QImage::Format_RGB32);
    brushed.fill(Qt::black);
    QPainter painter(&brushed);
    painter.setPen(QPen(QBrush(Qt::white), kBrushPx, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(kStroke.topLeft(), kStroke.bottomRight());
    painter.end();
    const QImage blocks = inBlocks(image, 2);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (brushed.pixel(x, y) == qRgb(255, 255, 255))
                image.setPixel(x, y, blocks.pixel(x, y));
        }
    }
    return image;
}

/// `image` with what the tool draws along kStroke, and "hello" where it is the text tool.
QImage withDrawing(const QImage& image, MainItem tool, const QPen& pen)
{
    if (tool == Mosaic)
        return withMosaic(image);
    if (tool == Text) {
        QFont font = QApplication::font("QTextEdit");
        font.setPointSize(18);
        return withText(image, kStroke.adjusted(4, 4, -4, -4), font, {{"hello", kSkyBlue}});
    }
    return drawnOn(image, [&](QPainter& painter) {
        painter.setPen(pen);
        painter.setRenderHint(QPainter::Antialiasing, tool == Ellipse);
        if (tool == Scribble)
            painter.drawLine(kStroke.topLeft(), kStroke.bottomRight());
        else if (tool == Rectangle)
            painter.drawRect(kStroke);
        else if (tool == Ellipse)
            painter.drawEllipse(kStroke);
        else
            drawArrowOf(painter, pen.color(), triangle({60, 60}, {187, 158}, {194, 148}),
                        triangle({200, 160}, {183, 163}, {197, 143}));
    });
}

/// Where the sub bar stands and how large it is when it is shown.
class ShowWatch : public QObject
{
public:
    explicit ShowWatch(const CaptureProbe& capture)
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
    const CaptureProbe& m_capture;
};

} // namespace

/// What choosing a tool and changing its settings does, and what is delivered of a drawing.
class tst_ScreenCaptureWnd_annotating : public CaptureTest
{
    Q_OBJECT

private slots:
    void init();

    void firstToolMakesTheCanvas();
    void regionIsFrozen();
    void invisibleRegionTakesATool();
    void toolThatIsHeldWhileTheBarGoesAwayIsNotChosen();
    void barsArePlacedBeforeTheSubBarIsShown();
    void placementUsesTheEarlierHeight_data();
    void placementUsesTheEarlierHeight();
    void barsStayWhenTheToolChanges();

    void toolIsUsedAndItsSettingsShown_data();
    void toolIsUsedAndItsSettingsShown();
    void clickOnTheCheckedToolKeepsIt_data() { eachTool(); }
    void clickOnTheCheckedToolKeepsIt();
    void firstCheckedToolIsUsed_data();
    void firstCheckedToolIsUsed();
    void settingsGoToTheFirstCheckedTool_data();
    void settingsGoToTheFirstCheckedTool();
    void arrowStartsInItsLayout();

    void settingsReachTheCheckedToolOnly_data();
    void settingsReachTheCheckedToolOnly();
    void widthOutOfRangeGoesToThePenAsItIs();
    void mosaicIsFifteenWider();
    void blurGoesToTheCanvas();
    void storedColorsAreReadWhenTheCanvasIsMade();
    void textLeavesPaletteAndWidth();
    void textHasTheShownColorUntilOneIsChosenForIt();
    void settingsNeedACanvas();

    void redoIsEnabledWhileItIsPossible();
    void newEditDisablesRedo_data();
    void newEditDisablesRedo();
    void drawingIsDelivered_data() { eachTool(); }
    void drawingIsDelivered();

private:
    /// Makes the region, and puts a tool in the hand.
    void annotate(MainItem tool) { m_capture->annotate(kRegion, tool); }
    static void eachTool();
    static void eachPairIn(const Tools& order);
    QList<int> penWidths() const;
    Colors penColors() const;
    /// The colour in the palette's box.
    QColor shownColor() const { return m_capture->palette()->grab().toImage().pixelColor(18, 18); }
    QString settingsFile() const { return m_settings->filePath("screencapture.ini"); }

    QScopedPointer<QTemporaryDir> m_settings;
};

void tst_ScreenCaptureWnd_annotating::init()
{
    CaptureTest::init();
    m_settings.reset(new QTemporaryDir);
    ScreenCaptureTool::init(m_settings->path());
    remember(kStored);
    window()->resize(kWindow);
    ScreenCaptureWndAccess::setDesktop(window(), kDesktop);
}

void tst_ScreenCaptureWnd_annotating::eachTool()
{
    QTest::addColumn<MainItem>("tool");
    for (const MainItem tool : kTools)
        QTest::newRow(nameOf(tool)) << tool;
}

void tst_ScreenCaptureWnd_annotating::eachPairIn(const Tools& order)
{
    QTest::addColumn<MainItem>("first");
    QTest::addColumn<MainItem>("second");
    for (int i = 0; i < order.size(); ++i) {
        for (int j = i + 1; j < order.size(); ++j)
            QTest::addRow("%s before %s", nameOf(order[i]), nameOf(order[j]))
                << order[i] << order[j];
    }
}

QList<int> tst_ScreenCaptureWnd_annotating::penWidths() const
{
    QList<int> widths;
    for (const MainItem tool : kPenTools + Tools{Mosaic})
        widths << m_capture->pen(tool).width();
    return widths;
}

Colors tst_ScreenCaptureWnd_annotating::penColors() const
{
    Colors colors;
    for (const MainItem tool : kPenTools)
        colors << m_capture->pen(tool).color();
    return colors;
}

void tst_ScreenCaptureWnd_annotating::firstToolMakesTheCanvas()
{
    const QRect all(QPoint(0, 0), QPoint(999, 599));
    m_capture->drag(all);
    QVERIFY(!m_capture->canvas());
    m_capture->choose(Scribble);
    // It loads fonts, so it waits for the text tool.
    QVERIFY(!m_capture->textBox());
    for (const MainItem tool : kTools)
        m_capture->choose(tool);
    QCOMPARE(window()->findChildren<ScribbleArea*>().size(), 1);
    const ScribbleArea* canvas = m_capture->canvas();
    QCOMPARE(canvas->parentWidget(), window());
    QCOMPARE(canvas->geometry(), all);
    QCOMPARE(canvas->image(), kDesktop);
    QVERIFY(canvas->isVisible());
    QVERIFY(!canvas->isWindow());
    QVERIFY(canvas->windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(canvas->styleSheet(),
             QString("background:rgba(0,0,0,0%); border-width:0; border-style:outset}"));
    // Below the bars, which take the mouse where they lie over it.
    const QObjectList& children = window()->children();
    QCOMPARE(children.indexOf(m_capture->canvas()) + 1, children.indexOf(m_capture->mainBar()));
    for (const QWidget* bar : {m_capture->mainBar(), m_capture->subBar()}) {
        QVERIFY(canvas->geometry().contains(bar->geometry()));
        const QWidget* found = window()->childAt(bar->geometry().topLeft());
        QVERIFY(found == bar || bar->isAncestorOf(found));
    }
}

void tst_ScreenCaptureWnd_annotating::regionIsFrozen()
{
    annotate(Ellipse);
    m_capture->drag(kRegion.center(), kRegion.center() + QPoint(40, 40));
    QCOMPARE(m_capture->region()->rect(), kRegion);
    // The canvas follows the region that is moved otherwise.
    const QRect moved = kRegion.translated(-20, 30);
    m_capture->region()->setRect(moved);
    QCOMPARE(m_capture->canvas()->geometry(), moved);
}

void tst_ScreenCaptureWnd_annotating::invisibleRegionTakesATool()
{
    m_capture->click(QPoint(400, 300));
    QVERIFY(!m_capture->region()->isVisible());
    for (const MainItem tool : kTools)
        m_capture->choose(tool);
    QVERIFY(window()->scribbledImage().isNull());
}

void tst_ScreenCaptureWnd_annotating::toolThatIsHeldWhileTheBarGoesAwayIsNotChosen()
{
    m_capture->drag(kRegion);
    QPushButton* pen = m_capture->button(Scribble);
    QTest::mousePress(pen, Qt::LeftButton);
    QVERIFY(pen->isDown());
    window()->reset();
    QTest::mouseRelease(pen, Qt::LeftButton);
    QVERIFY(!pen->isChecked());

    m_capture->drag(kRegion);
    QVERIFY(m_capture->subBar()->isHidden());
    QTest::mouseClick(pen, Qt::LeftButton);
    QVERIFY(pen->isChecked());
    QVERIFY(m_capture->subBar()->isVisible());
}

void tst_ScreenCaptureWnd_annotating::barsArePlacedBeforeTheSubBarIsShown()
{
    m_capture->drag(kRegion);
    const ShowWatch watch(*m_capture);
    m_capture->choose(Mosaic);
    QVERIFY(watch.canvasWasThere);
    QCOMPARE(watch.mainBarPos, m_capture->mainBar()->pos());
    QCOMPARE(watch.subBarPos, m_capture->mainBar()->geometry().bottomLeft() + QPoint(0, 2));
    QCOMPARE(m_capture->subBar()->pos(), watch.subBarPos);
    QCOMPARE(watch.paintType, int(ScribbleArea::PAINT_SCRIBBLE));
    QCOMPARE(watch.sizesAfter.last(), m_capture->subBar()->size());
}

void tst_ScreenCaptureWnd_annotating::placementUsesTheEarlierHeight_data()
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

// Intended: a region may end so low that the sub bar fits below it at its first height, but not at
// the height that it has with a tool.
void tst_ScreenCaptureWnd_annotating::placementUsesTheEarlierHeight()
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
        window()->reset();
    }
}

void tst_ScreenCaptureWnd_annotating::barsStayWhenTheToolChanges()
{
    m_capture->annotate(QRect(kRegion.topLeft(), QPoint(kRegion.right(), 531)), Text);
    const QPoint mainBar = m_capture->mainBar()->pos();
    const QPoint subBar = m_capture->subBar()->pos();
    for (const MainItem tool : {Scribble, Mosaic, Text, Arrow}) {
        m_capture->choose(tool);
        QCOMPARE(m_capture->mainBar()->pos(), mainBar);
        QCOMPARE(m_capture->subBar()->pos(), subBar);
    }
}

void tst_ScreenCaptureWnd_annotating::toolIsUsedAndItsSettingsShown_data()
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

void tst_ScreenCaptureWnd_annotating::toolIsUsedAndItsSettingsShown()
{
    QFETCH(MainItem, before);
    QFETCH(MainItem, tool);
    annotate(before);
    constexpr int kUntouched = 77;
    m_capture->canvas()->setGraphState(kUntouched);
    int width = 11;
    for (const MainItem each : kPenTools) {
        m_capture->setPen(each, QPen(QColor(width, 100, 200), width));
        width += 3;
    }
    const QList<int> widths = penWidths();
    const Colors colors = penColors();
    const int shownWidth = m_capture->widthSlider()->value();
    const QColor shownBefore = shownColor();
    m_capture->choose(tool);
    QCOMPARE(m_capture->checkedTools(), Tools{tool});
    const bool text = tool == Text;
    const bool mosaic = tool == Mosaic;

    const QMap<MainItem, int> paintTypes = {{Scribble, 0}, {Text, 1},  {Rectangle, 2},
                                            {Ellipse, 2},  {Arrow, 2}, {Mosaic, 3}};
    const QMap<MainItem, int> graphStates = {{Rectangle, 0}, {Ellipse, 1}, {Arrow, 2}};
    const ScribbleArea& canvas = *m_capture->canvas();
    QCOMPARE(ScribbleAreaAccess::paintType(canvas), paintTypes[tool]);
    QCOMPARE(ScribbleAreaAccess::graphState(canvas), graphStates.value(tool, kUntouched));
    QCOMPARE(penWidths(), widths);
    QCOMPARE(penColors(), colors);
    QCOMPARE(m_capture->widthSlider()->value(),
             text ? shownWidth : m_capture->pen(tool).width() - (mosaic ? 15 : 0));
    QCOMPARE(shownColor(), text || mosaic ? shownBefore : m_capture->pen(tool).color());

    const QSet<SubItem> expected = mosaic ? QSet<SubItem>{WidthPicker, SubSeparator, BlurPanel}
                                   : text ? QSet<SubItem>{FontLabel, FontBox, SubSeparator, Palette}
                                          : QSet<SubItem>{WidthPicker, SubSeparator, Palette};
    // Nothing but what is shown takes room.
    int room = (expected.size() - 1) * m_capture->subBar()->layout()->spacing();
    for (int i = 0; i < SubItemCount; ++i) {
        const QWidget* widget = m_capture->at(SubItem(i));
        QCOMPARE(widget->isVisible(), expected.contains(SubItem(i)));
        if (widget->isVisible())
            room += widget->minimumWidth() ? widget->minimumWidth() : widget->sizeHint().width();
    }
    const QSize extra(mosaic ? 10 : 0, 0);
    QCOMPARE(m_capture->subBar()->size(), m_capture->subBar()->layout()->minimumSize() + extra);
    QCOMPARE(m_capture->subBar()->width(), room + extra.width());
}

// Intended: the second click unchecks the button; the third checks it and is undone by the
// exclusion.
void tst_ScreenCaptureWnd_annotating::clickOnTheCheckedToolKeepsIt()
{
    QFETCH(MainItem, tool);
    annotate(tool);
    const int type = ScribbleAreaAccess::paintType(*m_capture->canvas());
    const int graph = ScribbleAreaAccess::graphState(*m_capture->canvas());
    const QRect bar = m_capture->subBar()->geometry();
    for (int click = 2; click <= 4; ++click) {
        m_capture->choose(tool);
        QCOMPARE(m_capture->checkedTools(), Tools());
        QCOMPARE(ScribbleAreaAccess::paintType(*m_capture->canvas()), type);
        QCOMPARE(ScribbleAreaAccess::graphState(*m_capture->canvas()), graph);
        QCOMPARE(m_capture->subBar()->geometry(), bar);
        QVERIFY(m_capture->subBar()->isVisible());
    }
    for (const MainItem next : {tool == Text ? Rectangle : Text, tool}) {
        m_capture->choose(next);
        QCOMPARE(m_capture->checkedTools(), Tools{next});
    }
}

void tst_ScreenCaptureWnd_annotating::firstCheckedToolIsUsed_data()
{
    eachPairIn({Scribble, Text, Rectangle, Arrow, Ellipse, Mosaic});
}

void tst_ScreenCaptureWnd_annotating::firstCheckedToolIsUsed()
{
    QFETCH(MainItem, first);
    QFETCH(MainItem, second);
    m_capture->drag(kRegion);
    m_capture->button(first)->setChecked(true);
    m_capture->button(second)->setChecked(true);
    window()->onPaintTypeChanged();
    const int paintType = ScribbleAreaAccess::paintType(*m_capture->canvas());
    const int graphState = ScribbleAreaAccess::graphState(*m_capture->canvas());
    m_capture->button(second)->setChecked(false);
    m_capture->choose(first == Mosaic ? Text : Mosaic);
    m_capture->choose(first);
    QCOMPARE(paintType, ScribbleAreaAccess::paintType(*m_capture->canvas()));
    QCOMPARE(graphState, ScribbleAreaAccess::graphState(*m_capture->canvas()));
}

// Not the order in which the tool is chosen.
void tst_ScreenCaptureWnd_annotating::settingsGoToTheFirstCheckedTool_data()
{
    eachPairIn({Scribble, Text, Rectangle, Ellipse, Arrow, Mosaic});
}

void tst_ScreenCaptureWnd_annotating::settingsGoToTheFirstCheckedTool()
{
    QFETCH(MainItem, first);
    QFETCH(MainItem, second);
    annotate(Text);
    m_capture->choose(Mosaic);
    m_capture->choose(first);
    m_capture->button(second)->setChecked(true);
    QList<int> widths = penWidths();
    Colors colors = kStored;
    const int index = kPenTools.indexOf(first);
    if (index >= 0) {
        widths[index] = 23;
        colors[index] = kSkyBlue;
    }
    window()->onPenWidthChanged(23);
    window()->onPenColorChanged(kSkyBlue);
    QCOMPARE(penWidths(), widths);
    QCOMPARE(penColors(), colors);
    QCOMPARE(rememberedColors(), colors);
    QCOMPARE(m_capture->textBox()->textColor().rgb() == kSkyBlue.rgb(), first == Text);
}

void tst_ScreenCaptureWnd_annotating::arrowStartsInItsLayout()
{
    annotate(Rectangle);
    ResizableRect* frame = m_capture->frame();
    const QRect r(20, 30, 100, 80);
    frame->setRect(r);
    QCOMPARE(frame->arrowHead(), r.topLeft());
    m_capture->choose(Arrow);
    frame->setRect(r);
    QCOMPARE(frame->arrowTail(), r.bottomLeft());
    QCOMPARE(frame->arrowHead(), r.topRight());
}

void tst_ScreenCaptureWnd_annotating::settingsReachTheCheckedToolOnly_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::addColumn<bool>("unchecked");
    for (const MainItem tool : kTools) {
        QTest::addRow("%s", nameOf(tool)) << tool << false;
        QTest::addRow("%s, unchecked", nameOf(tool)) << tool << true;
    }
}

// Intended: the colours are written whatever tool is checked. Neither width nor text colour is.
void tst_ScreenCaptureWnd_annotating::settingsReachTheCheckedToolOnly()
{
    QFETCH(MainItem, tool);
    QFETCH(bool, unchecked);
    QSignalSpy announced(window(), &ScreenCaptureWnd::penColorChanged);
    annotate(Text);
    m_capture->fontBox()->setCurrentIndex(7);
    if (tool != Text)
        m_capture->choose(tool);
    if (unchecked)
        m_capture->choose(tool);
    QCOMPARE(m_capture->textBox()->font().pointSize(), 18);
    QList<int> widths = penWidths();
    Colors colors = kStored;
    if (!unchecked && tool != Text)
        widths[tool == Mosaic ? 4 : kPenTools.indexOf(tool)] = tool == Mosaic ? 37 : 22;
    if (!unchecked && kPenTools.contains(tool))
        colors[kPenTools.indexOf(tool)] = kSkyBlue;
    const bool text = tool == Text && !unchecked;
    QPen expected = tool == Text ? QPen() : m_capture->pen(tool);

    QVERIFY(QFile::remove(settingsFile()));
    m_capture->widthSlider()->setValue(22);
    m_capture->fontBox()->setCurrentIndex(text ? 5 : 9);
    QVERIFY(!QFile::exists(settingsFile()));
    m_capture->pickColor(1, 5);
    QCOMPARE(penWidths(), widths);
    QCOMPARE(penColors(), colors);
    QCOMPARE(rememberedColors(), colors);
    const QStringList keys = {"pen_color/arrowColor", "pen_color/ellipseColor",
                              "pen_color/rectColor", "pen_color/scribbleColor"};
    QCOMPARE(written(settingsFile()), qMakePair(keys, colors));
    QCOMPARE(m_capture->textBox()->font().pointSize(), text ? 14 : 18);
    QCOMPARE(m_capture->textBox()->textColor().rgb() == kSkyBlue.rgb(), text);
    QCOMPARE(announced.count(), 0);
    // Nothing else of the pen is touched.
    if (!unchecked && kPenTools.contains(tool)) {
        expected.setWidth(22);
        expected.setColor(kSkyBlue);
    } else if (!unchecked && tool == Mosaic) {
        expected.setWidth(37);
    }
    if (tool != Text)
        QCOMPARE(m_capture->pen(tool), expected);
    // The next canvas has the colours as well.
    restart();
    annotate(Text);
    QCOMPARE(penColors(), colors);
}

// The last announcement is the argument, which the slider could not take.
void tst_ScreenCaptureWnd_annotating::widthOutOfRangeGoesToThePenAsItIs()
{
    annotate(Ellipse);
    m_capture->widthPicker()->setWidth(50);
    QCOMPARE(m_capture->widthSlider()->value(), 30);
    QCOMPARE(m_capture->pen(Ellipse).width(), 50);
    m_capture->choose(Text);
    m_capture->choose(Ellipse);
    QCOMPARE(m_capture->pen(Ellipse).width(), 50);
}

// Intended: both ways.
void tst_ScreenCaptureWnd_annotating::mosaicIsFifteenWider()
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
    QCOMPARE(penWidths(), QList<int>({2, 6, 2, 2, 27}));
}

void tst_ScreenCaptureWnd_annotating::blurGoesToTheCanvas()
{
    annotate(Mosaic);
    QCOMPARE(ScribbleAreaAccess::mosaicBlur(*m_capture->canvas()), 2);
    m_capture->blurSlider()->setValue(13);
    QCOMPARE(ScribbleAreaAccess::mosaicBlur(*m_capture->canvas()), 13);
    m_capture->blurSlider()->triggerAction(QSlider::SliderPageStepAdd);
    QCOMPARE(ScribbleAreaAccess::mosaicBlur(*m_capture->canvas()), 14);
}

void tst_ScreenCaptureWnd_annotating::storedColorsAreReadWhenTheCanvasIsMade()
{
    annotate(Text);
    QCOMPARE(penColors(), kStored);
    QCOMPARE(penWidths(), QList<int>({2, 6, 2, 2, 16}));
    QCOMPARE(shownColor(), QColor(Qt::black));
    remember({Qt::red, Qt::red, Qt::red, Qt::red});
    window()->reset();
    annotate(Rectangle);
    QCOMPARE(penColors(), kStored);
}

void tst_ScreenCaptureWnd_annotating::textLeavesPaletteAndWidth()
{
    annotate(Rectangle);
    m_capture->widthPicker()->setWidth(9);
    m_capture->pickColor(1, 5);
    m_capture->choose(Text);
    QCOMPARE(shownColor(), kSkyBlue);
    QCOMPARE(m_capture->widthSlider()->value(), 9);
}

void tst_ScreenCaptureWnd_annotating::textHasTheShownColorUntilOneIsChosenForIt()
{
    const auto textColor = [this] { return m_capture->textBox()->textColor().rgb(); };
    annotate(Text);
    QCOMPARE(textColor(), QColor(Qt::black).rgb());
    for (const MainItem tool : {Scribble, Ellipse}) {
        m_capture->choose(tool);
        m_capture->choose(Text);
        QCOMPARE(textColor(), m_capture->pen(tool).color().rgb());
        QCOMPARE(textColor(), shownColor().rgb());
    }
    m_capture->pickColor(1, 5);
    m_capture->choose(Scribble);
    m_capture->choose(Text);
    QCOMPARE(textColor(), kSkyBlue.rgb());
}

void tst_ScreenCaptureWnd_annotating::settingsNeedACanvas()
{
    SKIP_WITHOUT_ASSERTIONS();
    const QByteArray condition = "\"m_scribbleArea != NULL\"";
    QVERIFY(failedAssertion([&] { window()->onFontSizeChanged("8"); }).contains(condition));
    QVERIFY(failedAssertion([&] { window()->onPenWidthChanged(3); }).contains(condition));
    QVERIFY(failedAssertion([&] { window()->onPenColorChanged(Qt::red); }).contains(condition));
}

void tst_ScreenCaptureWnd_annotating::redoIsEnabledWhileItIsPossible()
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
}

void tst_ScreenCaptureWnd_annotating::newEditDisablesRedo_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::addColumn<bool>("forThePicture");
    QTest::newRow("pen") << Scribble << false;
    QTest::newRow("mosaic") << Mosaic << false;
    QTest::newRow("rectangle, committed by another tool") << Rectangle << false;
    QTest::newRow("rectangle, committed for the picture") << Rectangle << true;
}

void tst_ScreenCaptureWnd_annotating::newEditDisablesRedo()
{
    QFETCH(MainItem, tool);
    QFETCH(bool, forThePicture);
    annotate(Scribble);
    m_capture->stroke(QPoint(10, 10), QPoint(50, 50));
    m_capture->choose(Undo);
    QVERIFY(m_capture->button(Redo)->isEnabled());
    if (tool != Scribble)
        m_capture->choose(tool);
    m_capture->stroke(QPoint(10, 50), QPoint(50, 10));
    QCoreApplication::processEvents();
    QCOMPARE(m_capture->button(Redo)->isEnabled(), tool == Rectangle);
    if (forThePicture)
        window()->scribbledImage();
    else if (tool == Rectangle)
        m_capture->choose(Scribble);
    QVERIFY(!m_capture->canvas()->canRedo());
    QVERIFY(!m_capture->button(Redo)->isEnabled());
}

// What is not committed yet is committed for it.
void tst_ScreenCaptureWnd_annotating::drawingIsDelivered()
{
    QFETCH(MainItem, tool);
    // The box that has the focus is drawn without the text cursor.
    QVERIFY(QTest::qWaitForWindowActive(window()));
    annotate(tool);
    m_capture->pickColor(1, 5);
    m_capture->fontBox()->setCurrentText("18");
    m_capture->stroke(kStroke.topLeft(), kStroke.bottomRight());
    if (tool == Text) {
        QVERIFY(m_capture->textBox()->hasFocus());
        QTest::keyClicks(m_capture->textBox(), "hello");
    }
    const QImage before = kDesktop.copy(kRegion);
    const QImage expected = withDrawing(before, tool, m_capture->pen(tool));
    QVERIFY(expected != before);
    window()->accept();
    deliver();
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(m_receiver->image, expected);
}

QTEST_MAIN(tst_ScreenCaptureWnd_annotating)
#include "tst_ScreenCaptureWnd_annotating.moc"
