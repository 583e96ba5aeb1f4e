// SPDX-License-Identifier: MIT
#pragma once

#include "CaptureRequest.h"

#include <QMainWindow>
#include <QPixmap>

class QLabel;
class QPushButton;

/// The program's window: asks for screenshots and shows the last one, to fit.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Each capture waits `delayMs` milliseconds first.
    explicit MainWindow(int delayMs);

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private slots:
    void takeScreenshot();
    void showResult(const QImage& picture);
    void onCancelled();
    void comeBack();
    void copy();
    void saveAs();

private:
    QPushButton* addButton(const QString& text, void (MainWindow::*slot)());
    void fitResult();
    void tellSize();

    const int m_delayMs;
    CaptureRequest m_request;
    QPoint m_place;
    QImage m_picture;
    QLabel* m_view;
    QPushButton* m_new;
    QPushButton* m_copy;
    QPushButton* m_saveAs;
};
