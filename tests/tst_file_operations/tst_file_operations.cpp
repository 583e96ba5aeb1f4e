// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Files.h"
#include "StdText.h"
#include "myfs.h"

#include <cerrno>
#include <climits>
#include <functional>
#include <sys/statfs.h>

using myfs::path;

namespace
{

/// Neither what an operation under test reports nor what errno held before it.
constexpr int kForeignError = EDOM;
constexpr int kErrnoBefore = EXDEV;

std::error_code foreignCode()
{
    return {kForeignError, std::generic_category()};
}

/// Something of every kind below one directory.
class Zoo : public Scratch
{
public:
    Zoo()
    {
        writeFile(path("file"), "contents");
        ::mkdir(path("dir").c_str(), 0700);
        ::mkfifo(path("fifo").c_str(), 0600);
        makeLink("file", "link to file");
        makeLink("dir", "link to dir");
        makeLink("nothing", "dangling");
    }

private:
    void makeLink(const char* target, const char* name) const
    {
        if (::symlink(target, path(name).c_str()) != 0)
            qFatal("no link %s", name);
    }
};

} // namespace

using Action = std::function<bool(const Zoo&, std::error_code&)>;
Q_DECLARE_METATYPE(Action)

class tst_file_operations : public BehaviourTest
{
    Q_OBJECT

private slots:
    void queries_data();
    void queries();
    void queriesLeaveTheCodeOnSuccess();
    void rootAndEmptyTextDoNotExist();
    void pathsBeyondTheLimitDoNotExist();
    void notFoundErrorLooksAtErrnoOnly();
    void actionsOverwriteTheCodeOnSuccess_data();
    void actionsOverwriteTheCodeOnSuccess();
    void actionsReportFailure_data();
    void actionsReportFailure();
    void createdDirectoryIsItsOwnersAlone();
    void createsDirectoriesWithParents_data();
    void createsDirectoriesWithParents();
    void createsRelativeDirectories();
    void existingDirectoryLeavesTheCode();
    void plainFileInTheWayFailsInSilence_data();
    void plainFileInTheWayFailsInSilence();
    void failedDirectoryIsPrinted();
    void failedParentIsPrintedOnce();
    void rootCannotBeCreated();
    void subDirectory();
    void sizes();
    void writeTimes();
    void writeTimesOfAMissingFile();
    void removing();
    void removingDirectories();
    void renaming();
    void resizing();
    void spaceOfAFileSystem();
    void strangeNames_data();
    void strangeNames();
};

void tst_file_operations::queries_data()
{
    QTest::addColumn<std::string>("name");
    QTest::addColumn<bool>("exists");
    QTest::addColumn<bool>("isDirectory");
    QTest::addColumn<bool>("isFile");
    QTest::addColumn<int>("error");
    const auto row = [](const char* name, bool exists, bool dir, bool file, int error) {
        QTest::newRow(name) << std::string(name) << exists << dir << file << error;
    };
    row("file", true, false, true, 0);
    row("dir", true, true, false, 0);
    row("fifo", true, false, false, 0);
    row("link to file", true, false, true, 0);
    row("link to dir", true, true, false, 0);
    row("dangling", false, false, false, ENOENT);
    row("missing", false, false, false, ENOENT);
    row("missing/below", false, false, false, ENOENT);
    row("file/below", false, false, false, ENOTDIR);
    row("dir/../file", true, false, true, 0);
}

void tst_file_operations::queries()
{
    QFETCH(std::string, name);
    QFETCH(bool, exists);
    QFETCH(bool, isDirectory);
    QFETCH(bool, isFile);
    QFETCH(int, error);
    const Zoo zoo;
    const path p(zoo.path(name));
    const std::error_code expected =
        error == 0 ? foreignCode() : std::error_code(error, std::system_category());

    std::error_code ec = foreignCode();
    QCOMPARE(myfs::exists(p, ec), exists);
    QVERIFY(ec == expected);
    ec = foreignCode();
    QCOMPARE(myfs::is_directory(p, ec), isDirectory);
    QVERIFY(ec == expected);
    ec = foreignCode();
    QCOMPARE(myfs::is_regular_file(p, ec), isFile);
    QVERIFY(ec == expected);

    QCOMPARE(myfs::exists(p), exists);
    QCOMPARE(myfs::is_directory(p), isDirectory);
    QCOMPARE(myfs::is_regular_file(p), isFile);
    QCOMPARE(myfs::directory_exists(p), isDirectory);
    QCOMPARE(myfs::file_exists(p), isFile);
}

