// SPDX-License-Identifier: MIT
// What the fragment in README.md that embeds the library is a part of.
#pragma once

#include <QImage>
#include <QWidget>

class MainWindow : public QWidget
{
    Q_OBJECT

public:
    void takeScreenshot();
    void show(const QImage& picture);

public slots:
    void onCaptured(const QImage& picture, bool finished);
};
