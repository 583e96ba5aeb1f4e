// SPDX-License-Identifier: MIT
// The tool bars of the capture window: what stands in them, which tool is chosen, and where its
// settings go.
#include "ColorWidget.h"
#include "Icons.h"
#include "PenWidthWidget.h"
#include "ResizableRect.h"
#include "ScreenCaptureTool.h"
#include "ScreenCaptureWnd.h"
#include "ScribbleArea.h"
#include "StyleSheets.h"

#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPen>
#include <QPushButton>
#include <QSlider>

#include <algorithm>
#include <initializer_list>

namespace
{

constexpr int kMainBarHeightPx = 30;
constexpr int kMainBarMarginPx = 2;
constexpr QSize kButtonSizePx(30, 26);
constexpr QSize kDoneButtonSizePx(60, 26);
constexpr QSize kSeparatorSizePx(3, 26);
constexpr int kBarGapPx = 2;

constexpr int kFontSizeLabelMarginPx = 6;
constexpr QSize kFontSizeBoxSizePx(45, 26);
constexpr int kFontSizesPt[] = {8, 9, 10, 11, 12, 14, 16, 18, 20, 22};

constexpr QSize kMosaicPanelSizePx(140, 20);
constexpr QSize kBlurSliderSizePx(80, 20);
constexpr int kMinBlurPx = 4;
constexpr int kMaxBlurPx = 20;
constexpr QSize kMosaicBarExtraPx(10, 0);

constexpr int kMosaicExtraWidthPx = 15;

// Intended: it exists beside the window, which does not use it.
[[maybe_unused]] const ScreenCaptureToolColors s_penColors;

QPen withWidth(QPen pen, int width)
{
    pen.setWidth(width);
    return pen;
}

QPen withColor(QPen pen, const QColor& color)
{
    pen.setColor(color);
    return pen;
}

// In a style sheet, the size does not include the border.
QString sizeRule(const QString& selector, const QSize& size, int borderPx = 0,
                 const QString& borderColor = QStringLiteral("silver"))
{
    return QStringLiteral("%1 { border: %2px solid %3; min-width: %4px; min-height: %5px }")
        .arg(selector)
        .arg(borderPx)
        .arg(borderColor)
        .arg(size.width() - 2 * borderPx)
        .arg(size.height() - 2 * borderPx);
}

// An application's style sheet may set margins, frames and sizes for which the bars have no room,
// and may not tell the chosen tool from the others. The window's style sheet takes precedence over
// it. Without an application style sheet the widgets keep the look of the application's style.
void overrideApplicationStyles(QWidget* window, const QString& textBoxRule = QString())
{
    if (qApp->styleSheet().isEmpty())
        return;
    window->setStyleSheet(
        "#mainToolBar, #mainToolBar > *, #subToolBar, #subToolBar > *, #mosaicPanel > *,"
        "#subToolBar QSlider { margin: 0; padding: 0; border: none; font-size: 12px }"
        "#subToolBar QLabel, #subToolBar QSlider { min-width: 0; min-height: 0 }" +
        sizeRule("#mainToolBar", QSize(0, kMainBarHeightPx)) +
        sizeRule("#mainToolBar QPushButton", kButtonSizePx, 1) +
        sizeRule("#mainToolBar QPushButton:checked", kButtonSizePx, 2, style::kAccentColor) +
        sizeRule("#mainToolBar #doneButton", kDoneButtonSizePx, 1) +
        sizeRule("#mainToolBar QLabel", kSeparatorSizePx) +
        sizeRule("#subToolBar QComboBox", kFontSizeBoxSizePx, 1) +
        sizeRule("#mosaicPanel", kMosaicPanelSizePx) + textBoxRule);
}

// A press between the buttons, or with another button than the left, must not reach the window
// beneath: there a double-click finishes the capture and a right click drops the region.
QWidget* createToolBar(QWidget* window, const QString& name, int marginPx)
{
    auto* bar = new QWidget(window);
    bar->setObjectName(name);
    bar->setStyleSheet(style::kToolBar);
    bar->setCursor(Qt::ArrowCursor);
    bar->setAttribute(Qt::WA_NoMousePropagation);
    bar->installEventFilter(window);
    bar->hide();
    // The style sheet paints an opaque background. With this property Qt scrolls the pixels of a
    // moved bar instead of repainting them. Polishing resets the property, so it comes first.
    bar->ensurePolished();
    bar->setAutoFillBackground(true);
    (new QHBoxLayout(bar))->setContentsMargins(marginPx, marginPx, marginPx, marginPx);
    return bar;
}

// A click leaves the focus with the text that is being typed. Not an auto-default button, so that
// Enter finishes the capture whichever button has the focus.
QPushButton* createCommandButton(QWidget* window, const QString& name, const QString& toolTip,
                                 const char* slot)
{
    auto* button = new icons::Button(icons::icon(name), QString());
    button->setToolTip(toolTip);
    button->setStyleSheet(style::kDarkToolTip);
    button->setAccessibleName(toolTip);
    button->setAutoDefault(false);
    button->setFocusPolicy(Qt::TabFocus);
    QObject::connect(button, SIGNAL(clicked()), window, slot);
    return button;
}

QPushButton* createToolButton(QWidget* window, const QString& name, const QString& toolTip)
{
    QPushButton* button = createCommandButton(window, name, toolTip, SLOT(onPaintTypeChanged()));
    button->setFixedSize(kButtonSizePx);
    button->setCheckable(true);
    return button;
}

QPushButton* createDoneButton(QWidget* window)
{
    auto* button = new icons::Button(icons::icon("done"), ScreenCaptureWnd::tr("done"));
    button->setObjectName(QStringLiteral("doneButton"));
    button->setFixedSize(kDoneButtonSizePx);
    button->setStyleSheet(style::kDarkText);
    button->setDefault(true);
    button->setAutoDefault(false);
    QObject::connect(button, SIGNAL(clicked()), window, SLOT(onBtnSend()));
    return button;
}

// The window may come to the densest screen after it is made.
QLabel* createSeparator()
{
    auto* label = new QLabel;
    label->setPixmap(icons::pixmap("sep", qApp->devicePixelRatio()));
    label->setFixedSize(kSeparatorSizePx);
    return label;
}

QLabel* createFontSizeLabel(QWidget* bar)
{
    auto* label = new QLabel(bar);
    label->setPixmap(icons::pixmap("text", qApp->devicePixelRatio()));
    label->setMargin(kFontSizeLabelMarginPx);
    return label;
}

QComboBox* createFontSizeBox(QWidget* window, QWidget* bar)
{
    // Pass the parent here: reparenting a filled combo box measures its items, which loads fonts
    // before the first frame.
    auto* box = new QComboBox(bar);
    box->setFixedSize(kFontSizeBoxSizePx);
    box->setStyleSheet(style::kDarkText);
    box->setAccessibleName(ScreenCaptureWnd::tr("Font size"));
    box->setFocusPolicy(Qt::TabFocus);
    for (const int size : kFontSizesPt)
        box->addItem(QString::number(size));
    QObject::connect(box, SIGNAL(currentTextChanged(QString)), window,
                     SLOT(onFontSizeChanged(QString)));
    return box;
}

QSlider* createBlurSlider(QWidget* window)
{
    auto* slider = new QSlider(Qt::Horizontal);
    slider->setFixedSize(kBlurSliderSizePx);
    slider->setRange(kMinBlurPx, kMaxBlurPx);
    slider->setSingleStep(1);
    slider->setPageStep(1);
    slider->setToolTip(ScreenCaptureWnd::tr("Blur"));
    slider->setAccessibleName(ScreenCaptureWnd::tr("Blur"));
    slider->setFocusPolicy(Qt::TabFocus);
    QObject::connect(slider, SIGNAL(valueChanged(int)), window, SLOT(onMosaicBlurChanged(int)));
    return slider;
}

QWidget* createMosaicPanel(QWidget* window)
{
    auto* panel = new QWidget;
    panel->setObjectName(QStringLiteral("mosaicPanel"));
    panel->setFixedSize(kMosaicPanelSizePx);
    auto* label = new QLabel(ScreenCaptureWnd::tr("Blur"));
    label->setStyleSheet(style::kDarkText);
    auto* layout = new QHBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addWidget(createBlurSlider(window));
    return panel;
}

// A button that is held while the bar is hidden is clicked when it is released.
void uncheckButtons(const QWidget* bar)
{
    for (QAbstractButton* button : bar->findChildren<QAbstractButton*>())
        button->setChecked(false);
}

void useShape(ScribbleArea& canvas, ScribbleArea::GRAPH_STATE shape)
{
    canvas.setPaintTypeToGraph();
    canvas.setGraphState(shape);
    if (shape == ScribbleArea::GRAPH_ARROW)
        canvas.initArrow();
}

} // namespace