void tst_file_operations::queriesLeaveTheCodeOnSuccess()
{
    const Zoo zoo;
    std::error_code ec = foreignCode();
    errno = kErrnoBefore;
    QVERIFY(myfs::exists(path(zoo.path("dir")), ec));
    QVERIFY(myfs::is_directory(path(zoo.path("dir")), ec));
    QVERIFY(!myfs::is_regular_file(path(zoo.path("dir")), ec));
    QVERIFY(ec == foreignCode());
}

void tst_file_operations::rootAndEmptyTextDoNotExist()
{
    for (const char* text : {"/", "", ".", "///"}) {
        std::error_code ec;
        QVERIFY(!myfs::exists(path(text), ec));
        QCOMPARE(ec.value(), ENOENT);
        QVERIFY(!myfs::is_directory(path(text)));
        QVERIFY(!myfs::directory_exists(path(text)));
    }
    QVERIFY(myfs::directory_exists(path("..")));
}

void tst_file_operations::pathsBeyondTheLimitDoNotExist()
{
    std::string text;
    while (text.size() < PATH_MAX)
        text += "/..";
    std::error_code ec;
    QVERIFY(!myfs::exists(path(text), ec));
    QCOMPARE(ec.value(), ENAMETOOLONG);
    QVERIFY(!myfs::is_directory(path(text), ec));
    QCOMPARE(myfs::file_size(path(text), ec, false), 0LL);
    QCOMPARE(ec.value(), ENAMETOOLONG);
    text.resize(std::size_t(PATH_MAX - 1) / 3 * 3);
    QVERIFY(myfs::is_directory(path(text)));
}

void tst_file_operations::notFoundErrorLooksAtErrnoOnly()
{
    for (const int argument : {0, ENOENT, EACCES}) {
        errno = ENOENT;
        QVERIFY(myfs::not_found_error(argument));
        errno = ENOTDIR;
        QVERIFY(myfs::not_found_error(argument));
        errno = EACCES;
        QVERIFY(!myfs::not_found_error(argument));
        errno = 0;
        QVERIFY(!myfs::not_found_error(argument));
    }
}

void tst_file_operations::actionsOverwriteTheCodeOnSuccess_data()
{
    QTest::addColumn<Action>("action");
    const auto row = [](const char* name, const Action& action) { QTest::newRow(name) << action; };
    row("create_directory", [](const Zoo& zoo, std::error_code& ec) {
        return myfs::create_directory(path(zoo.path("new")), ec);
    });
    row("create_directory_r", [](const Zoo& zoo, std::error_code& ec) {
        const path p(zoo.path("new"));
        errno = kErrnoBefore;
        const bool ok = myfs::create_directory_r(p, ec);
        // The queries before it leave their error behind.
        return ok && ec.value() == ENOENT && (ec.assign(kErrnoBefore, ec.category()), true);
    });
    row("copy_regular_file", [](const Zoo& zoo, std::error_code& ec) {
        return myfs::copy_regular_file(path(zoo.path("file")), path(zoo.path("copy")), true, ec);
    });
    row("file_size", [](const Zoo& zoo, std::error_code& ec) {
        return myfs::file_size(path(zoo.path("file")), ec, true) == 8;
    });
    row("remove", [](const Zoo& zoo, std::error_code& ec) {
        return myfs::remove(path(zoo.path("file")), ec);
    });
    row("rename", [](const Zoo& zoo, std::error_code& ec) {
        return myfs::rename(path(zoo.path("file")), path(zoo.path("renamed")), ec);
    });
    row("resize_file", [](const Zoo& zoo, std::error_code& ec) {
        return myfs::resize_file(path(zoo.path("file")), 3, ec);
    });
    row("space", [](const Zoo& zoo, std::error_code& ec) {
        return myfs::space(path(zoo.path("file")), ec).capacity > 0;
    });
    row("current_path", [](const Zoo& zoo, std::error_code& ec) {
        const WorkingDirectoryScope scope;
        errno = kErrnoBefore;
        myfs::current_path(path(zoo.path("dir")), ec);
        return myfs::file_exists(path("../file"));
    });
}

void tst_file_operations::actionsOverwriteTheCodeOnSuccess()
{
    QFETCH(Action, action);
    const Zoo zoo;
    std::error_code ec = foreignCode();
    errno = kErrnoBefore;
    QVERIFY(action(zoo, ec));
    QCOMPARE(ec.value(), kErrnoBefore);
    QVERIFY(ec.category() == std::system_category());
}

