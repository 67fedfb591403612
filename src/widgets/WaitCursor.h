// The wait cursor for the duration of a scope: of a blocking call, never of a message box.
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
