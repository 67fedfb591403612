// The document window: opening a data sheet and showing the attributes of the selected object and entry.
// SPDX-License-Identifier: MIT
#include "MDIWindow.h"

#include "ConnectNodeDialog.h"
#include "DeviceInfoDialog.h"
#include "base/Assertion.h"
#include "dic/CANopenReader.h"
#include "widgets/DictionaryListView.h"
#include "widgets/DictionaryTree.h"
#include "widgets/DocumentSplitter.h"
#include "widgets/FormArea.h"
#include "widgets/MessageBoxes.h"
#include "widgets/Settings.h"
#include "widgets/WaitCursor.h"
#include "widgets/WindowTitle.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QFile>
#include <QGroupBox>
#include <QLineEdit>
#include <QPointer>

namespace
{

void fill(QLineEdit* field, const QString& text)
{
    if (field->text() == text && field->cursorPosition() == 0 && !field->hasSelectedText())
        return; // nothing to paint
    field->setText(text);
    field->setCursorPosition(0); // a long text shows its beginning
}

void clearPart(const QGroupBox* part)
{
    for (QLineEdit* field : part->findChildren<QLineEdit*>())
        field->clear();
    for (QCheckBox* mark : part->findChildren<QCheckBox*>())
        mark->setChecked(false);
}

} // namespace

CMDIWindow::CMDIWindow(QWidget* parent, const char* name, Qt::WindowFlags flags)
    : QMainWindow(parent, flags), m_CANopen(nullptr), m_nodeId(0), m_index(0), m_subIndex(noSubIndex)
{
    setObjectName(QLatin1String(name));
    setAccessibleName(QStringLiteral("Document")); // the window around it is called by the file
    createWidgets();
    m_dataAccess.m_displayMode = settings::displayMode();
    checkDisplayModeButton();
    resize(QSize(720, 400).expandedTo(minimumSizeHint()));
}

CMDIWindow::~CMDIWindow() = default;

bool CMDIWindow::openDocument(const QString& fileName, CCANopenAccess* access)
{
    m_formArea->ensureVisible(0, 0); // the focus may have gone through the form while this window came up
    if (!loadDictionary(fileName)) {
        const QString text = QStringLiteral("File %1 could not be loaded").arg(fileName);
        status(text);
        messageBox::critical(this, messageBox::titleOf("Load document"), text);
        return false;
    }
    if (access != nullptr && !connectNode(access))
        return false;
    populateDictionaryList();
    m_fileName = fileName;
    setWindowTitle(windowTitle::titleOf(fileName));
    if (isOffline())
        status(QStringLiteral("File %1 loaded in off-line mode").arg(fileName));
    else
        status(QStringLiteral("File %1 loaded and connected to node #%2").arg(fileName, QString::number(m_nodeId)));
    return true;
}

bool CMDIWindow::loadDictionary(const QString& fileName)
{
    const CWaitCursor wait;
    CCANopenReader reader(&m_dictionary, CCANopen::typeEDS);
    return reader.load(QFile::encodeName(fileName).constData()) != 0;
}

/// Asks for the node. False when the dialog was cancelled, or deleted together with this window.
bool CMDIWindow::connectNode(CCANopenAccess* access)
{
    m_CANopen = access; // already set while the dialog runs, so that releaseAccess can clear it
    const QPointer<CConnectNodeDialog> dialog = new CConnectNodeDialog(this);
    const int result = dialog->exec();
    if (dialog.isNull())
        return false;
    const bool accepted = result == QDialog::Accepted;
    if (accepted)
        m_nodeId = dialog->getConnectFlag() ? static_cast<unsigned char>(dialog->getNodeId()) : 0;
    else
        m_CANopen = nullptr;
    delete dialog;
    return accepted;
}

void CMDIWindow::showDeviceInfo()
{
    const QPointer<CDeviceInfoDialog> dialog = new CDeviceInfoDialog(this);
    if (!dialog->populate(&m_dictionary))
        status(QStringLiteral("No device info present"));
    dialog->exec();
    delete dialog;
}

void CMDIWindow::releaseAccess()
{
    m_CANopen = nullptr;
}

void CMDIWindow::closeEvent(QCloseEvent* event)
{
    event->accept();
}

const char* CMDIWindow::version()
{
    return "$Id: MDIWindow.cpp 61 2009-11-09 $";
}

void CMDIWindow::populateDictionaryList()
{
    const QString root =
        isOffline() ? QStringLiteral("CANopen: Object dictionary") : QStringLiteral("CANopen: Node #%1").arg(m_nodeId);
    dictionaryTree::populate(m_dictionaryListView, root, m_dictionary);
    m_splitter->fitNames();
}

void CMDIWindow::mouseLeftPressed(QTreeWidgetItem* item)
{
    if (item == nullptr)
        return;
    const dictionaryTree::tSelection selection = dictionaryTree::selectionOf(item);
    populateAttributesForm(selection.index, selection.subIndex);
}

void CMDIWindow::returnKeyPressed(QTreeWidgetItem* item)
{
    if (item == nullptr)
        return;
    const QPointer<CMDIWindow> self(this);
    mouseLeftPressed(item);
    if (!self.isNull() && item->childCount() > 0)
        item->setExpanded(!item->isExpanded());
}

void CMDIWindow::mouseRightClicked(QTreeWidgetItem*, const QPoint&) {}

