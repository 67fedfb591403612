// Opens data sheets in a document window and presses every item of its tree: the form shows what a second reading of
// the sheet has. The sheets are made of the input: objects and entries with any values; or are the input itself.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "FuzzInput.h"
#include "MDIWindow.h"
#include "MemoryFile.h"
#include "TempSettings.h"

#include "dic/CANopenReader.h"

#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>

#include <iterator>
#include <memory>
#include <optional>
#include <string>

static std::string hexadecimal(unsigned number)
{
    char text[16];
    std::snprintf(text, sizeof text, "%X", number);
    return text;
}

/// A value of the list or, now and then, any text.
template <size_t count>
static std::string valueOf(const char* const (&values)[count], CFuzzInput& input)
{
    const unsigned which = input.byte();
    return which < 0xF0 ? values[which % count] : std::string(input.take(which & 15));
}

static std::string attributes(CFuzzInput& input)
{
    static constexpr const char* names[] = {
        "Value", "A: 1", "  x", "\xC3\x84", "\xE4", "1018: 2", "%1 %2", "<b>", "-"
    };
    static constexpr const char* types[] = { "1", "2", "5", "7", "0x8", "9", "11", "12", "15", "0x1B", "0", "99", "" };
    static constexpr const char* access[] = { "rw", "ro", "WO", "const", "rwr", "rww", "" };
    static constexpr const char* limits[] = { "0", "-1", "0xFFFFFFFF", "%1", "$NODEID+0x180", "4294967296", "1.5", "" };
    std::string text = "ParameterName=" + valueOf(names, input) + "\nDataType=" + valueOf(types, input) +
                       "\nAccessType=" + valueOf(access, input) + "\n";
    const unsigned which = input.byte();
    if ((which & 1) != 0)
        text += "LowLimit=" + valueOf(limits, input) + "\n";
    if ((which & 2) != 0)
        text += "HighLimit=" + valueOf(limits, input) + "\n";
    if ((which & 4) != 0)
        text += "DefaultValue=" + valueOf(limits, input) + "\n";
    if ((which & 8) != 0)
        text += "PDOMapping=" + std::to_string(which >> 4 & 3) + "\n";
    return text;
}

static std::string section(unsigned index, CFuzzInput& input)
{
    static constexpr const char* classes[] = { "7", "8", "9", "0x2", "5", "6", "0", "" };
    const std::string name = hexadecimal(index);
    const unsigned entries = input.byte() % 8;
    std::string text = "[" + name + "]\nObjectType=" + valueOf(classes, input) + "\n" + attributes(input);
    if (entries > 0)
        text += "SubNumber=" + std::to_string(entries) + "\n";
    for (unsigned entry = 0; entry < entries; ++entry) {
        const unsigned sub = input.byte();
        text += "[" + name + "sub" + hexadecimal(sub < 0xE0 ? entry : sub) + "]\n" + attributes(input);
    }
    return text;
}

static std::string sheetOf(CFuzzInput& input)
{
    static constexpr const char* lists[] = { "MandatoryObjects", "OptionalObjects", "ManufacturerObjects" };
    static constexpr unsigned indexes[] = { 0x1000, 0x1018, 0x1400, 0x1A00, 0x1F50, 0x2000, 0x5FFF,
                                            0x6000, 0x6404, 0x9FFF, 0xA000, 0xFFFF, 0 };
    std::string text = "[DeviceInfo]\nVendorName=" + std::string(input.line()) + "\n";
    std::string sections;
    for (const char* const list : lists) {
        const unsigned objects = input.byte() % 6;
        text += "[" + std::string(list) + "]\nSupportedObjects=" + std::to_string(objects) + "\n";
        for (unsigned object = 1; object <= objects; ++object) {
            const unsigned which = input.byte();
            const unsigned index = which < 0xF0 ? indexes[which % std::size(indexes)] : input.word();
            text += std::to_string(object) + "=0x" + hexadecimal(index) + "\n";
            sections += section(index, input);
        }
    }
    return text + sections + std::string(input.rest());
}

/// The document and what its widgets show.
class CDocument
{
public:
    explicit CDocument(CMDIWindow& window)
        : m_window(window), m_tree(*window.findChild<QTreeWidget*>(QStringLiteral("object dictionary list view")))
    {
    }

