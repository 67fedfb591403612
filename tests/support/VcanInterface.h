// A virtual CAN interface of the test, which it may take down and remove.
// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QStringList>

#include <net/if.h>

/// Exists and is up from construction to destruction. Needs the permission to create interfaces, which
/// scripts/vcan/with-vcan gives where it creates vcan0 itself.
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

    static const char* problem()
    {
        return "No interface can be created here. Run this test as VELMORA_VCAN=uml scripts/vcan/with-vcan COMMAND.";
    }

private:
    // Runs "ip link" by busybox or ip, whichever is installed.
    static bool link(const QStringList& arguments)
    {
        return QProcess::execute("busybox", QStringList{ "ip", "link" } + arguments) == 0 ||
               QProcess::execute("ip", QStringList{ "link" } + arguments) == 0;
    }

    QByteArray m_name;
};
