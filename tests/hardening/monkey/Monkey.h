// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QEvent>
#include <QPoint>
#include <QPointer>
#include <QRandomGenerator>
#include <QStringList>
#include <QTemporaryDir>
#include <QTranslator>
#include <functional>

class QAbstractButton;
class QFileDialog;
class ScreenCaptureWnd;

/// Plays with the capture window: mouse, wheel, keys, every button and picker, what a host and what
/// a desktop can do in between, all drawn from one seed. After every event the window is inspected.
class Monkey : public QObject
{
    Q_OBJECT

public:
    Monkey(quint32 seed, int events);
    ~Monkey() override;

    /// Plays until all events were sent or something was found to be wrong.
    void play();
    /// What was wrong; empty when nothing was.
    QString complaint() const { return m_complaint; }
    /// What was done last, one event a line.
    QStringList lastEvents() const { return m_last; }
    int captures() const { return m_captures; }
    int dialogs() const { return m_dialogs; }
    int deliveries() const { return m_deliveries; }
    /// The number of the event that was sent last, for a process that is dying.
    static volatile int s_sent;

    bool eventFilter(QObject* watched, QEvent* event) override;

public slots:
    void onCaptured(const QImage& picture, bool finished);

private slots:
    /// Runs while the window is still what the user sees.
    void onFinished(const QImage& picture, bool finished);

private:
    struct Action {
        int weight;
        std::function<void(Monkey&)> play;
    };

    bool isOver() const;
    int below(int bound) { return m_random.bounded(bound); }
    bool once(int in) { return below(in) == 0; }
    int between(int first, int last) { return m_random.bounded(first, last + 1); }
    template <typename List>
    auto anyOf(const List& list);
    template <typename List>
    const auto& weighted(const List& list);

    void act();
    void send(const QString& what, const std::function<void()>& event);
    void keep(const QString& what);
    void meetServer();
    void inspect();
    void inspectRedo();
    void settle();
    void buryWindow();
    void beginCapture();
    void giveUpBlockingDrag();

    QPoint somewhere();
    QPoint nearRegion();
    QWidget* target();
    void mouse(QEvent::Type type, const QPoint& pos, Qt::MouseButton button = Qt::NoButton);
    void moveTo(const QPoint& pos);
    void press(Qt::MouseButton button);
    void release(Qt::MouseButton button);
    void releaseAll();
    void interfere();
    void clickOn(QWidget* widget);
    void clickAny(bool (*wanted)(const QAbstractButton& button));
    void clickAt(QWidget* widget, const QPoint& pos);
    void dragAlong(QWidget* widget);

    void drag();
    void wander();
    void pressOrRelease();
    void pickWidth();
    void strikeKey();
    void turnWheel();
    void doubleClick();
    void askAsHost();
    void changeWorld();
    void changeLanguage();
    void changeFocus();
    void resize();
    void rebuildMosaic();

    void answer(QFileDialog* dialog);

    QRandomGenerator m_random;
    quint32 m_seed;
    int m_events;
    int m_actions = 0;
    int m_depth = 0;
    int m_captures = 0;
    int m_dialogs = 0;
    int m_deliveries = 0;
    int m_signals = 0;
    bool m_mayDeliver = false;
    QString m_complaint;
    QStringList m_last;
    QPointer<ScreenCaptureWnd> m_window;
    Qt::MouseButtons m_held;
    QPoint m_pos;
    int m_timestamp = 1;
    QElapsedTimer m_sending;
    QTemporaryDir m_directory;
    QPointer<QTranslator> m_longer;
};
