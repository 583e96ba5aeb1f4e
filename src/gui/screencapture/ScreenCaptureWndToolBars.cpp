// SPDX-License-Identifier: MIT
// The tool bars of the capture window: what stands in them, which tool is chosen, and where its
// settings go.
#include "ColorWidget.h"
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
#include <QStyle>
#include <QStyleOption>

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

// Intended: the brush is always so much wider than the width that is shown.
constexpr int kMosaicExtraWidthPx = 15;

// Intended: kept beside the window, which does not use it.
[[maybe_unused]] const ScreenCaptureToolColors s_penColors;

QString icon(const QString& name)
{
    return QStringLiteral(":/scribble/%1.png").arg(name);
}

// A style fades a disabled icon into the window colour of the palette, which may be dark. The bars
// are white.
QIcon paleWhileDisabled(const QString& name)
{
    QStyleOption option;
    option.palette = QPalette(Qt::white);
    QIcon result(icon(name));
    result.addPixmap(qApp->style()->generatedIconPixmap(QIcon::Disabled, icon(name), &option),
                     QIcon::Disabled);
    return result;
}

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

// Style sheets count the border apart from the size.
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

// An application's style sheet sets margins, frames and sizes for which the bars have no room, and
// may not tell the chosen tool from the others. A sheet of the window is nearer than that one.
// Without one the widgets keep the look of the application's style.
void holdAgainstApplicationStyles(QWidget* window, const QString& textBoxRule = QString())
{
    if (qApp->styleSheet().isEmpty())
        return;
    window->setStyleSheet(
        "#mainToolBar, #mainToolBar > *, #subToolBar, #subToolBar > *, #mosaicPanel > *,"
        "#subToolBar QSlider { margin: 0; padding: 0; border: none; font-size: 12px }"
        "#subToolBar QLabel, #subToolBar QSlider { min-width: 0; min-height: 0 }" +
        sizeRule("#mainToolBar", QSize(0, kMainBarHeightPx)) +
        sizeRule("#mainToolBar QPushButton", kButtonSizePx, 1) +
        sizeRule("#mainToolBar QPushButton:checked", kButtonSizePx, 2, "#00aacc") +
        sizeRule("#mainToolBar #doneButton", kDoneButtonSizePx, 1) +
        sizeRule("#mainToolBar QLabel", kSeparatorSizePx) +
        sizeRule("#subToolBar QComboBox", kFontSizeBoxSizePx, 1) +
        sizeRule("#mosaicPanel", kMosaicPanelSizePx) + textBoxRule);
}

} // namespace

void ScreenCaptureWnd::initToolBars()
{
    constexpr int m = kMainBarMarginPx;
    m_mainToolBar = createToolBar(QStringLiteral("mainToolBar"), QMargins(m, m, m, m));
    m_mainToolBar->setFixedHeight(kMainBarHeightPx);

    m_btnScribble = createToolButton("pen", tr("scribble"));
    m_btnText = createToolButton("text", tr("text"));
    m_btnArrow = createToolButton("arrow", tr("Arrow"));
    m_btnRect = createToolButton("rect", tr("Rectangle"));
    m_btnEllipse = createToolButton("circle", tr("Ellipse"));
    m_btnMosaic = createToolButton("mosaic", tr("Mosaic"));
    QPushButton* btnUndo = createCommandButton("undo", tr("undo"), SLOT(undo()));
    btnUndo->setFixedSize(kButtonSizePx);
    btnUndo->setShortcut(QKeySequence::Undo);
    m_btnRedo = createCommandButton("redo", tr("redo"), SLOT(redo()));
    m_btnRedo->setIcon(paleWhileDisabled("redo"));
    m_btnRedo->setEnabled(false);
    m_btnRedo->setShortcut(QKeySequence::Redo);
    // Intended: the redo button keeps the size that the layout gives it.
    m_btnScribble->setFixedSize(kButtonSizePx);
    QPushButton* btnSave = createCommandButton("save", tr("save"), SLOT(save()));
    btnSave->setFixedSize(kButtonSizePx);
    QPushButton* btnClose = createCommandButton("close", tr("close"), SLOT(reject()));
    btnClose->setFixedSize(kButtonSizePx);

    QLayout* layout = m_mainToolBar->layout();
    layout->addWidget(m_btnScribble);
    layout->addWidget(m_btnText);
    layout->addWidget(m_btnArrow);
    layout->addWidget(m_btnRect);
    layout->addWidget(m_btnEllipse);
    layout->addWidget(m_btnMosaic);
    layout->addWidget(createSeparator());
    layout->addWidget(btnUndo);
    layout->addWidget(m_btnRedo);
    layout->addWidget(btnSave);
    layout->addWidget(createSeparator());
    layout->addWidget(btnClose);
    layout->addWidget(createDoneButton());

    initSubToolBar();
    holdAgainstApplicationStyles(this);
}

