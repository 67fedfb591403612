// What a user does in the program's modal dialogs: type, choose and click.
// SPDX-License-Identifier: MIT
#include "InDialog.h"

void inDialog::clickButton(QWidget* dialog, const QString& text)
{
    for (auto* button : dialog->findChildren<QPushButton*>())
        if (button->text() == text)
            return QTest::mouseClick(button, Qt::LeftButton);
}

void inDialog::typeText(QWidget* widget, const QString& text)
{
    for (const QChar character : text) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, character);
        QCoreApplication::sendEvent(widget, &press);
    }
}

void inDialog::enterInterface(CInitInterfaceDialog* dialog, const QString& text)
{
    for (auto* box : dialog->findChildren<QComboBox*>())
        if (box->isEditable()) {
            box->lineEdit()->selectAll();
            QTest::keyClick(box->lineEdit(), Qt::Key_Delete);
            typeText(box->lineEdit(), text);
        }
    clickButton(dialog, "&OK");
}

void inDialog::chooseNode(CConnectNodeDialog* dialog, int nodeId)
{
    if (nodeId == 0)
        return clickButton(dialog, "&Offline");
    auto* box = dialog->findChild<QSpinBox*>();
    box->selectAll();
    QTest::keyClicks(box, QString::number(nodeId));
    clickButton(dialog, "&Connect");
}

void inDialog::chooseFile(QFileDialog* dialog, const QString& name)
{
    dialog->findChild<QLineEdit*>("fileNameEdit")->setText(name);
    dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->click();
}

void inDialog::cancel(QDialog* dialog)
{
    QTest::keyClick(dialog, Qt::Key_Escape);
}
