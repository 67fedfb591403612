// Loads any bytes as a data sheet and reads everything that was created from them.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"
#include "MemoryFile.h"

#include "dic/CANopen.h"
#include "dic/CANopenReader.h"

static void inspect(const CCANopen& dictionary)
{
    using size_type = decltype(dictionary.m_objectArray.size());
    for (size_type position = 0; position < dictionary.m_objectArray.size(); ++position) {
        const auto& object = dictionary.m_objectArray[position];
        const int first = dictionary.find(object->getIndex());
        require(first >= 0 && size_type(first) <= position);
        require(!object->getClassByIndex(object->getClass()).isEmpty());
        require(object->getProfileNumber().isEmpty() == object->getProfile(true).isEmpty());
        using entry_size = decltype(object->m_objectEntryArray.size());
        for (entry_size number = 0; number < object->m_objectEntryArray.size(); ++number) {
            const auto& entry = object->m_objectEntryArray[number];
            require(object->find(entry->getSubindex()) >= 0);
            require(!entry->getValueRange().isEmpty());
            require(!entry->getAccessByIndex(entry->getAccess()).isEmpty());
        }
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const CMemoryFile file(data, size);
    CCANopen dictionary;
    const int result = CCANopenReader(&dictionary, CCANopen::typeEDS).load(file.name());
    require(result == 0 || result == 1);
    // Searching for each index is quadratic in the number of objects: a few are enough.
    if (size < 4096)
        inspect(dictionary);
    return 0;
}