// A press between the buttons, or with another button than the left, must not reach the window
// beneath: there a double-click finishes the capture and a right click drops the region.
QWidget* ScreenCaptureWnd::createToolBar(const QString& name, const QMargins& margins)
{
    auto* bar = new QWidget(this);
    bar->setObjectName(name);
    bar->setStyleSheet(style::kToolBar);
    bar->setCursor(Qt::ArrowCursor);
    bar->setAttribute(Qt::WA_NoMousePropagation);
    bar->installEventFilter(this);
    bar->hide();
    // What the style sheet paints is opaque; told so, Qt moves the bar's pixels instead of painting
    // them anew. A style sheet takes this back when it is applied, so it comes first.
    bar->ensurePolished();
    bar->setAutoFillBackground(true);
    (new QHBoxLayout(bar))->setContentsMargins(margins);
    return bar;
}

QPushButton* ScreenCaptureWnd::createToolButton(const QString& name, const QString& toolTip)
{
    QPushButton* button = createCommandButton(name, toolTip, SLOT(onPaintTypeChanged()));
    button->setFixedSize(kButtonSizePx);
    button->setCheckable(true);
    return button;
}

// A click leaves the focus with the text that is being typed. Not an auto-default button, so that
// Enter finishes the capture whichever button has the focus.
QPushButton* ScreenCaptureWnd::createCommandButton(const QString& name, const QString& toolTip,
                                                   const char* slot)
{
    auto* button = new QPushButton(QIcon(icon(name)), QString());
    button->setToolTip(toolTip);
    button->setStyleSheet(style::kDarkToolTip);
    button->setAccessibleName(toolTip);
    button->setAutoDefault(false);
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, SIGNAL(clicked()), this, slot);
    return button;
}

QPushButton* ScreenCaptureWnd::createDoneButton()
{
    auto* button = new QPushButton(QIcon(icon("done")), tr("done"));
    button->setObjectName(QStringLiteral("doneButton"));
    button->setFixedSize(kDoneButtonSizePx);
    button->setStyleSheet(style::kDarkText);
    button->setDefault(true);
    button->setAutoDefault(false);
    connect(button, SIGNAL(clicked()), this, SLOT(onBtnSend()));
    return button;
}

QLabel* ScreenCaptureWnd::createSeparator()
{
    auto* label = new QLabel;
    label->setPixmap(QPixmap(icon("sep")));
    label->setFixedSize(kSeparatorSizePx);
    return label;
}

