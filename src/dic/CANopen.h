// The object dictionary of one device, as loaded from a data sheet.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/CANopenDeviceInfo.h"
#include "dic/CANopenObject.h"

#include <QString>

#include <memory>
#include <vector>

/// A plain holder: the reader fills the fields, the windows show them.
class CCANopen
{
public:
    enum TFileType : int { typeEDS = 0, typeDCF = 1, typeXML = 2, typeCOP = 3, typeUnknown = -1 };
    enum TFileState : int { statePublic = 0, stateProtected = 1, statePrivate = 2, stateInvalid = -1 };
    /// Who made the file and when.
    struct tInfo {
        QString m_author = QStringLiteral("");
        QString m_company = QStringLiteral("");
        QString m_revision = QStringLiteral("1.0");
        QString m_date = QStringLiteral("");
        QString m_time = QStringLiteral("");
        QString m_URL = QStringLiteral("");
        QString m_mail = QStringLiteral("");
        QString m_text;
    };

    CCANopen() = default;
    ~CCANopen() { delete m_deviceInfo; }
    Q_DISABLE_COPY_MOVE(CCANopen)

    QString getFileName() const { return m_fileName; }
    TFileState getState() const { return m_fileState; }
    QString getAuthor() const { return m_info.m_author; }
    QString getCompany() const { return m_info.m_company; }
    QString getRevision() const { return m_info.m_revision; }
    QString getDate() const { return m_info.m_date; }
    QString getTime() const { return m_info.m_time; }
    QString getURL() const { return m_info.m_URL; }
    QString getMail() const { return m_info.m_mail; }

    /// Position of the first object with that index, or -1.
    int find(unsigned short index) const;
    /// Position of the first object with exactly that name (UTF-8), or -1.
    int find(const char* name) const;

    /// "Public" 0, "Protected" 1, "Private" 2, in upper or lower case; -1 for other names.
    static int getStateByName(const char* name);
    /// "Invalid" for other numbers.
    static QString getStateByIndex(TFileState state);

    static const char* version();

    QString m_fileName = QStringLiteral(""); ///< the path that was loaded
    TFileType m_fileType = typeUnknown;
    TFileState m_fileState = statePublic;
    QString m_fileTitle = QStringLiteral("CANopen Objektverzeichnis"); // sic
    QString m_fileVersion = QStringLiteral("1.0");
    tInfo m_info;

    /// Null until the reader has found the file's device information. Owned: created with `new`, deleted with the
    /// dictionary; whoever replaces it deletes it first.
    CCANopenDeviceInfo* m_deviceInfo = nullptr;

    /// The objects, owned, none of them null, in the order of creation.
    std::vector<std::unique_ptr<CCANopenObject>> m_objectArray;
};
