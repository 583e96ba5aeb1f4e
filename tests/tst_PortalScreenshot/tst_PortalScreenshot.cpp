// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "FakePortal.h"
#include "Files.h"
#include "Pictures.h"
#include "PortalScreenshot.h"

#include <QBuffer>
#include <QDBusMetaType>
#include <QDir>
#include <QRegularExpression>
#include <QUrl>
#include <QtTest>
#include <climits>
#include <dlfcn.h>
#include <functional>
#include <memory>

namespace
{

int s_timeoutMs = 0;

} // namespace

// Stands before the function of libdbus with which Qt makes calls, and keeps how long the last one
// may take.
extern "C" {
unsigned dbus_connection_send_with_reply(void* connection, void* message, void** pending,
                                         int timeoutMs)
{
    static const auto next = reinterpret_cast<decltype(&dbus_connection_send_with_reply)>(
        ::dlsym(RTLD_NEXT, "dbus_connection_send_with_reply"));
    s_timeoutMs = timeoutMs;
    return next(connection, message, pending, timeoutMs);
}
}

namespace
{

enum Code : uint { Granted, RefusedByUser, EndedOtherwise };

const char kNoPicture[] = "The desktop's portal gave no picture.";
const char kTakesNone[] = "The desktop's portal takes no screenshots: ";
const char kGone[] = "The desktop's portal has gone away.";

/// A screenshot that is asked for, and what is told of it.
class Screenshot
{
public:
    int count = 0;
    QImage image;
    QString failure;
    /// What the receiver does then.
    std::function<void()> then = [] {};

    Screenshot()
        : m_portal(new PortalScreenshot(QCoreApplication::instance()))
    {
        QObject::connect(m_portal, &PortalScreenshot::finished,
                         [this](const QImage& picture, const QString& reason) {
                             ++count;
                             image = picture;
                             failure = reason;
                             then();
                         });
        m_portal->request();
        if (count > 0)
            qFatal("told before request() returned");
    }
    ~Screenshot()
    {
        if (m_portal)
            withdraw();
    }
    Q_DISABLE_COPY(Screenshot)
    bool isPicture(const QImage& picture) const
    {
        return count == 1 && failure.isEmpty() && image == picture;
    }
    bool isFailure() const { return count == 1 && image.isNull() && !failure.isEmpty(); }
    void withdraw()
    {
        QObject::disconnect(m_portal, &PortalScreenshot::finished, nullptr, nullptr);
        std::exchange(m_portal, nullptr)->withdraw();
    }

private:
    PortalScreenshot* m_portal;
};

QString uriOf(const QString& fileName)
{
    return QString::fromLatin1(QUrl::fromLocalFile(fileName).toEncoded());
}

QVariantMap naming(const QString& fileName)
{
    return {{"uri", uriOf(fileName)}};
}

QByteArray png(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

/// The signature and the header of a PNG file: 60000 x 60000 pixels of 8 bits RGB.
const char kHugeHeader[] = "\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\xea\x60\0\0\xea\x60\x08\x02\0\0\0"
                           "\x0f\xb0\xe2\x15";

QImage plain(const QSize& size, QImage::Format format)
{
    QImage image(size, format);
    image.fill(1);
    return image;
}

} // namespace

class tst_PortalScreenshot : public BehaviourTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void pictureIsThatOfTheFile_data();
    void pictureIsThatOfTheFile();
    void pictureIsOpaque();
    void picturesAreReadUpToOneGiB();
    void portalIsAskedForNoDialogOfItsOwn();
    void fileWithoutPictureIsRemoved_data();
    void fileWithoutPictureIsRemoved();
    void whatIsNoFileIsLeftAlone_data();
    void whatIsNoFileIsLeftAlone();
    void refusalIsTold_data();
    void refusalIsTold();
    void answerOfOtherTypesEndsTheWait_data();
    void answerOfOtherTypesEndsTheWait();
    void answerMayComeBeforeTheReply();
    void answerMayComeToAnotherPath();
    void answerToAnotherRequestIsNoAnswer();
    void secondAnswerIsOnlyTidiedUp();
    void errorOfTheCallIsTold_data();
    void errorOfTheCallIsTold();
    void replyOfAnotherTypeIsTold();
    void absentPortalIsTold();
    void portalIsStartedByTheCall();
    void portalWithoutScreenshotsIsTold();
    void absentBusIsTold();
    void portalThatGoesAwayIsTold_data();
    void portalThatGoesAwayIsTold();
    void portalThatIsReplacedIsTold();
    void busThatGoesAwayIsTold_data() { portalThatGoesAwayIsTold_data(); }
    void busThatGoesAwayIsTold();
    void busThatIsStartedAnewIsFound();
    void withdrawalIsToldToThePortal_data() { portalThatGoesAwayIsTold_data(); }
    void withdrawalIsToldToThePortal();
    void withdrawalAfterTheAnswerIsNone();
    void fileOfAnAnswerAfterTheWithdrawalIsRemoved();
    void fileFromBeforeTheRequestStays();
    void answerOfAnotherProgramIsNone();
    void screenshotMayBeWithdrawnWhenItIsTold_data();
    void screenshotMayBeWithdrawnWhenItIsTold();
    void requestsAtOnceHaveTheirOwnAnswers();
    void portalMayTakeItsTime();

private:
    QString fileName(const std::string& name) const
    {
        return QString::fromStdString(m_scratch.path(name));
    }
    /// A file as the portal leaves it.
    QString fileWith(const QByteArray& contents, const QString& name = "shot.png") const
    {
        writeFile(m_scratch.path(name.toStdString()), contents.toStdString());
        return fileName(name.toStdString());
    }
    /// What the portal is asked once it is asked for the `number`th screenshot.
    QDBusMessage call(int number = 1) const;
    /// Comes back once the portal has been asked, and has replied where it is to.
    void waitForCall(bool hasReplied) const;

