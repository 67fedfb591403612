// Comma-separated values (RFC 4180), UTF-8.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

/// A line of these fields, with its line feed. A field is quoted where it has to be.
QByteArray csvLine(const QStringList& fields);

/// A line for each of the rows.
QByteArray csvText(const std::vector<QStringList>& rows);

/// Takes a text apart, record by record. Lines end with LF or CR LF; a byte order mark is skipped.
class CCsvReader
{
public:
    explicit CCsvReader(const QByteArray& text);

    /// Reads the next record that is not an empty line.
    /// @return false at the end, and after an error
    bool next(QStringList& fields);

    /// The line where the record read last begins, or where reading stopped; from 1.
    int line() const { return m_line; }
    /// Why reading stopped; empty when it did not, or at the end.
    const QString& error() const { return m_error; }

private:
    bool readRecord(QStringList& fields);
    bool readField(QString& field);
    bool readQuoted(QByteArray& bytes);
    bool takeLineEnd();
    bool isAtEnd() const { return m_place >= m_text.size(); }
    bool refuse(const QString& error);

    const QByteArray m_text;
    qsizetype m_place = 0;
    int m_line = 1;
    int m_nextLine = 1;
    QString m_error;
};
