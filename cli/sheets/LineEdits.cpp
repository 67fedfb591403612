// Changes some lines of a sheet and leaves all other bytes as they are.
// SPDX-License-Identifier: MIT
#include "sheets/LineEdits.h"

#include "dic/DataSheet.h"
#include "dic/LineFile.h"
#include "dic/Utf8Text.h"
#include "sheets/SheetFile.h"

#include <QByteArrayView>

#include <algorithm>

namespace
{

// Where the lines begin that the reader of sheets sees, and where the last one ends. A part of a line that is longer
// than it reads at once is a line for it, too.
std::vector<qsizetype> lineStarts(const QString& fileName, const QByteArray& bytes, bool isUtf8)
{
    CLineFile file;
    if (!file.open(QFile::encodeName(fileName).constData()))
        throw tEnd{ exitUsage, unreadText(fileName) };
    constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");
    std::vector<qsizetype> starts{ isUtf8 && bytes.startsWith(byteOrderMark) ? byteOrderMark.size() : 0 };
    for (auto line = file.readLine(); !line.empty(); line = file.readLine()) {
        const auto characters = std::count_if(line.begin(), line.end(), [](char c) { return !isContinuation(c); });
        starts.push_back(starts.back() + (isUtf8 ? static_cast<qsizetype>(line.size()) : characters));
    }
    if (!file.isWhole())
        throw tEnd{ exitUsage, unreadText(fileName) };
    if (starts.back() != bytes.size())
        throw tEnd{ exitUsage, QStringLiteral("cannot read %1: it changes").arg(fileName) };
    return starts;
}

// The line end of the text before; that of the whole file where it has none. After a CR without LF it is the LF.
QByteArray lineEndAfter(QByteArrayView before, const QByteArray& file)
{
    if (before.endsWith('\n'))
        return before.endsWith("\r\n") ? "\r\n" : "\n";
    if (before.endsWith('\r'))
        return "\n";
    const qsizetype first = file.indexOf('\n');
    return first > 0 && file[first - 1] == '\r' ? "\r\n" : "\n";
}

// The result as it grows. The reader must see the same lines as before: what is new, or follows something that it did
// not follow before, begins a line.
class CLines
{
public:
    explicit CLines(const QByteArray& file) : m_file(file) {}

    void copy(QByteArrayView line, bool followsItsLine)
    {
        if (!followsItsLine)
            endLine();
        m_text += line;
    }
    void add(const QByteArray& line)
    {
        endLine();
        m_text += line + lineEndAfter(m_text, m_file);
    }
    const QByteArray& text() const { return m_text; }

private:
    void endLine()
    {
        if (!m_text.isEmpty() && !m_text.endsWith('\n'))
            m_text += lineEndAfter(m_text, m_file);
    }

    const QByteArray& m_file;
    QByteArray m_text;
};

} // namespace

CLineEdits::CLineEdits(const QString& fileName)
    : m_bytes(contentOf(fileName)), m_isUtf8(m_bytes.isValidUtf8()), m_starts(lineStarts(fileName, m_bytes, m_isUtf8))
{
}

QByteArrayView CLineEdits::line(std::size_t position) const
{
    return QByteArrayView(m_bytes).sliced(m_starts[position], m_starts[position + 1] - m_starts[position]);
}

QByteArray CLineEdits::replaced(QByteArrayView line, const QString& text) const
{
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    qsizetype comment = line.indexOf(';');
    while (comment > 0 && (line[comment - 1] == ' ' || line[comment - 1] == '\t'))
        --comment;
    QByteArray bytes = encoded(text);
    constexpr qsizetype lineEnd = 2;
    if (comment < 0 || bytes.size() + line.size() - comment + lineEnd > CLineFile::maxLine)
        return bytes;
    return bytes + line.sliced(comment).toByteArray();
}

QByteArray CLineEdits::result() const
{
    CLines lines(m_bytes);
    const QByteArray mark = m_bytes.first(m_starts.front());
    bool follows = true;
    for (std::size_t position = 0; position + 1 < m_starts.size(); ++position) {
        const auto edit = m_edits.find(static_cast<int>(position) + 1);
        const bool changed = edit != m_edits.end() && (edit->second.removed || !edit->second.replacement.isNull());
        if (!changed)
            lines.copy(line(position), std::exchange(follows, true));
        else if (!edit->second.removed)
            lines.add(replaced(line(position), edit->second.replacement));
        if (edit != m_edits.end() && !edit->second.added.isNull())
            lines.add(encoded(edit->second.added));
        follows = edit == m_edits.end();
    }
    for (const QString& text : m_appended)
        lines.add(encoded(text));
    // Without the last character that is no UTF-8 the rest might read as UTF-8.
    if (!m_isUtf8 && lines.text().isValidUtf8())
        lines.add("; The character set is Windows-1252: \xE4\xF6\xFC");
    return mark + lines.text();
}
