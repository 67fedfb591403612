// The document window: an object dictionary as a tree, the attributes of the selected entry, access to its value.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/CANopen.h"
#include "values/ValueFormats.h"

#include <QMainWindow>

class CCANopenAccess;
class CDictionaryListView;
class CDocumentSplitter;
class CFormArea;
class QCheckBox;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTreeWidgetItem;

namespace parameterTransfer
{
enum TOutcome : int;
}

class CMDIWindow : public QMainWindow
{
    Q_OBJECT

public:
    using TDisplayMode = valueFormats::TDisplayMode;
    using enum valueFormats::TDisplayMode;

    struct tObjectDescription {
        QLineEdit *m_nameLineEdit, *m_codeLineEdit, *m_typeLineEdit;
        QCheckBox *m_compoundCheckBox, *m_mandatoryCheckBox;
    };
    struct tEntryDescription {
        QLineEdit *m_nameLineEdit, *m_typeLineEdit, *m_accessLineEdit, *m_rangeLineEdit, *m_defaultLineEdit;
        QCheckBox *m_mandatoryCheckBox, *m_mappingCheckBox;
    };
    struct tDataAccess {
        QLineEdit *m_inputLineEdit, *m_outputLineEdit;
        QPushButton *m_sendPushButton, *m_readPushButton;
        QRadioButton *m_hexRadioButton, *m_decRadioButton, *m_octRadioButton;
        TDisplayMode m_displayMode;
    };

    explicit CMDIWindow(QWidget* parent = nullptr, const char* name = nullptr, Qt::WindowFlags flags = {});
    ~CMDIWindow() override;

    /// Loads the data sheet `fileName` and shows its tree; called once. With an `access`, which is borrowed, the user
    /// is asked for a node first. The window may be closed, and deleted, while one of its dialogs runs.
    /// @return false when the file could not be loaded, the dialog was cancelled or the window was deleted
    bool openDocument(const QString& fileName, CCANopenAccess* access);

    /// Shows the device and file information of the dictionary in a modal dialog.
    void showDeviceInfo();

    /// Forgets the facade before its owner deletes it: the document can no longer read or send. Its titles stay.
    void releaseAccess();

    /// A document never refuses to close.
    void closeEvent(QCloseEvent* event) override;

    /// The revision of the module.
    static const char* version();

public Q_SLOTS:
    void mouseLeftPressed(QTreeWidgetItem* item);
    void returnKeyPressed(QTreeWidgetItem* item);
    void mouseRightClicked(QTreeWidgetItem* item, const QPoint& position);
    void buttonSendClicked();
    void buttonReadClicked();
    void buttonHexClicked();
    void buttonDecClicked();
    void buttonOctClicked();

Q_SIGNALS:
    /// A text for the status bar, to be shown for that many milliseconds.
    void message(const QString& text, int milliseconds);

private:
    void createWidgets();
    void createDictionaryListView();
    void createAttributesForm();
    void createDataAccess();
    void connectWidgets();

    bool loadDictionary(const QString& fileName);
    bool connectNode(CCANopenAccess* access);
    void populateDictionaryList();
    void populateAttributesForm(unsigned short index, unsigned char subIndex);
    void clearAttributesForm(bool keepObject);
    void clearValues();
    const CCANopenObject* objectOf(unsigned short index) const;
    const CCANopenObjectEntry* entryOf(const CCANopenObject& object, unsigned char subIndex) const;
    void fillAttributesForm(const CCANopenObject* object, const CCANopenObjectEntry* entry, bool keepObject);
    void fillObjectPart(const CCANopenObject& object);
    void fillEntryPart(const CCANopenObjectEntry& entry);

    const CCANopenObjectEntry* selectedEntry(const QString& boxTitle);
    QString failureText(parameterTransfer::TOutcome outcome, const char* action) const;
    void reportFailure(const QString& title, const QString& text, const QString& outcome);
    void showValue(const QString& text);
    void setDisplayMode(TDisplayMode mode);
    void checkDisplayModeButton();
    // Compared as a signed number: 128 and above, which are no node-ids, are off-line, too.
    bool isOffline() const { return static_cast<signed char>(m_nodeId) < 1; }
    void status(const QString& text) { Q_EMIT message(text, 2000); }

    QString m_fileName;
    CCANopen m_dictionary;
    CDocumentSplitter* m_splitter;
    CDictionaryListView* m_dictionaryListView;
    CFormArea* m_formArea;
    QGroupBox* m_objectGroupBox;
    QGroupBox* m_entryGroupBox;
    QGroupBox* m_accessGroupBox;
    tObjectDescription m_objectDescription;
    tEntryDescription m_entryDescription;
    tDataAccess m_dataAccess;
    CCANopenAccess* m_CANopen; // borrowed from the frame; null without an interface
    unsigned char m_nodeId;    // 0: off-line
    unsigned short m_index;    // 0: no object
    unsigned char m_subIndex;  // 255: no entry
};
