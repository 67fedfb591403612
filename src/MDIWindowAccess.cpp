// The data access of the document window: reading and sending the selected parameter, and the display mode.
// SPDX-License-Identifier: MIT
#include "MDIWindow.h"

#include "CANopenAccess.h"
#include "base/Assertion.h"
#include "values/ParameterTransfer.h"
#include "widgets/DictionaryTree.h"
#include "widgets/FormArea.h"
#include "widgets/MessageBoxes.h"
#include "widgets/Settings.h"
#include "widgets/WaitCursor.h"

#include <QLineEdit>
#include <QPointer>
#include <QRadioButton>

#include <cstdint>

using namespace parameterTransfer;

/// The entry in the form. Null when there is none to access: a box titled `boxTitle` has then told the user why, and
/// this window may have been deleted meanwhile.
const CCANopenObjectEntry* CMDIWindow::selectedEntry(const QString& boxTitle)
{
    const char* text = nullptr;
    if (isOffline() || m_CANopen == nullptr)
        text = "Data access is not possible in off-line mode!\n\nClose the document and connect to a device.";
    else if (m_index == 0 || m_subIndex == noSubIndex)
        text = "No parameter is selected!\n\nSelect one and try again.";
    if (text != nullptr) {
        messageBox::warning(this, boxTitle, QLatin1String(text));
        return nullptr;
    }

    const auto holds = [](bool condition, const char* name, int line) {
        return assertion(condition, name, "MDIWindow", line);
    };
    const int o = m_dictionary.find(m_index);
    if (!holds(o >= 0, "(0 <= o ) && (o < (int)m_dictionary.m_objectArray.count())", __LINE__))
        return nullptr;
    const CCANopenObject* object = m_dictionary.m_objectArray[static_cast<std::size_t>(o)].get();
    if (!holds(object != nullptr, "ptrObject", __LINE__))
        return nullptr;
    const int e = object->find(m_subIndex);
    if (!holds(e >= 0, "(0 <= e ) && (e < (int)ptrObject->m_objectEntryArray.count())", __LINE__))
        return nullptr;
    const CCANopenObjectEntry* entry = object->m_objectEntryArray[static_cast<std::size_t>(e)].get();
    holds(entry != nullptr, "ptrEntry", __LINE__);
    return entry;
}

/// Why a parameter could not be read or sent, for the user. `action` is "read" or "sent".
QString CMDIWindow::failureText(TOutcome outcome, const char* action) const
{
    if (outcome == textInvalid)
        return QStringLiteral("Invalid data entered.\n\nPlease, try again!");
    if (outcome == typeNotSupported)
        return QStringLiteral("Specified data type is not supported.\n\nSorry, not realized yet!");
    const QString text = QStringLiteral("Parameter could not be %1.\n\n%2 %3");
    if (m_CANopen->isSDOAborted()) {
        const auto code = static_cast<std::uint32_t>(m_CANopen->getLastAbort());
        return text.arg(QLatin1String(action), QStringLiteral("SDO transfer aborted:"),
                        QStringLiteral("0x") + QString::number(code, 16));
    }
    return text.arg(QLatin1String(action), QStringLiteral("Error code"), QString::number(m_CANopen->getLastError()));
}

void CMDIWindow::buttonReadClicked()
{
    const QString title = messageBox::titleOf("Read parameter");
    const CCANopenObjectEntry* entry = selectedEntry(title);
    if (entry == nullptr)
        return;
    if (entry->getAccess() == CCANopenObjectEntry::accessWO) {
        m_dataAccess.m_outputLineEdit->clear();
        return;
    }
    tResult result;
    {
        const CWaitCursor wait;
        result = read({ *m_CANopen, m_nodeId, m_index, m_subIndex, entry->getDataType(), m_dataAccess.m_displayMode });
        if (result.outcome != transferDone)
            result.text = failureText(result.outcome, "read");
        showValue(result.text);
    }

    const QString node = QString::number(m_nodeId);
    if (result.outcome == transferDone)
        status(QStringLiteral("Parameter '%1' successfully read from node #%2").arg(entry->getName(), node));
    else
        reportFailure(title, result.text,
                      QStringLiteral("Parameter '%1' could not be read from node #%2").arg(entry->getName(), node));
}

void CMDIWindow::buttonSendClicked()
{
    const QString title = messageBox::titleOf("Send parameter");
    const CCANopenObjectEntry* entry = selectedEntry(title);
    if (entry == nullptr)
        return;
    tResult result;
    {
        const CWaitCursor wait;
        result = send({ *m_CANopen, m_nodeId, m_index, m_subIndex, entry->getDataType(), m_dataAccess.m_displayMode },
                      m_dataAccess.m_inputLineEdit->text());
    }

    const QString node = QString::number(m_nodeId);
    if (result.outcome == transferDone) {
        showValue(result.text);
        status(QStringLiteral("Parameter '%1' successfully sent to node #%2").arg(entry->getName(), node));
    } else {
        reportFailure(title, failureText(result.outcome, "sent"),
                      QStringLiteral("Parameter '%1' could not be sent to node #%2").arg(entry->getName(), node));
    }
}

/// Shows a box with `text`, and afterwards `outcome` in the status bar unless this window was deleted meanwhile.
void CMDIWindow::reportFailure(const QString& title, const QString& text, const QString& outcome)
{
    const QPointer<CMDIWindow> self(this);
    messageBox::warning(this, title, text);
    if (!self.isNull())
        status(outcome);
}

void CMDIWindow::showValue(const QString& text)
{
    m_dataAccess.m_outputLineEdit->setText(text);
    m_dataAccess.m_outputLineEdit->setCursorPosition(0);
    m_formArea->showBeginning(m_dataAccess.m_outputLineEdit);
}

void CMDIWindow::buttonHexClicked()
{
    setDisplayMode(modeHex);
}

void CMDIWindow::buttonDecClicked()
{
    setDisplayMode(modeDec);
}

void CMDIWindow::buttonOctClicked()
{
    setDisplayMode(modeOct);
}

/// The value on screen stays as it is. The mode applies to the next read or send, and to windows opened later.
void CMDIWindow::setDisplayMode(TDisplayMode mode)
{
    m_dataAccess.m_displayMode = mode;
    settings::setDisplayMode(mode);
    checkDisplayModeButton();
}

/// Switches the button of the display mode on, which switches the others off; none for a number that is no mode.
void CMDIWindow::checkDisplayModeButton()
{
    QRadioButton* const buttons[] = { m_dataAccess.m_hexRadioButton, m_dataAccess.m_decRadioButton,
                                      m_dataAccess.m_octRadioButton };
    for (int mode = modeHex; mode <= modeOct; ++mode)
        if (mode == m_dataAccess.m_displayMode)
            buttons[mode]->setChecked(true);
}