void tst_file_operations::actionsReportFailure_data()
{
    QTest::addColumn<Action>("action");
    QTest::addColumn<int>("error");
    const auto row = [](const char* name, int error, const Action& action) {
        QTest::newRow(name) << action << error;
    };
    row("create_directory, existing", EEXIST, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::create_directory(path(zoo.path("dir")), ec) ||
               myfs::create_directory(path(zoo.path("dir")));
    });
    row("create_directory, no parent", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::create_directory(path(zoo.path("a/b")), ec) ||
               myfs::create_directory(path(zoo.path("a/b")));
    });
    row("file_size", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::file_size(path(zoo.path("missing")), ec, false) != 0;
    });
    row("remove, missing", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::remove(path(zoo.path("missing")), ec) ||
               myfs::remove(path(zoo.path("missing")));
    });
    row("remove, not empty", ENOTEMPTY,
        [](const Zoo& zoo, std::error_code& ec) { return myfs::remove(path(zoo.path()), ec); });
    row("rename, missing", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        const path to(zoo.path("renamed"));
        return myfs::rename(path(zoo.path("missing")), to, ec) ||
               myfs::rename(path(zoo.path("missing")), to);
    });
    row("rename, file over directory", EISDIR, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::rename(path(zoo.path("file")), path(zoo.path("dir")), ec);
    });
    row("resize_file, missing", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::resize_file(path(zoo.path("missing")), 1, ec) ||
               myfs::resize_file(path(zoo.path("missing")), 1);
    });
    row("resize_file, negative", EINVAL, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::resize_file(path(zoo.path("file")), -1, ec);
    });
    row("space", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        const myfs::disk_space bytes = myfs::space(path(zoo.path("missing")), ec);
        return bytes.capacity != 0 || bytes.free != 0 || bytes.available != 0;
    });
    row("current_path", ENOTDIR, [](const Zoo& zoo, std::error_code& ec) {
        const std::string before = myfs::current_path().string();
        myfs::current_path(path(zoo.path("file")), ec);
        return myfs::current_path().string() != before;
    });
}

void tst_file_operations::actionsReportFailure()
{
    QFETCH(Action, action);
    QFETCH(int, error);
    const Zoo zoo;
    std::error_code ec = foreignCode();
    QVERIFY(!action(zoo, ec));
    QCOMPARE(ec.value(), error);
    QVERIFY(ec.category() == std::system_category());
}

void tst_file_operations::createdDirectoryIsItsOwnersAlone()
{
    const Scratch scratch;
    const UmaskScope umask(0);
    QVERIFY(myfs::create_directory(path(scratch.path("one"))));
    QCOMPARE(permissions(scratch.path("one")), mode_t(0700));
    QVERIFY(myfs::create_directory_r(path(scratch.path("two/three"))));
    QCOMPARE(permissions(scratch.path("two")), mode_t(0700));
    QCOMPARE(permissions(scratch.path("two/three")), mode_t(0700));
}

void tst_file_operations::createsDirectoriesWithParents_data()
{
    QTest::addColumn<std::string>("name");
    for (const char* name : {"one", "a/b/c", "dir", "dir/x/y", "link to dir/x", "a//b/./c/",
                             "dir/../q/r", "\xE4\xB8\xAD/\xE6\x96\x87", "\xFF\xFE/\x80"})
        QTest::newRow(name) << std::string(name);
    QTest::newRow("long names") << std::string(200, 'x') + "/" + std::string(255, 'y');
}

void tst_file_operations::createsDirectoriesWithParents()
{
    QFETCH(std::string, name);
    const Zoo zoo;
    const path p(zoo.path(name));
    std::error_code ec;
    bool ok = false;
    QCOMPARE(printedBy([&] { ok = myfs::create_directory_r(p, ec); }), std::string());
    QVERIFY(ok);
    QVERIFY(myfs::is_directory(p));
    QVERIFY(myfs::create_directory_r(p));
}

void tst_file_operations::createsRelativeDirectories()
{
    const Scratch scratch;
    const WorkingDirectoryScope scope(scratch.path());
    QVERIFY(myfs::create_directory_r(path("a/b/c")));
    QVERIFY(myfs::is_directory(path(scratch.path("a/b/c"))));
    QVERIFY(myfs::create_directory_r(path("d")));
    QVERIFY(myfs::is_directory(path(scratch.path("d"))));
}

void tst_file_operations::existingDirectoryLeavesTheCode()
{
    const Zoo zoo;
    std::error_code ec = foreignCode();
    QVERIFY(myfs::create_directory_r(path(zoo.path("dir")), ec));
    QVERIFY(myfs::create_directory_r(path(zoo.path("link to dir")), ec));
    QVERIFY(ec == foreignCode());
}

