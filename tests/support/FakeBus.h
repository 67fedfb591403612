// A fake CAN bus that answers the system calls of the CAN controller, with a script of frames and a clock.
// SPDX-License-Identifier: MIT
#pragma once

#include "FakeBusRequest.h"
#include "cop/can_ctrl.h"

#include <QStringList>

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// The linker's --wrap leads socket, fcntl, bind, ioctl, write, read, select, close, gettimeofday and usleep here (link
/// `velmora_fake_bus`). While an object lives, its thread's calls reach this bus; one object at a time. Nothing is open
/// at first; the end of the object calls can_exit().
///
///     CFakeBus bus;
///     QCOMPARE(cop_init(-1, &bus.param, 0), 0);
///     bus.expect(0x605, "40 08 10 00 00 00 00 00").answer(0x585, "41 08 10 00 03 00 00 00");
///     bus.expect(0x605, "60 00 00 00 00 00 00 00").after(30).answer(0x585, "09 41 42 43 00 00 00 00"); // 30 ms later
///     bus.expect(0x605, "80 00 00 00 00 00 00 00");                                                      // silence
///     ...
///     QVERIFY(bus.finished());
///
/// Frames read as "605: 40 08 10": identifier (3 digits, 8 with flags or beyond 7FF), then the data. What a frame
/// carries after its data is shown, too, if it is not zero: "605: 40 08 | 01 00 00 00 00 00". Identifiers given here
/// may carry the flags CAN_EFF_FLAG 0x80000000, CAN_RTR_FLAG 0x40000000 and CAN_ERR_FLAG 0x20000000.
class CFakeBus
{
public:
    enum ECall { Socket, Fcntl, Bind, Ioctl, Write, Read, Select, Close, Gettimeofday, Usleep };

    CFakeBus();
    ~CFakeBus();
    CFakeBus(const CFakeBus&) = delete;
    CFakeBus& operator=(const CFakeBus&) = delete;

    _can_param param = { "can0", 29, 3, 1 };                   ///< for can_init and cop_init
    std::map<std::string, int> interfaces = { { "can0", 7 } }; ///< those that exist, with their index
    int lowestDescriptor = 0;                                  ///< of the sockets that socket() opens

    // The script. Each frame written must be the next one expected; only then its answers go onto the wire.

    /// `data` are up to eight bytes in hexadecimal.
    CFakeBusRequest& expect(uint32_t id, const char* data);
    /// In place of the script: takes each frame that is written. Frames and calls are not recorded then.
    std::function<void(const can_frame&)> responder;
    /// True if exactly the expected frames were written and all calls were valid; otherwise warns with the reasons.
    bool finished();

    // Frames of others. They are lost while no socket is bound. Bytes after the data are 0xEE.

    void inject(uint32_t id, const char* data); ///< now
    void injectAfter(int milliseconds, uint32_t id, const char* data);
    void injectLength(uint32_t id, int length, const char* data); ///< with any data length code, as if malformed
    void injectBytes(const QByteArray& bytes, int afterMilliseconds = 0); ///< what read() will deliver, of any size
    int waiting() const;                                                  ///< frames that read() could deliver now

    /// Makes the `nth` call from now on (1: the next one) and the `times` - 1 after it fail with `error`. A failing
    /// read also makes the socket readable, as an interface that goes down does. close() still releases the descriptor.
    void fail(ECall call, int error, int nth = 1, int times = 1);
    /// Makes the next write() take only `bytes` of the frame; nothing is sent.
    void shortWrite(int bytes) { shorten(Write, bytes); }
    /// The same for the `nth` write() from now on, or a read(): the rest of its frame is lost.
    void shorten(ECall call, int bytes, int nth = 1);
    void heal() { m_failures.clear(); } ///< no call fails from now on
    std::function<void(ECall)> before;  ///< called at the start of each call, which count() includes

    // The clock: moves by usleep(), by `step` at each gettimeofday() and select(), and here.

    int step = 10; ///< µs
    void advance(int milliseconds) { m_now += milliseconds * qint64(1000); }
    qint64 milliseconds() const; ///< since the bus was made

    // What has happened.

    QStringList written() const { return m_written; } ///< the frames, in order
    /// All calls in order but fcntl, select and gettimeofday, which are counted only:
    /// socket(29, 3, 1)   ioctl("can0", -1) with the index preset   bind(29, 7, 16) with family, index and length
    /// write(605: 40 08)   read()   usleep(100000)   close()
    QStringList calls() const { return m_calls; }
    int count(ECall call) const { return m_count[call]; } ///< calls so far, the failed ones included
    int descriptors() const;                              ///< sockets that are open
    static int descriptorsOfProcess();                    ///< entries in /proc/self/fd

private:
    friend struct CFakeBusCalls;
    static inline thread_local CFakeBus* current = nullptr;
    struct tSocket {
        int family;
        bool bound;
        bool open;
    };
    struct tFailure {
        ECall call;
        int nth;
        int times;
        int error;
        int result;
    };

    const tFailure* failure(ECall call);
    bool readable() const;
    void play(const QString& frame);
    void put(qint64 delay, const QByteArray& bytes);
    void problem(const QString& text);

    qint64 m_start;
    qint64 m_now;
    std::map<int, tSocket> m_sockets;
    std::multimap<qint64, QByteArray> m_wire; // by time of arrival
    std::deque<CFakeBusRequest> m_script;
    size_t m_played = 0;
    std::vector<tFailure> m_failures;
    tFailure m_failing = {};
    int m_count[Usleep + 1] = {};
    QStringList m_calls;
    QStringList m_written;
    QStringList m_problems;
};
