// The tree of a document: how it is painted, and its signal for the Return key.
// SPDX-License-Identifier: MIT
#include "widgets/DictionaryListView.h"

#include "Patience.h"

#include <QHeaderView>
#include <QPaintEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

class TestDictionaryListView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scrollingToTheSidePaintsEachNameAnew();
    void theReturnKeyTellsTheCurrentItem_data();
    void theReturnKeyTellsTheCurrentItem();

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            m_painted += static_cast<QPaintEvent*>(event)->region();
        return QObject::eventFilter(object, event);
    }

private:
    QRegion m_painted;
};

// Its ellipsis is then at another place.
void TestDictionaryListView::scrollingToTheSidePaintsEachNameAnew()
{
    CDictionaryListView view(nullptr);
    view.setColumnCount(1);
    view.header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    view.header()->setStretchLastSection(false);
    new QTreeWidgetItem(&view, { QString(200, 'x') });
    view.resize(200, 200);
    view.show();
    view.viewport()->installEventFilter(this);
    AWAIT_VERIFY(!m_painted.isEmpty() && view.horizontalScrollBar()->maximum() > 0);
    m_painted = {};
    view.horizontalScrollBar()->setValue(10);
    AWAIT_VERIFY(!m_painted.isEmpty());
    QCOMPARE(m_painted.boundingRect(), view.viewport()->rect());
}

void TestDictionaryListView::theReturnKeyTellsTheCurrentItem_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
}

void TestDictionaryListView::theReturnKeyTellsTheCurrentItem()
{
    QFETCH(const Qt::Key, key);
    CDictionaryListView view(nullptr);
    auto* item = new QTreeWidgetItem(&view, { "Item" });
    const QSignalSpy told(&view, &CDictionaryListView::returnPressed);
    QTest::keyClick(&view, key); // there is no current item yet
    view.setCurrentItem(item);
    QTest::keyClick(&view, key);
    QCOMPARE(told.size(), 2);
    QCOMPARE(told[0][0].value<QTreeWidgetItem*>(), nullptr);
    QCOMPARE(told[1][0].value<QTreeWidgetItem*>(), item);
}

QTEST_MAIN(TestDictionaryListView)
#include "TestDictionaryListView.moc"
