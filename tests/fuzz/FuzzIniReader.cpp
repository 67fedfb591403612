// Gives any bytes to the tokenizer and checks what must hold for every item that it returns.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"
#include "MemoryFile.h"

#include "dic/IniReader.h"

static bool isName(const QString& name)
{
    for (const QChar character : name)
        if (!character.isLetterOrNumber() && character != QLatin1Char('_'))
            return false;
    return !name.isEmpty() && name != QLatin1String("_");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const CMemoryFile file(data, size);
    CIniReader reader(file.name());
    require(reader.getLineOfError() == 0);
    int result = reader.moveToNextItem();
    for (bool first = true; result == 1 || result == 2; first = false) {
        require(!first || result == 1);
        require(isName(reader.getSection()) && isName(reader.getKeyName()));
        require(reader.getKeyValue() == reader.getKeyValue().trimmed());
        require(!reader.getKeyValue().contains(QLatin1Char(';')));
        require(size_t(reader.getLineOfError()) <= size);
        result = reader.moveToNextItem();
    }
    require(result == 0 || result == -1);
    return 0;
}