const CCANopenObject* CMDIWindow::objectOf(unsigned short index) const
{
    const int position = m_dictionary.find(index);
    if (position < 0)
        return nullptr;
    const CCANopenObject* object = m_dictionary.m_objectArray[static_cast<std::size_t>(position)].get();
    assertion(object != nullptr, "ptrObject", "MDIWindow", __LINE__);
    return object;
}

const CCANopenObjectEntry* CMDIWindow::entryOf(const CCANopenObject& object, unsigned char subIndex) const
{
    const int position = object.find(subIndex);
    if (position < 0)
        return nullptr;
    const CCANopenObjectEntry* entry = object.m_objectEntryArray[static_cast<std::size_t>(position)].get();
    assertion(entry != nullptr, "entry", "MDIWindow", __LINE__);
    return entry;
}

/// Shows the object, unless it stays, and the entry, and clears what is null. No part is cleared just to be filled: its
/// title would change twice, and all of it would be painted.
void CMDIWindow::fillAttributesForm(const CCANopenObject* object, const CCANopenObjectEntry* entry, bool keepObject)
{
    if (entry == nullptr)
        clearAttributesForm(keepObject || object != nullptr);
    else
        clearValues();
    if (object != nullptr && !keepObject)
        fillObjectPart(*object);
    if (entry != nullptr)
        fillEntryPart(*entry);
}

void CMDIWindow::populateAttributesForm(unsigned short index, unsigned char subIndex)
{
    if (index != m_index) {
        const CCANopenObject* object = index != 0 ? objectOf(index) : nullptr;
        const CCANopenObjectEntry* entry = object != nullptr ? entryOf(*object, subIndex) : nullptr;
        fillAttributesForm(object, entry, false);
        if (object == nullptr)
            index = 0;
        if (entry == nullptr) // Kept: FFh shows, but cannot be read or sent: it means no entry.
            subIndex = noSubIndex;
        m_subIndex = subIndex;
        m_index = index;
    } else if (subIndex != m_subIndex) {
        const CCANopenObject* object = subIndex != noSubIndex ? objectOf(index) : nullptr;
        const CCANopenObjectEntry* entry = object != nullptr ? entryOf(*object, subIndex) : nullptr;
        fillAttributesForm(object, entry, true);
        if (subIndex != noSubIndex && entry == nullptr) {
            subIndex = noSubIndex;
            index = 0; // Kept: causes the message below; the object part stays filled.
        }
        m_subIndex = subIndex;
    }

    m_accessGroupBox->setTitle(isOffline() ? QStringLiteral("Data access: N/A")
                                           : QStringLiteral("Data access: #%1").arg(m_nodeId));
    const QPointer<CMDIWindow> self(this);
    if (!isOffline() && m_index != 0 && m_subIndex != noSubIndex)
        buttonReadClicked();
    // Kept: no message for a selected object; the status bar keeps the result of the read.
    if (!self.isNull() && index == 0)
        status(QStringLiteral("No object attributes loaded"));
}

void CMDIWindow::fillObjectPart(const CCANopenObject& object)
{
    m_objectGroupBox->setTitle(QStringLiteral("Object: Index %1h").arg(QString::number(object.getIndex(), 16)));
    fill(m_objectDescription.m_nameLineEdit, object.getName());
    fill(m_objectDescription.m_codeLineEdit, CCANopenObject::getClassByIndex(object.getClass()));
    fill(m_objectDescription.m_typeLineEdit, CCANopenObject::getDataTypeByIndex(object.getDataType()));
    m_objectDescription.m_compoundCheckBox->setChecked(object.isMultipleObject());
    m_objectDescription.m_mandatoryCheckBox->setChecked(object.getCategory() != CCANopenObject::categoryOptional);
}

void CMDIWindow::fillEntryPart(const CCANopenObjectEntry& entry)
{
    m_entryGroupBox->setTitle(QStringLiteral("Entry: Subndex %1h").arg(entry.getSubindex(), 2, 16)); // sic
    fill(m_entryDescription.m_nameLineEdit, entry.getName());
    fill(m_entryDescription.m_typeLineEdit, CCANopenObjectEntry::getDataTypeByIndex(entry.getDataType()));
    fill(m_entryDescription.m_accessLineEdit, CCANopenObjectEntry::getAccessByIndex(entry.getAccess()));
    fill(m_entryDescription.m_rangeLineEdit, entry.getValueRange());
    fill(m_entryDescription.m_defaultLineEdit, entry.getDefaultValue());
    m_entryDescription.m_mandatoryCheckBox->setChecked(entry.getCategory() != CCANopenObjectEntry::categoryOptional);
    m_entryDescription.m_mappingCheckBox->setChecked(entry.getPDOMapping() != CCANopenObjectEntry::mappingNo);
}

void CMDIWindow::clearAttributesForm(bool keepObject)
{
    if (!keepObject) {
        m_objectGroupBox->setTitle(QStringLiteral("Object description"));
        clearPart(m_objectGroupBox);
        m_index = 0;
    }
    m_entryGroupBox->setTitle(QStringLiteral("Entry description"));
    clearPart(m_entryGroupBox);
    m_accessGroupBox->setTitle(QStringLiteral("Data access"));
    clearValues();
    m_subIndex = noSubIndex;
}

void CMDIWindow::clearValues()
{
    m_dataAccess.m_inputLineEdit->clear();
    m_dataAccess.m_outputLineEdit->clear();
}
