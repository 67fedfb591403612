// What a user does in the program's modal dialogs: type, choose and click.
// SPDX-License-Identifier: MIT
#pragma once

#include "ConnectNodeDialog.h"
#include "InitInterfaceDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

/// Each acts on a dialog that is shown, for example from `CWhenShown`.
namespace inDialog
{

void clickButton(QWidget* dialog, const QString& text);

/// Types any characters; QTest knows the keys of ASCII only.
void typeText(QWidget* widget, const QString& text);

/// Types the interface and clicks OK.
void enterInterface(CInitInterfaceDialog* dialog, const QString& text);

/// Connects to the node, or stays off-line with node 0.
void chooseNode(CConnectNodeDialog* dialog, int nodeId);

void chooseFile(QFileDialog* dialog, const QString& name);

/// Presses Esc.
void cancel(QDialog* dialog);

} // namespace inDialog
