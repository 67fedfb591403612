// A data sheet with the values of a configuration, and with the reason when it is refused.
// SPDX-License-Identifier: MIT
#include "dic/DataSheet.h"

#include "dic/Utf8Text.h"

#include <QFile>
#include <QFileInfo>

namespace
{

constexpr qsizetype longestLine = 80; // characters of a line in a message

// Why the file cannot be read; empty when it can. The reader would take such a file as an empty one.
QString readError(const QString& fileName)
{
    const QFileInfo info(fileName);
    if (!info.exists())
        return QStringLiteral("no such file: %1").arg(visibleText(fileName));
    if (!info.isFile())
        return QStringLiteral("not a file: %1").arg(visibleText(fileName));
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return unreadText(fileName);
    return QString();
}

QString refusal(const QString& fileName, const tEdsReport& report)
{
    return QStringLiteral("not a valid data sheet: %1, line %2: \"%3\" (%4)")
        .arg(visibleText(fileName), QString::number(report.line), visibleLine(textFromUtf8(report.text)),
             QLatin1String(report.rule));
}

bool isVisible(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_PrivateUse:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return true;
    }
}

// The character at the place, which moves behind it. A surrogate without its other half is U+FFFD. Not by
// `QString::toUcs4`, which crashes when memory runs out.
char32_t nextCharacter(const QString& text, qsizetype& place)
{
    const QChar unit = text[place++];
    if (!unit.isSurrogate())
        return unit.unicode();
    if (!unit.isHighSurrogate() || place == text.size() || !text[place].isLowSurrogate())
        return QChar::ReplacementCharacter;
    return QChar::surrogateToUcs4(unit, text[place++]);
}

QString visibleCharacter(char32_t character)
{
    if (isVisible(character))
        return QString::fromUcs4(&character, 1);
    if (character == U'\t')
        return QStringLiteral("\\t");
    if (character == U'\r')
        return QStringLiteral("\\r");
    const QString digits = QString::number(character, 16).toUpper();
    return character < 0x100 ? QStringLiteral("\\x") + digits.rightJustified(2, u'0')
                             : QStringLiteral("\\u") + digits.rightJustified(4, u'0');
}

} // namespace

CDataSheet::tResult CDataSheet::load(const QString& fileName, tSheetLines* lines)
{
    m_error = readError(fileName);
    if (!m_error.isEmpty())
        return noFile;
    m_dictionary.m_fileName = fileName;
    m_dictionary.m_fileType =
        fileName.endsWith(QLatin1String(".dcf"), Qt::CaseInsensitive) ? CCANopen::typeDCF : CCANopen::typeEDS;
    tEdsReport report;
    report.lines = lines;
    const bool isSheet = loadEdsFile(m_dictionary, QFile::encodeName(fileName).constData(), &report);
    if (!report.isWhole) {
        m_error = unreadText(fileName);
        return noFile;
    }
    if (!isSheet) {
        m_error = refusal(fileName, report);
        return refused;
    }
    if (m_dictionary.m_objectArray.empty()) {
        m_error = QStringLiteral("no objects in %1").arg(visibleText(fileName));
        return refused;
    }
    if (m_dictionary.m_fileType == CCANopen::typeDCF)
        m_parameterValues = std::move(report.parameterValues);
    return loaded;
}

QString unreadText(const QString& fileName)
{
    return QStringLiteral("cannot read %1").arg(visibleText(fileName));
}

QString visibleText(const QString& text)
{
    QString visible;
    for (qsizetype place = 0; place < text.size();)
        visible += visibleCharacter(nextCharacter(text, place));
    return visible;
}

QString visibleLine(const QString& line)
{
    QString visible;
    for (qsizetype place = 0; place < line.size();) {
        const QString text = visibleCharacter(nextCharacter(line, place));
        if (visible.size() + text.size() > longestLine)
            return visible + QStringLiteral("...");
        visible += text;
    }
    return visible;
}
