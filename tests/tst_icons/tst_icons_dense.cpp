// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Icons.h"

#include <QApplication>
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QtMath>
#include <QtTest>

namespace
{

QImage load(const QString& file)
{
    return QImage(file).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// Whether `part` stands somewhere in `whole`, pixel by pixel.
bool holds(const QImage& whole, const QImage& part)
{
    for (int y = 0; y <= whole.height() - part.height(); ++y) {
        for (int x = 0; x <= whole.width() - part.width(); ++x) {
            if (whole.copy(QRect(QPoint(x, y), part.size())) == part)
                return true;
        }
    }
    return false;
}

/// `icon` at the ratio of the screen, on white.
QImage onWhite(const QString& icon)
{
    const qreal ratio = qApp->devicePixelRatio();
    const QString scale = ratio == 1 ? QString() : QString("@%1x").arg(qCeil(ratio));
    QImage image = load(QString(":/scribble/%1%2.png").arg(icon, scale));
    if (ratio != qCeil(ratio))
        image =
            image.scaled(QSize(16, 16) * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    image.setDevicePixelRatio(1);
    QImage result(image.size(), QImage::Format_RGB32);
    result.fill(Qt::white);
    QPainter(&result).drawImage(0, 0, image);
    return result;
}

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
// Without effect in Qt 6, where every host is a dense one.
void setHostDense(bool dense)
{
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, dense);
}

bool isHostDense()
{
    return QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps);
}
QT_WARNING_POP

} // namespace

/// Icons at the ratio that QT_SCALE_FACTOR sets.
class tst_icons_dense : public BehaviourTest
{
    Q_OBJECT

private slots:
    void pixmapIsThatOfTheRatio();
    void disabledIconIsAsLargeAsTheOther();
    void buttonShowsEachPixelOfItsIcon_data();
    void buttonShowsEachPixelOfItsIcon();
};

void tst_icons_dense::pixmapIsThatOfTheRatio()
{
    for (const qreal ratio : {0.75, 1.0, 1.5, 2.0, 2.625, 3.0, 4.0}) {
        const QPixmap pixmap = icons::pixmap("cursor", ratio);
        QCOMPARE(pixmap.size(), QSize(14, 21) * ratio);
        QCOMPARE(pixmap.devicePixelRatio(), ratio);
    }
    for (const int scale : {2, 3}) {
        const QImage expected = load(QString(":/scribble/cursor@%1x.png").arg(scale));
        QVERIFY(!expected.isNull());
        QVERIFY(icons::pixmap("cursor", scale).toImage() == expected);
    }
}

void tst_icons_dense::disabledIconIsAsLargeAsTheOther()
{
    const QIcon icon = icons::icon("redo");
    const QSize physical = QSize(16, 16) * qApp->devicePixelRatio();
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled})
        QVERIFY(icon.availableSizes(mode).contains(physical));
}

void tst_icons_dense::buttonShowsEachPixelOfItsIcon_data()
{
    QTest::addColumn<bool>("denseHost");
    QTest::newRow("of a host that asks for dense icons") << true;
    QTest::newRow("of a host that does not") << false;
}

void tst_icons_dense::buttonShowsEachPixelOfItsIcon()
{
    QFETCH(bool, denseHost);
    setHostDense(denseHost);
    for (const char* name : {"pen", "rect", "mosaic"}) {
        icons::Button button(icons::icon(name), QString());
        button.setStyleSheet("background: white; border: none");
        button.resize(30, 26);
        QVERIFY2(holds(button.grab().toImage(), onWhite(name)), name);
    }
    QCOMPARE(isHostDense(), denseHost);
}

QTEST_MAIN(tst_icons_dense)
#include "tst_icons_dense.moc"
