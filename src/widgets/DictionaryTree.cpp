// The tree of a dictionary: its groups and their order, its items, and reading an item's text back.
// SPDX-License-Identifier: MIT
#include "widgets/DictionaryTree.h"

#include "base/Assertion.h"
#include "dic/CANopen.h"

#include <QHash>
#include <QHeaderView>
#include <QStringBuilder>
#include <QTreeWidget>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace
{

constexpr QLatin1String communicationProfile("CiA DS-301");
constexpr QLatin1String noProfile("Other objects");

/// The groups, each a child of the root or of another group, found by their texts and created when first needed.
class CGroups
{
public:
    explicit CGroups(QTreeWidgetItem* root) : m_root(root) {}

    /// The group where an object belongs.
    QTreeWidgetItem* groupOf(const CCANopenObject& object);
    /// Null when no object belongs there.
    QTreeWidgetItem* communicationGroup() const { return m_groups.value({ m_root, communicationProfile }); }

private:
    QTreeWidgetItem* group(QTreeWidgetItem* parent, const QString& text);

    QTreeWidgetItem* m_root;
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
        item = new QTreeWidgetItem(parent, { text });
    return item;
}

QTreeWidgetItem* createItem(QTreeWidgetItem* parent, unsigned number, int width, const QString& name)
{
    auto* item = new QTreeWidgetItem(parent);
    item->setText(0, QString::number(number, 16).rightJustified(width) % QLatin1String(": ") % name);
    return item;
}

void addObject(QTreeWidgetItem* group, const CCANopenObject& object)
{
    QTreeWidgetItem* item = createItem(group, object.getIndex(), 0, object.getName());
    if (!object.isMultipleObject() && object.m_objectEntryArray.size() <= 1)
        return;
    for (const auto& entry : object.m_objectEntryArray)
        if (assertion(entry != nullptr, "ptrEntry", "MDIWindow", __LINE__))
            createItem(item, entry->getSubindex(), 2, entry->getName());
}

bool isBefore(const QTreeWidgetItem* a, const QTreeWidgetItem* b)
{
    return *a < *b; // by their texts, as the view sorts
}

/// Sorts the items below, level by level. Most data sheets list them in order already: one look is enough then.
void sortBelow(QTreeWidgetItem* parent)
{
    bool inOrder = true;
    for (int place = 1; place < parent->childCount() && inOrder; ++place)
        inOrder = !isBefore(parent->child(place), parent->child(place - 1));
    if (!inOrder) {
        QList<QTreeWidgetItem*> items = parent->takeChildren();
        std::stable_sort(items.begin(), items.end(), isBefore);
        parent->addChildren(items);
    }
    for (int place = 0; place < parent->childCount(); ++place)
        sortBelow(parent->child(place));
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
    CGroups groups(root);
    for (const auto& object : dictionary.m_objectArray)
        if (assertion(object != nullptr, "ptrObject", "MDIWindow", __LINE__))
            addObject(groups.groupOf(*object), *object);
    sortBelow(root);
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
