// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPushButton>

/// A button of the main tool bar.
///
/// It keeps its pixels: when the selection moves behind the tool bar, strips of the buttons have to
/// be painted at each move of the mouse, and copying them is much faster than having the style draw
/// them. GUI thread only.
class ToolBarButton : public QPushButton
{
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool isOnlyUncovered(const QRegion& asked) const;
    bool copyPicture(const QRegion& asked);
    QImage takePicture();
    const QImage* pixelsOfWindow(const QPainter& painter) const;

    QImage m_picture;
};
