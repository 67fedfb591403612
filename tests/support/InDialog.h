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

inline void clickButton(QWidget* dialog, const QString& text)
{
    for (auto* button : dialog->findChildren<QPushButton*>())
        if (button->text() == text)
            return QTest::mouseClick(button, Qt::LeftButton);
}

/// Types any characters; QTest knows the keys of ASCII only.
inline void typeText(QWidget* widget, const QString& text)
{
    for (const QChar character : text) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, character);
        QCoreApplication::sendEvent(widget, &press);
    }
}

/// Types the interface and clicks OK.
inline void enterInterface(CInitInterfaceDialog* dialog, const QString& text)
{
    for (auto* box : dialog->findChildren<QComboBox*>())
        if (box->isEditable()) {
            box->lineEdit()->selectAll();
            QTest::keyClick(box->lineEdit(), Qt::Key_Delete);
            typeText(box->lineEdit(), text);
        }
    clickButton(dialog, "&OK");
}

/// Connects to the node, or stays off-line with node 0.
inline void chooseNode(CConnectNodeDialog* dialog, int nodeId)
{
    if (nodeId == 0)
        return clickButton(dialog, "&Offline");
    auto* box = dialog->findChild<QSpinBox*>();
    box->selectAll();
    QTest::keyClicks(box, QString::number(nodeId));
    clickButton(dialog, "&Connect");
}

inline void chooseFile(QFileDialog* dialog, const QString& name)
{
    dialog->findChild<QLineEdit*>("fileNameEdit")->setText(name);
    dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->click();
}

inline void cancel(QDialog* dialog)
{
    QTest::keyClick(dialog, Qt::Key_Escape);
}

} // namespace inDialog
