// Makes each call of an operation on files fail, one after the other.
// SPDX-License-Identifier: MIT
#pragma once

#include "FailingCalls.h"

#include <QDir>
#include <QTest>

#include <cerrno>
#include <cstring>
#include <functional>
#include <map>
#include <string>

namespace faultRun
{

struct tFault {
    int nth = 0; ///< 0: none
    std::string call;
    int error = 0;
    tFailure how = failOnce;

    QByteArray text() const
    {
        return QByteArray::fromStdString(call) + ", call " + QByteArray::number(nth) + ", " +
               (how == failShort ? "short" : strerrorname_np(error)) + (how == failForEver ? " from then on" : "");
    }
};

/// What each call may fail with. After EINTR, a call is repeated, so that it fails once only.
inline const std::map<std::string, QList<int>> errorsOfCalls = {
    { "access", { EACCES, EIO } },
    { "chmod", { EPERM, EIO } },
    { "close", { EINTR, EIO, ENOSPC } },
    { "fchmod", { EPERM } },
    { "fcntl", { ENOLCK, EINVAL } },
    { "fdatasync", { EIO, ENOSPC } },
    { "flock", { ENOLCK, EWOULDBLOCK } },
    { "fstat64", { EIO } },
    { "fsync", { EINTR, EINVAL, EIO, ENOSPC } },
    { "ftruncate64", { EIO, ENOSPC } },
    { "link", { EPERM, ENOSPC } },
    { "linkat", { EPERM, ENOSPC } },
    { "lseek64", { EINVAL, EIO } },
    { "lstat64", { EACCES, EIO } },
    { "mkdir", { EACCES, ENOSPC } },
    { "mmap64", { ENODEV, ENOMEM } },
    { "open64", { EACCES, EINTR, EIO, EMFILE, ENFILE, ENOSPC } },
    { "read", { EINTR, EIO } },
    { "readlink", { EACCES, EIO } },
    { "realpath", { EACCES, ENOMEM } },
    { "rename", { EACCES, EIO, ENOSPC } },
    { "renameat2", { EACCES, EIO, ENOSPC } },
    { "stat", { EACCES, EIO } },
    { "stat64", { EACCES, EIO } },
    { "statx", { EACCES, EIO, ENOMEM } },
    { "unlink", { EACCES, EIO } },
    { "write", { EDQUOT, EFBIG, EINTR, EIO, ENOSPC } },
};

/// All faults of an operation that has made these calls.
inline QList<tFault> faultsOf(const std::vector<std::string>& calls)
{
    QList<tFault> faults;
    for (std::size_t at = 0; at < calls.size(); ++at) {
        const auto nth = static_cast<int>(at + 1);
        const auto errors = errorsOfCalls.find(calls[at]);
        if (errors == errorsOfCalls.end())
            qFatal("%s is in no table", calls[at].c_str());
        for (const int error : errors->second) {
            faults.append({ nth, calls[at], error, failOnce });
            if (error != EINTR)
                faults.append({ nth, calls[at], error, failForEver });
        }
        if (calls[at] == "read" || calls[at] == "write")
            faults.append({ nth, calls[at], 0, failShort });
    }
    return faults;
}

inline qsizetype descriptorsOfProcess()
{
    return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

/// Lets the operation run without a fault, then once for each fault. `prepare` comes before each run, `check` after it,
/// with the fault; it says what is wrong. The program is linked with velmora_failing_calls, and the files are below
/// `folder`. @return how many calls were failed; -1 after a problem, which is a failure of the test
template <typename Prepare, typename Operation, typename Check>
int failEach(const QString& folder, Prepare prepare, Operation operation, Check check)
{
    int failed = 0;
    failing_calls_watch(qPrintable(folder));
    const auto runWith = [&](const tFault& fault) {
        failing_calls_arm(0, 0, failOnce);
        prepare();
        const auto before = descriptorsOfProcess();
        failing_calls_arm(fault.nth, fault.error, fault.how);
        operation();
        failed += failing_calls_failed();
        std::vector<std::string> calls;
        for (int n = 1; n <= failing_calls_count(); ++n)
            calls.emplace_back(failing_calls_name(n));
        failing_calls_arm(0, 0, failOnce);
        QString problem = check(fault);
        if (descriptorsOfProcess() != before)
            problem += " descriptors stay open";
        if (!problem.isEmpty())
            QTest::qFail((fault.text() + ": " + problem.toUtf8()).constData(), __FILE__, __LINE__);
        return problem.isEmpty() ? calls : std::vector<std::string>();
    };
    const std::vector<std::string> calls = runWith({ 0, "none", 0, failOnce });
    if (calls.empty()) {
        QTest::qFail("no call was seen", __FILE__, __LINE__);
        return -1;
    }
    for (const tFault& fault : faultsOf(calls))
        if (runWith(fault).empty())
            return -1;
    failing_calls_watch("");
    return failed;
}

} // namespace faultRun
