// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMetaType>
#include <QStringList>
#include <QtTest>

#include <string>
#include <vector>

// The text types of the standard library as columns of test data and in the messages of QCOMPARE.

using Texts = std::vector<std::string>;

Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(std::wstring)
Q_DECLARE_METATYPE(Texts)

namespace QTest
{

template <>
inline char* toString(const std::string& text)
{
    return toString(QByteArray::fromStdString(text));
}

template <>
inline char* toString(const std::wstring& text)
{
    QStringList codes;
    for (const wchar_t character : text)
        codes << QString::number(static_cast<uint>(character), 16);
    return toString(codes.join(' '));
}

template <>
inline char* toString(const Texts& texts)
{
    QByteArray joined;
    for (const std::string& text : texts)
        joined += '[' + QByteArray::fromStdString(text) + ']';
    return toString(joined);
}

} // namespace QTest
