// Opening a data sheet in a document window, and pressing entries of its tree, compared with bare widgets that get the
// same texts.
// SPDX-License-Identifier: MIT
#include "LoadWork.h"
#include "MDIWindow.h"
#include "Pair.h"
#include "SheetMaker.h"
#include "dic/CANopen.h"

#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>

#include <stdexcept>

namespace
{

constexpr QSize windowSize(720, 400); // that of a document window

// Notices that a widget is painted.
class CPaintWatch : public QObject
{
public:
    explicit CPaintWatch(QWidget* watched) { watched->installEventFilter(this); }

    /// Handles events until the widget has been painted after this call.
    void wait()
    {
        m_painted = false;
        while (!m_painted)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QApplication::processEvents();
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        m_painted = m_painted || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool m_painted = false;
};

void showAndPaint(QWidget* window, QWidget* painted)
{
    CPaintWatch watch(painted);
    window->resize(windowSize);
    window->show();
    watch.wait();
}

QTreeWidget* treeOf(const QWidget& window)
{
    return window.findChild<QTreeWidget*>();
}

// Item texts with those of the items below.
struct tTexts {
    QString text;
    QList<tTexts> below;
};

QTreeWidgetItem* childOf(const QTreeWidgetItem* item, int place)
{
    QTreeWidgetItem* child = item == nullptr ? nullptr : item->child(place);
    if (child == nullptr)
        throw std::runtime_error("the tree has fewer items");
    return child;
}

tTexts textsOf(const QTreeWidgetItem* item)
{
    tTexts texts = { item->text(0), {} };
    for (int place = 0; place < item->childCount(); ++place)
        texts.below.append(textsOf(item->child(place)));
    return texts;
}

QTreeWidgetItem* itemOf(const tTexts& texts)
{
    auto* item = new QTreeWidgetItem({ QString(texts.text.constData(), texts.text.size()) }); // a copy of its own
    for (const tTexts& below : texts.below)
        item->addChild(itemOf(below));
    return item;
}

// The window is made and shown before; from the call that opens the sheet to the painted tree.
class COpenPair : public CPair
{
public:
    explicit COpenPair(int objects) : m_sheet(objects), m_file(QFile::encodeName(m_sheet.fileName()))
    {
        CMDIWindow window;
        window.openDocument(m_sheet.fileName(), nullptr);
        m_texts = textsOf(treeOf(window)->topLevelItem(0));
        qsizetype shown = 0;
        for (const tTexts& group : m_texts.below)
            shown += group.below.size();
        if (shown != objects)
            throw std::runtime_error("the sheet does not load");
        showAndPaint(&window, treeOf(window)->viewport()); // fonts and style are loaded now
    }

    double ours() override
    {
        CMDIWindow window;
        showAndPaint(&window, treeOf(window)->viewport());
        CPaintWatch watch(treeOf(window)->viewport());
        return secondsOf([&] {
            const bool opened = window.openDocument(m_sheet.fileName(), nullptr);
            watch.wait();
            return opened;
        });
    }
    double bare() override
    {
        CCANopen dictionary;
        QTreeWidget tree;
        showAndPaint(&tree, tree.viewport());
        CPaintWatch watch(tree.viewport());
        return secondsOf([&] {
            const bool loaded = load(dictionary, m_file.constData());
            QTreeWidgetItem* root = itemOf(m_texts);
            tree.addTopLevelItem(root);
            root->setExpanded(true);
            watch.wait();
            return loaded;
        });
    }

private:
    const CSheet m_sheet;
    const QByteArray m_file;
    tTexts m_texts;
};

// What a form shows.
struct tForm {
    QStringList titles;
    QStringList fields;
    QList<bool> marks;
};

// Presses entries of two objects in turns, and paints the window each time.
class CPressPair : public CPair
{
public:
    static constexpr int presses = 20; // in one run

    explicit CPressPair(int objects)
    {
        const CSheet sheet(objects);
        if (!m_document.openDocument(sheet.fileName(), nullptr))
            throw std::runtime_error("the sheet does not load");
        QTreeWidgetItem* group = childOf(treeOf(m_document)->topLevelItem(0), 0);
        group->setExpanded(true);
        for (int object = 0; object < 2; ++object)
            group->child(object)->setExpanded(true);
        showAndPaint(&m_document, treeOf(m_document)->viewport());
        for (int object = 0; object < 2; ++object) {
            m_items[object] = childOf(childOf(group, object), 1);
            press(m_items[object]);
            m_forms[object] = formOf(m_document);
        }
        makeBareForm();
        showAndPaint(&m_bareForm, m_bareTree->viewport());
    }