// What a tool is. A new one takes a row below, and a place in each of the three orders.
struct Q_DECL_HIDDEN ScreenCaptureWnd::Tool {
    QPushButton* ScreenCaptureWnd::*button;
    const char* icon;
    const char* toolTip;
    void (*use)(ScribbleArea& canvas);
    // Null for text, which has no pen.
    QPen (ScribbleArea::*pen)() const;
    void (ScribbleArea::*setPen)(const QPen& pen);
    // Null for the mosaic, which has no colour.
    QColor ScreenCaptureToolColors::*color;
    void (ScreenCaptureWnd::*showSubToolBar)();
    // Intended: the pen is that much wider than the width that is shown.
    int extraPenWidthPx = 0;

    static const Tool kScribble;
    static const Tool kText;
    static const Tool kArrow;
    static const Tool kRect;
    static const Tool kEllipse;
    static const Tool kMosaic;

    using Order = std::initializer_list<const Tool*>;
    // Left to right in the bar.
    static constexpr Order kBarOrder{&kScribble, &kText, &kArrow, &kRect, &kEllipse, &kMosaic};
    // Intended: of several checked tools, the one to use and the one whose width and colour change
    // are looked for in different orders.
    static constexpr Order kUseOrder{&kScribble, &kText, &kRect, &kArrow, &kEllipse, &kMosaic};
    static constexpr Order kSettingsOrder{&kScribble, &kText, &kRect, &kEllipse, &kArrow, &kMosaic};
    static_assert(kUseOrder.size() == kBarOrder.size());
    static_assert(kSettingsOrder.size() == kBarOrder.size());

