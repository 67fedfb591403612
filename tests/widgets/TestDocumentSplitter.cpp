// How the tree and the form of a document share its width.
// SPDX-License-Identifier: MIT
#include "widgets/DocumentSplitter.h"

#include "widgets/DictionaryListView.h"
#include "widgets/FormArea.h"

#include <QTest>

namespace
{

// A form that needs a certain width.
class CForm : public QWidget
{
public:
    explicit CForm(int width) : m_width(width) {}
    QSize minimumSizeHint() const override { return { m_width, 10 }; }

private:
    const int m_width;
};

} // namespace

class TestDocumentSplitter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTreeGivesWayToTheFormDownToAQuarter_data();
    void theTreeGivesWayToTheFormDownToAQuarter();
};

void TestDocumentSplitter::theTreeGivesWayToTheFormDownToAQuarter_data()
{
    QTest::addColumn<int>("rest"); // of 1200 pixels, beside the form
    QTest::addColumn<int>("tree");
    QTest::newRow("more than it wants") << 401 << 400; // a third, as long as there are no names
    QTest::newRow("as much as it wants") << 400 << 400;
    QTest::newRow("less") << 399 << 399;
    QTest::newRow("a quarter") << 300 << 300;
    QTest::newRow("less than a quarter") << 299 << 400; // the form scrolls
}

void TestDocumentSplitter::theTreeGivesWayToTheFormDownToAQuarter()
{
    QFETCH(const int, rest);
    QFETCH(const int, tree);
    constexpr int width = 1200;
    CDocumentSplitter splitter(nullptr);
    auto* form = new CFormArea(&splitter);
    form->setWidget(new CForm(width - splitter.handleWidth() - rest));
    splitter.setHalves(new CDictionaryListView(&splitter), form);
    splitter.resize(width, 600);
    splitter.show();
    QCOMPARE(splitter.sizes(), QList<int>({ tree, width - splitter.handleWidth() - tree }));
}

QTEST_MAIN(TestDocumentSplitter)
#include "TestDocumentSplitter.moc"