void ScreenCaptureWnd::initSubToolBar()
{
    m_subToolBar = createToolBar(QStringLiteral("subToolBar"), QMargins(0, 0, 0, 0));

    m_penWidthWidget = new PenWidthWidget(m_subToolBar);
    connect(m_penWidthWidget, SIGNAL(currentWidthChanged(int)), this, SLOT(onPenWidthChanged(int)));
    m_colorWidget = new ColorWidget(m_subToolBar);
    m_colorWidget->setAccessibleName(tr("Color"));
    connect(m_colorWidget, SIGNAL(currentColorChanged(QColor)), this,
            SLOT(onPenColorChanged(QColor)));
    m_fontSizeLabel = new QLabel(m_subToolBar);
    m_fontSizeLabel->setPixmap(QPixmap(icon("text")));
    m_fontSizeLabel->setMargin(kFontSizeLabelMarginPx);
    m_fontSizeBox = createFontSizeBox();
    m_mosaicPanel = createMosaicPanel();

    QLayout* layout = m_subToolBar->layout();
    layout->addWidget(m_fontSizeLabel);
    layout->addWidget(m_fontSizeBox);
    layout->addWidget(m_penWidthWidget);
    layout->addWidget(createSeparator());
    layout->addWidget(m_mosaicPanel);
    layout->addWidget(m_colorWidget);
}

QComboBox* ScreenCaptureWnd::createFontSizeBox()
{
    // A child from the start: a new parent has it measure its items, for which fonts are loaded.
    auto* box = new QComboBox(m_subToolBar);
    box->setFixedSize(kFontSizeBoxSizePx);
    box->setStyleSheet(style::kDarkText);
    box->setAccessibleName(tr("Font size"));
    box->setFocusPolicy(Qt::TabFocus);
    for (const int size : kFontSizesPt)
        box->addItem(QString::number(size));
    connect(box, SIGNAL(currentIndexChanged(QString)), this, SLOT(onFontSizeChanged(QString)));
    return box;
}

QWidget* ScreenCaptureWnd::createMosaicPanel()
{
    auto* panel = new QWidget;
    panel->setObjectName(QStringLiteral("mosaicPanel"));
    panel->setFixedSize(kMosaicPanelSizePx);
    auto* slider = new QSlider(Qt::Horizontal);
    slider->setFixedSize(kBlurSliderSizePx);
    slider->setRange(kMinBlurPx, kMaxBlurPx);
    slider->setSingleStep(1);
    slider->setPageStep(1);
    slider->setToolTip(tr("Blur"));
    slider->setAccessibleName(tr("Blur"));
    slider->setFocusPolicy(Qt::TabFocus);
    connect(slider, SIGNAL(valueChanged(int)), this, SLOT(onMosaicBlurChanged(int)));

    auto* label = new QLabel(tr("Blur"));
    label->setStyleSheet(style::kDarkText);
    auto* layout = new QHBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addWidget(slider);
    return panel;
}

// The canvas is created once and reused; each time it takes the region's pixels from the desktop.
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
    ScribbleArea& canvas = *m_scribbleArea;
    canvas.setScribblePen(withColor(canvas.scribblePen(), colors.scribbleColor));
    canvas.setRectPen(withColor(canvas.rectPen(), colors.rectColor));
    canvas.setEllipsePen(withColor(canvas.ellipsePen(), colors.ellipseColor));
    canvas.setArrowPen(withColor(canvas.arrowPen(), colors.arrowColor));
}

// The buttons are made exclusive by hand. Intended: a click that unchecks the chosen tool leaves it
// in use.
void ScreenCaptureWnd::onPaintTypeChanged()
{
    if (m_state < StateSelected) {
        uncheckTools();
        return;
    }
    if (m_state == StateSelected)
        beginAnnotating();
    if (m_checkedButton)
        m_checkedButton->setChecked(false);
    applyCheckedTool();
    // A shape that the change of tool committed leaves nothing to redo.
    updateRedoButton();
}

// A button that is held while the bar goes away is clicked when it is let go.
void ScreenCaptureWnd::uncheckTools()
{
    for (QAbstractButton* button : m_mainToolBar->findChildren<QAbstractButton*>())
        button->setChecked(false);
}

