// One object (index) of the dictionary with its entries, and the names of its enumerations.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/CANopenObjectEntry.h"

#include <QString>

#include <memory>
#include <vector>

class CCANopenObject
{
public:
    // The fields hold whatever number a data sheet gives; the enumerations name the known ones.
    // clang-format off
    enum TObjectClass : int {
        classNULL = 0, classDOMAIN = 2, classDEFTYPE = 5, classDEFSTRUCT = 6, classVAR = 7, classARRAY = 8,
        classRECORD = 9
    };
    enum TObjectType : int {
        typeVoid = 0,           typeBoolean = 1,        typeInteger8 = 2,       typeInteger16 = 3,
        typeInteger32 = 4,      typeUnsigned8 = 5,      typeUnsigned16 = 6,     typeUnsigned32 = 7,
        typeReal32 = 8,         typeVisibleString = 9,  typeOctetString = 10,   typeDate = 11,
        typeTimeOfDay = 12,     typeTimeDifference = 13, typeDomain = 15,       typeInteger24 = 16,
        typeReal64 = 17,        typeInteger40 = 18,     typeInteger48 = 19,     typeInteger56 = 20,
        typeInteger64 = 21,     typeUnsigned24 = 22,    typeUnsigned40 = 24,    typeUnsigned48 = 25,
        typeUnsigned56 = 26,    typeUnsigned64 = 27,    typePDOParameter = 32,  typePDOMapping = 33,
        typeSDOParameter = 34,  typeIdentity = 35
    };
    enum TObjectCategory : int { categoryOptional = 0, categoryMandatory = 1, categoryConditional = 2 };
    enum TObjectState : int { statePublic = 0, stateProtected = 1, statePrivate = 2, stateInvalid = -1 };
    // clang-format on
    /// The profile that defines the object, and where it does so.
    struct tProfile {
        QString m_number, m_version, m_chapter, m_page, m_link;
    };

    CCANopenObject() = default;
    explicit CCANopenObject(unsigned short index) : m_index(index) {}
    Q_DISABLE_COPY_MOVE(CCANopenObject)

    unsigned short getIndex() const { return m_index; }
    QString getName() const { return m_name; }
    TObjectClass getClass() const { return m_class; }
    TObjectType getDataType() const { return m_dataType; }
    TObjectCategory getCategory() const { return m_category; }
    QString getProfileNumber() const { return m_profile.m_number; }
    QString getProfileVersion() const { return m_profile.m_version; }
    QString getProfileChapter() const { return m_profile.m_chapter; }
    QString getProfilePage() const { return m_profile.m_page; }
    QString getProfileLink() const { return m_profile.m_link; }

    // Texts are UTF-8; the numbers of enumerations are not checked.
    void setName(const char* name);
    void setClass(int objectClass) { m_class = static_cast<TObjectClass>(objectClass); }
    void setDataType(int dataType) { m_dataType = static_cast<TObjectType>(dataType); }
    void setCategory(int category) { m_category = static_cast<TObjectCategory>(category); }
    /// Shares the five texts instead of copying them: most objects of a dictionary have the same profile.
    void setProfile(const tProfile& profile) { m_profile = profile; }
    void setProfileNumber(const char* number);
    void setProfileVersion(const char* version);
    void setProfileChapter(const char* chapter);
    void setProfilePage(const char* page);
    void setProfileLink(const char* link);

    bool isCommunicationObject() const;        ///< index 0x1000 to 0x1FFF
    bool isManufacturerSpecificObject() const; ///< index 0x2000 to 0x5FFF
    bool isDeviceProfileObject() const;        ///< index 0x6000 to 0x9FFF
    bool isSingleObject() const;               ///< a variable
    bool isMultipleObject() const;             ///< an array or a record
    bool isStandardDataType() const;           ///< a simple type; some numbers are both standard and complex
    bool isComplexDataType() const;            ///< a structure

    /// Position of the first entry with that sub-index, or -1.
    int find(unsigned char subIndex) const;
    /// Position of the first entry with exactly that name (UTF-8), or -1.
    int find(const char* name) const;

    /// Number, version, page and chapter of the profile, those that are known: "DS-401, V2.1, Page 34, 7.4.2". With
    /// `link` its link follows as an HTML anchor. Empty without a profile number.
    QString getProfile(bool link) const;

    // Names to numbers and back. Names are read in upper or lower case, except those of categories.

    /// "NULL" 0, "DOMAIN" 2, "DEFTYPE" 5, "DEFSTRUCT" 6, "VAR" 7, "ARRAY" 8, "RECORD" 9; 0 for other names.
    static int getClassByName(const char* name);
    /// "NULL" for other numbers.
    static QString getClassByIndex(TObjectClass objectClass);
    /// "void" 0, "Boolean" 1 to "Unsigned64" 27, "PDO CommPar" 32 to "Identity" 35; 0 for other names.
    static int getDataTypeByName(const char* name);
    /// "User-defined Type" for other numbers, 0 included.
    static QString getDataTypeByIndex(TObjectType type);
    /// Any text that begins with "Optional" 0, "Mandatory" 1, "Conditional" 2, in exactly this case; 0 for others.
    static int getCategoryByName(const char* name);
    /// "Optional" for other numbers.
    static QString getCategoryByIndex(TObjectCategory category);
    /// "Public" 0, "Protected" 1, "Private" 2; -1 for other names.
    static int getStateByName(const char* name);
    /// "Invalid" for other numbers.
    static QString getStateByIndex(TObjectState state);

    static const char* version();

private:
    unsigned short m_index = 0;
    QString m_name = QStringLiteral("");
    TObjectClass m_class = classNULL;
    TObjectType m_dataType = typeVoid;
    TObjectCategory m_category = categoryOptional;
    tProfile m_profile;

public:
    /// The entries, owned, none of them null, in the order of creation: a position is not a sub-index.
    std::vector<std::unique_ptr<CCANopenObjectEntry>> m_objectEntryArray;
};
