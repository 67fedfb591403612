// Whether two texts of data sheets mean the same value.
// SPDX-License-Identifier: MIT
#include "sheets/SameValue.h"

#include "dic/ValueTypes.h"

namespace
{

bool isSameForNode(const QString& textA, tValueType a, const QString& textB, tValueType b, unsigned nodeId)
{
    const auto valueA = valueFromText(textA, a, nodeId);
    const auto valueB = valueFromText(textB, b, nodeId);
    if (!valueA || !valueB)
        return false;
    if (a.kind == kindReal && b.kind == kindReal && a.width != b.width)
        return !(realOf(*valueA) < realOf(*valueB)) && !(realOf(*valueB) < realOf(*valueA));
    if (!isNumeric(a) || !isNumeric(b))
        return a.kind == b.kind && valueA == valueB;
    const quint64 bitsA = numberOf(*valueA, a);
    const quint64 bitsB = numberOf(*valueB, b);
    const bool isNegativeA = a.kind == kindSigned && bitsA >> 63 != 0;
    const bool isNegativeB = b.kind == kindSigned && bitsB >> 63 != 0;
    return bitsA == bitsB && isNegativeA == isNegativeB;
}

} // namespace

bool isSameValue(const QString& textA, int dataTypeA, const QString& textB, int dataTypeB)
{
    if (textA == textB)
        return true;
    const tValueType a = valueType(dataTypeA);
    const tValueType b = valueType(dataTypeB);
    // Sums with the node-id are equal when they are so for two nodes.
    return isSameForNode(textA, a, textB, b, 0) && isSameForNode(textA, a, textB, b, 1);
}
