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
        writeFile(Scratch::path("file"), "contents");
        ::mkdir(Scratch::path("dir").c_str(), 0700);
        ::mkfifo(Scratch::path("fifo").c_str(), 0600);
        makeLink("file", "link to file");
        makeLink("dir", "link to dir");
        makeLink("nothing", "dangling");
    }

    myfs::path operator()(const std::string& name) const { return Scratch::path(name); }
    std::string read(const std::string& name) const { return readFile(Scratch::path(name)); }

private:
    void makeLink(const char* target, const char* name) const
    {
        if (::symlink(target, Scratch::path(name).c_str()) != 0)
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
    void rootAndEmptyTextDoNotExist();
    void pathsBeyondTheLimitDoNotExist();
    void notFoundErrorLooksAtErrnoOnly();
    void actionsOverwriteTheCodeOnSuccess_data();
    void actionsOverwriteTheCodeOnSuccess();
    void actionsReportFailure_data();
    void actionsReportFailure();
    void createsDirectoriesWithParents_data();
    void createsDirectoriesWithParents();
    void refusesToCreateDirectories_data();
    void refusesToCreateDirectories();
    void existingDirectoryLeavesTheCode();
    void subDirectory();
    void sizes();
    void writeTimes();
    void removing();
    void renaming();
    void spaceOfAFileSystem();
    void strangeNames_data();
    void strangeNames();
};

void tst_file_operations::queries_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<bool>("isDirectory");
    QTest::addColumn<bool>("isFile");
    QTest::addColumn<int>("error");
    const auto row = [](const char* name, bool exists, bool dir, bool file, int error) {
        QTest::newRow(name) << exists << dir << file << error;
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
    QFETCH(bool, exists);
    QFETCH(bool, isDirectory);
    QFETCH(bool, isFile);
    QFETCH(int, error);
    const Zoo zoo;
    const path p = zoo(QTest::currentDataTag());
    const std::error_code expected =
        error == 0 ? foreignCode() : std::error_code(error, std::system_category());

    errno = kErrnoBefore;
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

void tst_file_operations::rootAndEmptyTextDoNotExist()
{
    for (const char* text : {"/", "", ".", "///"}) {
        std::error_code ec;
        QVERIFY(!myfs::exists(text, ec));
        QCOMPARE(ec.value(), ENOENT);
        QVERIFY(!myfs::is_directory(text));
        QVERIFY(!myfs::directory_exists(text));
    }
    QVERIFY(myfs::directory_exists(".."));
}

void tst_file_operations::pathsBeyondTheLimitDoNotExist()
{
    std::string text;
    while (text.size() < PATH_MAX)
        text += "/..";
    std::error_code ec;
    QVERIFY(!myfs::exists(text, ec));
    QCOMPARE(ec.value(), ENAMETOOLONG);
    text.resize(std::size_t(PATH_MAX - 1) / 3 * 3);
    QVERIFY(myfs::is_directory(text));
}

void tst_file_operations::notFoundErrorLooksAtErrnoOnly()
{
    for (const int argument : {0, ENOENT, EACCES}) {
        for (const int error : {0, EACCES, ENOENT, ENOTDIR}) {
            errno = error;
            QCOMPARE(myfs::not_found_error(argument), error == ENOENT || error == ENOTDIR);
        }
    }
}

void tst_file_operations::actionsOverwriteTheCodeOnSuccess_data()
{
    QTest::addColumn<Action>("action");
    const auto row = [](const char* name, const Action& action) { QTest::newRow(name) << action; };
    row("create_directory",
        [](const Zoo& zoo, std::error_code& ec) { return myfs::create_directory(zoo("new"), ec); });
    row("create_directory_r", [](const Zoo& zoo, std::error_code& ec) {
        const bool ok = myfs::create_directory_r(zoo("new"), ec);
        // The queries before it leave their error behind.
        return ok && ec.value() == ENOENT && (ec.assign(kErrnoBefore, ec.category()), true);
    });
    row("copy_regular_file", [](const Zoo& zoo, std::error_code& ec) {
        return myfs::copy_regular_file(zoo("file"), zoo("copy"), true, ec);
    });
    row("file_size", [](const Zoo& zoo, std::error_code& ec) {
        return myfs::file_size(zoo("file"), ec, true) == 8;
    });
    row("remove",
        [](const Zoo& zoo, std::error_code& ec) { return myfs::remove(zoo("file"), ec); });
    row("rename", [](const Zoo& zoo, std::error_code& ec) {
        return myfs::rename(zoo("file"), zoo("renamed"), ec);
    });
    row("resize_file",
        [](const Zoo& zoo, std::error_code& ec) { return myfs::resize_file(zoo("file"), 3, ec); });
    row("space", [](const Zoo& zoo, std::error_code& ec) {
        return myfs::space(zoo("file"), ec).capacity > 0;
    });
    row("current_path", [](const Zoo& zoo, std::error_code& ec) {
        const WorkingDirectoryScope scope;
        errno = kErrnoBefore;
        myfs::current_path(zoo("dir"), ec);
        return myfs::file_exists("../file");
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
    QTest::addColumn<Action>("succeeds");
    QTest::addColumn<int>("error");
    const auto row = [](const char* name, int error, const Action& succeeds) {
        QTest::newRow(name) << succeeds << error;
    };
    row("create_directory, existing", EEXIST, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::create_directory(zoo("dir"), ec) || myfs::create_directory(zoo("dir"));
    });
    row("create_directory, no parent", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::create_directory(zoo("a/b"), ec) || myfs::create_directory(zoo("a/b"));
    });
    row("file_size", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::file_size(zoo("missing"), ec, false) != 0;
    });
    row("remove, missing", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::remove(zoo("missing"), ec) || myfs::remove(zoo("missing"));
    });
    row("remove, not empty", ENOTEMPTY,
        [](const Zoo& zoo, std::error_code& ec) { return myfs::remove(zoo("."), ec); });
    row("rename, missing", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::rename(zoo("missing"), zoo("to"), ec) ||
               myfs::rename(zoo("missing"), zoo("to"));
    });
    row("rename, file over directory", EISDIR, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::rename(zoo("file"), zoo("dir"), ec);
    });
    row("resize_file, missing", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        return myfs::resize_file(zoo("missing"), 1, ec) || myfs::resize_file(zoo("missing"), 1);
    });
    row("resize_file, negative", EINVAL,
        [](const Zoo& zoo, std::error_code& ec) { return myfs::resize_file(zoo("file"), -1, ec); });
    row("space", ENOENT, [](const Zoo& zoo, std::error_code& ec) {
        const myfs::disk_space bytes = myfs::space(zoo("missing"), ec);
        return bytes.capacity != 0 || bytes.free != 0 || bytes.available != 0;
    });
    row("current_path", ENOTDIR, [](const Zoo& zoo, std::error_code& ec) {
        const std::string before = myfs::current_path().string();
        myfs::current_path(zoo("file"), ec);
        return myfs::current_path().string() != before;
    });
}