    const Scratch m_scratch;
    PrivateBus m_bus;
    std::unique_ptr<FakePortal> m_portal;
};

void tst_PortalScreenshot::init()
{
    BehaviourTest::init();
    m_bus.start();
    m_portal = std::make_unique<FakePortal>();
}

void tst_PortalScreenshot::cleanup()
{
    m_portal.reset();
    m_bus.stop();
    m_bus.awaitNothing();
    BehaviourTest::cleanup();
}

QDBusMessage tst_PortalScreenshot::call(int number) const
{
    if (!QTest::qWaitFor([&] { return m_portal->calls.size() >= number; }, kPatienceMs))
        qFatal("the portal is not asked");
    return m_portal->calls.at(number - 1);
}

// The reply has arrived when an answer has that was sent later.
void tst_PortalScreenshot::waitForCall(bool hasReplied) const
{
    call();
    if (!hasReplied)
        return;
    m_portal->reply(call());
    const Screenshot another;
    m_portal->respond(call(2), RefusedByUser, {});
    QTRY_VERIFY(another.isFailure());
}

void tst_PortalScreenshot::pictureIsThatOfTheFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QImage>("image");
    const QImage image = noise({61, 47});
    QTest::newRow("RGB") << "shot.png" << image;
    QTest::newRow("one pixel") << "shot.png" << noise({1, 1});
    QTest::newRow("spaces") << " a shot .png" << image;
    QTest::newRow("percent signs") << "100%25%zz%.png" << image;
    QTest::newRow("umlauts") << QString::fromUtf8("Käfer übt Größe.png") << image;
    QTest::newRow("Chinese") << QString::fromUtf8("屏幕截图.png") << image;
    QTest::newRow("what uris use") << "a?b#c&d;e:f+g.png" << image;
    QTest::newRow("no suffix") << "shot" << image;
    QTest::newRow("more than 128 MiB") << "shot.png" << plain({8192, 4300}, QImage::Format_RGB32);
}

void tst_PortalScreenshot::pictureIsThatOfTheFile()
{
    QFETCH(QString, name);
    QFETCH(QImage, image);
    const QString file = fileWith(png(image), name);
    const Screenshot screenshot;
    m_portal->reply(call());
    m_portal->respond(call(), Granted, naming(file));
    QTRY_COMPARE(screenshot.count, 1);
    QCOMPARE(screenshot.failure, QString());
    QVERIFY(screenshot.image.convertToFormat(image.format()) == image);
    QVERIFY(!QFile::exists(file));
}

// No screen is transparent.
void tst_PortalScreenshot::pictureIsOpaque()
{
    QImage image = noise({61, 47});
    QImage translucent = image.convertToFormat(QImage::Format_ARGB32);
    for (int x = 0; x < image.width(); ++x)
        translucent.setPixel(x, 0, (translucent.pixel(x, 0) & RGB_MASK) | 0x80000000);
    const Screenshot screenshot;
    m_portal->reply(call());
    m_portal->respond(call(), Granted, naming(fileWith(png(translucent))));
    QTRY_COMPARE(screenshot.count, 1);
    QVERIFY(!screenshot.image.hasAlphaChannel());
    QVERIFY(screenshot.image.convertToFormat(image.format()) == image);
}

