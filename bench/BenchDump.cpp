// velmora-cli dump, compared with a loop of as many reads of the facade.
// SPDX-License-Identifier: MIT
#include "CANopenAccess.h"
#include "LineServer.h"
#include "Pair.h"
#include "network/Dump.h"

#include <QTemporaryDir>

#include <cstdio>
#include <memory>
#include <stdexcept>

#include <netinet/in.h>

namespace
{

constexpr int entries = 1000;
constexpr BYTE node = 5;
constexpr WORD firstIndex = 0x2000;

// A sheet of variables of 32 bits.
QByteArray sheetText()
{
    QByteArray list = "[ManufacturerObjects]\nSupportedObjects=" + QByteArray::number(entries) + '\n';
    QByteArray objects;
    for (int n = 0; n < entries; ++n) {
        const QByteArray index = QByteArray::number(firstIndex + n, 16);
        list += QByteArray::number(n + 1) + "=0x" + index + '\n';
        objects += '[' + index + "]\nParameterName=Entry " + index +
                   "\nObjectType=7\nDataType=7\nAccessType=rw\nDefaultValue=1\n";
    }
    return list + objects;
}

class CDumpPair : public CPair
{
public:
    CDumpPair()
    {
        QFile sheet(m_folder.filePath(QStringLiteral("sheet.eds")));
        if (!sheet.open(QIODevice::WriteOnly) || sheet.write(sheetText()) < 0)
            throw std::runtime_error("no file can be written");
        m_options.network.interface = QStringLiteral("127.0.0.1:%1").arg(m_server.port());
        m_options.node = node;
        m_options.sheet = sheet.fileName();
        m_options.format = dumpCsv;
    }

    double ours() override
    {
        return secondsOf([this] { return dumpDevice(m_options, m_console) == 0; });
    }
    double bare() override
    {
        return secondsOf([this] {
            CCANopenAccess access;
            _top_param gateway = { INADDR_LOOPBACK, m_server.port(), { 1, 1, 255 } };
            if (!access.initialize(700, -1, &gateway, 0))
                return false;
            for (int n = 0; n < entries; ++n) {
                BYTE data[8] = {};
                short length = 0;
                if (!access.read(node, static_cast<WORD>(firstIndex + n), 0, &length, data, sizeof data) || length != 4)
                    return false;
            }
            return true;
        });
    }

private:
    const COneProcessor m_processor;
    CLineServer m_server{ "eFY0Eg==" };
    QTemporaryDir m_folder;
    tDumpOptions m_options;
    const std::unique_ptr<FILE, int (*)(FILE*)> m_nowhere{ std::fopen("/dev/null", "w"), &std::fclose };
    CConsole m_console{ m_nowhere.get() };
};

[[maybe_unused]] const bool added = addPair({ "dump/1000", entries, 5, [] { return std::make_unique<CDumpPair>(); } });

} // namespace