void tst_file_operations::plainFileInTheWayFailsInSilence_data()
{
    QTest::addColumn<std::string>("name");
    for (const char* name : {"file", "file/y", "file/y/z", "link to file/y", "fifo", "fifo/y"})
        QTest::newRow(name) << std::string(name);
}

void tst_file_operations::plainFileInTheWayFailsInSilence()
{
    QFETCH(std::string, name);
    const Zoo zoo;
    bool ok = true;
    std::error_code ec = foreignCode();
    const auto create = [&] { ok = myfs::create_directory_r(path(zoo.path(name)), ec); };
    QCOMPARE(printedBy(create), std::string());
    QVERIFY(!ok);
    QVERIFY(ec == foreignCode());
}

void tst_file_operations::failedDirectoryIsPrinted()
{
    const Scratch scratch;
    const std::string name = scratch.path(std::string(256, 'x'));
    bool ok = true;
    std::error_code ec;
    const std::string printed = printedBy([&] { ok = myfs::create_directory_r(path(name), ec); });
    QVERIFY(!ok);
    QCOMPARE(ec.value(), ENAMETOOLONG);
    QCOMPARE(printed, "create directory '" + name +
                          "' failed, errno=" + std::to_string(ENAMETOOLONG) + "\n");
}

void tst_file_operations::failedParentIsPrintedOnce()
{
    const Zoo zoo;
    const std::string name = zoo.path("dangling");
    bool ok = true;
    const std::string printed =
        printedBy([&] { ok = myfs::create_directory_r(path(name + "/a/b")); });
    QVERIFY(!ok);
    QCOMPARE(printed,
             "create directory '" + name + "' failed, errno=" + std::to_string(EEXIST) + "\n");
}

void tst_file_operations::rootCannotBeCreated()
{
    bool ok = true;
    const std::string printed = printedBy([&] { ok = myfs::create_directory_r(path("/")); });
    QVERIFY(!ok);
    QCOMPARE(printed, std::string("create directory '' failed, errno=2\n"));
}

void tst_file_operations::subDirectory()
{
    const Zoo zoo;
    QCOMPARE(myfs::create_sub_directory(zoo.path().c_str(), "a/b/"), zoo.path("a/b"));
    QVERIFY(myfs::is_directory(path(zoo.path("a/b"))));
    // An absolute name is not appended, and failure shows nowhere.
    QCOMPARE(myfs::create_sub_directory(zoo.path("dir").c_str(), "/c"), zoo.path("dir"));
    QCOMPARE(myfs::create_sub_directory(zoo.path("file").c_str(), "c"), zoo.path("file/c"));
    QVERIFY(!myfs::exists(path(zoo.path("file/c"))));
}

void tst_file_operations::sizes()
{
    const Zoo zoo;
    writeFile(zoo.path("empty"), "");
    constexpr long long beyond32Bits = (1LL << 32) + 5;
    for (const bool flag : {false, true}) {
        QCOMPARE(myfs::file_size(path(zoo.path("file")), flag), 8LL);
        QCOMPARE(myfs::file_size(path(zoo.path("link to file")), flag), 8LL);
        QCOMPARE(myfs::file_size(path(zoo.path("empty")), flag), 0LL);
        QCOMPARE(myfs::file_size(path(zoo.path("missing")), flag), 0LL);
    }
    QVERIFY(myfs::resize_file(path(zoo.path("empty")), beyond32Bits));
    QCOMPARE(myfs::file_size(path(zoo.path("empty")), false), beyond32Bits);
}

void tst_file_operations::writeTimes()
{
    const Zoo zoo;
    const path p(zoo.path("file"));
    struct stat before = {};
    QCOMPARE(::stat(zoo.path("file").c_str(), &before), 0);
    QCOMPARE(myfs::last_write_time(p), static_cast<long long>(before.st_mtime));
    for (const long long t : {1000000000LL, 0LL, -86400LL}) {
        myfs::last_write_time(p, t);
        QCOMPARE(myfs::last_write_time(p), t);
        QCOMPARE(myfs::last_modify_time(p), t);
        struct stat after = {};
        QCOMPARE(::stat(zoo.path("file").c_str(), &after), 0);
        QCOMPARE(after.st_atime, before.st_atime);
    }
}