// Each pixel is one bit here, and counts as the four bytes of a screen's.
void tst_PortalScreenshot::picturesAreReadUpToOneGiB()
{
    const QSize largest(16384, 16384);
    for (const QSize& size : {largest, largest + QSize(0, 1)}) {
        const QString file = fileWith(png(plain(size, QImage::Format_Mono)));
        const Screenshot screenshot;
        m_portal->respond(call(m_portal->calls.size() + 1), Granted, naming(file));
        QTRY_COMPARE(screenshot.count, 1);
        const bool isRead = size == largest;
        QCOMPARE(screenshot.image.isNull(), !isRead);
        QVERIFY(!isRead || screenshot.image.size() == size);
        QCOMPARE(screenshot.failure, QString(isRead ? "" : kNoPicture));
        QVERIFY(!QFile::exists(file));
    }
}

void tst_PortalScreenshot::portalIsAskedForNoDialogOfItsOwn()
{
    const Screenshot screenshot;
    QCOMPARE(call().path(), QString("/org/freedesktop/portal/desktop"));
    QCOMPARE(call().member(), QString("Screenshot"));
    QCOMPARE(call().signature(), QString("sa{sv}"));
    QCOMPARE(call().arguments().first(), QVariant(QString()));
    const auto options = qdbus_cast<QVariantMap>(call().arguments().last());
    QCOMPARE(options.keys(), QStringList({"handle_token", "interactive"}));
    QCOMPARE(options.value("interactive"), QVariant(false));
    const QRegularExpression token("^[A-Za-z0-9_]+$");
    QVERIFY(token.match(options.value("handle_token").toString()).hasMatch());
}

void tst_PortalScreenshot::fileWithoutPictureIsRemoved_data()
{
    QTest::addColumn<QByteArray>("contents");
    const QByteArray whole = png(noise({61, 47}));
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no picture") << QByteArray("no picture at all");
    QTest::newRow("half a signature") << whole.left(4);
    QTest::newRow("half a header") << whole.left(20);
    QTest::newRow("half the pixels") << whole.left(whole.size() / 2);
    QTest::newRow("60000 x 60000") << QByteArray(kHugeHeader, sizeof kHugeHeader - 1);
}

void tst_PortalScreenshot::fileWithoutPictureIsRemoved()
{
    QFETCH(QByteArray, contents);
    const QString file = fileWith(contents);
    const Screenshot screenshot;
    m_portal->reply(call());
    m_portal->respond(call(), Granted, naming(file));
    QTRY_VERIFY(screenshot.isFailure());
    QCOMPARE(screenshot.failure, QString(kNoPicture));
    QVERIFY(!QFile::exists(file));
}

void tst_PortalScreenshot::whatIsNoFileIsLeftAlone_data()
{
    QTest::addColumn<QVariantMap>("results");
    QTest::addColumn<QString>("path");
    const auto addPath = [&](const char* name, const QString& path) {
        QTest::newRow(name) << naming(path) << path;
    };
    const auto addUri = [](const char* name, const QVariant& uri) {
        QTest::newRow(name) << QVariantMap{{"uri", uri}} << QString();
    };
    QTest::newRow("no uri") << QVariantMap() << QString();
    addUri("empty", "");
    addUri("a number", 7);
    addUri("a list", QStringList{"file:///shot.png"});
    addUri("http", "http://localhost/shot.png");
    addUri("no name", "file:");
    addUri("missing", uriOf(fileName("missing.png")));
    const QString picture = fileWith(png(noise({2, 2})), "path.png");
    QTest::newRow("a path") << QVariantMap{{"uri", picture}} << picture;
    QDir().mkpath(fileName("empty"));
    addPath("directory", fileName("empty"));
    ::mkfifo(m_scratch.path("fifo").c_str(), 0600);
    addPath("FIFO", fileName("fifo"));
}

void tst_PortalScreenshot::whatIsNoFileIsLeftAlone()
{
    QFETCH(QVariantMap, results);
    QFETCH(QString, path);
    const Screenshot screenshot;
    m_portal->reply(call());
    m_portal->respond(call(), Granted, results);
    QTRY_VERIFY(screenshot.isFailure());
    QCOMPARE(screenshot.failure, QString(kNoPicture));
    QVERIFY(path.isEmpty() || QFile::exists(path));
}

