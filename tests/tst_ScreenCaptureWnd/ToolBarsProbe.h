// SPDX-License-Identifier: MIT
#pragma once

#include "Access.h"
#include "CaptureProbe.h"
#include "ColorWidget.h"
#include "PenWidthWidget.h"
#include "ScreenCaptureTool.h"

#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QSlider>
#include <QTextEdit>

/// The places in the main tool bar, left to right.
enum MainItem {
    Scribble,
    Text,
    Arrow,
    Rectangle,
    Ellipse,
    Mosaic,
    FirstSeparator,
    Undo,
    Redo,
    Save,
    SecondSeparator,
    Close,
    Done,
    MainItemCount
};

/// The places in the sub tool bar, left to right.
enum SubItem { FontLabel, FontBox, WidthPicker, SubSeparator, BlurPanel, Palette, SubItemCount };

constexpr MainItem kTools[] = {Scribble, Text, Arrow, Rectangle, Ellipse, Mosaic};
constexpr MainItem kPenTools[] = {Scribble, Arrow, Rectangle, Ellipse};

inline const char* nameOf(MainItem tool)
{
    static const char* const names[] = {"pen", "text", "arrow", "rectangle", "ellipse", "mosaic"};
    return names[tool];
}

/// A capture whose tool bars are used.
class ToolBarsProbe : public CaptureProbe
{
public:
    QWidget* mainBar() const { return toolBar(); }
    QWidget* subBar() const { return window()->findChild<QWidget*>("subToolBar"); }
    QWidget* at(MainItem item) const { return mainBar()->layout()->itemAt(item)->widget(); }
    QWidget* at(SubItem item) const { return subBar()->layout()->itemAt(item)->widget(); }
    QPushButton* button(MainItem item) const { return qobject_cast<QPushButton*>(at(item)); }
    QComboBox* fontBox() const { return qobject_cast<QComboBox*>(at(FontBox)); }
    PenWidthWidget* widthPicker() const { return qobject_cast<PenWidthWidget*>(at(WidthPicker)); }
    QSlider* widthSlider() const { return widthPicker()->findChild<QSlider*>(); }
    QSlider* blurSlider() const { return at(BlurPanel)->findChild<QSlider*>(); }
    ColorWidget* palette() const { return qobject_cast<ColorWidget*>(at(Palette)); }
    ScribbleArea* canvas() const { return window()->findChild<ScribbleArea*>(); }

    void choose(MainItem tool) const { button(tool)->click(); }
    /// Drags out a region and puts a tool in the hand.
    void annotate(const QRect& region, MainItem tool) const
    {
        drag(region.topLeft(), region.bottomRight());
        choose(tool);
    }
    QList<MainItem> checkedTools() const
    {
        QList<MainItem> checked;
        for (const MainItem tool : kTools) {
            if (button(tool)->isChecked())
                checked << tool;
        }
        return checked;
    }
    /// Hovers and clicks a cell of the palette.
    void pickColor(int row, int col) const
    {
        const QPoint p = palette()->cellRect(row, col).center();
        const Mouse mouse(palette());
        mouse.hover(p);
        mouse.press(p);
    }
    /// The colour in the palette's box.
    QColor shownColor() const { return palette()->grab().toImage().pixelColor(18, 18); }
    /// A stroke on the canvas with whatever tool is chosen.
    void stroke(const QPoint& from, const QPoint& to) const { Mouse(canvas()).drag(from, to); }

    QPen pen(MainItem tool) const
    {
        switch (tool) {
        case Scribble:
            return canvas()->scribblePen();
        case Arrow:
            return canvas()->arrowPen();
        case Rectangle:
            return canvas()->rectPen();
        case Ellipse:
            return canvas()->ellipsePen();
        default:
            return canvas()->mosaicPen();
        }
    }
    void setPen(MainItem tool, const QPen& pen) const
    {
        switch (tool) {
        case Scribble:
            return canvas()->setScribblePen(pen);
        case Arrow:
            return canvas()->setArrowPen(pen);
        case Rectangle:
            return canvas()->setRectPen(pen);
        case Ellipse:
            return canvas()->setEllipsePen(pen);
        default:
            return canvas()->setMosaicPen(pen);
        }
    }
    QList<int> penWidths() const
    {
        QList<int> widths;
        for (const MainItem tool : {Scribble, Arrow, Rectangle, Ellipse, Mosaic})
            widths << pen(tool).width();
        return widths;
    }
    QList<QColor> penColors() const
    {
        QList<QColor> colors;
        for (const MainItem tool : kPenTools)
            colors << pen(tool).color();
        return colors;
    }
};

/// What the facade remembers, in the order of kPenTools.
inline QList<QColor> rememberedColors()
{
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    return {colors.scribbleColor, colors.arrowColor, colors.rectColor, colors.ellipseColor};
}

inline void remember(const QList<QColor>& pens)
{
    ScreenCaptureToolColors colors;
    colors.scribbleColor = pens.at(0);
    colors.arrowColor = pens.at(1);
    colors.rectColor = pens.at(2);
    colors.ellipseColor = pens.at(3);
    ScreenCaptureTool::setPenColor(colors);
}
