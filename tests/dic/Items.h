// The tokenizer's items as text, and rows that compare them.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/IniReader.h"

#include "Sheet.h"

#include <QTest>

/// The items that the reader delivers, up to the end or the error:
/// "1 DeviceInfo VendorName=ACME", "2 DeviceInfo ...", "-1" or "0 in line 5".
inline QStringList items(const QByteArray& text)
{
    const CSheetFile file(text);
    CIniReader reader(file.name());
    QStringList items;
    for (int result = reader.moveToNextItem();; result = reader.moveToNextItem()) {
        if (result == 0)
            return items << QString("0 in line %1").arg(reader.getLineOfError());
        if (result != 1 && result != 2)
            return items << QString::number(result);
        items << QString("%1 %2 %3=").arg(QString::number(result), reader.getSection(), reader.getKeyName()) +
                     reader.getKeyValue();
    }
}

/// A literal with its zero bytes.
template <size_t size>
inline QByteArray bytes(const char (&text)[size])
{
    return QByteArray(text, size - 1);
}

/// Columns of rows that `compareItems` compares.
inline void columns()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("expected");
}

/// Compares the items of the current row's text with those that it expects.
inline void compareItems()
{
    QFETCH(QByteArray, text);
    QTEST(items(text), "expected");
}