void tst_PortalScreenshot::refusalIsTold_data()
{
    QTest::addColumn<uint>("code");
    QTest::addColumn<QString>("failure");
    QTest::newRow("by the user") << uint(RefusedByUser) << "The screenshot was not permitted.";
    const QString otherwise = "The desktop's portal could not take the screenshot.";
    QTest::newRow("otherwise") << uint(EndedOtherwise) << otherwise;
    QTest::newRow("by a code to come") << uint(EndedOtherwise) + 1 << otherwise;
    QTest::newRow("by the last code") << UINT_MAX << otherwise;
}

void tst_PortalScreenshot::refusalIsTold()
{
    QFETCH(uint, code);
    QFETCH(QString, failure);
    const QString file = fileWith(png(noise({61, 47})));
    for (const QVariantMap& results : {QVariantMap(), naming(file)}) {
        const Screenshot screenshot;
        const QDBusMessage request = call(m_portal->calls.size() + 1);
        m_portal->reply(request);
        m_portal->respond(request, code, results);
        QTRY_VERIFY(screenshot.isFailure());
        QCOMPARE(screenshot.failure, failure);
    }
    QVERIFY(!QFile::exists(file));
}

void tst_PortalScreenshot::answerOfOtherTypesEndsTheWait_data()
{
    QTest::addColumn<QVariantList>("arguments");
    const QVariantMap results = naming(fileName("missing.png"));
    QTest::newRow("none") << QVariantList();
    QTest::newRow("code alone") << QVariantList{uint(Granted)};
    QTest::newRow("signed code") << QVariantList{int(Granted), results};
    QTest::newRow("text for a code") << QVariantList{"granted", results};
    QTest::newRow("text for results") << QVariantList{uint(Granted), "file:///shot.png"};
    QTest::newRow("list for results") << QVariantList{uint(Granted), QStringList{"uri"}};
    qDBusRegisterMetaType<QMap<QString, QString>>();
    const QMap<QString, QString> texts{{"uri", "file:///shot.png"}};
    QTest::newRow("texts in results") << QVariantList{uint(Granted), QVariant::fromValue(texts)};
    QTest::newRow("one too many") << QVariantList{uint(Granted), results, 7};
}

void tst_PortalScreenshot::answerOfOtherTypesEndsTheWait()
{
    QFETCH(QVariantList, arguments);
    const Screenshot screenshot;
    m_portal->reply(call());
    m_portal->respond(FakePortal::requestPath(call()), arguments);
    QTRY_VERIFY(screenshot.isFailure());
    QCOMPARE(screenshot.failure, QString(kNoPicture));
}

void tst_PortalScreenshot::answerMayComeBeforeTheReply()
{
    const QImage image = noise({61, 47});
    const Screenshot screenshot;
    m_portal->respond(call(), Granted, naming(fileWith(png(image))));
    m_portal->reply(call());
    QTRY_VERIFY(screenshot.isPicture(image));
}

// As old portals do. Answers that come before the other path is known are lost.
void tst_PortalScreenshot::answerMayComeToAnotherPath()
{
    const QString path = "/org/freedesktop/portal/desktop/request/1";
    const QImage image = noise({61, 47});
    const QVariantMap results = naming(fileWith(png(image)));
    const Screenshot screenshot;
    m_portal->reply(call(), QVariant::fromValue(QDBusObjectPath(path)));
    QTRY_VERIFY((m_portal->respond(path, {uint(Granted), results}), screenshot.isPicture(image)));
}

void tst_PortalScreenshot::answerToAnotherRequestIsNoAnswer()
{
    const QImage image = noise({61, 47});
    const QString file = fileWith(png(image));
    const Screenshot screenshot;
    m_portal->reply(call());
    m_portal->respond(FakePortal::requestPath(call()) + "1", {uint(RefusedByUser), naming(file)});
    m_portal->respond(call(), Granted, naming(file));
    QTRY_VERIFY(screenshot.isPicture(image));
}

void tst_PortalScreenshot::secondAnswerIsOnlyTidiedUp()
{
    const QImage image = noise({61, 47});
    const QString second = fileWith(png(noise({5, 5})), "second.png");
    const Screenshot screenshot;
    m_portal->reply(call());
    m_portal->respond(call(), Granted, naming(fileWith(png(image))));
    m_portal->respond(call(), Granted, naming(second));
    QTRY_VERIFY(!QFile::exists(second));
    QVERIFY(screenshot.isPicture(image));
}

