// The main frame's CAN interface: initialising it, showing its properties, closing it.
// SPDX-License-Identifier: MIT
#include "MainFrame.h"

#include "InitInterfaceDialog.h"
#include "MDIWindow.h"
#include "access/InterfaceText.h"
#include "widgets/MessageBoxes.h"
#include "widgets/WaitCursor.h"

#include <QMdiArea>
#include <QPointer>

#include <array>
#include <optional>

namespace
{

constexpr long anyBoard = -1;

using tVersionGetter = bool (CCANopenAccess::*)(char* buffer, short size);

// A text of the facade about the interface, which may fill the buffer without a terminator.
std::optional<QString> versionText(CCANopenAccess& access, tVersionGetter getter)
{
    std::array<char, 100> buffer = {};
    if (!(access.*getter)(buffer.data(), static_cast<short>(buffer.size())))
        return std::nullopt;
    return QString::fromUtf8(buffer.data(), static_cast<qsizetype>(qstrnlen(buffer.data(), buffer.size())));
}

// The text of the properties box. Stops at the first text that cannot be fetched and returns nothing then.
std::optional<QString> propertiesText(CCANopenAccess& access)
{
    const CWaitCursor wait;
    constexpr tVersionGetter getters[] = { &CCANopenAccess::getHardwareVersion, &CCANopenAccess::getFirmwareVersion,
                                           &CCANopenAccess::getCopyright };
    QStringList texts;
    for (const tVersionGetter getter : getters) {
        const std::optional<QString> text = versionText(access, getter);
        if (!text)
            return std::nullopt;
        texts.append(*text);
    }
    return QStringLiteral("Hardware: %1\nFirmware: %2\nSoftware: %3\nCopyright %4\n")
        .arg(texts[0], texts[1], QString::fromLatin1(access.getAPIVersion()), texts[2]);
}

} // namespace

void CMainFrame::initializeInterface()
{
    interfaceInitialize();
}

void CMainFrame::interfaceInitialize()
{
    // The dialog stays as a hidden child of the frame: it owns the interface text, which the library may keep.
    const QPointer<CInitInterfaceDialog> dialog = new CInitInterfaceDialog(this);
    if (dialog->exec() != QDialog::Accepted || dialog.isNull())
        return;

    const char* text = dialog->getInterface();
    tInterface interface = classifyInterface(text);
    if (openInterface(interface, static_cast<BYTE>(dialog->getBaudrate()))) {
        status(QStringLiteral("CAN interface successfully initialized"));
        return dialog->saveSettings();
    }

    const QString failure = QStringLiteral("Error %1: Interface '%2' could not be initialized!\n\n\t%3")
                                .arg(QString::number(m_CANopen->getLastError()), QString::fromUtf8(text),
                                     QString::fromLatin1(m_CANopen->getErrorText(0)));
    const QPointer<CMainFrame> self(this);
    messageBox::critical(this, messageBox::titleOf("Initialize Interface"), failure);
    if (!self.isNull()) // the frame may have been deleted while the box was open
        deleteAccess();
}

// Opens the interface with the facade that exists, or else with a new one.
bool CMainFrame::openInterface(tInterface& interface, unsigned char baudrate)
{
    const CWaitCursor wait;
    if (m_CANopen == nullptr)
        m_CANopen = new CCANopenAccess;
    else
        m_CANopen->terminate();
    return m_CANopen->initialize(interface.library, anyBoard, interface.record(), baudrate);
}

void CMainFrame::interfaceProperties()
{
    const QString title = messageBox::titleOf("Interface Properties");
    if (m_CANopen == nullptr)
        return messageBox::warning(this, title,
                                   QStringLiteral("Interface not initialized.\n\nProbably no board present."));
    if (const std::optional<QString> text = propertiesText(*m_CANopen))
        messageBox::information(this, title, *text);
    else
        messageBox::critical(this, title, QStringLiteral("Error ?: Properties could not be retrieved!")); // sic
}

// Deletes the facade, after all documents, also those that are just closing, have forgotten it.
void CMainFrame::deleteAccess()
{
    for (CMDIWindow* document : m_workspace->findChildren<CMDIWindow*>())
        document->releaseAccess();
    if (m_CANopen != nullptr)
        m_CANopen->terminate();
    delete m_CANopen;
    m_CANopen = nullptr;
}
