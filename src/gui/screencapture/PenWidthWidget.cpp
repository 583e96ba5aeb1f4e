// SPDX-License-Identifier: MIT
#include "PenWidthWidget.h"

#include <QPainter>
#include <QSlider>

namespace
{

constexpr QSize kSizePx(101, 38);
constexpr QRect kSliderRect(QPoint(3, 9), QSize(60, 20));
constexpr QRect kPreviewBox(QPoint(66, 3), QSize(32, 32));
constexpr int kMinWidthPx = 1;
constexpr int kMaxWidthPx = 30;
constexpr int kPageStepPx = 5;

} // namespace

PenWidthWidget::PenWidthWidget(QWidget* parent)
    : QWidget(parent)
    , m_slider(new QSlider(this))
{
    setFixedSize(kSizePx);
    m_slider->setOrientation(Qt::Horizontal);
    m_slider->setRange(kMinWidthPx, kMaxWidthPx);
    m_slider->setPageStep(kPageStepPx);
    m_slider->setGeometry(kSliderRect);
    m_slider->setAccessibleName(tr("Pen width"));
    m_slider->setFocusPolicy(Qt::TabFocus);
    connect(m_slider, SIGNAL(valueChanged(int)), this, SLOT(setWidth(int)));
}

// Intended: valueChanged() calls this slot again, so that a change emits the signal twice.
void PenWidthWidget::setWidth(int width)
{
    m_slider->setValue(width);
    update();
    emit currentWidthChanged(width);
}

void PenWidthWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setPen(Qt::gray);
    painter.drawRect(kPreviewBox.adjusted(0, 0, -1, -1));

    QRect width(QPoint(), QSize(m_slider->value(), m_slider->value()));
    width.moveCenter(kPreviewBox.center());
    painter.fillRect(width, Qt::blue);
}
