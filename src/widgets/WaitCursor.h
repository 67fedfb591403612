// Shows the wait cursor as long as the object lives: during a blocking call, never during a message box.
// SPDX-License-Identifier: MIT
#pragma once

#include <QCursor>
#include <QGuiApplication>

class CWaitCursor
{
public:
    CWaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~CWaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY_MOVE(CWaitCursor)
};
