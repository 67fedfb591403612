// The warnings of assertions that do not hold.
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Keeps the messages that are logged while it lives, which are then not printed. There is one at a time.
class CAssertionLog
{
public:
    CAssertionLog() : m_before(qInstallMessageHandler(keep)) { s_messages.clear(); }
    ~CAssertionLog() { qInstallMessageHandler(m_before); }
    CAssertionLog(const CAssertionLog&) = delete;
    CAssertionLog& operator=(const CAssertionLog&) = delete;

    /// What was logged: the messages without their last word.
    [[nodiscard]] static QStringList texts()
    {
        QStringList found;
        for (const QString& message : s_messages)
            found += message.section(' ', 0, -2);
        return found;
    }

    /// The lines of the source that the messages name in parentheses as their last words; 0 for one that names none.
    [[nodiscard]] static QList<int> lines()
    {
        QList<int> found;
        for (const QString& message : s_messages) {
            const QString word = message.section(' ', -1);
            found += word.startsWith('(') && word.endsWith(')') ? word.chopped(1).mid(1).toInt() : 0;
        }
        return found;
    }

private:
    static void keep(QtMsgType, const QMessageLogContext&, const QString& message) { s_messages += message; }

    inline static QStringList s_messages;
    const QtMessageHandler m_before;
};
