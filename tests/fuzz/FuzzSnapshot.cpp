// Reads any bytes as dumps: they are refused with a reason, or read so that what is written of them reads the same.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"

#include "console/ExitStatus.h"
#include "sheets/SnapshotReader.h"
#include "sheets/SnapshotText.h"

using tRead = tSnapshot (*)(const QByteArray& text, const QString& fileName);
using tWrite = QByteArray (*)(const tSnapshot& snapshot);

static void readBack(const QByteArray& text, tRead read, tWrite write)
{
    QByteArray written;
    try {
        written = write(read(text, QStringLiteral("fuzz")));
    } catch (const tEnd& end) {
        require(end.status == exitUsage && end.message.startsWith(QLatin1String("not a valid dump: fuzz, ")));
        return;
    }
    require(write(read(written, QStringLiteral("written"))) == written);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    readBack(text, snapshotFromCsv, snapshotAsCsv);
    readBack(text, snapshotFromJson, snapshotAsJson);
    return 0;
}
