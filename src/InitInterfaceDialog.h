// The dialog that names the CAN interface to initialise and keeps the history of the interfaces used.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDialog>

class QComboBox;
class QGridLayout;
class QLabel;
class QPushButton;
class QSpinBox;

class CInitInterfaceDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CInitInterfaceDialog(QWidget* parent = nullptr, const char* name = nullptr);

    /// The interface text as typed or selected, zero-terminated UTF-8; null when there is none. The text belongs to the
    /// dialog: it lives until the next call or the end of the dialog. Moves the interface to the top of the history.
    const char* getInterface();

    /// Position of the selected bit rate, which is its CiA bit-timing index: 0 (1000 kbit/s) to 8 (10 kbit/s).
    int getBaudrate() const;

    /// Appends the stored history to the interface box.
    void loadSettings();
    /// Stores the first ten entries of the interface box; when there are fewer, further stored ones stay unchanged.
    void saveSettings() const;

    static const char* version();

public Q_SLOTS:
    /// Accepts when an interface is given, otherwise warns and stays open.
    void acceptInitialize();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createFields(QGridLayout* grid);
    void createButtons();
    void fillBaudrates();

    QComboBox* m_interfaceComboBox;
    QComboBox* m_baudrateComboBox;
    QSpinBox* m_masterIdSpinBox;
    QPushButton* m_okPushButton;
    QPushButton* m_cancelPushButton;
    QByteArray m_interface; // what getInterface() returned last
};
