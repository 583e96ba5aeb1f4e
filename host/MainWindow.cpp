// SPDX-License-Identifier: MIT
#include "MainWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>

namespace
{

// So long compositors and window managers animate a window away.
constexpr int kOutOfTheWayMs = 300;
constexpr QSize kInitialSizePx(640, 440);
constexpr QSize kSmallestViewPx(320, 200);

} // namespace

MainWindow::MainWindow(int delayMs)
    : m_delayMs(delayMs)
    , m_view(new QLabel)
{
    auto* bar = new QToolBar(tr("Screenshot"));
    bar->setMovable(false);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    addToolBar(bar);
    m_new = addButton(tr("New screenshot"), &MainWindow::takeScreenshot);
    m_copy = addButton(tr("Copy"), &MainWindow::copy);
    m_saveAs = addButton(tr("Save as"), &MainWindow::saveAs);
    for (QPushButton* button : {m_new, m_copy, m_saveAs})
        bar->addWidget(button);
    m_copy->setEnabled(false);
    m_saveAs->setEnabled(false);

    m_view->setAlignment(Qt::AlignCenter);
    m_view->setMinimumSize(kSmallestViewPx);
    m_view->setText(tr("No screenshot yet"));
    setCentralWidget(m_view);
    setWindowTitle(tr("Screenshot"));
    resize(kInitialSizePx);

    connect(&m_request, &CaptureRequest::captured, this, &MainWindow::showResult);
    connect(&m_request, &CaptureRequest::cancelled, this, &MainWindow::onCancelled);
    connect(&m_request, &CaptureRequest::failed, this, [this](const QString& reason) {
        comeBack();
        statusBar()->showMessage(reason);
    });
}

QPushButton* MainWindow::addButton(const QString& text, void (MainWindow::*slot)())
{
    auto* button = new QPushButton(text);
    connect(button, &QPushButton::clicked, this, slot);
    return button;
}

void MainWindow::takeScreenshot()
{
    if (m_request.isRunning())
        return;
    m_place = pos();
    hide();
    m_request.start(m_delayMs + kOutOfTheWayMs);
}

void MainWindow::showResult(const QImage& picture)
{
    m_picture = picture;
    m_copy->setEnabled(true);
    m_saveAs->setEnabled(true);
    comeBack();
    fitResult();
    tellSize();
}

void MainWindow::onCancelled()
{
    comeBack();
    tellSize();
}

void MainWindow::tellSize()
{
    statusBar()->showMessage(
        m_picture.isNull() ? QString()
                           : tr("%1 x %2 pixels").arg(m_picture.width()).arg(m_picture.height()));
}

void MainWindow::comeBack()
{
    move(m_place);
    show();
    raise();
    activateWindow();
}

void MainWindow::copy()
{
    QGuiApplication::clipboard()->setImage(m_picture);
}

void MainWindow::saveAs()
{
    const QString name =
        QFileDialog::getSaveFileName(this, tr("Save as"), QStringLiteral("screenshot.png"),
                                     tr("Pictures (*.png *.jpg *.jpeg *.bmp)"));
    if (name.isEmpty())
        return;
    if (!m_picture.save(name))
        QMessageBox::warning(this, tr("Save as"), tr("Cannot write '%1'.").arg(name));
}

// The program does not end with its last window, for this one is hidden during a capture: only its
// being closed counts.
void MainWindow::closeEvent(QCloseEvent* event)
{
    QMainWindow::closeEvent(event);
    QCoreApplication::quit();
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    fitResult();
}

void MainWindow::fitResult()
{
    if (m_picture.isNull())
        return;
    const QSize room = m_view->size() * m_picture.devicePixelRatio();
    const QSize fitted =
        m_picture.size().boundedTo(m_picture.size().scaled(room, Qt::KeepAspectRatio));
    m_view->setPixmap(QPixmap::fromImage(
        m_picture.scaled(fitted, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}
