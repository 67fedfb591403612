// The tree of a dictionary: its groups and their order, its items, and reading an item's text back.
// SPDX-License-Identifier: MIT
#include "widgets/DictionaryTree.h"

#include "base/Assertion.h"
#include "dic/CANopen.h"

#include <QHash>
#include <QHeaderView>
#include <QSet>
#include <QStringBuilder>
#include <QTreeWidget>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iterator>
#include <utility>

namespace
{

constexpr QLatin1String communicationProfile("CiA DS-301");
constexpr QLatin1String noProfile("Other objects");

bool isBefore(const QString& text, const QString& other)
{
    return QString::localeAwareCompare(text, other) < 0;
}

/// Creates the items, and sorts them as the view does. Most data sheets list their objects and entries in order: then
/// it is enough to look at the item before, as long as that is in the processor's cache.
class CItems
{
public:
    QTreeWidgetItem* add(QTreeWidgetItem* parent, const QString& text)
    {
        const int count = parent->childCount();
        if (count > 0 && isBefore(text, parent->child(count - 1)->text(0)))
            m_unsorted.insert(parent);
        auto* item = new QTreeWidgetItem(parent);
        item->setText(0, text);
        return item;
    }
    void sort() const
    {
        for (QTreeWidgetItem* parent : m_unsorted) {
            QList<QTreeWidgetItem*> items = parent->takeChildren();
            std::stable_sort(items.begin(), items.end(),
                             [](auto* a, auto* b) { return isBefore(a->text(0), b->text(0)); });
            parent->addChildren(items);
        }
    }

private:
    QSet<QTreeWidgetItem*> m_unsorted; // parents whose children are not in order
};

/// The groups, each a child of the root or of another group, found by their texts and created when first needed.
class CGroups
{
public:
    CGroups(QTreeWidgetItem* root, CItems& items) : m_root(root), m_items(items) {}

    /// The group where an object belongs.
    QTreeWidgetItem* groupOf(const CCANopenObject& object);
    /// Null when no object belongs there.
    QTreeWidgetItem* communicationGroup() const { return m_groups.value({ m_root, communicationProfile }); }

private:
    QTreeWidgetItem* group(QTreeWidgetItem* parent, const QString& text);

    QTreeWidgetItem* m_root;
    CItems& m_items;
    QHash<std::pair<QTreeWidgetItem*, QString>, QTreeWidgetItem*> m_groups;
};

QTreeWidgetItem* CGroups::groupOf(const CCANopenObject& object)
{
    const QString profile = object.getProfileNumber();
    const QString chapter = object.getProfileChapter();
    if (profile.isEmpty())
        return group(m_root, noProfile);
    QTreeWidgetItem* profileGroup = group(m_root, profile);
    if (profile == communicationProfile || chapter.isEmpty())
        return profileGroup;
    return group(profileGroup, chapter);
}

QTreeWidgetItem* CGroups::group(QTreeWidgetItem* parent, const QString& text)
{
    QTreeWidgetItem*& item = m_groups[{ parent, text }];
    if (item == nullptr)
        item = m_items.add(parent, text);
    return item;
}

/// Such as "1018: Identity Object"; the number is hexadecimal, at least `width` characters wide.
QString itemText(unsigned number, int width, const QString& name)
{
    constexpr QLatin1String blanks("  ");
    char digits[2 * sizeof number];
    const auto count = int(std::to_chars(std::begin(digits), std::end(digits), number, 16).ptr - digits);
    return blanks.left(std::max(width - count, 0)) % QLatin1String(digits, count) % QLatin1String(": ") % name;
}

void addObject(CItems& items, QTreeWidgetItem* group, const CCANopenObject& object)
{
    QTreeWidgetItem* item = items.add(group, itemText(object.getIndex(), 0, object.getName()));
    if (!object.isMultipleObject() && object.m_objectEntryArray.size() <= 1)
        return;
    for (const auto& entry : object.m_objectEntryArray)
        if (assertion(entry != nullptr, "ptrEntry", "MDIWindow", __LINE__))
            items.add(item, itemText(entry->getSubindex(), 2, entry->getName()));
}

/// The number at the start of an item's text, which a colon and at least one word must follow.
bool readNumber(const QTreeWidgetItem* item, unsigned* number)
{
    char word[2];
    return std::sscanf(item->text(0).toUtf8().constData(), "%x: %1s", number, word) == 2;
}

} // namespace

void dictionaryTree::populate(QTreeWidget* view, const QString& rootText, const CCANopen& dictionary)
{
    view->clear();
    // Built and sorted outside the view, since that is fast for a large dictionary.
    auto* root = new QTreeWidgetItem({ rootText });
    CItems items;
    CGroups groups(root, items);
    for (const auto& object : dictionary.m_objectArray)
        if (assertion(object != nullptr, "ptrObject", "MDIWindow", __LINE__))
            addObject(items, groups.groupOf(*object), *object);
    items.sort();
    view->addTopLevelItem(root);
    view->header()->setSortIndicator(0, Qt::AscendingOrder);

    if (QTreeWidgetItem* group = groups.communicationGroup())
        group->setExpanded(true);
    root->setExpanded(true);
}

dictionaryTree::tSelection dictionaryTree::selectionOf(const QTreeWidgetItem* item)
{
    unsigned number = 0;
    unsigned parentNumber = 0;
    if (!readNumber(item, &number))
        return {};
    // Of numbers that are too large, the low bits are taken.
    if (item->parent() != nullptr && readNumber(item->parent(), &parentNumber))
        return { static_cast<unsigned short>(parentNumber), static_cast<unsigned char>(number) };
    return { static_cast<unsigned short>(number), item->childCount() > 0 ? noSubIndex : static_cast<unsigned char>(0) };
}
