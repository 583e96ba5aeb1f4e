// SPDX-License-Identifier: MIT
#include "tst_wayland.h"

#include "Reports.h"
#include "Waiting.h"

void tst_wayland::overlayIsTheDimmedDesktop()
{
    startCapture();
    for (const Output& output : m_outputs) {
        moveTo(output.place.center());
        QVERIFY2(waitFor([&] { return output.place.contains(where("MagnifierWidget").center()); }),
                 qPrintable("the loupe is at " + text(where("MagnifierWidget"))));
        checkOverlay();
    }
    key("Escape");
    expectEnd("cancelled");
}

void tst_wayland::regionIsDelivered_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    const auto row = [](const QString& name, const QPointF& from, const QPointF& to) {
        QTest::newRow(qPrintable(name)) << from << to;
    };
    for (const Output& output : m_outputs) {
        const QRect r = output.place;
        row(output.name, r.center(), r.center() - QPoint(211, 123));
        row(output.name + ", between coordinates", r.center() - QPointF(211.5, 123.5),
            QPointF(r.center()) + QPointF(20.75, 30.75));
        row(output.name + ", all", r.topLeft(), r.bottomRight());
        for (const Output& other : m_outputs) {
            if (other.name != output.name)
                row(output.name + " to " + other.name, r.center(), other.place.center());
        }
    }
    if (m_outputs.size() > 1)
        row("all outputs", QPoint(0, 0), QRect(QPoint(), m_size).bottomRight());
}

void tst_wayland::regionIsDelivered()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    startCapture();
    select(from, to);
    key("Return");
    expectDelivered({QPoint(qFloor(qMin(from.x(), to.x())), qFloor(qMin(from.y(), to.y()))),
                     QPoint(qFloor(qMax(from.x(), to.x())), qFloor(qMax(from.y(), to.y())))});
}

void tst_wayland::keysReachTheCapture_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("afterDrag");
    QTest::addColumn<QString>("end");
    QTest::newRow("Escape without a click") << "Escape" << false << "cancelled";
    QTest::newRow("Escape") << "Escape" << true << "cancelled";
    QTest::newRow("Return") << "Return" << true << "captured";
    QTest::newRow("Enter on the number pad") << "KP_Enter" << true << "captured";
}

void tst_wayland::keysReachTheCapture()
{
    QFETCH(QString, name);
    QFETCH(bool, afterDrag);
    QFETCH(QString, end);
    startCapture();
    if (afterDrag)
        select(QRect(m_outputs.last().place.center(), QSize(100, 80)));
    key(name);
    expectEnd(end);
}

QTEST_GUILESS_MAIN(tst_wayland)