    static const Tool* firstChecked(const ScreenCaptureWnd& window, Order order);
    void setWidth(ScribbleArea& canvas, int width) const;
    void setColor(ScribbleArea& canvas, const QColor& c) const;
};

const ScreenCaptureWnd::Tool ScreenCaptureWnd::Tool::kScribble{
    &ScreenCaptureWnd::m_btnScribble,
    "pen",
    QT_TRANSLATE_NOOP("ScreenCaptureWnd", "scribble"),
    [](ScribbleArea& canvas) { canvas.setPaintTypeToScribble(); },
    &ScribbleArea::scribblePen,
    &ScribbleArea::setScribblePen,
    &ScreenCaptureToolColors::scribbleColor,
    &ScreenCaptureWnd::showSubToolBarForPen};

const ScreenCaptureWnd::Tool ScreenCaptureWnd::Tool::kText{
    &ScreenCaptureWnd::m_btnText,
    "text",
    QT_TRANSLATE_NOOP("ScreenCaptureWnd", "text"),
    [](ScribbleArea& canvas) { canvas.setPaintTypeToText(); },
    nullptr,
    nullptr,
    &ScreenCaptureToolColors::textColor,
    &ScreenCaptureWnd::showSubToolBarForText};

const ScreenCaptureWnd::Tool ScreenCaptureWnd::Tool::kArrow{
    &ScreenCaptureWnd::m_btnArrow,
    "arrow",
    QT_TRANSLATE_NOOP("ScreenCaptureWnd", "Arrow"),
    [](ScribbleArea& canvas) { useShape(canvas, ScribbleArea::GRAPH_ARROW); },
    &ScribbleArea::arrowPen,
    &ScribbleArea::setArrowPen,
    &ScreenCaptureToolColors::arrowColor,
    &ScreenCaptureWnd::showSubToolBarForPen};

