// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Icons.h"

#include <QApplication>
#include <QIcon>
#include <QImage>
#include <QStyle>
#include <QStyleFactory>
#include <QtTest>

namespace
{

QImage load(const QString& file)
{
    return QImage(file).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage lookOf(QPushButton& button, const QString& icon, const QString& text)
{
    button.setIcon(QIcon(icons::file(icon)));
    button.setText(text);
    button.resize(text.isEmpty() ? 30 : 60, 26);
    return button.grab().toImage();
}

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
// Qt 6 makes every host a dense one.
void setHostDense(bool dense)
{
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, dense);
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
    void buttonLooksAsQtMakesItForADenseHost_data();
    void buttonLooksAsQtMakesItForADenseHost();
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
    const QIcon icon = icons::paleWhileDisabled("redo");
    const QSize physical = QSize(16, 16) * qApp->devicePixelRatio();
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled})
        QVERIFY(icon.availableSizes(mode).contains(physical));
}

void tst_icons_dense::buttonLooksAsQtMakesItForADenseHost_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<Qt::LayoutDirection>("direction");
    for (const char* style : {"Fusion", "Windows"}) {
        const auto row = [&](const char* name, const QString& icon, const QString& text,
                             const QString& sheet, Qt::LayoutDirection direction) {
            QTest::addRow("%s, %s", style, name) << style << icon << text << sheet << direction;
        };
        row("icon", "pen", "", "", Qt::LeftToRight);
        row("icon and text", "done", "done", "", Qt::LeftToRight);
        row("right to left", "done", "done", "", Qt::RightToLeft);
        row("style sheet", "done", "done", "border: 2px solid red; padding: 1px", Qt::LeftToRight);
    }
}

// Also where the host is one itself, and where the button is pressed or disabled.
void tst_icons_dense::buttonLooksAsQtMakesItForADenseHost()
{
    QFETCH(QString, style);
    QFETCH(QString, icon);
    QFETCH(QString, text);
    QFETCH(QString, sheet);
    QFETCH(Qt::LayoutDirection, direction);
    QApplication::setStyle(style);
    QPushButton reference;
    icons::Button button;
    for (QPushButton* each : {&reference, static_cast<QPushButton*>(&button)}) {
        each->setStyleSheet(sheet);
        each->setLayoutDirection(direction);
    }
    for (int state = 0; state < 3; ++state) {
        for (QPushButton* each : {&reference, static_cast<QPushButton*>(&button)}) {
            each->setDown(state == 1);
            each->setEnabled(state != 2);
        }
        const QImage ours = lookOf(button, icon, text);
        setHostDense(true);
        const QImage dense = lookOf(reference, icon, text);
        const QImage oursInADenseHost = lookOf(button, icon, text);
        setHostDense(false);
        QCOMPARE(ours, dense);
        QCOMPARE(oursInADenseHost, dense);
    }
}

QTEST_MAIN(tst_icons_dense)
#include "tst_icons_dense.moc"
