// Drives a document window as a user does: by clicks into its tree, keys in its fields and its buttons.
// SPDX-License-Identifier: MIT
#pragma once

#include "MDIWindow.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QTreeWidget>

class CDocumentDriver
{
public:
    explicit CDocumentDriver(CMDIWindow* document) : m_document(document) {}

    /// The first item with that text, such as "1017: Producer heartbeat time"; null when there is none.
    QTreeWidgetItem* item(const QString& text) const
    {
        return tree()->findItems(text, Qt::MatchExactly | Qt::MatchCaseSensitive | Qt::MatchRecursive).value(0);
    }
    /// Clicks the item, behind the items that lead to it: each is opened by Return where needed.
    void select(const QString& text) const { select(item(text)); }
    void select(QTreeWidgetItem* wanted) const
    {
        if (wanted == nullptr)
            return;
        if (QTreeWidgetItem* parent = wanted->parent(); parent != nullptr && !parent->isExpanded()) {
            select(parent);
            QTest::keyClick(tree(), Qt::Key_Return);
        }
        tree()->scrollToItem(wanted);
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, tree()->visualItemRect(wanted).center());
    }

    QString field(const char* name) const { return m_document->findChild<QLineEdit*>(name)->text(); }
    QString value() const { return field("actual value line edit"); }
    QString boxTitle(const char* name) const { return m_document->findChild<QGroupBox*>(name)->title(); }
    void click(const char* button) const
    {
        auto* clicked = m_document->findChild<QAbstractButton*>(button);
        QTest::mouseClick(clicked, Qt::LeftButton, {}, QPoint(8, clicked->height() / 2)); // on a radio button's mark
    }
    void read() const { click("read push button"); }
    /// Types a new value and clicks Send.
    void send(const QString& text) const
    {
        type(text);
        click("send push button");
    }
    /// Types a new value.
    void type(const QString& text) const
    {
        auto* input = m_document->findChild<QLineEdit*>("new value line edit");
        input->setFocus();
        input->selectAll();
        QTest::keyClick(input, Qt::Key_Delete);
        QTest::keyClicks(input, text);
    }
    void pressReturnInTheNewValue() const
    {
        QTest::keyClick(m_document->findChild<QLineEdit*>("new value line edit"), Qt::Key_Return);
    }

private:
    QTreeWidget* tree() const { return m_document->findChild<QTreeWidget*>(); }

    QPointer<CMDIWindow> m_document;
};
