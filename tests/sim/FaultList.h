// Faults as tests write them.
// SPDX-License-Identifier: MIT
#pragma once

#include "Faults.h"

#include <QStringList>

/// The faults of these texts. Where one is wrong, `message` says why.
inline QList<tFault> faultList(const QStringList& texts, tFaultKinds kinds, QString* message)
{
    QList<tFault> faults;
    for (const QString& text : texts)
        if (const auto fault = readFault(text, kinds, message))
            faults += *fault;
    return faults;
}

/// The kinds of one front-end and one more, which only the other front-end knows.
inline QList<tFaultKind> kindsWith(tFaultKinds kinds, const tFaultKind& foreign)
{
    return QList<tFaultKind>(kinds.begin(), kinds.end()) << foreign;
}
