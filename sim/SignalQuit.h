// Ends the event loop on SIGINT and SIGTERM, as if the application had quit by itself.
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// One for each process, while the event loop runs. After its destruction the signals end the process at once again.
class CSignalQuit : public QObject
{
    Q_OBJECT

public:
    /// Needs the application object.
    explicit CSignalQuit(QObject* parent = nullptr);
    ~CSignalQuit() override;
    Q_DISABLE_COPY_MOVE(CSignalQuit)
};