void tst_PortalScreenshot::errorOfTheCallIsTold_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("told");
    QTest::newRow("sentence") << "Not today"
                              << "Not today";
    QTest::newRow("lines") << "Not\ntoday \n"
                           << "Not today";
    QTest::newRow("place marker") << "%1 not %2 today"
                                  << "%1 not %2 today";
}

void tst_PortalScreenshot::errorOfTheCallIsTold()
{
    QFETCH(QString, message);
    QFETCH(QString, told);
    const Screenshot screenshot;
    m_portal->replyWithError(call(), message);
    QTRY_VERIFY(screenshot.isFailure());
    QCOMPARE(screenshot.failure, kTakesNone + told);
}

void tst_PortalScreenshot::replyOfAnotherTypeIsTold()
{
    const Screenshot screenshot;
    m_portal->reply(call(), 7);
    QTRY_VERIFY(screenshot.isFailure());
    QVERIFY(screenshot.failure.startsWith(kTakesNone));
}

void tst_PortalScreenshot::absentPortalIsTold()
{
    m_portal->giveNameUp();
    const Screenshot screenshot;
    QTRY_VERIFY(screenshot.isFailure());
    QVERIFY(screenshot.failure.startsWith(kTakesNone));
    QVERIFY(screenshot.failure.contains(kPortalName));
}

void tst_PortalScreenshot::portalIsStartedByTheCall()
{
    m_portal->giveNameUp();
    m_bus.awaitPortal();
    const QImage image = noise({61, 47});
    const Screenshot screenshot;
    m_portal = std::make_unique<FakePortal>();
    m_portal->reply(call());
    m_portal->respond(call(), Granted, naming(fileWith(png(image))));
    QTRY_VERIFY(screenshot.isPicture(image));
}

void tst_PortalScreenshot::portalWithoutScreenshotsIsTold()
{
    m_portal->takesScreenshots = false;
    const Screenshot screenshot;
    QTRY_VERIFY(screenshot.isFailure());
    QVERIFY(screenshot.failure.startsWith(kTakesNone));
    QVERIFY(screenshot.failure.contains("org.freedesktop.portal.Screenshot"));
}

void tst_PortalScreenshot::absentBusIsTold()
{
    m_portal.reset();
    m_bus.stop();
    const Screenshot screenshot;
    QTRY_VERIFY(screenshot.isFailure());
    QCOMPARE(screenshot.failure, QString("There is no session bus."));
}

void tst_PortalScreenshot::portalThatGoesAwayIsTold_data()
{
    QTest::addColumn<bool>("hasReplied");
    QTest::newRow("before the reply") << false;
    QTest::newRow("after the reply") << true;
}

void tst_PortalScreenshot::portalThatGoesAwayIsTold()
{
    QFETCH(bool, hasReplied);
    const Screenshot screenshot;
    waitForCall(hasReplied);
    m_portal.reset();
    QTRY_VERIFY(screenshot.isFailure());
    QCOMPARE(screenshot.failure, QString(kGone));
}

void tst_PortalScreenshot::portalThatIsReplacedIsTold()
{
    const Screenshot screenshot;
    waitForCall(true);
    const FakePortal another;
    QTRY_VERIFY(screenshot.isFailure());
    QCOMPARE(screenshot.failure, QString(kGone));
}

void tst_PortalScreenshot::busThatGoesAwayIsTold()
{
    QFETCH(bool, hasReplied);
    const Screenshot screenshot;
    waitForCall(hasReplied);
    m_bus.stop();
    QTRY_VERIFY(screenshot.isFailure());
    QCOMPARE(screenshot.failure, QString(kGone));
}

void tst_PortalScreenshot::busThatIsStartedAnewIsFound()
{
    const Screenshot before;
    call();
    m_bus.stop();
    QTRY_VERIFY(before.isFailure());
    m_bus.start();
    m_portal = std::make_unique<FakePortal>();
    const QImage image = noise({61, 47});
    const Screenshot screenshot;
    m_portal->reply(call());
    m_portal->respond(call(), Granted, naming(fileWith(png(image))));
    QTRY_VERIFY(screenshot.isPicture(image));
}

