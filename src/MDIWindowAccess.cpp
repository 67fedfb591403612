// The data access of the document window: reading and sending the selected parameter, and the display mode.
// SPDX-License-Identifier: MIT
#include "MDIWindow.h"

#include "CANopenAccess.h"
#include "CANopenTypes.h"
#include "widgets/DictionaryTree.h"
#include "widgets/MessageBoxes.h"
#include "widgets/Settings.h"
#include "values/ValueFormats.h"
#include "widgets/WaitCursor.h"
#include "base/Assertion.h"

#include <QLineEdit>
#include <QPointer>
#include <QRadioButton>

#include <algorithm>
#include <array>
#include <cstdint>

namespace
{

using access = CCANopenAccess;
using types = CCANopenTypes;
using entry = CCANopenObjectEntry;

constexpr int maxVisibleString = 256;
constexpr int maxDomain = 1024;

/// A parameter on the network and how its value is shown.
struct tParameter {
    CCANopenAccess& access;
    BYTE node;
    WORD index;
    BYTE subIndex;
    int type;
    int mode;
};

/// A read stores the text of the value. A send stores the text that shows what went out, or, when nothing could be sent
/// at all, the reason. Both are about the facade's last error when the transfer fails.
enum tResult { succeeded, transferFailed, nothingSent };
using tRead = bool (*)(const tParameter& from, QString& text);
using tSend = tResult (*)(const tParameter& to, const QString& input, QString& text);

tResult refuse(const char* reason, QString& text)
{
    text = QLatin1String(reason);
    return nothingSent;
}

tResult refuseText(QString& text)
{
    return refuse("Invalid data entered.\n\nPlease, try again!", text);
}

template <typename Value, bool (access::*operation)(BYTE, WORD, BYTE, Value*)>
bool readInteger(const tParameter& from, QString& text)
{
    Value value = 0;
    if (!(from.access.*operation)(from.node, from.index, from.subIndex, &value))
        return false;
    text = valueFormats::integer(from.type, valueFormats::read, static_cast<std::uint32_t>(value), from.mode);
    return true;
}

template <typename Value, bool (*convert)(const char*, Value*), bool (access::*operation)(BYTE, WORD, BYTE, Value)>
tResult sendInteger(const tParameter& to, const QString& input, QString& text)
{
    Value value = 0;
    if (!convert(input.toLatin1().constData(), &value))
        return refuseText(text);
    if (!(to.access.*operation)(to.node, to.index, to.subIndex, value))
        return transferFailed;
    text = valueFormats::integer(to.type, valueFormats::sent, static_cast<std::uint32_t>(value), to.mode);
    return succeeded;
}

/// Reads at most `size` bytes to `data`. `length` is their number, inside the buffer whatever the facade reports.
bool readBytes(const tParameter& from, BYTE* data, int size, int& length)
{
    short received = 0;
    if (!from.access.read(from.node, from.index, from.subIndex, &received, data, static_cast<short>(size)))
        return false;
    length = std::clamp<int>(received, 0, size);
    return true;
}

/// `data` has one readable byte behind its `length` bytes.
tResult sendBytes(const tParameter& to, const BYTE* data, int length)
{
    const bool sent = to.access.write(to.node, to.index, to.subIndex, static_cast<short>(length), data);
    return sent ? succeeded : transferFailed;
}

bool readString(const tParameter& from, QString& text)
{
    std::array<BYTE, maxVisibleString + 1> buffer{};
    int length = 0;
    if (!readBytes(from, buffer.data(), maxVisibleString, length))
        return false;
    text = QString::fromLatin1(reinterpret_cast<const char*>(buffer.data())); // up to the first zero byte
    return true;
}

// Kept: the text stays empty, so that a sent string empties the field of the actual value; users read it back.
tResult sendString(const tParameter& to, const QString& input, QString&)
{
    const QByteArray characters = input.left(maxVisibleString).toLatin1();
    return sendBytes(to, reinterpret_cast<const BYTE*>(characters.constData()), static_cast<int>(characters.size()));
}

template <typename Moment, bool (*toText)(Moment, QString&)>
QString momentText(const Moment& moment, int length, int mode)
{
    QString text;
    if (mode == CMDIWindow::modeDec)
        toText(moment, text);
    else
        text = valueFormats::bytes(moment.data, length, mode);
    return text;
}

template <typename Moment, bool (*toText)(Moment, QString&)>
bool readMoment(const tParameter& from, QString& text)
{
    Moment moment{};
    int length = 0;
    if (!readBytes(from, moment.data, sizeof moment.data, length))
        return false;
    text = momentText<Moment, toText>(moment, length, from.mode);
    return true;
}

template <typename Moment, bool (*convert)(const char*, Moment*), bool (*toText)(Moment, QString&)>
tResult sendMoment(const tParameter& to, const QString& input, QString& text)
{
    Moment moment{};
    if (!convert(input.toLatin1().constData(), &moment))
        return refuseText(text);
    constexpr int length = sizeof moment.data;
    std::array<BYTE, sizeof moment.data + 1> buffer{};
    std::copy_n(moment.data, length, buffer.begin());
    const tResult result = sendBytes(to, buffer.data(), length);
    if (result == succeeded)
        text = momentText<Moment, toText>(moment, length, to.mode);
    return result;
}

bool readDomain(const tParameter& from, QString& text)
{
    std::array<BYTE, maxDomain> buffer{};
    int length = 0;
    if (!readBytes(from, buffer.data(), maxDomain, length))
        return false;
    text = valueFormats::bytes(buffer.data(), length, from.mode);
    return true;
}

tResult sendNothing(const tParameter&, const QString&, QString& text)
{
    return refuse("Specified data type is not supported.\n\nSorry, not realized yet!", text);
}

struct tTransfer {
    int type;
    tRead read;
    tSend send;
};

// The last row stands for every other data type.
// clang-format off
constexpr tTransfer transfers[] = {
    { entry::typeInteger8,      readInteger<SDO_t_INTEGER8, &access::readInteger8>,
                                sendInteger<SDO_t_INTEGER8, &types::ascii2integer8, &access::writeInteger8> },
    { entry::typeInteger16,     readInteger<SDO_t_INTEGER16, &access::readInteger16>,
                                sendInteger<SDO_t_INTEGER16, &types::ascii2integer16, &access::writeInteger16> },
    { entry::typeInteger32,     readInteger<SDO_t_INTEGER32, &access::readInteger32>,
                                sendInteger<SDO_t_INTEGER32, &types::ascii2integer32, &access::writeInteger32> },
    { entry::typeUnsigned8,     readInteger<SDO_t_UNSIGNED8, &access::readUnsigned8>,
                                sendInteger<SDO_t_UNSIGNED8, &types::ascii2unsigned8, &access::writeUnsigned8> },
    { entry::typeUnsigned16,    readInteger<SDO_t_UNSIGNED16, &access::readUnsigned16>,
                                sendInteger<SDO_t_UNSIGNED16, &types::ascii2unsigned16, &access::writeUnsigned16> },
    { entry::typeUnsigned32,    readInteger<SDO_t_UNSIGNED32, &access::readUnsigned32>,
                                sendInteger<SDO_t_UNSIGNED32, &types::ascii2unsigned32, &access::writeUnsigned32> },
    { entry::typeVisibleString, readString, sendString },
    { entry::typeDate,          readMoment<SDO_t_DATE, &types::date2ascii>,
                                sendMoment<SDO_t_DATE, &types::ascii2date, &types::date2ascii> },
    { entry::typeTimeOfDay,     readMoment<SDO_t_TIME_OF_DAY, &types::timeOfDay2ascii>,
                                sendMoment<SDO_t_TIME_OF_DAY, &types::ascii2timeOfDay, &types::timeOfDay2ascii> },
    { entry::typeVoid,          readDomain, sendNothing },
};
// clang-format on

const tTransfer& transferOf(int type)
{
    return *std::find_if(std::begin(transfers), std::end(transfers) - 1,
                         [type](const tTransfer& row) { return row.type == type; });
}

} // namespace

