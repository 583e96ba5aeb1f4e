// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "Skip.h"
#include "StdText.h"
#include "myfs.h"

#include <cerrno>
#include <sys/file.h>
#include <type_traits>

using myfs::filestream;
using myfs::path;

namespace
{

constexpr unsigned int kReadOnly = 0x80000000U;
constexpr unsigned int kReadWrite = 0;
constexpr std::size_t kBeyondBuffersBytes = 1U << 20U;

std::string readAll(filestream& stream)
{
    std::string contents;
    char buffer[7];
    while (const std::size_t got = stream.read(buffer, sizeof buffer))
        contents.append(buffer, got);
    return contents;
}

long long positionOf(filestream& stream)
{
    long long position = -1;
    return stream.getpos(&position) ? position : -1;
}

} // namespace

class tst_filestream : public BehaviourTest
{
    Q_OBJECT

private slots:
    void opening_data();
    void opening();
    void openingAgainKeepsTheFirstFile();
    void cannotCreateWithoutADirectory();
    void closedStream();
    void ownsItsFile();
    void writingReplacesInPlace();
    void readingToTheEnd();
    void positions();
    void pipesHaveNoPositions();
    void fullDevice();
    void locks();
};

void tst_filestream::opening_data()
{
    QTest::addColumn<unsigned int>("mode");
    QTest::addColumn<bool>("writable");
    QTest::newRow("read only") << kReadOnly << false;
    QTest::newRow("zero") << 0U << true;
    QTest::newRow("write bit") << 0x40000000U << true;
    QTest::newRow("read and write bits") << 0xC0000000U << true;
    QTest::newRow("read bit and another") << (kReadOnly | 1U) << true;
    QTest::newRow("one") << 1U << true;
}

void tst_filestream::opening()
{
    QFETCH(unsigned int, mode);
    QFETCH(bool, writable);
    const Scratch scratch;
    const path missing(scratch.path("missing"));
    filestream stream;
    QVERIFY(!stream.open(missing, mode, false));
    QVERIFY(!stream.is_open());
    QVERIFY(!myfs::exists(missing));

    for (const bool create : {false, true}) {
        writeFile(scratch.path("present"), "old contents");
        QVERIFY(stream.open(path(scratch.path("present")), mode, create));
        QVERIFY(stream.is_open());
        QCOMPARE(positionOf(stream), 0LL);
        QCOMPARE(readAll(stream), std::string("old contents"));
        QVERIFY(stream.set_begin_pos());
        QCOMPARE(stream.write("new", 3), std::size_t(writable ? 3 : 0));
        stream.close();
        QCOMPARE(readFile(scratch.path("present")),
                 std::string(writable ? "new contents" : "old contents"));
    }

    QVERIFY(stream.open(missing, mode, true));
    QVERIFY(myfs::is_regular_file(missing));
    QCOMPARE(myfs::file_size(missing, false), 0LL);
    QCOMPARE(stream.write("new", 3), std::size_t(writable ? 3 : 0));
    stream.close();
    QCOMPARE(readFile(scratch.path("missing")), std::string(writable ? "new" : ""));
}

void tst_filestream::openingAgainKeepsTheFirstFile()
{
    const Scratch scratch;
    writeFile(scratch.path("first"), "first");
    writeFile(scratch.path("second"), "second");
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("first")), kReadOnly, false));
    QVERIFY(stream.open(path(scratch.path("second")), kReadWrite, false));
    QVERIFY(stream.open(path(scratch.path("missing")), kReadWrite, true));
    QVERIFY(!myfs::exists(path(scratch.path("missing"))));
    QCOMPARE(readAll(stream), std::string("first"));
    QCOMPARE(stream.write("x", 1), std::size_t(0));
    stream.close();
    QVERIFY(stream.open(path(scratch.path("second")), kReadOnly, false));
    QCOMPARE(readAll(stream), std::string("second"));
}

void tst_filestream::cannotCreateWithoutADirectory()
{
    const Scratch scratch;
    filestream stream;
    QVERIFY(!stream.open(path(scratch.path("missing/file")), kReadWrite, true));
    QCOMPARE(errno, ENOENT);
    QVERIFY(!stream.is_open());
    QVERIFY(!stream.open(path("/"), kReadWrite, true));
}

void tst_filestream::closedStream()
{
    filestream stream;
    char buffer[4] = {};
    for (int round = 0; round < 2; ++round) {
        QVERIFY(!stream.is_open());
        QCOMPARE(stream.write("data", 4), std::size_t(0));
        QCOMPARE(stream.read(buffer, 4), std::size_t(0));
        QCOMPARE(stream.flush(), 0);
        QVERIFY(stream.eof());
        stream.close();
        stream.close();
        const Scratch scratch;
        QVERIFY(stream.open(path(scratch.path("file")), kReadWrite, true));
        QVERIFY(!stream.eof());
        stream.close();
    }
}

void tst_filestream::ownsItsFile()
{
    QVERIFY(!std::is_copy_constructible<filestream>::value);
    QVERIFY(!std::is_copy_assignable<filestream>::value);
    const Scratch scratch;
    const auto before = openFiles();
    {
        filestream stream;
        QVERIFY(stream.open(path(scratch.path("file")), kReadWrite, true));
        QCOMPARE(openFiles(), before + 1);
        QCOMPARE(stream.write("kept", 4), std::size_t(4));
    }
    QCOMPARE(openFiles(), before);
    QCOMPARE(readFile(scratch.path("file")), std::string("kept"));
}

