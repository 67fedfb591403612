// A virtual CAN interface of the test's own, which it may take down and remove.
// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QStringList>

#include <net/if.h>

/// There and up from construction to destruction. Needs the right to make interfaces, which scripts/vcan/with-vcan gives where
/// it makes vcan0 itself.
class CVcanInterface
{
public:
    explicit CVcanInterface(const char* interface = "vcantest") : m_name(interface) { create(); }
    ~CVcanInterface()
    {
        if (exists())
            remove();
    }
    CVcanInterface(const CVcanInterface&) = delete;
    CVcanInterface& operator=(const CVcanInterface&) = delete;

    const char* name() const { return m_name.constData(); }
    bool exists() const { return if_nametoindex(name()) != 0; }
    bool create() const { return link({ "add", m_name, "type", "vcan" }) && up(); }
    bool remove() const { return link({ "del", m_name }); }
    bool up() const { return link({ "set", m_name, "up" }); }
    bool down() const { return link({ "set", m_name, "down" }); }

    static const char* trouble()
    {
        return "No interface can be made here: run the test where VELMORA_VCAN=uml scripts/vcan/with-vcan COMMAND "
               "does.";
    }

private:
    // By whichever of the programs is there.
    static bool link(const QStringList& arguments)
    {
        return QProcess::execute("busybox", QStringList{ "ip", "link" } + arguments) == 0 ||
               QProcess::execute("ip", QStringList{ "link" } + arguments) == 0;
    }

    QByteArray m_name;
};