// The portal does not answer what is withdrawn.
void tst_PortalScreenshot::withdrawalIsToldToThePortal()
{
    QFETCH(bool, hasReplied);
    Screenshot screenshot;
    waitForCall(hasReplied);
    const QString path = FakePortal::requestPath(call());
    screenshot.withdraw();
    QTRY_COMPARE(m_portal->withdrawn, QStringList{path});

    const QImage image = noise({61, 47});
    const Screenshot next;
    m_portal->respond(call(m_portal->calls.size() + 1), Granted, naming(fileWith(png(image))));
    QTRY_VERIFY(next.isPicture(image));
    QCOMPARE(screenshot.count, 0);
}

void tst_PortalScreenshot::fileOfAnAnswerAfterTheWithdrawalIsRemoved()
{
    Screenshot screenshot;
    const QString file = fileWith(png(noise({5, 5})));
    m_portal->respond(call(), Granted, naming(file));
    screenshot.withdraw();
    QTRY_VERIFY(!QFile::exists(file));
    QCOMPARE(screenshot.count, 0);
}

// Somebody's, whatever the portal says.
void tst_PortalScreenshot::fileFromBeforeTheRequestStays()
{
    constexpr int kHourSeconds = 3600;
    const QImage image = noise({61, 47});
    QFile file(fileWith(png(image)));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-kHourSeconds),
                             QFileDevice::FileModificationTime));
    file.close();
    const Screenshot screenshot;
    m_portal->respond(call(), Granted, naming(file.fileName()));
    QTRY_VERIFY(screenshot.isPicture(image));
    QVERIFY(file.exists());
}

void tst_PortalScreenshot::answerOfAnotherProgramIsNone()
{
    const Screenshot screenshot;
    const QString file = fileWith(png(noise({5, 5})));
    auto other = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "another");
    QDBusMessage answer =
        QDBusMessage::createTargetedSignal(call().service(), FakePortal::requestPath(call()),
                                           "org.freedesktop.portal.Request", "Response");
    answer.setArguments({uint(Granted), naming(file)});
    other.send(answer);
    m_portal->respond(call(), RefusedByUser, {});
    QTRY_VERIFY(screenshot.isFailure());
    QVERIFY(QFile::exists(file));
    QDBusConnection::disconnectFromBus("another");
}

void tst_PortalScreenshot::withdrawalAfterTheAnswerIsNone()
{
    Screenshot screenshot;
    m_portal->reply(call());
    m_portal->respond(call(), RefusedByUser, {});
    QTRY_VERIFY(screenshot.isFailure());
    screenshot.withdraw();
    // Comes later on the bus than what the withdrawal sends.
    const Screenshot next;
    call(2);
    QCOMPARE(m_portal->withdrawn, QStringList());
}

void tst_PortalScreenshot::screenshotMayBeWithdrawnWhenItIsTold_data()
{
    QTest::addColumn<bool>("isAnswer");
    QTest::newRow("by an answer") << true;
    QTest::newRow("by an error") << false;
}

void tst_PortalScreenshot::screenshotMayBeWithdrawnWhenItIsTold()
{
    QFETCH(bool, isAnswer);
    Screenshot screenshot;
    screenshot.then = [&] { screenshot.withdraw(); };
    if (isAnswer)
        m_portal->respond(call(), RefusedByUser, {});
    else
        m_portal->replyWithError(call(), "Not today");
    QTRY_VERIFY(screenshot.isFailure());
}

void tst_PortalScreenshot::requestsAtOnceHaveTheirOwnAnswers()
{
    const QImage images[] = {noise({61, 47}, 1), noise({61, 47}, 2)};
    const Screenshot first;
    call();
    const Screenshot second;
    m_portal->reply(call(1));
    m_portal->reply(call(2));
    m_portal->respond(call(2), Granted, naming(fileWith(png(images[1]), "second.png")));
    QTRY_VERIFY(second.isPicture(images[1]));
    QCOMPARE(first.count, 0);
    m_portal->respond(call(1), Granted, naming(fileWith(png(images[0]), "first.png")));
    QTRY_VERIFY(first.isPicture(images[0]));
}

// For libdbus this is no limit; otherwise it gives up after 25 s.
void tst_PortalScreenshot::portalMayTakeItsTime()
{
    s_timeoutMs = 0;
    const Screenshot screenshot;
    call();
    QCOMPARE(s_timeoutMs, INT_MAX);
}

QTEST_GUILESS_MAIN(tst_PortalScreenshot)
#include "tst_PortalScreenshot.moc"
