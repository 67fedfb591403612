// Gives any text to what reads the command line: it is refused with a message, or read so that what is written of it
// reads the same.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"
#include "MemoryFile.h"

#include "access/InterfaceText.h"
#include "console/ExitStatus.h"
#include "dic/DataSheet.h"
#include "dic/ValueTypes.h"
#include "network/InterfaceName.h"
#include "network/ParameterName.h"
#include "network/TimeText.h"
#include "network/TypedValue.h"
#include "sheets/EntryText.h"
#include "sheets/IndexRange.h"

#include <algorithm>

using entry = CCANopenObjectEntry;
using enum valueFormats::TDisplayMode;

// Names that are numbers, that several have, that are near to each other, and that have slashes.
static const char sampleText[] = "[MandatoryObjects]\n1=0x1018\n"
                                 "[ManufacturerObjects]\n1=0x2000\n2=0x2001\n3=0x2002\n4=0x2003\n5=0x2004\n6=0x2005\n"
                                 "[1018]\nParameterName=Identity object\nObjectType=9\nSubNumber=2\n"
                                 "[1018sub0]\nParameterName=Number\nObjectType=7\nDataType=5\n"
                                 "[1018sub1]\nParameterName=Vendor-ID\nObjectType=7\nDataType=7\n"
                                 "[2000]\nParameterName=ADC\nObjectType=7\nDataType=5\n"
                                 "[2001]\nParameterName=2000\nObjectType=7\nDataType=5\n"
                                 "[2002]\nParameterName=Speed\nObjectType=7\nDataType=5\n"
                                 "[2003]\nParameterName=Speed\nObjectType=7\nDataType=5\n"
                                 "[2004]\nParameterName=Identity object/Vendor-IO\nObjectType=7\nDataType=5\n"
                                 "[2005]\nParameterName=1018:1\nObjectType=7\nDataType=5\n";

static const CCANopen& dictionary()
{
    static const CMemoryFile file(reinterpret_cast<const uint8_t*>(sampleText), sizeof sampleText - 1);
    static CDataSheet sheet;
    static const bool loaded = sheet.load(QString::fromLatin1(file.name())) == CDataSheet::loaded;
    require(loaded);
    return sheet.dictionary();
}

// A number stands for itself with every sheet; a name is that of the entry.
static void readAsParameter(const QString& text, const CCANopen* sheet)
{
    try {
        const tParameterName name = readParameterName(text, sheet);
        require(sheet != nullptr || name.entry == nullptr);
        require(name.entry == nullptr || name.entry->getSubindex() == name.subIndex);
        const QString number = QStringLiteral("0x") + parameterText(name.index, name.subIndex);
        const tParameterName again = readParameterName(number, sheet);
        require(again.index == name.index && again.subIndex == name.subIndex && again.entry == name.entry);
    } catch (const tEnd& end) {
        require(end.status == exitUsage && end.message.startsWith(u'"' + text + u'"'));
    }
}

// A date is written with its day of the week; its text does not have it.
static QByteArray meaningOf(int type, QByteArray bytes)
{
    if (type == entry::typeDate && bytes.size() == valueType(type).width)
        bytes[4] = static_cast<char>(bytes[4] & 0x1F);
    return bytes;
}

static bool isPlain(const QByteArray& bytes)
{
    return std::all_of(bytes.cbegin(), bytes.cend(), [](char byte) { return byte >= ' ' && byte <= '~'; });
}

// What is shown of bytes stands for the same bytes, or for none, such as the shown bytes of a number that is too long.
static void showAndRead(int type, const QByteArray& bytes)
{
    if (valueType(type).kind == kindText && !isPlain(bytes))
        return;
    const bool isWhole = !typedValue::sizeDiffers(type, bytes.size());
    for (const auto mode : { modeHex, modeDec, modeOct }) {
        const QString text = typedValue::textOf(type, bytes, mode);
        require(text == typedValue::exactTextOf(type, bytes, mode));
        const auto again = typedValue::bytesOf(type, text);
        const bool isNone = !isWhole || (type == entry::typeBoolean && static_cast<unsigned char>(bytes[0]) > 1);
        require(isNone || again);
        require(!isWhole || !again || meaningOf(type, *again) == meaningOf(type, bytes));
    }
}

static void readAsValue(int type, const QString& text)
{
    const auto bytes = typedValue::bytesOf(type, text);
    if (!bytes)
        return;
    require(!typedValue::sizeDiffers(type, bytes->size()));
    const bool digit = std::any_of(text.cbegin(), text.cend(), [](QChar letter) { return letter.isLetterOrNumber(); });
    require(digit || !isNumeric(valueType(type)));
    showAndRead(type, *bytes);
}

static void readAsOptions(const QString& text)
{
    if (const auto range = indexRange(text)) {
        require(range->first <= range->last && range->last <= 0xFFFF);
        const auto again = indexRange(QString::asprintf("%X-%X", range->first, range->last));
        require(again && again->first == range->first && again->last == range->last);
    }
    if (const auto milliseconds = millisecondsOf(text)) {
        require(*milliseconds >= 0 && *milliseconds <= 86400000);
        require(millisecondsOf(QStringLiteral("%1ms").arg(*milliseconds)) == milliseconds);
    }
    if (isInterfaceName(text)) {
        const QByteArray name = text.toLocal8Bit();
        const tInterface interface = classifyInterface(name.constData());
        require(interface.library == (text.contains(u':') ? libraryGateway : librarySocketCAN));
        require(interface.library == librarySocketCAN || interface.top.port != 0);
        require(interface.library == libraryGateway || name.size() < 16);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr int mostTypes = 0x21;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QString text = QString::fromUtf8(bytes);
    readAsParameter(text, nullptr);
    readAsParameter(text, &dictionary());
    for (int type = 0; type < mostTypes; ++type) {
        readAsValue(type, text);
        showAndRead(type, bytes);
    }
    readAsOptions(text);
    return 0;
}
