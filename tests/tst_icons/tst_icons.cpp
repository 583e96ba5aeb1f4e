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

constexpr int kScales[] = {1, 2, 3};

/// Rendering rounds the soft edges of a shape and of its mirror image a little differently.
constexpr int kEdgeAlphaTolerance = 32;

const QString kDirectory = QStringLiteral(":/scribble/");

QString fileName(const QString& name, int scale)
{
    return scale == 1 ? name + ".png" : QString("%1@%2x.png").arg(name).arg(scale);
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
    void resourcesAreTheSixteenIconsAtAllScales();
    void isUncompressedOfItsSizeAndNotBlank_data();
    void isUncompressedOfItsSizeAndNotBlank();
    void cursorPointsWithItsTopLeftPixel();
    void redoMirrorsUndo();
};

void tst_icons::resourcesAreTheSixteenIconsAtAllScales()
{
    QStringList expected;
    for (const Icon& icon : kIcons) {
        for (const int scale : kScales)
            expected << fileName(icon.name, scale);
    }
    expected.sort();
    QStringList found = QDir(kDirectory).entryList(QDir::Files);
    found.sort();
    QCOMPARE(found, expected);
}

void tst_icons::isUncompressedOfItsSizeAndNotBlank_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("sizePx");
    for (const Icon& icon : kIcons) {
        for (const int scale : kScales) {
            const QString file = fileName(icon.name, scale);
            QTest::newRow(qPrintable(file)) << file << icon.sizePx * scale;
        }
    }
}

void tst_icons::isUncompressedOfItsSizeAndNotBlank()
{
    QFETCH(QString, file);
    const QResource resource(kDirectory + file);
    QVERIFY(resource.isValid());
    QCOMPARE(resource.compressionAlgorithm(), QResource::NoCompression);
    const QImage image = load(file);
    QTEST(image.size(), "sizePx");
    QVERIFY(countAlpha(image, 255) > 0);
    if (!file.startsWith("bg"))
        QVERIFY(countAlpha(image, 0) > 0);
}

void tst_icons::cursorPointsWithItsTopLeftPixel()
{
    for (const int scale : kScales)
        QVERIFY(qAlpha(load(fileName("cursor", scale)).pixel(0, 0)) > 0);
}

void tst_icons::redoMirrorsUndo()
{
    for (const int scale : kScales) {
        const QImage undo = load(fileName("undo", scale));
        const QImage redo = load(fileName("redo", scale));
        QCOMPARE(redo.size(), undo.size());
        QVERIFY(largestAlphaDifference(redo, undo) > kEdgeAlphaTolerance);
        QVERIFY(largestAlphaDifference(redo, undo.mirrored(true, false)) <= kEdgeAlphaTolerance);
    }
}

QTEST_MAIN(tst_icons)
#include "tst_icons.moc"
