// The least program with a main window and a dialog with as many widgets as the one that Velmora starts with.
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QSpinBox>

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QMainWindow window;
    window.resize(960, 640);
    window.show();

    QDialog dialog(&window);
    QGridLayout grid(&dialog);
    QComboBox interface, baudrate;
    interface.setEditable(true);
    interface.setCompleter(nullptr);
    baudrate.addItems({ "1000", "800", "500", "250", "125", "100", "50", "20", "10" });
    QSpinBox nodeId;
    nodeId.setRange(0, 127);
    QLabel interfaceLabel("&Interface:"), baudrateLabel("&Baud rate:"), nodeIdLabel("&Node-Id.:");
    QLabel baudrateUnit("Kbps (CiA Bit-timing)"), nodeIdUnit("for CANopen Master");
    QPushButton ok("&OK"), cancel("&Cancel");
    for (QWidget* widget :
         std::initializer_list<QWidget*>{ &baudrate, &baudrateLabel, &baudrateUnit, &nodeId, &nodeIdLabel })
        widget->setEnabled(false);
    int place = 0;
    for (QWidget* widget :
         std::initializer_list<QWidget*>{ &interfaceLabel, &interface, &baudrateLabel, &baudrate, &baudrateUnit,
                                          &nodeIdLabel, &nodeId, &nodeIdUnit, &ok, &cancel }) {
        grid.addWidget(widget, place / 3, place % 3);
        ++place;
    }
    return dialog.exec();
}
