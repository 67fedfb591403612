// Rows and comparisons for the name tables: names that read as numbers, numbers that show as names.
// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QTest>

#include <initializer_list>

struct tNameRow {
    const char* name;
    int number;
};

/// The names of the simple data types, which objects and entries share.
inline constexpr std::initializer_list<tNameRow> dataTypeNames = {
    { "Boolean", 1 },          { "Integer8", 2 },      { "Integer16", 3 },   { "Integer32", 4 },
    { "Unsigned8", 5 },        { "Unsigned16", 6 },    { "Unsigned32", 7 },  { "Real32", 8 },
    { "Visible String", 9 },   { "Octet String", 10 }, { "Date", 11 },       { "Time Of Day", 12 },
    { "Time Difference", 13 }, { "Domain", 15 },       { "Integer24", 16 },  { "Real64", 17 },
    { "Integer40", 18 },       { "Integer48", 19 },    { "Integer56", 20 },  { "Integer64", 21 },
    { "Unsigned24", 22 },      { "Unsigned40", 24 },   { "Unsigned48", 25 }, { "Unsigned56", 26 },
    { "Unsigned64", 27 },
};

/// Names of states where the case does not matter.
inline constexpr std::initializer_list<tNameRow> stateNamesInAnyCase = {
    { "Public", 0 },   { "Protected", 1 }, { "Private", 2 },  { "public", 0 },   { "PROTECTED", 1 }, { "pRiVaTe", 2 },
    { "Invalid", -1 }, { "Publi", -1 },    { "Publics", -1 }, { " Public", -1 }, { "0", -1 },        { "", -1 },
};

inline const QMap<int, QString> stateTexts = {
    { 0, "Public" }, { 1, "Protected" }, { 2, "Private" }, { -1, "Invalid" }
};

/// One row for each name of both lists, named by it.
inline void nameRows(std::initializer_list<tNameRow> rows, std::initializer_list<tNameRow> more = {})
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("number");
    for (const auto& list : { rows, more })
        for (auto [name, number] : list)
            QTest::addRow("\"%s\"", name) << QByteArray(name) << number;
}

/// Compares the current row of `nameRows` with what the function makes of its name.
inline void compareName(int (*numberOf)(const char*))
{
    QFETCH(QByteArray, name);
    QTEST(numberOf(name.constData()), "number");
}

/// One row for each number, named by it.
inline void numberRows(std::initializer_list<int> numbers)
{
    QTest::addColumn<int>("number");
    for (int number : numbers)
        QTest::addRow("%d", number) << number;
}

/// Compares the texts of all numbers from -2 to 0x1FF, and of some beyond, with the list; `otherwise` is the text of
/// numbers that it does not hold.
template <typename Enumeration>
void compareTexts(QString (*textOf)(Enumeration), const QString& otherwise, const QMap<int, QString>& texts)
{
    QList<int> numbers = { 0x7FF, 0x1007, 0xFFFF, 0x10001, -0x7FFFFFFF };
    for (int number = -2; number < 0x200; ++number)
        numbers << number;
    for (int number : numbers)
        QCOMPARE(QString("%1: %2").arg(number).arg(textOf(static_cast<Enumeration>(number))),
                 QString("%1: %2").arg(number).arg(texts.value(number, otherwise)));
}
