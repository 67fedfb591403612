// What the rows about loading a data sheet do, and what they are compared with.
// SPDX-License-Identifier: MIT
#include "LoadWork.h"

#include "dic/CANopen.h"
#include "dic/CANopenReader.h"

#include <fstream>
#include <string>

bool load(CCANopen& dictionary, const char* file)
{
    return CCANopenReader(&dictionary, CCANopen::typeEDS).load(file) == 1;
}

bool loadAndFree(const char* file)
{
    CCANopen dictionary;
    return load(dictionary, file);
}

bool readLines(const char* file)
{
    std::ifstream stream(file);
    std::size_t characters = 0;
    for (std::string line; std::getline(stream, line);)
        characters += line.size();
    return characters > 0;
}
