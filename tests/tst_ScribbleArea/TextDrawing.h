// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTextDocumentLayout>
#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QRect>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QVector>
#include <QWidget>

/// A stretch of text in one colour.
struct ColouredText {
    QString text;
    QColor color;
};

/// `image` with the text in `box`, without the help of a text box.
inline QImage withText(QImage image, const QRect& box, const QFont& font,
                       const QVector<ColouredText>& parts)
{
    // Glyphs are placed as for the screen.
    QWidget onScreen;
    QTextDocument document;
    document.documentLayout()->setPaintDevice(&onScreen);
    document.setDefaultFont(font);
    QTextCursor cursor(&document);
    for (const ColouredText& part : parts) {
        QTextCharFormat format;
        format.setForeground(part.color);
        cursor.insertText(part.text, format);
    }
    QPainter painter(&image);
    painter.setClipRect(box);
    painter.translate(box.topLeft());
    document.drawContents(&painter);
    return image;
}