void tst_file_operations::actionsReportFailure()
{
    QFETCH(Action, succeeds);
    QFETCH(int, error);
    const Zoo zoo;
    std::error_code ec = foreignCode();
    QVERIFY(!succeeds(zoo, ec));
    QCOMPARE(ec.value(), error);
    QVERIFY(ec.category() == std::system_category());
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
    const UmaskScope umask(0);
    const WorkingDirectoryScope scope(zoo.path());
    std::error_code ec;
    bool ok = false;
    QCOMPARE(printedBy([&] { ok = myfs::create_directory_r(zoo("in/" + name), ec); }),
             std::string());
    QVERIFY(ok);
    QVERIFY(myfs::create_directory_r(name));
    for (const path& p : {zoo("in/" + name), zoo(name)}) {
        QVERIFY(myfs::is_directory(p));
        QCOMPARE(permissions(p.string()), mode_t(0700));
    }
    QVERIFY(myfs::create_directory_r(name));
}

void tst_file_operations::refusesToCreateDirectories_data()
{
    QTest::addColumn<std::string>("name");
    QTest::addColumn<std::string>("refused");
    QTest::addColumn<int>("error");
    // Intended: what is in the way is not reported.
    for (const char* name : {"file", "file/y", "file/y/z", "link to file/y", "fifo", "fifo/y"})
        QTest::newRow(name) << std::string(name) << std::string() << 0;
    const std::string tooLong(256, 'x');
    QTest::newRow("name too long") << tooLong << tooLong << ENAMETOOLONG;
    QTest::newRow("only the parent is reported")
        << std::string("dangling/a/b") << std::string("dangling") << EEXIST;
}

void tst_file_operations::refusesToCreateDirectories()
{
    QFETCH(std::string, name);
    QFETCH(std::string, refused);
    QFETCH(int, error);
    const Zoo zoo;
    const std::string printed = "create directory '" + zoo.path(refused) +
                                "' failed, errno=" + std::to_string(error) + "\n";
    bool ok = true;
    std::error_code ec = foreignCode();
    QCOMPARE(printedBy([&] { ok = myfs::create_directory_r(zoo(name), ec); }),
             error == 0 ? std::string() : printed);
    QVERIFY(!ok);
    QCOMPARE(ec.value(), error == 0 ? kForeignError : error);

    QCOMPARE(printedBy([&] { ok = myfs::create_directory_r("/"); }),
             std::string("create directory '' failed, errno=2\n"));
    QVERIFY(!ok);
}

