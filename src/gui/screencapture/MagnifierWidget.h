// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QImage>
#include <QWidget>

/// The square loupe: shows an image stretched to the widget's full size, unsmoothed, framed in
/// black and white and with a cross-hair through its middle.
///
/// It has no input handling (mouse events pass through to what lies beneath) and no zoom factor of
/// its own: the host decides what it shows and where it stands. Sizes are pixels. GUI thread only.
class MagnifierWidget : public QWidget
{
    Q_OBJECT

public:
    explicit MagnifierWidget(QWidget* parent);

    /// Makes the widget `size` by `size` pixels.
    void setSize(int size);
    /// A null image leaves only the frames and the cross-hair.
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
