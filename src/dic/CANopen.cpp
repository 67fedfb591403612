// The object dictionary: look-up of objects and the names of file states.
// SPDX-License-Identifier: MIT
#include "dic/CANopen.h"

#include "dic/Find.h"
#include "dic/Names.h"
#include "dic/Utf8Text.h"

namespace
{

constexpr auto states = stateNames<CCANopen>(matchWordNoCase);

} // namespace

int CCANopen::find(unsigned short index) const
{
    return positionOf(m_objectArray, &CCANopenObject::getIndex, index);
}

int CCANopen::find(const char* name) const
{
    return positionOf(m_objectArray, &CCANopenObject::getName, textFromUtf8(name));
}

int CCANopen::getStateByName(const char* name)
{
    return valueByName(states, name, stateInvalid);
}

QString CCANopen::getStateByIndex(TFileState state)
{
    return nameByValue(states, state, "Invalid");
}

const char* CCANopen::version()
{
    return "$Rev: 1 $";
}