const ScreenCaptureWnd::Tool ScreenCaptureWnd::Tool::kRect{
    &ScreenCaptureWnd::m_btnRect,
    "rect",
    QT_TRANSLATE_NOOP("ScreenCaptureWnd", "Rectangle"),
    [](ScribbleArea& canvas) { useShape(canvas, ScribbleArea::GRAPH_RECT); },
    &ScribbleArea::rectPen,
    &ScribbleArea::setRectPen,
    &ScreenCaptureToolColors::rectColor,
    &ScreenCaptureWnd::showSubToolBarForPen};

const ScreenCaptureWnd::Tool ScreenCaptureWnd::Tool::kEllipse{
    &ScreenCaptureWnd::m_btnEllipse,
    "circle",
    QT_TRANSLATE_NOOP("ScreenCaptureWnd", "Ellipse"),
    [](ScribbleArea& canvas) { useShape(canvas, ScribbleArea::GRAPH_ELLIPSE); },
    &ScribbleArea::ellipsePen,
    &ScribbleArea::setEllipsePen,
    &ScreenCaptureToolColors::ellipseColor,
    &ScreenCaptureWnd::showSubToolBarForPen};

const ScreenCaptureWnd::Tool ScreenCaptureWnd::Tool::kMosaic{
    &ScreenCaptureWnd::m_btnMosaic,
    "mosaic",
    QT_TRANSLATE_NOOP("ScreenCaptureWnd", "Mosaic"),
    [](ScribbleArea& canvas) { canvas.setPaintTypeToMosaic(); },
    &ScribbleArea::mosaicPen,
    &ScribbleArea::setMosaicPen,
    nullptr,
    &ScreenCaptureWnd::showSubToolBarForMosaic,
    kMosaicExtraWidthPx};

const ScreenCaptureWnd::Tool* ScreenCaptureWnd::Tool::firstChecked(const ScreenCaptureWnd& window,
                                                                   Order order)
{
    const auto* found = std::find_if(order.begin(), order.end(), [&window](const Tool* tool) {
        return (window.*tool->button)->isChecked();
    });
    return found != order.end() ? *found : nullptr;
}

void ScreenCaptureWnd::Tool::setWidth(ScribbleArea& canvas, int width) const
{
    if (pen)
        (canvas.*setPen)(withWidth((canvas.*pen)(), width + extraPenWidthPx));
}

void ScreenCaptureWnd::Tool::setColor(ScribbleArea& canvas, const QColor& c) const
{
    if (pen)
        (canvas.*setPen)(withColor((canvas.*pen)(), c));
    else
        canvas.setTextColor(c);
}

void ScreenCaptureWnd::initToolBars()
{
    m_mainToolBar = createToolBar(this, QStringLiteral("mainToolBar"), kMainBarMarginPx);
    m_mainToolBar->setFixedHeight(kMainBarHeightPx);
    for (const Tool* tool : Tool::kBarOrder)
        this->*tool->button = createToolButton(this, tool->icon, tr(tool->toolTip));
    QPushButton* btnUndo = createCommandButton(this, "undo", tr("undo"), SLOT(undo()));
    btnUndo->setFixedSize(kButtonSizePx);
    btnUndo->setShortcut(QKeySequence::Undo);
    m_btnRedo = createCommandButton(this, "redo", tr("redo"), SLOT(redo()));
    m_btnRedo->setEnabled(false);
    m_btnRedo->setShortcut(QKeySequence::Redo);
    // Intended: the redo button keeps the size that the layout gives it.
    m_btnScribble->setFixedSize(kButtonSizePx);
    QPushButton* btnSave = createCommandButton(this, "save", tr("save"), SLOT(save()));
    btnSave->setFixedSize(kButtonSizePx);
    QPushButton* btnClose = createCommandButton(this, "close", tr("close"), SLOT(reject()));
    btnClose->setFixedSize(kButtonSizePx);

    QLayout* layout = m_mainToolBar->layout();
    for (const Tool* tool : Tool::kBarOrder)
        layout->addWidget(this->*tool->button);
    layout->addWidget(createSeparator());
    layout->addWidget(btnUndo);
    layout->addWidget(m_btnRedo);
    layout->addWidget(btnSave);
    layout->addWidget(createSeparator());
    layout->addWidget(btnClose);
    layout->addWidget(createDoneButton(this));

    initSubToolBar();
    overrideApplicationStyles(this);
}

