// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"

#include <QDir>
#include <QImage>
#include <QResource>
#include <QtTest>

namespace
{

struct Icon {
    const char* name;
    QSize sizePx;
};

const Icon kIcons[] = {
    {"cursor", {14, 21}}, {"pen", {16, 16}},    {"text", {16, 16}},   {"arrow", {16, 16}},
    {"rect", {16, 16}},   {"circle", {16, 16}}, {"mosaic", {16, 16}}, {"undo", {16, 16}},
    {"redo", {16, 16}},   {"save", {16, 16}},   {"close", {16, 16}},  {"done", {16, 16}},
    {"sep", {2, 18}},     {"send", {18, 15}},   {"bg", {50, 30}},     {"button_border", {22, 22}},
};

/// Rendering rounds the soft edges of a shape and of its mirror image a little differently.
constexpr int kEdgeAlphaTolerance = 32;

const QString kDirectory = QStringLiteral(":/scribble/");

QString fileName(const QString& name, int scale)
{
    return name + (scale == 1 ? ".png" : "@2x.png");
}

QImage load(const QString& file)
{
    return QImage(kDirectory + file).convertToFormat(QImage::Format_ARGB32);
}

int countAlpha(const QImage& image, int alpha)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) == alpha;
    }
    return count;
}

int largestAlphaDifference(const QImage& one, const QImage& other)
{
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x)
            largest = qMax(largest, qAbs(qAlpha(one.pixel(x, y)) - qAlpha(other.pixel(x, y))));
    }
    return largest;
}

} // namespace

class tst_icons : public BehaviourTest
{
    Q_OBJECT

private slots:
    void resourcesAreTheSixteenIconsAtBothScales();
    void hasItsPixelSize_data() { eachIcon(); }
    void hasItsPixelSize();
    void isStoredUncompressed_data() { eachIcon(); }
    void isStoredUncompressed();
    void isNotBlank_data() { eachIcon(); }
    void isNotBlank();
    void cursorPointsWithItsTopLeftPixel_data();
    void cursorPointsWithItsTopLeftPixel();
    void redoMirrorsUndo_data();
    void redoMirrorsUndo();

private:
    static void eachIcon();
    static void eachScale();
};

void tst_icons::eachIcon()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("sizePx");
    for (const Icon& icon : kIcons) {
        for (const int scale : {1, 2}) {
            const QString file = fileName(icon.name, scale);
            QTest::newRow(qPrintable(file)) << file << icon.sizePx * scale;
        }
    }
}

void tst_icons::eachScale()
{
    QTest::addColumn<int>("scale");
    QTest::newRow("1x") << 1;
    QTest::newRow("2x") << 2;
}

void tst_icons::resourcesAreTheSixteenIconsAtBothScales()
{
    QStringList expected;
    for (const Icon& icon : kIcons)
        expected << fileName(icon.name, 1) << fileName(icon.name, 2);
    expected.sort();
    QStringList found = QDir(kDirectory).entryList(QDir::Files);
    found.sort();
    QCOMPARE(found, expected);
}

void tst_icons::hasItsPixelSize()
{
    QFETCH(QString, file);
    QFETCH(QSize, sizePx);
    QCOMPARE(load(file).size(), sizePx);
}

void tst_icons::isStoredUncompressed()
{
    QFETCH(QString, file);
    const QResource resource(kDirectory + file);
    QVERIFY(resource.isValid());
    QCOMPARE(resource.compressionAlgorithm(), QResource::NoCompression);
}

void tst_icons::isNotBlank()
{
    QFETCH(QString, file);
    const QImage image = load(file);
    QVERIFY(countAlpha(image, 255) > 0);
    if (!file.startsWith("bg"))
        QVERIFY(countAlpha(image, 0) > 0);
}

void tst_icons::cursorPointsWithItsTopLeftPixel_data()
{
    eachScale();
}

void tst_icons::cursorPointsWithItsTopLeftPixel()
{
    QFETCH(int, scale);
    QVERIFY(qAlpha(load(fileName("cursor", scale)).pixel(0, 0)) > 0);
}

void tst_icons::redoMirrorsUndo_data()
{
    eachScale();
}

void tst_icons::redoMirrorsUndo()
{
    QFETCH(int, scale);
    const QImage undo = load(fileName("undo", scale));
    const QImage redo = load(fileName("redo", scale));
    QCOMPARE(redo.size(), undo.size());
    QVERIFY(largestAlphaDifference(redo, undo) > kEdgeAlphaTolerance);
    QVERIFY(largestAlphaDifference(redo, undo.mirrored(true, false)) <= kEdgeAlphaTolerance);
}

QTEST_MAIN(tst_icons)
#include "tst_icons.moc"
