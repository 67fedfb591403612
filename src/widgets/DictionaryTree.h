// The tree of a dictionary: its groups and items. An item is only a text, from which its object or entry is read back.
// SPDX-License-Identifier: MIT
#pragma once

class CCANopen;
class QString;
class QTreeWidget;
class QTreeWidgetItem;

/// The sub-index that stands for no entry.
inline constexpr unsigned char noSubIndex = 255;

namespace dictionaryTree
{

/// What object or entry an item stands for. Index 0: no object.
struct tSelection {
    unsigned short index = 0;
    unsigned char subIndex = noSubIndex;
};

/// Shows the objects of `dictionary` in place of what `view` holds, grouped by profile number and chapter below one
/// root item with `rootText`. Root and communication profile are open.
void populate(QTreeWidget* view, const QString& rootText, const CCANopen& dictionary);

/// Reads an item's text and its parent's: "1018: Identity Object" is object 0x1018, " 1: Vendor Id" below it is its
/// entry 1. An object without child items stands for its entry 0. Groups, and objects without a name, are no selection.
tSelection selectionOf(const QTreeWidgetItem* item);

} // namespace dictionaryTree