void ScreenCaptureWnd::initSubToolBar()
{
    m_subToolBar = createToolBar(this, QStringLiteral("subToolBar"), 0);

    m_penWidthWidget = new PenWidthWidget(m_subToolBar);
    connect(m_penWidthWidget, SIGNAL(currentWidthChanged(int)), this, SLOT(onPenWidthChanged(int)));
    m_colorWidget = new ColorWidget(m_subToolBar);
    m_colorWidget->setAccessibleName(tr("Color"));
    connect(m_colorWidget, SIGNAL(currentColorChanged(QColor)), this,
            SLOT(onPenColorChanged(QColor)));
    m_fontSizeLabel = createFontSizeLabel(m_subToolBar);
    m_fontSizeBox = createFontSizeBox(this, m_subToolBar);
    m_mosaicPanel = createMosaicPanel(this);

    QLayout* layout = m_subToolBar->layout();
    layout->addWidget(m_fontSizeLabel);
    layout->addWidget(m_fontSizeBox);
    layout->addWidget(m_penWidthWidget);
    layout->addWidget(createSeparator());
    layout->addWidget(m_mosaicPanel);
    layout->addWidget(m_colorWidget);
}

// Creates the canvas once and reuses it. Each time it takes the region's pixels from the desktop.
void ScreenCaptureWnd::initScribbleArea()
{
    if (!m_scribbleArea) {
        m_scribbleArea = new ScribbleArea(this);
        m_scribbleArea->installEventFilter(this);
        m_scribbleArea->setWindowFlags(Qt::FramelessWindowHint);
        m_scribbleArea->setStyleSheet(style::kTransparent);
        m_scribbleArea->stackUnder(m_mainToolBar);
        ScreenCaptureToolColors colors;
        ScreenCaptureTool::penColor(colors);
        setScribbleAreaToolColor(colors);
    }
    m_scribbleArea->setGeometry(m_rectCapture->rect());
    m_scribbleArea->setImage(captureImage());
    m_scribbleArea->show();
}

void ScreenCaptureWnd::setScribbleAreaToolColor(const ScreenCaptureToolColors& colors)
{
    if (!m_scribbleArea)
        return;
    for (const Tool* tool : Tool::kSettingsOrder) {
        if (tool->pen && tool->color)
            tool->setColor(*m_scribbleArea, colors.*tool->color);
    }
}

// Makes the buttons exclusive by hand. Intended: a click that unchecks the chosen tool leaves it in
// use.
void ScreenCaptureWnd::onPaintTypeChanged()
{
    if (m_state < StateSelected) {
        uncheckButtons(m_mainToolBar);
        return;
    }
    if (m_state == StateSelected)
        beginAnnotating();
    if (m_checkedButton)
        m_checkedButton->setChecked(false);
    applyCheckedTool();
    // The change of tool may have committed a shape, which discards what could be redone.
    updateRedoButton();
}

// Intended: the sub bar is placed with the height that it has before it is shown and sized for the
// tool.
void ScreenCaptureWnd::beginAnnotating()
{
    m_state = StateAnnotating;
    initScribbleArea();
    m_rectCapture->setEnabled(false);
    updateSubToolBarPos();
    m_subToolBar->show();
}

