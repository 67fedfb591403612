// A table of text in columns.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>

#include <vector>

/// Lines of columns, each as wide as its longest text, two blanks between them and none at the ends of lines. The first
/// row is the header. Texts of foreign files are made visible and cut as `visibleLine` does.
QByteArray textTable(const std::vector<QStringList>& rows);
