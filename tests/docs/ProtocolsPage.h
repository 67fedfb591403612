// The examples of docs/protocols.md, read from its code blocks and tables.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// One line of an example. Kinds: Call, Sent and Came (a frame or a line), Pause (a time, or what happens) and
/// Result.
struct tPageStep {
    enum TKind { Call, Sent, Came, Pause, Result } kind;
    QString text;
    int line; // in the page
};

/// What belongs together: a paragraph of a code block, or a table.
struct tPageExample {
    QList<tPageStep> steps;

    int line() const { return steps.first().line; }
    /// Played on the gateway, otherwise on the CAN bus.
    bool ofGateway() const;
};

/// Reads the page.
///
///     page    = { other line | block | table }
///     block   = "```can" or "```gateway", { example, blank line }, "```"
///     example = { step }, each on a line that ends with its explanation, after three blanks
///     step    = call | "  > " sent | "  < " came | "  .. " pause | "  = " result
///     table   = a head with the column "Result", and a row for each call; columns Call, Sent, Answer, Our abort
///
/// Without a column Call, the line above the table names the call and what it sends.
QList<tPageExample> readProtocolsPage(const QString& fileName);
