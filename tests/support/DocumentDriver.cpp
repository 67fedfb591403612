// Drives a document window as its user does, with mouse and keys, and says what the window shows.
// SPDX-License-Identifier: MIT
#include "DocumentDriver.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QTest>

CDocumentDriver::CDocumentDriver(CMDIWindow* document) : window(document), m_messages(document, &CMDIWindow::message) {}

QTreeWidgetItem* CDocumentDriver::item(const QString& text, const QTreeWidgetItem* parent) const
{
    for (auto* found : tree()->findItems(text, Qt::MatchExactly | Qt::MatchCaseSensitive | Qt::MatchRecursive))
        if (parent == nullptr || found->parent() == parent)
            return found;
    qFatal("no item \"%s\"", qPrintable(text));
}

QStringList CDocumentDriver::children(const QTreeWidgetItem* item)
{
    QStringList texts;
    for (int place = 0; place < item->childCount(); ++place)
        texts << item->child(place)->text(0) + (item->child(place)->isExpanded() ? " +" : "");
    return texts;
}

QStringList CDocumentDriver::objectPart() const
{
    return { box("object description"), field("object name"),    field("object code"),
             field("object data type"), mark("compound object"), mark("mandatory object") };
}

QStringList CDocumentDriver::entryPart() const
{
    return { box("entry description"), field("parameter name"), field("parameter data type"), field("access type"),
             field("value range"),     field("default value"),  mark("mandatory entry"),      mark("mapped entry") };
}

QString CDocumentDriver::modes() const
{
    QStringList on;
    for (const char* which : { "hex", "dec", "oct" })
        if (mode(which)->isChecked())
            on << which;
    return on.join(' ');
}

QStringList CDocumentDriver::statuses() const
{
    QStringList texts;
    for (const auto& message : m_messages)
        texts << message[0].toString() + (message[1].toInt() == 2000 ? "" : " for " + message[1].toString() + " ms");
    return texts;
}

void CDocumentDriver::press(QTreeWidgetItem* item, Qt::MouseButton button) const
{
    QTest::mouseClick(tree()->viewport(), button, {}, placeOf(item));
}

void CDocumentDriver::reach(QTreeWidgetItem* item) const
{
    if (QTreeWidgetItem* above = item->parent(); above != nullptr && !above->isExpanded()) {
        reach(above);
        QTest::keyClick(tree(), Qt::Key_Return);
    }
    press(item);
}

void CDocumentDriver::doubleClick(QTreeWidgetItem* item) const
{
    press(item);
    QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, {}, placeOf(item));
}

void CDocumentDriver::hit(QTreeWidgetItem* item, Qt::Key key) const
{
    tree()->setCurrentItem(item);
    QTest::keyClick(tree(), key);
}

void CDocumentDriver::type(const QString& text) const
{
    newValue()->setFocus();
    newValue()->selectAll();
    QTest::keyClick(newValue(), Qt::Key_Delete);
    QKeyEvent typed(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, text); // one event: a text may be long
    QCoreApplication::sendEvent(newValue(), &typed);
}

void CDocumentDriver::send(const QString& text) const
{
    type(text);
    send();
}

void CDocumentDriver::click(QAbstractButton* button)
{
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2)); // on the mark of a radio button
}

// A point on the item's text, in the tree's viewport.
QPoint CDocumentDriver::placeOf(QTreeWidgetItem* item) const
{
    for (auto* above = item->parent(); above != nullptr; above = above->parent())
        above->setExpanded(true);
    tree()->scrollToItem(item);
    const QRect rect = tree()->visualItemRect(item);
    return { rect.left() + 8, rect.center().y() };
}