// Intended: the sub bar is placed with the height it has before it is shown and sized for the tool.
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
    if (m_btnScribble->isChecked()) {
        m_checkedButton = m_btnScribble;
        m_scribbleArea->setPaintTypeToScribble();
        showPenSettings(m_scribbleArea->scribblePen());
    } else if (m_btnText->isChecked()) {
        m_checkedButton = m_btnText;
        m_scribbleArea->setPaintTypeToText();
        // Until a colour is chosen for text, it has the one that the palette's box shows.
        if (!m_textColorChosen)
            m_scribbleArea->setTextColor(m_colorWidget->color());
        showSubToolBarForText();
    } else if (m_btnRect->isChecked()) {
        m_checkedButton = m_btnRect;
        chooseGraph(ScribbleArea::GRAPH_RECT, m_scribbleArea->rectPen());
    } else if (m_btnArrow->isChecked()) {
        m_checkedButton = m_btnArrow;
        chooseGraph(ScribbleArea::GRAPH_ARROW, m_scribbleArea->arrowPen());
    } else if (m_btnEllipse->isChecked()) {
        m_checkedButton = m_btnEllipse;
        chooseGraph(ScribbleArea::GRAPH_ELLIPSE, m_scribbleArea->ellipsePen());
    } else if (m_btnMosaic->isChecked()) {
        m_checkedButton = m_btnMosaic;
        m_scribbleArea->setPaintTypeToMosaic();
        m_penWidthWidget->setWidth(m_scribbleArea->mosaicPen().width() - kMosaicExtraWidthPx);
        showSubToolBarForMosaic();
    }
}

void ScreenCaptureWnd::chooseGraph(int state, const QPen& pen)
{
    m_scribbleArea->setPaintTypeToGraph();
    m_scribbleArea->setGraphState(state);
    if (state == ScribbleArea::GRAPH_ARROW)
        m_scribbleArea->initArrow();
    showPenSettings(pen);
}

void ScreenCaptureWnd::showPenSettings(const QPen& pen)
{
    m_penWidthWidget->setWidth(pen.width());
    m_colorWidget->setColor(pen.color());
    showSubToolBarForPen();
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
    holdAgainstApplicationStyles(this, QString(style::kTextBoxOfSize).arg(size));
}

// Widths are not remembered between captures.
void ScreenCaptureWnd::onPenWidthChanged(int width)
{
    Q_ASSERT(m_scribbleArea != NULL);
    ScribbleArea& canvas = *m_scribbleArea;
    if (m_btnScribble->isChecked())
        canvas.setScribblePen(withWidth(canvas.scribblePen(), width));
    else if (m_btnText->isChecked())
        return;
    else if (m_btnRect->isChecked())
        canvas.setRectPen(withWidth(canvas.rectPen(), width));
    else if (m_btnEllipse->isChecked())
        canvas.setEllipsePen(withWidth(canvas.ellipsePen(), width));
    else if (m_btnArrow->isChecked())
        canvas.setArrowPen(withWidth(canvas.arrowPen(), width));
    else if (m_btnMosaic->isChecked())
        canvas.setMosaicPen(withWidth(canvas.mosaicPen(), width + kMosaicExtraWidthPx));
}

// Intended: the colours are stored also when the tool has none. penColorChanged() is not emitted.
// NOLINTNEXTLINE(performance-unnecessary-value-param): the slot's published signature.
void ScreenCaptureWnd::onPenColorChanged(QColor c)
{
    Q_ASSERT(m_scribbleArea != NULL);
    ScribbleArea& canvas = *m_scribbleArea;
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    if (m_btnScribble->isChecked()) {
        canvas.setScribblePen(withColor(canvas.scribblePen(), c));
        colors.scribbleColor = c;
    } else if (m_btnText->isChecked()) {
        canvas.setTextColor(c);
        m_textColorChosen = true;
        colors.textColor = c;
    } else if (m_btnRect->isChecked()) {
        canvas.setRectPen(withColor(canvas.rectPen(), c));
        colors.rectColor = c;
    } else if (m_btnEllipse->isChecked()) {
        canvas.setEllipsePen(withColor(canvas.ellipsePen(), c));
        colors.ellipseColor = c;
    } else if (m_btnArrow->isChecked()) {
        canvas.setArrowPen(withColor(canvas.arrowPen(), c));
        colors.arrowColor = c;
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
