// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "Io.h"
#include "ScreenCaptureTool.h"

#include <QtTest>
#include <cerrno>

namespace
{

QColor rectColorNow()
{
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    return colors.rectColor;
}

void setAll(const QColor& color)
{
    ScreenCaptureTool::setPenColor({color, color, color, color, color});
}

} // namespace

/// Pen colours where the settings cannot be written.
class tst_faults_settings : public BehaviourTest
{
    Q_OBJECT

private slots:
    void unwrittenColorsStayInMemory_data();
    void unwrittenColorsStayInMemory();
};

void tst_faults_settings::unwrittenColorsStayInMemory_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<int>("writesBeforeError");
    QTest::addColumn<int>("openError");
    // The lock is written first.
    QTest::newRow("no room for the lock") << ENOSPC << 0 << 0;
    QTest::newRow("no room for the colors") << ENOSPC << 1 << 0;
    QTest::newRow("input and output error") << EIO << 1 << 0;
    QTest::newRow("read-only file system") << EROFS << 0 << EROFS;
    QTest::newRow("no permission") << EACCES << 0 << EACCES;
}

void tst_faults_settings::unwrittenColorsStayInMemory()
{
    QFETCH(int, error);
    QFETCH(int, writesBeforeError);
    QFETCH(int, openError);
    const Scratch scratch;
    const std::string file = scratch.path("screencapture.ini");
    writeFile(file, "[pen_color]\nrectColor=4278190335\n");
    {
        IoFaults faults;
        faults.error = error;
        faults.writesBeforeError = writesBeforeError;
        faults.openForWritingError = openError;
        ScreenCaptureTool::init(QString::fromStdString(scratch.path()));
        QCOMPARE(rectColorNow(), QColor(Qt::blue));
        setAll(Qt::green);
        QVERIFY(faults.failed.writes + faults.failed.opens > 0);
    }
    QCOMPARE(rectColorNow(), QColor(Qt::green));

    setAll(Qt::cyan);
    QVERIFY(readFile(file).find("rectColor=4278255615\n") != std::string::npos);
}

QTEST_GUILESS_MAIN(tst_faults_settings)
#include "tst_faults_settings.moc"
