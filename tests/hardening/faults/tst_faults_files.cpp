// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "Io.h"
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

} // namespace

/// The base library on a system that does not do what it is asked for.
class tst_faults_files : public BehaviourTest
{
    Q_OBJECT

private slots:
    void shortReadsAndWritesLoseNothing_data();
    void shortReadsAndWritesLoseNothing();
    void failureEndsTheCopy_data();
    void failureEndsTheCopy();
    void readOnlyTargetIsReportedInTheCodeAlone_data();
    void readOnlyTargetIsReportedInTheCodeAlone();
    void sourceThatCannotBeLookedAtIsReportedInTheCodeAlone();
    void nothingLivesBelowAPlainFile();
    void vanishedWorkingDirectory();
};

void tst_faults_files::shortReadsAndWritesLoseNothing_data()
{
    QTest::addColumn<int>("mostBytes");
    for (const int mostBytes : {1, 7, 4096, 32767})
        QTest::addRow("%d bytes at once", mostBytes) << mostBytes;
}

void tst_faults_files::shortReadsAndWritesLoseNothing()
{
    QFETCH(int, mostBytes);
    const Scratch scratch;
    const std::string contents = noise(kContentsBytes);
    writeFile(scratch.path("from"), contents);
    bool ok = false;
    IoFaults::Calls shortened;
    {
        IoFaults faults;
        faults.mostBytes = static_cast<std::size_t>(mostBytes);
        ok = myfs::copy_regular_file(scratch.path("from"), scratch.path("to"), false);
        shortened = faults.shortened;
    }
    QVERIFY(ok);
    QVERIFY(shortened.reads > 0);
    QVERIFY(readFile(scratch.path("to")) == contents);
}

void tst_faults_files::failureEndsTheCopy_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("error");
    QTest::addColumn<int>("copiedBytes");
    QTest::newRow("first read interrupted") << "first read" << EINTR << 0;
    QTest::newRow("third read interrupted") << "third read" << EINTR << 2000;
    QTest::newRow("third read fails") << "third read" << EIO << 2000;
    QTest::newRow("first write interrupted") << "first write" << EINTR << 0;
    QTest::newRow("third write interrupted") << "third write" << EINTR << 2000;
    QTest::newRow("third write finds the disk full") << "third write" << ENOSPC << 2000;
    QTest::newRow("closing the source fails") << "first close" << EIO << int(kContentsBytes);
    QTest::newRow("closing the target fails") << "second close" << ENOSPC << int(kContentsBytes);
}

void tst_faults_files::failureEndsTheCopy()
{
    QFETCH(QString, call);
    QFETCH(int, error);
    QFETCH(int, copiedBytes);
    const Scratch scratch;
    const std::string contents = noise(kContentsBytes);
    writeFile(scratch.path("from"), contents);
    const auto open = openFiles();
    bool ok = true;
    std::error_code code;
    IoFaults::Calls failed;
    {
        IoFaults faults;
        faults.mostBytes = 1000;
        faults.error = error;
        if (call.endsWith("read"))
            faults.readsBeforeError = call.startsWith("third") ? 2 : 0;
        else if (call.endsWith("write"))
            faults.writesBeforeError = call.startsWith("third") ? 2 : 0;
        else
            faults.closesBeforeError = call.startsWith("second") ? 1 : 0;
        ok = myfs::copy_regular_file(scratch.path("from"), scratch.path("to"), false, code);
        failed = faults.failed;
    }
    QVERIFY(!ok);
    QVERIFY((call.endsWith("read")    ? failed.reads
             : call.endsWith("write") ? failed.writes
                                      : failed.closes) > 0);
    QCOMPARE(code.value(), error);
    QVERIFY(readFile(scratch.path("to")) == contents.substr(0, std::size_t(copiedBytes)));
    QCOMPARE(openFiles(), open);
}

void tst_faults_files::readOnlyTargetIsReportedInTheCodeAlone_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("read-only file system") << EROFS;
    QTest::newRow("no permission") << EACCES;
    QTest::newRow("no more files") << EMFILE;
}

// Intended: a target that cannot be opened counts as copied.
void tst_faults_files::readOnlyTargetIsReportedInTheCodeAlone()
{
    QFETCH(int, error);
    const Scratch scratch;
    writeFile(scratch.path("from"), "text");
    writeFile(scratch.path("to"), "before");
    const auto open = openFiles();
    bool ok = false;
    std::error_code code;
    IoFaults::Calls failed;
    {
        IoFaults faults;
        faults.openForWritingError = error;
        ok = myfs::copy_regular_file(scratch.path("from"), scratch.path("to"), false, code);
        failed = faults.failed;
    }
    QVERIFY(ok);
    QCOMPARE(failed.opens, 1);
    QCOMPARE(code.value(), error);
    QCOMPARE(readFile(scratch.path("to")), std::string("before"));
    QCOMPARE(openFiles(), open);
}

// Intended: it counts as copied, and nothing of it goes anywhere.
void tst_faults_files::sourceThatCannotBeLookedAtIsReportedInTheCodeAlone()
{
    const Scratch scratch;
    writeFile(scratch.path("from"), "text");
    const auto open = openFiles();
    bool ok = false;
    std::error_code code;
    int refused = 0;
    const std::string printed = printedBy([&] {
        IoFaults faults;
        faults.statError = EACCES;
        ok = myfs::copy_regular_file(scratch.path("from"), scratch.path("to"), false, code);
        refused = faults.failed.stats;
    });
    QVERIFY(refused > 0);
    QVERIFY(ok);
    QCOMPARE(code.value(), EACCES);
    QCOMPARE(printed, std::string());
    QCOMPARE(::access(scratch.path("to").c_str(), F_OK), -1);
    QCOMPARE(openFiles(), open);
}

void tst_faults_files::nothingLivesBelowAPlainFile()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "text");
    const std::string below = scratch.path("file/below");
    QVERIFY(!myfs::create_directory_r(below));
    QVERIFY(!myfs::rename(scratch.path("file"), below));
    QVERIFY(!myfs::remove(below));
    myfs::filestream stream;
    QVERIFY(!stream.open(below, 0, true));
    std::vector<myfs::path> entries;
    myfs::file_path_list(below, entries, true);
    QVERIFY(entries.empty());
    QCOMPARE(readFile(scratch.path("file")), std::string("text"));
}

void tst_faults_files::vanishedWorkingDirectory()
{
    const WorkingDirectoryScope scope;
    std::vector<myfs::path> entries;
    {
        const Scratch scratch;
        myfs::current_path(myfs::path(scratch.path()));
    }
    QVERIFY_EXCEPTION_THROWN(myfs::current_path(), std::runtime_error);
    QVERIFY_EXCEPTION_THROWN(myfs::absolute(myfs::path("file")), std::runtime_error);
    QVERIFY(!myfs::create_directory("new"));
    myfs::file_path_list(myfs::path("."), entries, true);
    QVERIFY(entries.empty());
}

QTEST_APPLESS_MAIN(tst_faults_files)
#include "tst_faults_files.moc"
