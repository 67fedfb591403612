// The order of the tree where the user's language has another one than that of the characters' numbers.
// SPDX-License-Identifier: MIT
#include "widgets/DictionaryTree.h"

#include "dic/CANopen.h"

#include <QApplication>
#include <QTest>
#include <QTreeWidget>

class TestTreeLocale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itemsAreInTheOrderOfTheLanguage_data();
    void itemsAreInTheOrderOfTheLanguage();
};

void TestTreeLocale::itemsAreInTheOrderOfTheLanguage_data()
{
    QTest::addColumn<QStringList>("profiles");
    QTest::addColumn<QStringList>("groups");
    QTest::newRow("ordered as characters are")
        << QStringList{ "B", "Z", "a", "az", "\u00e4b" } << QStringList{ "a", "\u00e4b", "az", "B", "Z" };
    QTest::newRow("ordered as the language is")
        << QStringList{ "a", "\u00e4b", "az", "B", "Z" } << QStringList{ "a", "\u00e4b", "az", "B", "Z" };
}

void TestTreeLocale::itemsAreInTheOrderOfTheLanguage()
{
    QFETCH(const QStringList, profiles);
    CCANopen dictionary;
    for (qsizetype number = 0; number < profiles.size(); ++number) {
        auto& object = dictionary.m_objectArray.emplace_back(std::make_unique<CCANopenObject>(ushort(1 << 4 * number)));
        object->setName("Name");
        object->setProfileNumber(profiles[number].toUtf8().constData());
    }
    for (const int index : { 0x10, 0x1, 0xA00, 0xA0 }) {
        auto& object = dictionary.m_objectArray.emplace_back(std::make_unique<CCANopenObject>(ushort(index)));
        object->setName("Name");
        object->setProfileNumber("zz");
    }
    QTreeWidget tree;
    dictionaryTree::populate(&tree, "root", dictionary);
    const auto textsOf = [](const QTreeWidgetItem* item) {
        QStringList texts;
        for (int place = 0; place < item->childCount(); ++place)
            texts += item->child(place)->text(0);
        return texts;
    };
    const QTreeWidgetItem* root = tree.topLevelItem(0);
    QFETCH(const QStringList, groups);
    const QStringList built = textsOf(root);
    QCOMPARE(built, groups + QStringList("zz"));
    const QTreeWidgetItem* last = root->child(root->childCount() - 1);
    QCOMPARE(textsOf(last), QStringList({ "1: Name", "10: Name", "a0: Name", "a00: Name" }));
    tree.sortItems(0, Qt::AscendingOrder);
    QCOMPARE(textsOf(root), built);
}

int main(int argc, char** argv)
{
    qputenv("LC_ALL", "de_DE.UTF-8");
    const QApplication application(argc, argv);
    TestTreeLocale test;
    return QTest::qExec(&test, argc, argv);
}
#include "TestTreeLocale.moc"
