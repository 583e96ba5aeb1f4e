// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QImage>
#include <QWidget>

/// The square loupe: stretches an image to the widget's full size, unsmoothed, with a black and a
/// white frame around it and a cross-hair through its middle.
///
/// Mouse events pass through to the widget beneath. The window decides which image the loupe shows,
/// and thereby how much it magnifies, and where it stands. Sizes are pixels. GUI thread only.
class MagnifierWidget : public QWidget
{
    Q_OBJECT

public:
    explicit MagnifierWidget(QWidget* parent);

    /// Makes the widget `size` by `size` pixels.
    void setSize(int size);
    /// Shows `image`. A null image leaves only the frames and the cross-hair.
    void setOrigImage(const QImage& image);
    void setCrossColor(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintFrames(QPainter& painter) const;
    void paintCrossHair(QPainter& painter) const;

    QImage m_origImage;
    QColor m_crossColor;
};