void ScreenCaptureWnd::applyCheckedTool()
{
    const Tool* tool = Tool::firstChecked(*this, Tool::kUseOrder);
    if (!tool)
        return;
    m_checkedButton = this->*tool->button;
    tool->use(*m_scribbleArea);
    if (tool->pen) {
        const QPen pen = (m_scribbleArea->*tool->pen)();
        m_penWidthWidget->setWidth(pen.width() - tool->extraPenWidthPx);
        if (tool->color)
            m_colorWidget->setColor(pen.color());
    }
    // Until a colour is chosen for text, it has the one that the palette's box shows.
    if (tool == &Tool::kText && !m_textColorChosen)
        m_scribbleArea->setTextColor(m_colorWidget->color());
    (this->*tool->showSubToolBar)();
}

void ScreenCaptureWnd::showSubToolBarForPen()
{
    m_fontSizeLabel->hide();
    m_fontSizeBox->hide();
    m_penWidthWidget->show();
    m_mosaicPanel->hide();
    m_colorWidget->show();
    m_subToolBar->resize(m_subToolBar->layout()->minimumSize());
}

void ScreenCaptureWnd::showSubToolBarForText()
{
    m_fontSizeLabel->show();
    m_fontSizeBox->show();
    m_penWidthWidget->hide();
    m_mosaicPanel->hide();
    m_colorWidget->show();
    m_subToolBar->resize(m_subToolBar->layout()->minimumSize());
}

void ScreenCaptureWnd::showSubToolBarForMosaic()
{
    m_fontSizeLabel->hide();
    m_fontSizeBox->hide();
    m_penWidthWidget->show();
    m_mosaicPanel->show();
    m_colorWidget->hide();
    m_subToolBar->resize(m_subToolBar->layout()->minimumSize() + kMosaicBarExtraPx);
}

void ScreenCaptureWnd::updateSubToolBarPos()
{
    updateMainToolBarPos(m_subToolBar->height() + kBarGapPx);
    m_subToolBar->move(m_mainToolBar->mapToParent(m_mainToolBar->rect().bottomLeft()) +
                       QPoint(0, kBarGapPx));
}

void ScreenCaptureWnd::onFontSizeChanged(const QString& size)
{
    Q_ASSERT(m_scribbleArea != NULL);
    if (!m_btnText->isChecked())
        return;
    m_scribbleArea->setTextFontSize(size.toInt());
    // An application's style sheet would override the font size of the text box.
    overrideApplicationStyles(this, QString(style::kTextBoxOfSize).arg(size));
}

// Intended: widths are not stored.
void ScreenCaptureWnd::onPenWidthChanged(int width)
{
    Q_ASSERT(m_scribbleArea != NULL);
    if (const Tool* tool = Tool::firstChecked(*this, Tool::kSettingsOrder))
        tool->setWidth(*m_scribbleArea, width);
}

// Intended: the colours are stored even if the tool has none. penColorChanged() is not emitted.
// NOLINTNEXTLINE(performance-unnecessary-value-param): the slot's published signature.
void ScreenCaptureWnd::onPenColorChanged(QColor c)
{
    Q_ASSERT(m_scribbleArea != NULL);
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    const Tool* tool = Tool::firstChecked(*this, Tool::kSettingsOrder);
    if (tool && tool->color) {
        tool->setColor(*m_scribbleArea, c);
        colors.*tool->color = c;
        m_textColorChosen = m_textColorChosen || tool == &Tool::kText;
    }
    ScreenCaptureTool::setPenColor(colors);
}

void ScreenCaptureWnd::onMosaicBlurChanged(int value)
{
    if (m_scribbleArea)
        m_scribbleArea->setMosaicBlur(value);
}

void ScreenCaptureWnd::updateRedoButton() const
{
    m_btnRedo->setEnabled(m_scribbleArea && m_scribbleArea->canRedo());
}
