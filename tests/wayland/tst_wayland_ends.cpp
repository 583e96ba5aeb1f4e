// SPDX-License-Identifier: MIT
#include "Waiting.h"
#include "WaylandTest.h"
#include "XServer.h"

/// Captures in a Wayland session that is another one afterwards, or none: for one test each.
class tst_wayland_ends : public WaylandTest
{
    Q_OBJECT

private slots:
    void init();
    void addedOutputCancels_data();
    void addedOutputCancels();
    void removedOutputCancels_data();
    void removedOutputCancels();
    void compositorIsKilled_data();
    void compositorIsKilled();
    void portalIsKilled_data();
    void portalIsKilled();

private:
    QRect region() const
    {
        return {m_outputs.last().place.topLeft() + QPoint(103, 151), QSize(400, 240)};
    }
    static void addRows(const QStringList& during);
    void startCaptureAndDo(const QString& what);
};

void tst_wayland_ends::init()
{
    WaylandTest::init();
    m_isDesktopSpoilt = true;
}

void tst_wayland_ends::addRows(const QStringList& during)
{
    QTest::addColumn<QString>("during");
    for (const QString& what : during)
        QTest::newRow(qPrintable(what)) << what;
}

void tst_wayland_ends::startCaptureAndDo(const QString& what)
{
    startCapture();
    if (what == "drag")
        press(region().topLeft(), region().bottomRight());
    if (what != "save")
        return;
    select(region());
    clickOn("save");
    QVERIFY(waitFor([this] { return !where("QFileDialog").isEmpty(); }));
}

void tst_wayland_ends::addedOutputCancels_data()
{
    addRows({"nothing", "drag", "save"});
}

void tst_wayland_ends::addedOutputCancels()
{
    QFETCH(QString, during);
    startCaptureAndDo(during);
    tellCompositor("create_output");
    expectEnd("failed: The screens have changed.");
}

void tst_wayland_ends::removedOutputCancels_data()
{
    addRows({"nothing", "drag", "save"});
}

void tst_wayland_ends::removedOutputCancels()
{
    QFETCH(QString, during);
    const XServer server(qgetenv("outer_display"));
    const int before = outputs().size();
    startCaptureAndDo(during);
    server.askToClose(server.windows().last());
    expectEnd("failed: The screens have changed.");
    QCOMPARE(outputs().size(), before - 1);
}

void tst_wayland_ends::compositorIsKilled_data()
{
    addRows({"nothing", "drag", "save", "waiting"});
}

// Qt itself ends the process then.
void tst_wayland_ends::compositorIsKilled()
{
    QFETCH(QString, during);
    if (during == "waiting") {
        const StoppedPortal stopped;
        m_host.reset(new HostProcess);
        QCOMPARE(m_host->ask("where ScreenCaptureWnd"), QString("nowhere"));
        kill(compositor(), SIGKILL);
    } else {
        startCaptureAndDo(during);
        kill(compositor(), SIGKILL);
    }
    QCOMPARE(m_host->end(), QString());
    QVERIFY2(!m_host->hasCrashed(), "the host crashes");
    QCOMPARE(m_host->exitCode(), 1);
}

void tst_wayland_ends::portalIsKilled_data()
{
    QTest::addColumn<QString>("service");
    QTest::addColumn<QString>("end");
    QTest::newRow("portal") << kPortal << "failed: The desktop's portal has gone away.";
    QTest::newRow("backend") << kPortalBackend
                             << "failed: The desktop's portal could not take the screenshot.";
}

void tst_wayland_ends::portalIsKilled()
{
    QFETCH(QString, service);
    QFETCH(QString, end);
    const pid_t killed = processOf(service);
    QVERIFY(killed);
    const StoppedPortal stopped;
    m_host.reset(new HostProcess);
    QCOMPARE(m_host->ask("where ScreenCaptureWnd"), QString("nowhere"));
    kill(killed, SIGKILL);
    expectEnd(end);
}

QTEST_GUILESS_MAIN(tst_wayland_ends)

#include "tst_wayland_ends.moc"
