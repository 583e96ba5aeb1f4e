// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "Io.h"
#include "ScreenCaptureTool.h"

#include <QtTest>
#include <cerrno>

namespace
{

const std::string kBefore = "[pen_color]\nrectColor=4278190335\n";

ScreenCaptureToolColors allOf(const QColor& color)
{
    return {color, color, color, color, color};
}

ScreenCaptureToolColors colorsNow()
{
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    return colors;
}

void initIn(const std::string& directory)
{
    ScreenCaptureTool::init(QString::fromStdString(directory));
}

} // namespace

/// Pen colours where the settings cannot be written: they hold for the life of the process, and a
/// file that cannot be opened or locked keeps what it had.
class tst_faults_settings : public BehaviourTest
{
    Q_OBJECT

private slots:
    void fileSizeLimitKeepsFileAndColors();
    void failedLockKeepsFileAndColors();
    void failedWriteKeepsColors_data();
    void failedWriteKeepsColors();
    void fileEmptiedByAFailedWriteIsPutBack();
    void shortReadsAndWrites();
    void readOnlyFileSystem_data();
    void readOnlyFileSystem();
    void directoryBelowAPlainFile();
    void vanishedDirectory();
};

void tst_faults_settings::fileSizeLimitKeepsFileAndColors()
{
    const Scratch scratch;
    writeFile(scratch.path("screencapture.ini"), kBefore);
    initIn(scratch.path());
    {
        const FileSizeLimit limit(0);
        ScreenCaptureTool::setPenColor(allOf(Qt::green));
    }
    QCOMPARE(colorsNow().rectColor, QColor(Qt::green));
    QCOMPARE(readFile(scratch.path("screencapture.ini")), kBefore);

    // Once there is room the next colour is written.
    ScreenCaptureTool::setPenColor(allOf(Qt::yellow));
    initIn(scratch.path());
    QCOMPARE(colorsNow().arrowColor, QColor(Qt::yellow));
    QVERIFY(readFile(scratch.path("screencapture.ini")).find("4294967040") != std::string::npos);
}

// The first write is that of the lock.
void tst_faults_settings::failedLockKeepsFileAndColors()
{
    const Scratch scratch;
    writeFile(scratch.path("screencapture.ini"), kBefore);
    initIn(scratch.path());
    {
        IoFaults faults;
        faults.error = ENOSPC;
        faults.writesBeforeError = 0;
        ScreenCaptureTool::setPenColor(allOf(Qt::green));
        QVERIFY(faults.failed.writes > 0);
    }
    QCOMPARE(colorsNow().rectColor, QColor(Qt::green));
    QCOMPARE(readFile(scratch.path("screencapture.ini")), kBefore);
}

void tst_faults_settings::failedWriteKeepsColors_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("disk full") << ENOSPC;
    QTest::newRow("input and output") << EIO;
}

// The file may be empty then: Qt 5.15 puts also what it could not write in the place of a file.
void tst_faults_settings::failedWriteKeepsColors()
{
    QFETCH(int, error);
    const Scratch scratch;
    writeFile(scratch.path("screencapture.ini"), kBefore);
    initIn(scratch.path());
    {
        IoFaults faults;
        faults.error = error;
        faults.writesBeforeError = 1;
        ScreenCaptureTool::setPenColor(allOf(Qt::green));
        QVERIFY(faults.failed.writes > 0);
    }
    QCOMPARE(colorsNow().rectColor, QColor(Qt::green));

    ScreenCaptureTool::setPenColor(allOf(Qt::cyan));
    initIn(scratch.path());
    QCOMPARE(colorsNow().arrowColor, QColor(Qt::cyan));
    QVERIFY(readFile(scratch.path("screencapture.ini")).find("4278255615") != std::string::npos);
}

// As on a disk that has room again once the former file is gone.
void tst_faults_settings::fileEmptiedByAFailedWriteIsPutBack()
{
    const Scratch scratch;
    writeFile(scratch.path("screencapture.ini"), kBefore);
    initIn(scratch.path());
    {
        IoFaults faults;
        faults.error = ENOSPC;
        faults.writesBeforeError = 1;
        faults.mostErrors = 1;
        ScreenCaptureTool::setPenColor(allOf(Qt::green));
        QCOMPARE(faults.failed.writes, 1);
    }
    QCOMPARE(readFile(scratch.path("screencapture.ini")), kBefore);
}

void tst_faults_settings::shortReadsAndWrites()
{
    const Scratch scratch;
    IoFaults faults;
    faults.mostBytes = 3;
    initIn(scratch.path());
    ScreenCaptureTool::setPenColor(allOf(Qt::green));
    ScreenCaptureTool::setPenColor(allOf(Qt::cyan));
    initIn(scratch.path());
    QCOMPARE(colorsNow().rectColor, QColor(Qt::cyan));
    QVERIFY(faults.shortened.reads > 0);
    QVERIFY(faults.shortened.writes > 0);
}

void tst_faults_settings::readOnlyFileSystem_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("read-only file system") << EROFS;
    QTest::newRow("no permission") << EACCES;
}

void tst_faults_settings::readOnlyFileSystem()
{
    QFETCH(int, error);
    const Scratch scratch;
    writeFile(scratch.path("screencapture.ini"), kBefore);
    {
        IoFaults faults;
        faults.openForWritingError = error;
        initIn(scratch.path());
        QCOMPARE(colorsNow().rectColor, QColor(Qt::blue));
        ScreenCaptureTool::setPenColor(allOf(Qt::green));
        QVERIFY(faults.failed.opens > 0);
    }
    QCOMPARE(colorsNow().rectColor, QColor(Qt::green));
    QCOMPARE(readFile(scratch.path("screencapture.ini")), kBefore);
}

void tst_faults_settings::directoryBelowAPlainFile()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "text");
    ScreenCaptureTool::setPenColor(allOf(Qt::red));
    initIn(scratch.path("file"));
    QCOMPARE(colorsNow().rectColor, QColor(Qt::red));
    ScreenCaptureTool::setPenColor(allOf(Qt::green));
    QCOMPARE(colorsNow().rectColor, QColor(Qt::green));
    QCOMPARE(readFile(scratch.path("file")), std::string("text"));
}

void tst_faults_settings::vanishedDirectory()
{
    std::string directory;
    {
        const Scratch scratch;
        directory = scratch.path();
        writeFile(scratch.path("screencapture.ini"), kBefore);
        initIn(directory);
    }
    ScreenCaptureTool::setPenColor(allOf(Qt::green));
    QCOMPARE(colorsNow().rectColor, QColor(Qt::green));
    std::error_code ec;
    std::filesystem::remove_all(directory, ec);
}

QTEST_GUILESS_MAIN(tst_faults_settings)
#include "tst_faults_settings.moc"