void tst_file_operations::existingDirectoryLeavesTheCode()
{
    const Zoo zoo;
    std::error_code ec = foreignCode();
    QVERIFY(myfs::create_directory_r(zoo("dir"), ec));
    QVERIFY(myfs::create_directory_r(zoo("link to dir"), ec));
    QVERIFY(ec == foreignCode());
}

void tst_file_operations::subDirectory()
{
    const Zoo zoo;
    QCOMPARE(myfs::create_sub_directory(zoo.path().c_str(), "a/b/"), zoo.path("a/b"));
    QVERIFY(myfs::is_directory(zoo("a/b")));
    // An absolute name is not appended, and failure shows nowhere.
    QCOMPARE(myfs::create_sub_directory(zoo.path("dir").c_str(), "/c"), zoo.path("dir"));
    QCOMPARE(myfs::create_sub_directory(zoo.path("file").c_str(), "c"), zoo.path("file/c"));
    QVERIFY(!myfs::exists(zoo("file/c")));
}

void tst_file_operations::sizes()
{
    const Zoo zoo;
    constexpr long long beyond32Bits = (1LL << 32) + 5;
    for (const bool flag : {false, true}) {
        QCOMPARE(myfs::file_size(zoo("file"), flag), 8LL);
        QCOMPARE(myfs::file_size(zoo("link to file"), flag), 8LL);
        QCOMPARE(myfs::file_size(zoo("missing"), flag), 0LL);
    }
    QVERIFY(myfs::resize_file(zoo("file"), 3));
    QCOMPARE(zoo.read("file"), std::string("con"));
    QVERIFY(myfs::resize_file(zoo("file"), 5));
    QCOMPARE(zoo.read("file"), std::string("con\0\0", 5));
    QVERIFY(myfs::resize_file(zoo("file"), beyond32Bits));
    QCOMPARE(myfs::file_size(zoo("file"), false), beyond32Bits);
}

void tst_file_operations::writeTimes()
{
    const Zoo zoo;
    struct stat before = {};
    QCOMPARE(::stat(zoo.path("file").c_str(), &before), 0);
    QCOMPARE(myfs::last_write_time(zoo("file")), static_cast<long long>(before.st_mtime));
    for (const long long t : {1000000000LL, 0LL, -86400LL}) {
        myfs::last_write_time(zoo("file"), t);
        QCOMPARE(myfs::last_write_time(zoo("file")), t);
        QCOMPARE(myfs::last_modify_time(zoo("file")), t);
        struct stat after = {};
        QCOMPARE(::stat(zoo.path("file").c_str(), &after), 0);
        QCOMPARE(after.st_atime, before.st_atime);
    }
    myfs::last_write_time(zoo("missing"), 1000000000);
    QCOMPARE(myfs::last_write_time(zoo("missing")), -1LL);
    QVERIFY(!myfs::exists(zoo("missing")));
}

void tst_file_operations::removing()
{
    const Zoo zoo;
    for (const char* name : {".", "file", "missing"})
        QVERIFY(!myfs::remove_directory(zoo(name)));
    for (const char* name : {"dangling", "link to dir", "dir", "file"})
        QVERIFY(myfs::remove(zoo(name)));
    QVERIFY(!myfs::exists(zoo("dir")));
    QVERIFY(!myfs::exists(zoo("file")));
    QVERIFY(myfs::create_directory(zoo("dir")));
    QVERIFY(myfs::remove_directory(zoo("dir")));
    QVERIFY(!myfs::exists(zoo("dir")));
}

void tst_file_operations::renaming()
{
    const Zoo zoo;
    writeFile(zoo.path("other"), "other contents");
    QVERIFY(myfs::rename(zoo("other"), zoo("file")));
    QCOMPARE(zoo.read("file"), std::string("other contents"));
    QVERIFY(!myfs::exists(zoo("other")));
    QVERIFY(myfs::rename(zoo("dir"), zoo("moved")));
    QVERIFY(myfs::is_directory(zoo("moved")));
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
        bytes = myfs::space(scratch.path());
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
    const Zoo zoo;
    myfs::filestream stream;
    QVERIFY(stream.open(zoo(name), 0, true));
    QCOMPARE(stream.write("text", 4), std::size_t(4));
    stream.close();
    QCOMPARE(myfs::file_size(zoo(name), false), 4LL);
    QVERIFY(myfs::copy_regular_file(zoo(name), zoo("copy"), true));
    QVERIFY(myfs::remove(zoo(name)));
    QVERIFY(myfs::rename(zoo("copy"), zoo(name)));
    QCOMPARE(zoo.read(name), std::string("text"));
}

QTEST_APPLESS_MAIN(tst_file_operations)
#include "tst_file_operations.moc"
