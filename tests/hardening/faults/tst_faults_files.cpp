// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "Io.h"
#include "Throws.h"
#include "myfs.h"

#include <QRandomGenerator>
#include <QtTest>
#include <cerrno>

namespace
{

constexpr std::size_t kContentsBytes = 100000;

std::string noise(std::size_t bytes)
{
    QRandomGenerator random(8);
    std::string text(bytes, '\0');
    for (char& byte : text)
        byte = static_cast<char>(random.bounded(256));
    return text;
}

/// A file to copy, and what became of its copy.
class Copying : public Scratch
{
public:
    Copying() { writeFile(path("from"), contents); }

    template <typename Setup>
    void copy(Setup setup)
    {
        const std::ptrdiff_t open = openFiles();
        {
            IoFaults faults;
            setup(faults);
            ok = myfs::copy_regular_file(path("from"), path("to"), false, code);
            shortened = faults.shortened;
            failed = faults.failed;
        }
        QCOMPARE(openFiles(), open);
    }

    const std::string contents = noise(kContentsBytes);
    bool ok = false;
    std::error_code code;
    IoFaults::Calls shortened;
    IoFaults::Calls failed;
};

} // namespace

using Number = int IoFaults::*;
using Count = int IoFaults::Calls::*;
Q_DECLARE_METATYPE(Number)
Q_DECLARE_METATYPE(Count)

/// The base library on a system that does not do what it is asked for.
class tst_faults_files : public BehaviourTest
{
    Q_OBJECT

private slots:
    void shortReadsAndWritesLoseNothing_data();
    void shortReadsAndWritesLoseNothing();
    void failureEndsTheCopy_data();
    void failureEndsTheCopy();
    void failureToOpenIsReportedInTheCodeAlone_data();
    void failureToOpenIsReportedInTheCodeAlone();
    void nothingLivesBelowAPlainFile();
    void vanishedWorkingDirectory();
};

void tst_faults_files::shortReadsAndWritesLoseNothing_data()
{
    QTest::addColumn<int>("mostRead");
    QTest::addColumn<int>("mostWritten");
    for (const int most : {7, 4096, 32767}) {
        QTest::addRow("%d bytes read at once", most) << most << INT_MAX;
        QTest::addRow("%d bytes written at once", most) << INT_MAX << most;
    }
}

void tst_faults_files::shortReadsAndWritesLoseNothing()
{
    QFETCH(int, mostRead);
    QFETCH(int, mostWritten);
    Copying copying;
    copying.copy([&](IoFaults& faults) {
        faults.mostReadBytes = std::size_t(mostRead);
        faults.mostBytes = std::size_t(mostWritten);
    });
    QVERIFY(copying.ok);
    QCOMPARE(copying.shortened.reads > 0, mostRead < INT_MAX);
    QCOMPARE(copying.shortened.writes > 0, mostWritten < INT_MAX);
    QVERIFY(readFile(copying.path("to")) == copying.contents);
}

void tst_faults_files::failureEndsTheCopy_data()
{
    QTest::addColumn<Number>("callsBeforeError");
    QTest::addColumn<Count>("kind");
    QTest::addColumn<int>("calls");
    QTest::addColumn<int>("error");
    QTest::addColumn<int>("copiedBytes");
    const auto row = [](const char* name, Number number, Count kind, int calls, int error,
                        int copied) {
        QTest::newRow(name) << number << kind << calls << error << copied;
    };
    const Number reads = &IoFaults::readsBeforeError;
    const Number writes = &IoFaults::writesBeforeError;
    const Number closes = &IoFaults::closesBeforeError;
    row("first read interrupted", reads, &IoFaults::Calls::reads, 0, EINTR, 0);
    row("third read fails", reads, &IoFaults::Calls::reads, 2, EIO, 2000);
    row("first write interrupted", writes, &IoFaults::Calls::writes, 0, EINTR, 0);
    row("third write, disk full", writes, &IoFaults::Calls::writes, 2, ENOSPC, 2000);
    row("closing the source", closes, &IoFaults::Calls::closes, 0, EIO, int(kContentsBytes));
    row("closing the target", closes, &IoFaults::Calls::closes, 1, ENOSPC, int(kContentsBytes));
}

void tst_faults_files::failureEndsTheCopy()
{
    QFETCH(Number, callsBeforeError);
    QFETCH(Count, kind);
    QFETCH(int, calls);
    QFETCH(int, error);
    QFETCH(int, copiedBytes);
    Copying copying;
    copying.copy([&](IoFaults& faults) {
        faults.mostReadBytes = faults.mostBytes = 1000;
        faults.error = error;
        faults.*callsBeforeError = calls;
    });
    QVERIFY(!copying.ok);
    QVERIFY(copying.failed.*kind > 0);
    QCOMPARE(copying.code.value(), error);
    QVERIFY(readFile(copying.path("to")) == copying.contents.substr(0, std::size_t(copiedBytes)));
}

void tst_faults_files::failureToOpenIsReportedInTheCodeAlone_data()
{
    QTest::addColumn<Number>("fault");
    QTest::addColumn<Count>("kind");
    QTest::addColumn<int>("error");
    const auto row = [](const char* name, Number fault, Count kind, int error) {
        QTest::newRow(name) << fault << kind << error;
    };
    const Number open = &IoFaults::openForWritingError;
    row("read-only file system", open, &IoFaults::Calls::opens, EROFS);
    row("no more files", open, &IoFaults::Calls::opens, EMFILE);
    row("no look at the source", &IoFaults::statError, &IoFaults::Calls::stats, EACCES);
}

// Intended: it counts as copied.
void tst_faults_files::failureToOpenIsReportedInTheCodeAlone()
{
    QFETCH(Number, fault);
    QFETCH(Count, kind);
    QFETCH(int, error);
    Copying copying;
    writeFile(copying.path("to"), "before");
    const std::string printed =
        printedBy([&] { copying.copy([&](IoFaults& faults) { faults.*fault = error; }); });
    QVERIFY(copying.ok);
    QVERIFY(copying.failed.*kind > 0);
    QCOMPARE(copying.code.value(), error);
    QCOMPARE(readFile(copying.path("to")), std::string("before"));
    QCOMPARE(printed, std::string());
}

void tst_faults_files::nothingLivesBelowAPlainFile()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "text");
    const std::string below = scratch.path("file/below");
    QVERIFY(!myfs::rename(scratch.path("file"), below));
    QVERIFY(!myfs::remove(below));
    myfs::filestream stream;
    QVERIFY(!stream.open(below, 0, true));
    QCOMPARE(readFile(scratch.path("file")), std::string("text"));
}

void tst_faults_files::vanishedWorkingDirectory()
{
    const WorkingDirectoryScope scope;
    std::vector<myfs::path> entries;
    {
        const Scratch scratch;
        myfs::current_path(scratch.path());
    }
    QVERIFY(throws<std::runtime_error>([] { myfs::current_path(); }));
    QVERIFY(throws<std::runtime_error>([] { myfs::absolute("file"); }));
    QVERIFY(!myfs::create_directory("new"));
    myfs::file_path_list(".", entries, true);
    QVERIFY(entries.empty());
}

QTEST_APPLESS_MAIN(tst_faults_files)
#include "tst_faults_files.moc"
