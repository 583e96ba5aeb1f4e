// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QSlider;

/// A slider for a pen's width, 1 to 30 pixels, and a square of that size beside it.
///
/// GUI thread only.
class PenWidthWidget : public QWidget
{
    Q_OBJECT

public:
    explicit PenWidthWidget(QWidget* parent);

public slots:
    /// Moves the slider to `width` as far as its range goes, then emits currentWidthChanged() with
    /// `width` as given, whether or not the value changed. The moving slider calls this slot, too:
    /// a change emits the signal twice, first with the slider's value, then with the argument.
    void setWidth(int width);

signals:
    void currentWidthChanged(int width);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QSlider* m_slider;
};
