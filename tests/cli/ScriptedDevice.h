// A device behind the scripted gateway: its values, what was written into it, and what a careful device refuses.
// SPDX-License-Identifier: MIT
#pragma once

#include "FakeGateway.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <mutex>
#include <optional>

/// Node 5 unless a test sees to it that other nodes are the same. Refuses, as CiA 301 says, changes of PDO parameters
/// that are in use, of mappings that are not empty, and of other COB-IDs that are in use; PDO parameters altogether
/// unless it is in pre-operational.
class CScriptedDevice
{
public:
    /// Answers in place of the device: "OK", "ERROR: 0x06020000"; an empty text is silence, none lets the device
    /// answer. `step` is as in `steps()`. Runs in the gateway's thread.
    using tHook = std::function<std::optional<QByteArray>(const QString& step)>;

    CScriptedDevice();

    QString interface() const { return "127.0.0.1:" + QString::number(m_gateway.port()); }
    /// Sets a value, its bytes in hexadecimal, as on the bus.
    void set(unsigned index, unsigned subIndex, const char* bytes);
    QByteArray value(unsigned index, unsigned subIndex);
    void setHook(const tHook& hook);
    void setOperational();

    /// What was done to the device, without reading: "1017 = E8 03", "1800:1 = 85 01 00 80", "preoperational", "start".
    QStringList steps();
    /// Waits until a step was taken that is written so.
    bool awaitStep(const QString& step);

private:
    tGatewayAnswer answer(const std::string& line);
    QByteArray command(const QString& verb);
    QByteArray read(unsigned key, const QString& step);
    QByteArray write(unsigned key, const QByteArray& bytes, const QString& step);
    quint32 refusal(unsigned key, const QByteArray& bytes) const;
    quint32 number(unsigned key) const;

    std::mutex m_mutex; // guards all that follows
    std::map<unsigned, QByteArray> m_values;
    QStringList m_steps;
    tHook m_hook;
    bool m_preOperational = true;
    CFakeGateway m_gateway;
};