/// The entry in the form. Null when there is none to access: a box under `boxTitle` has then told the user why, and
/// this window may be gone with it.
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

/// Why the last transfer failed, for the user. `action` is "read" or "sent".
QString CMDIWindow::failureText(const char* action) const
{
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
    QString text;
    {
        const CWaitCursor wait;
        const int type = entry->getDataType();
        if (!transferOf(type).read({ *m_CANopen, m_nodeId, m_index, m_subIndex, type, m_dataAccess.m_displayMode },
                                   text))
            text = failureText("read");
        showValue(text);
    }

    const QString node = QString::number(m_nodeId);
    if (m_CANopen->getLastError() == 0) {
        status(QStringLiteral("Parameter '%1' successfully read from node #%2").arg(entry->getName(), node));
        return;
    }
    reportFailure(title, text,
                  QStringLiteral("Parameter '%1' could not be read from node #%2").arg(entry->getName(), node));
}

void CMDIWindow::buttonSendClicked()
{
    const QString title = messageBox::titleOf("Send parameter");
    const CCANopenObjectEntry* entry = selectedEntry(title);
    if (entry == nullptr)
        return;
    QString text;
    tResult result = succeeded;
    {
        const CWaitCursor wait;
        const int type = entry->getDataType();
        result = transferOf(type).send({ *m_CANopen, m_nodeId, m_index, m_subIndex, type, m_dataAccess.m_displayMode },
                                       m_dataAccess.m_inputLineEdit->text(), text);
        if (result == transferFailed)
            text = failureText("sent");
    }

    const QString node = QString::number(m_nodeId);
    if (result != nothingSent && m_CANopen->getLastError() == 0) {
        showValue(text);
        status(QStringLiteral("Parameter '%1' successfully sent to node #%2").arg(entry->getName(), node));
        return;
    }
    reportFailure(title, text,
                  QStringLiteral("Parameter '%1' could not be sent to node #%2").arg(entry->getName(), node));
}

/// A box with `text`, and afterwards `outcome` in the status bar, unless this window has gone with the box.
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

/// The value on screen stays as it is; the mode counts from the next read or send, and for windows opened later.
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