    /// Every item: pressed, or hit by the Return key.
    void pressAll(const CCANopen& dictionary)
    {
        require(m_tree.topLevelItemCount() == 1);
        press(m_tree.topLevelItem(0), std::nullopt, dictionary);
        require(m_objects == dictionary.m_objectArray.size());
    }

private:
    QString field(const char* name) const
    {
        return m_window.findChild<QLineEdit*>(QLatin1String(name) + QLatin1String(" line edit"))->text();
    }
    /// The number before the colon; none for the root and the groups.
    static std::optional<unsigned> numberOf(const QTreeWidgetItem* item)
    {
        const QString text = item->text(0);
        const qsizetype colon = text.indexOf(QLatin1String(": "));
        bool isNumber = false;
        const unsigned number = text.left(std::max<qsizetype>(colon, 0)).trimmed().toUInt(&isNumber, 16);
        return isNumber ? std::optional(number) : std::nullopt;
    }
    /// A press on an item without a name selects nothing, and those below it have no object.
    static bool hasName(const QTreeWidgetItem* item)
    {
        const QByteArray text = item->text(0).toUtf8();
        const std::string name = text.constData() + text.indexOf(": ") + 2;
        return name.find_first_not_of(" \t\n\v\f\r") != std::string::npos;
    }
    void press(QTreeWidgetItem* item, std::optional<unsigned> index, const CCANopen& dictionary)
    {
        m_tree.setCurrentItem(item);
        const auto number = numberOf(item);
        if ((m_pressed++ & 1) != 0)
            m_window.returnKeyPressed(item);
        else
            m_window.mouseLeftPressed(item);
        if (number && !index)
            ++m_objects;
        if (number && !index && hasName(item))
            showsObject(*number, item->childCount() > 0 ? std::nullopt : std::optional(0U), dictionary);
        else if (number && index && hasName(item) && hasName(item->parent()))
            showsObject(*index, *number, dictionary);
        for (int place = 0; place < item->childCount(); ++place)
            press(item->child(place), index ? index : number, dictionary);
    }
    void showsObject(unsigned index, std::optional<unsigned> subIndex, const CCANopen& dictionary) const
    {
        const int place = dictionary.find(static_cast<unsigned short>(index));
        require(place >= 0);
        const CCANopenObject& object = *dictionary.m_objectArray[size_t(place)];
        // Index 0 and sub-index FFh stand for none: the entry FFh shows with its object.
        if (index == 0 || (subIndex.value_or(0xFF) == 0xFF && object.find(0xFF) >= 0))
            return;
        require(field("object name") == object.getName());
        require(field("object code") == CCANopenObject::getClassByIndex(object.getClass()));
        require(field("object data type") == CCANopenObject::getDataTypeByIndex(object.getDataType()));
        const int entryPlace = subIndex ? object.find(static_cast<unsigned char>(*subIndex)) : -1;
        if (entryPlace < 0)
            return require(field("parameter name").isEmpty() && field("value range").isEmpty());
        const CCANopenObjectEntry& entry = *object.m_objectEntryArray[size_t(entryPlace)];
        require(field("parameter name") == entry.getName());
        require(field("parameter data type") == CCANopenObjectEntry::getDataTypeByIndex(entry.getDataType()));
        require(field("access type") == CCANopenObjectEntry::getAccessByIndex(entry.getAccess()));
        require(field("value range") == entry.getValueRange());
        require(field("default value") == entry.getDefaultValue());
    }

    CMDIWindow& m_window;
    QTreeWidget& m_tree;
    unsigned m_pressed = 0;
    size_t m_objects = 0;
};

/// For the address sanitizer: the library of the fonts keeps what it has read, since the application never ends.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig";
}

/// The program, without its main window; its message boxes are accepted.
struct tProgram {
    int count = 1;
    char name[7] = "fuzzer";
    char* arguments[2] = { name, nullptr };
    CTempSettings settings;
    QApplication application;
    CBoxCatcher boxes;

    tProgram() : application((qputenv("QT_QPA_PLATFORM", "offscreen"), count), arguments) {}
};

static void closeDialog()
{
    if (QWidget* dialog = QApplication::activeModalWidget())
        dialog->close();
}

static void useWindow(CMDIWindow& window, CBoxCatcher& boxes, bool asksDevice)
{
    boxes.clear();
    window.buttonOctClicked();
    window.buttonReadClicked();
    window.buttonSendClicked();
    window.buttonHexClicked();
    require(boxes.count() <= 2); // off-line: nothing is read or sent
    if (asksDevice) {
        QTimer::singleShot(0, &window, &closeDialog);
        window.showDeviceInfo();
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static auto* const program = new tProgram; // never destroyed: Qt's libraries may be gone first
    CFuzzInput input(data, size);
    const uint8_t flags = input.byte();
    const std::string sheet = (flags & 1) != 0 ? std::string(input.rest()) : sheetOf(input);
    const CMemoryFile file(reinterpret_cast<const uint8_t*>(sheet.data()), sheet.size());
    CCANopen dictionary;
    const bool isSheet = CCANopenReader(&dictionary, CCANopen::typeEDS).load(file.name()) != 0;

    program->boxes.clear();
    CMDIWindow window;
    if ((flags & 6) == 6)
        window.show();
    const bool isOpen = window.openDocument(QString::fromLatin1(file.name()), nullptr);
    require(isOpen == isSheet && program->boxes.count() == (isOpen ? 0 : 1));
    if (!isOpen)
        return 0;
    CDocument(window).pressAll(dictionary);
    useWindow(window, program->boxes, (flags & 0x38) == 0x38);
    return 0;
}