void tst_file_operations::writeTimesOfAMissingFile()
{
    const Scratch scratch;
    const path p(scratch.path("missing"));
    QCOMPARE(myfs::last_write_time(p), -1LL);
    myfs::last_write_time(p, 1000000000);
    QVERIFY(!myfs::exists(p));
    QCOMPARE(myfs::last_write_time(p), -1LL);
}

void tst_file_operations::removing()
{
    const Zoo zoo;
    QVERIFY(myfs::remove(path(zoo.path("dangling"))));
    QVERIFY(myfs::remove(path(zoo.path("link to dir"))));
    QVERIFY(myfs::exists(path(zoo.path("dir"))));
    QVERIFY(myfs::remove(path(zoo.path("dir"))));
    QVERIFY(myfs::remove(path(zoo.path("file"))));
    QVERIFY(!myfs::exists(path(zoo.path("file"))));
}

void tst_file_operations::removingDirectories()
{
    const Zoo zoo;
    QVERIFY(!myfs::remove_directory(path(zoo.path())));
    QVERIFY(!myfs::remove_directory(path(zoo.path("file"))));
    QVERIFY(!myfs::remove_directory(path(zoo.path("missing"))));
    QVERIFY(myfs::remove_directory(path(zoo.path("dir"))));
    QVERIFY(!myfs::exists(path(zoo.path("dir"))));
}

void tst_file_operations::renaming()
{
    const Zoo zoo;
    writeFile(zoo.path("other"), "other contents");
    QVERIFY(myfs::rename(path(zoo.path("other")), path(zoo.path("file"))));
    QCOMPARE(readFile(zoo.path("file")), std::string("other contents"));
    QVERIFY(!myfs::exists(path(zoo.path("other"))));
    QVERIFY(myfs::rename(path(zoo.path("dir")), path(zoo.path("moved"))));
    QVERIFY(myfs::is_directory(path(zoo.path("moved"))));
}

void tst_file_operations::resizing()
{
    const Zoo zoo;
    QVERIFY(myfs::resize_file(path(zoo.path("file")), 3));
    QCOMPARE(readFile(zoo.path("file")), std::string("con"));
    QVERIFY(myfs::resize_file(path(zoo.path("file")), 5));
    QCOMPARE(readFile(zoo.path("file")), std::string("con\0\0", 5));
}

void tst_file_operations::spaceOfAFileSystem()
{
    const Scratch scratch;
    struct statfs before = {};
    struct statfs after = {};
    myfs::disk_space bytes;
    // Others write to the file system meanwhile: again until nobody did.
    const auto measureUndisturbed = [&] {
        const bool ok = ::statfs(scratch.path().c_str(), &before) == 0;
        bytes = myfs::space(path(scratch.path()));
        return ok && ::statfs(scratch.path().c_str(), &after) == 0 &&
               before.f_bfree == after.f_bfree && before.f_bavail == after.f_bavail;
    };
    QTRY_VERIFY(measureUndisturbed());
    const auto block = static_cast<std::uint64_t>(before.f_bsize);
    QCOMPARE(bytes.capacity, std::uint64_t(before.f_blocks) * block);
    QCOMPARE(bytes.free, std::uint64_t(before.f_bfree) * block);
    QCOMPARE(bytes.available, std::uint64_t(before.f_bavail) * block);
    QVERIFY(bytes.available > 0);
}

void tst_file_operations::strangeNames_data()
{
    QTest::addColumn<std::string>("name");
    QTest::newRow("Chinese") << std::string("\xE4\xB8\xAD\xE6\x96\x87.txt");
    QTest::newRow("invalid UTF-8") << std::string("\xFF\x80\xC3");
    QTest::newRow("outside the plane") << std::string("\xF0\x9F\x98\x80");
    QTest::newRow("spaces and line end") << std::string(" a\nb ");
    QTest::newRow("longest") << std::string(255, 'n');
}

void tst_file_operations::strangeNames()
{
    QFETCH(std::string, name);
    const Scratch scratch;
    writeFile(scratch.path(name), "text");
    const path p(scratch.path(name));
    QVERIFY(myfs::file_exists(p));
    QCOMPARE(myfs::file_size(p, false), 4LL);
    const path copy(scratch.path("copy"));
    QVERIFY(myfs::copy_regular_file(p, copy, true));
    QCOMPARE(readFile(scratch.path("copy")), std::string("text"));
    QVERIFY(myfs::remove(p));
    QVERIFY(myfs::rename(copy, p));
    QCOMPARE(readFile(scratch.path(name)), std::string("text"));
}

QTEST_APPLESS_MAIN(tst_file_operations)
#include "tst_file_operations.moc"
