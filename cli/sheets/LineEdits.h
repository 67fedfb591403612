// Changes some lines of a sheet and leaves all other bytes as they are.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <unordered_map>
#include <vector>

/// Lines are counted from 1 as the reader of sheets does. Texts are written in the character set of the file, and line
/// ends as they are in the line before. Texts have only characters of Latin-1.
class CLineEdits
{
public:
    /// Reads the file. Ends the command with `exitUsage` when it cannot be read.
    explicit CLineEdits(const QString& fileName);

    /// Puts the text in place of the line; a comment at its end stays, as far as the reader's longest line has room.
    void replace(int line, const QString& text) { m_edits[line].replacement = text; }
    void remove(int line) { m_edits[line].removed = true; }
    /// Puts a line after the line.
    void addAfter(int line, const QString& text) { m_edits[line].added = text; }
    /// Puts a line at the end of the file.
    void append(const QString& text) { m_appended.push_back(text); }

    QByteArray result() const;

private:
    struct tEdit {
        QString replacement; // null: none
        QString added;       // null: none
        bool removed = false;
    };

    QByteArray encoded(const QString& text) const { return m_isUtf8 ? text.toUtf8() : text.toLatin1(); }
    QByteArrayView line(std::size_t position) const;
    QByteArray replaced(QByteArrayView line, const QString& text) const;

    const QByteArray m_bytes;
    const bool m_isUtf8;
    std::vector<qsizetype> m_starts; // of the lines, and the end of the file
    std::unordered_map<int, tEdit> m_edits;
    std::vector<QString> m_appended;
};