    double ours() override
    {
        CPaintWatch watch(m_document.findChild<QLineEdit*>());
        return secondsOf([&] {
            for (int n = 0; n < presses; ++n) {
                press(m_items[n % 2]);
                watch.wait();
            }
            return formOf(m_document).fields == m_forms[1].fields && m_forms[0].fields != m_forms[1].fields;
        });
    }
    double bare() override
    {
        CPaintWatch watch(m_bareForm.findChild<QLineEdit*>());
        return secondsOf([&] {
            for (int n = 0; n < presses; ++n) {
                fillBareForm(n % 2);
                watch.wait();
            }
            return formOf(m_bareForm).fields == m_forms[1].fields;
        });
    }

private:
    void press(QTreeWidgetItem* item)
    {
        QTreeWidget* tree = item->treeWidget();
        const QPointF place = tree->visualItemRect(item).center();
        for (const QEvent::Type type : { QEvent::MouseButtonPress, QEvent::MouseButtonRelease }) {
            QMouseEvent event(type, place, tree->viewport()->mapToGlobal(place), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            QApplication::sendEvent(tree->viewport(), &event);
        }
    }

    static tForm formOf(const QWidget& window)
    {
        tForm form;
        for (const QGroupBox* box : window.findChildren<QGroupBox*>())
            form.titles << box->title();
        for (const QLineEdit* field : window.findChildren<QLineEdit*>())
            form.fields << field->text();
        for (const QCheckBox* mark : window.findChildren<QCheckBox*>())
            form.marks << mark->isChecked();
        return form;
    }

    // Bare widgets of the same classes with the same texts at the same places.
    void makeBareForm()
    {
        for (const QGroupBox* box : m_document.findChildren<QGroupBox*>()) {
            m_boxes.append(copyOf(box, &m_bareForm));
            for (const QLineEdit* field : box->findChildren<QLineEdit*>())
                m_fields.append(copyOf(field, m_boxes.last()));
            for (const QCheckBox* mark : box->findChildren<QCheckBox*>())
                m_marks.append(copyOf(mark, m_boxes.last()));
            for (const QLabel* label : box->findChildren<QLabel*>())
                copyOf(label, m_boxes.last())->setText(label->text());
            for (const QPushButton* button : box->findChildren<QPushButton*>())
                copyOf(button, m_boxes.last())->setText(button->text());
            for (const QRadioButton* button : box->findChildren<QRadioButton*>())
                copyOf(button, m_boxes.last())->setText(button->text());
        }
        m_bareTree = copyOf(treeOf(m_document), &m_bareForm);
        m_bareTree->setHeaderHidden(true);
        QTreeWidgetItem* group = itemOf(textsOf(childOf(treeOf(m_document)->topLevelItem(0), 0)));
        m_bareTree->addTopLevelItem(group);
        group->setExpanded(true);
        for (int object = 0; object < 2; ++object) {
            group->child(object)->setExpanded(true);
            m_bareItems[object] = childOf(childOf(group, object), 1);
        }
    }
    template <typename Widget>
    Widget* copyOf(const Widget* widget, QWidget* parent) const
    {
        auto* copy = new Widget(parent);
        const QWidget* window = widget->parentWidget();
        const QPoint place = parent == &m_bareForm ? window->mapTo(&m_document, widget->pos()) : widget->pos();
        copy->setGeometry(QRect(place, widget->size()));
        return copy;
    }
    void fillBareForm(int object)
    {
        const tForm& form = m_forms[object];
        m_bareTree->setCurrentItem(m_bareItems[object]);
        for (int n = 0; n < m_boxes.size(); ++n)
            m_boxes[n]->setTitle(form.titles[n]);
        for (int n = 0; n < m_fields.size(); ++n)
            m_fields[n]->setText(form.fields[n]);
        for (int n = 0; n < m_marks.size(); ++n)
            m_marks[n]->setChecked(form.marks[n]);
    }

    CMDIWindow m_document;
    QTreeWidgetItem* m_items[2] = {};
    tForm m_forms[2];
    QWidget m_bareForm;
    QTreeWidget* m_bareTree = nullptr;
    QTreeWidgetItem* m_bareItems[2] = {};
    QList<QGroupBox*> m_boxes;
    QList<QLineEdit*> m_fields;
    QList<QCheckBox*> m_marks;
};

[[maybe_unused]] const bool added = [] {
    for (const int objects : { 10000, 30000 })
        addPair(
            { "open/" + std::to_string(objects), 0, 1, [objects] { return std::make_unique<COpenPair>(objects); } });
    return addPair({ "press/10000", 0, 1, [] { return std::make_unique<CPressPair>(10000); } });
}();

} // namespace
