// The dialog that shows the device and file information of an object dictionary, on four pages.
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class CCANopen;
class CCANopenDeviceInfo;
class QGridLayout;
class QLineEdit;
class QTabWidget;

class CDeviceInfoDialog : public QDialog
{
    Q_OBJECT

public:
    struct tPage1 {
        QLineEdit* m_vendorNameLineEdit;
        QLineEdit* m_vendorNumberLineEdit;
        QLineEdit* m_productNameLineEdit;
        QLineEdit* m_productNumberLineEdit;
        QLineEdit* m_revisionNumberLineEdit;
        QLineEdit* m_orderCodeLineEdit;
        QLineEdit* m_descriptionLineEdit;
    };
    struct tPage2 { // 100 kbit/s has no field
        QLineEdit* m_baudrate1000LineEdit;
        QLineEdit* m_baudrate800LineEdit;
        QLineEdit* m_baudrate500LineEdit;
        QLineEdit* m_baudrate250LineEdit;
        QLineEdit* m_baudrate125LineEdit;
        QLineEdit* m_baudrate50LineEdit;
        QLineEdit* m_baudrate20LineEdit;
        QLineEdit* m_baudrate10LineEdit;
    };
    struct tPage3 {
        QLineEdit* m_bootupMasterLineEdit;
        QLineEdit* m_bootupSlaveLineEdit;
        QLineEdit* m_numberOfPDOsLineEdit;
        QLineEdit* m_granularityLineEdit;
        QLineEdit* m_dynamicChannelsLineEdit;
        QLineEdit* m_groupMessagingLineEdit;
        QLineEdit* m_layerSettingsLineEdit;
    };
    struct tPage4 {
        QLineEdit* m_fileNameLineEdit;
        QLineEdit* m_fileVersionLineEdit;
        QLineEdit* m_EDSVersionLineEdit;
        QLineEdit* m_authorLineEdit;
        QLineEdit* m_companyLineEdit;
        QLineEdit* m_dateLineEdit;
        QLineEdit* m_descriptionLineEdit;
    };

    explicit CDeviceInfoDialog(QWidget* parent = nullptr, const char* name = nullptr);

    /// Fills all fields; the pages of the device stay empty when the dictionary has no device information.
    /// @return true when it has
    bool populate(const CCANopen* dictionary);

    static const char* version();

private:
    QGridLayout* createPage(const char* name, const char* label);

    QTabWidget* m_tabWidget;
    tPage1 m_page1;
    tPage2 m_page2;
    tPage3 m_page3;
    tPage4 m_page4;
};