void tst_filestream::writingReplacesInPlace()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "0123456789");
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("file")), kReadWrite, true));
    QCOMPARE(stream.write("abc", 3), std::size_t(3));
    QCOMPARE(stream.flush(), 0);
    QCOMPARE(readFile(scratch.path("file")), std::string("abc3456789"));
    QVERIFY(stream.set_end_pos());
    QCOMPARE(stream.write(std::string("\0\xFF", 2).data(), 2), std::size_t(2));
    stream.close();
    QCOMPARE(readFile(scratch.path("file")), std::string("abc3456789\0\xFF", 12));
}

void tst_filestream::readingToTheEnd()
{
    const Scratch scratch;
    writeFile(scratch.path("file"), "12345");
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("file")), kReadOnly, false));
    char buffer[8] = {};
    QCOMPARE(stream.read(buffer, 5), std::size_t(5));
    QVERIFY(!stream.eof());
    QCOMPARE(stream.read(buffer, 8), std::size_t(0));
    QVERIFY(stream.eof());
    QVERIFY(stream.set_begin_pos());
    QVERIFY(!stream.eof());
    QCOMPARE(stream.read(buffer, 8), std::size_t(5));
    QVERIFY(stream.eof());
}

void tst_filestream::positions()
{
    const Scratch scratch;
    constexpr long long beyond32Bits = (1LL << 32) + 3;
    writeFile(scratch.path("file"), "0123456789");
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("file")), kReadWrite, false));
    char byte = 0;
    QVERIFY(stream.setpos(7));
    QCOMPARE(positionOf(stream), 7LL);
    QCOMPARE(stream.read(&byte, 1), std::size_t(1));
    QCOMPARE(byte, '7');
    QVERIFY(!stream.setpos(-5));
    QCOMPARE(positionOf(stream), 8LL);
    QVERIFY(stream.set_begin_pos());
    QCOMPARE(positionOf(stream), 0LL);
    QVERIFY(stream.set_end_pos());
    QCOMPARE(positionOf(stream), 10LL);
    QVERIFY(stream.setpos(12));
    QCOMPARE(stream.write("x", 1), std::size_t(1));
    QCOMPARE(stream.flush(), 0);
    QCOMPARE(readFile(scratch.path("file")), std::string("0123456789\0\0x", 13));
    QVERIFY(stream.setpos(beyond32Bits));
    QCOMPARE(stream.write("x", 1), std::size_t(1));
    QVERIFY(stream.set_begin_pos());
    QVERIFY(stream.set_end_pos());
    QCOMPARE(positionOf(stream), beyond32Bits + 1);
}

void tst_filestream::pipesHaveNoPositions()
{
    const Scratch scratch;
    QCOMPARE(::mkfifo(scratch.path("fifo").c_str(), 0600), 0);
    filestream stream;
    QVERIFY(stream.open(path(scratch.path("fifo")), kReadWrite, false));
    long long position = 17;
    QVERIFY(!stream.getpos(&position));
    QCOMPARE(errno, ESPIPE);
    QCOMPARE(position, 17LL);
    QVERIFY(!stream.setpos(1));
    QVERIFY(!stream.set_begin_pos());
    QVERIFY(!stream.set_end_pos());
}

void tst_filestream::fullDevice()
{
    if (!hasFullDevice())
        SKIP_BECAUSE("the system has no device /dev/full");
    filestream stream;
    QVERIFY(stream.open(path("/dev/full"), kReadWrite, false));
    QCOMPARE(stream.write("x", 1), std::size_t(1));
    QVERIFY(stream.flush() != 0);
    QCOMPARE(errno, ENOSPC);
    stream.close();

    const std::string much(kBeyondBuffersBytes, 'x');
    QVERIFY(stream.open(path("/dev/full"), kReadWrite, false));
    QVERIFY(stream.write(much.data(), much.size()) < much.size());
    QCOMPARE(errno, ENOSPC);
    stream.close();
}

// The system keeps apart two streams of one process as it does those of two.
void tst_filestream::locks()
{
    const Scratch scratch;
    const path file(scratch.path("file"));
    filestream first;
    filestream second;
    QVERIFY(first.open(file, kReadOnly, true));
    QVERIFY(second.open(file, kReadWrite, false));
    QCOMPARE(first.flock(LOCK_EX), 0);
    for (const int shared : {LOCK_SH, LOCK_EX}) {
        QCOMPARE(second.flock(shared | LOCK_NB), -1);
        QCOMPARE(errno, EWOULDBLOCK);
    }
    QCOMPARE(first.flock(LOCK_SH), 0);
    QCOMPARE(second.flock(LOCK_SH | LOCK_NB), 0);
    QCOMPARE(second.flock(LOCK_EX | LOCK_NB), -1);
    QCOMPARE(first.flock(LOCK_UN), 0);
    QCOMPARE(second.flock(LOCK_EX | LOCK_NB), 0);
    QCOMPARE(first.flock(LOCK_EX | LOCK_NB), -1);
    second.close();
    QCOMPARE(first.flock(LOCK_EX | LOCK_NB), 0);
}

QTEST_APPLESS_MAIN(tst_filestream)
#include "tst_filestream.moc"
