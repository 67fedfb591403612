// One entry (sub-index) of an object of the dictionary, with the names of its enumerations.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>

class CCANopenObjectEntry
{
public:
    // The fields hold whatever number a data sheet gives; the enumerations name the known ones.
    // clang-format off
    enum TEntryType : int {
        typeVoid = 0,           typeBoolean = 1,        typeInteger8 = 2,       typeInteger16 = 3,
        typeInteger32 = 4,      typeUnsigned8 = 5,      typeUnsigned16 = 6,     typeUnsigned32 = 7,
        typeReal32 = 8,         typeVisibleString = 9,  typeOctetString = 10,   typeDate = 11,
        typeTimeOfDay = 12,     typeTimeDifference = 13, typeDomain = 15,       typeInteger24 = 16,
        typeReal64 = 17,        typeInteger40 = 18,     typeInteger48 = 19,     typeInteger56 = 20,
        typeInteger64 = 21,     typeUnsigned24 = 22,    typeUnsigned40 = 24,    typeUnsigned48 = 25,
        typeUnsigned56 = 26,    typeUnsigned64 = 27,    typePDOParameter = 32,  typePDOMapping = 33,
        typeSDOParameter = 34,  typeIdentity = 35
    };
    enum TEntryCategory : int { categoryOptional = 0, categoryMandatory = 1, categoryConditional = 2 };
    enum TEntryAccess : int {
        accessCONST = 0, accessRO = 1, accessWO = 2, accessRW = 3, accessRWR = 4, accessRWW = 5
    };
    enum TEntryMapping : int { mappingNo = 0, mappingDefault = 1, mappingOptional = 2 };
    enum TEntryStorable : int { storableNo = 0, storableYes = 1, storableAuto = 2 };
    enum TEntryState : int { statePublic = 0, stateProtected = 1, statePrivate = 2, stateInvalid = -1 };
    // clang-format on

    CCANopenObjectEntry() = default;
    CCANopenObjectEntry(unsigned short index, unsigned char subIndex) : m_index(index), m_subIndex(subIndex) {}

    unsigned short getIndex() const { return m_index; }
    unsigned char getSubindex() const { return m_subIndex; }
    QString getName() const { return m_name; }
    TEntryType getDataType() const { return m_dataType; }
    TEntryCategory getCategory() const { return m_category; }
    TEntryAccess getAccess() const { return m_access; }
    TEntryMapping getPDOMapping() const { return m_PDOMapping; }
    QString getLowLimit() const { return m_lowLimit; }
    QString getHighLimit() const { return m_highLimit; }
    QString getDefaultValue() const { return m_defaultValue; }
    std::uint32_t getObjectFlags() const { return m_objectFlags; }

    // Texts are UTF-8 and kept as they are; the numbers of enumerations are not checked.
    void setName(const char* name);
    void setDataType(int dataType) { m_dataType = static_cast<TEntryType>(dataType); }
    void setCategory(int category) { m_category = static_cast<TEntryCategory>(category); }
    void setAccess(int access) { m_access = static_cast<TEntryAccess>(access); }
    void setPDOMapping(int mapping) { m_PDOMapping = static_cast<TEntryMapping>(mapping); }
    void setLowLimit(const char* lowLimit);
    void setHighLimit(const char* highLimit);
    void setDefaultValue(const char* defaultValue);
    // The same with texts that are shared instead of copied: most of a dictionary are the same few words.
    void setName(const QString& name) { m_name = name; }
    void setLowLimit(const QString& lowLimit) { m_lowLimit = lowLimit; }
    void setHighLimit(const QString& highLimit) { m_highLimit = highLimit; }
    void setDefaultValue(const QString& defaultValue) { m_defaultValue = defaultValue; }
    void setObjectFlags(std::uint32_t objectFlags) { m_objectFlags = objectFlags; }

    /// The limits as one text: "0,..,127", "0,..." without an upper limit, "...," without a lower one; without limits
    /// the name of the data type.
    QString getValueRange() const;

    // Names to numbers and back. Names are read in upper or lower case; category, mapping and storable also accept any
    // text that begins with one of their names.

    /// "Boolean" 1 to "Unsigned64" 27; 0 for other names.
    static int getDataTypeByName(const char* name);
    /// "User-defined Type" for other numbers, 0 and 32 to 35 included.
    static QString getDataTypeByIndex(TEntryType type);
    /// "Optional" 0, "Mandatory" 1, "Conditional" 2; 0 for other names.
    static int getCategoryByName(const char* name);
    /// "Optional" for other numbers.
    static QString getCategoryByIndex(TEntryCategory category);
    /// "CONST" 0, "RO" 1, "WO" 2, "RW" 3, "RWR" 4, "RWW" 5; 0 for other names.
    static int getAccessByName(const char* name);
    /// The empty text for other numbers.
    static QString getAccessByIndex(TEntryAccess access);
    /// "No" or "0" 0, "Default", "Yes" or "1" 1, "Optional" or "Possible" 2; 0 for other names.
    static int getMappingByName(const char* name);
    /// "Default", "Optional", else "No".
    static QString getMappingByIndex(TEntryMapping mapping);
    /// "No" or "0" 0, "Yes" or "1" 1, "Auto" 2; 0 for other names.
    static int getStorableByName(const char* name);
    /// "Yes", "Auto", else "No".
    static QString getStorableByIndex(TEntryStorable storable);
    /// "Public" 0, "Protected" 1, "Private" 2; -1 for other names.
    static int getStateByName(const char* name);
    /// "Invalid" for other numbers.
    static QString getStateByIndex(TEntryState state);

    static const char* version();

private:
    unsigned short m_index = 0;
    unsigned char m_subIndex = 0;
    QString m_name = QStringLiteral("");
    TEntryType m_dataType = typeVoid;
    TEntryCategory m_category = categoryOptional;
    TEntryAccess m_access = accessCONST;
    TEntryMapping m_PDOMapping = mappingNo;
    QString m_lowLimit = QStringLiteral(""); // limits and default value as written in the data sheet
    QString m_highLimit = QStringLiteral("");
    QString m_defaultValue = QStringLiteral("");
    std::uint32_t m_objectFlags = 0;
};
