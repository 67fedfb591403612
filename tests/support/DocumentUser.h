// Somebody who uses a document window with mouse and keys: opens files, presses items, types, sends and reads.
// SPDX-License-Identifier: MIT
#pragma once

#include "ConnectNodeDialog.h"
#include "DocumentView.h"
#include "SheetFile.h"
#include "WhenShown.h"

#include <QSpinBox>
#include <QTest>

class CDocumentUser : public CDocumentView
{
public:
    static constexpr int cancels = -1; ///< in place of a node: the connect dialog is closed
    static constexpr int offline = 0;  ///< in place of a node: the connect dialog's Offline button

    /// Opens a file of this content; in the connect dialog, which comes up with an access, chooses the node.
    bool open(const QByteArray& sheet, CCANopenAccess* access = nullptr, int node = offline)
    {
        m_sheet = std::make_unique<CSheetFile>(sheet);
        return openFile(m_sheet->name(), access, node);
    }
    bool openFile(const QString& name, CCANopenAccess* access = nullptr, int node = offline)
    {
        const CWhenShown<CConnectNodeDialog> connecting([node](CConnectNodeDialog* dialog) { answer(dialog, node); });
        const bool opened = window->openDocument(name, access);
        connectDialogs = connecting.count();
        return opened;
    }
    /// The file that `open` made.
    QString fileName() const { return m_sheet->name(); }

    void press(QTreeWidgetItem* item, Qt::MouseButton button = Qt::LeftButton) const
    {
        QTest::mouseClick(tree()->viewport(), button, {}, placeOf(item));
    }
    void press(const QString& text) const { press(item(text)); }
    /// Presses the item of an entry, for example " 1: Vendor Id" below "1018: Identity Object".
    void press(const QString& object, const QString& entry) const { press(item(entry, item(object))); }
    void doubleClick(QTreeWidgetItem* item) const
    {
        press(item);
        QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, {}, placeOf(item));
    }
    /// Moves the highlight without pressing the item, then hits the key.
    void hit(QTreeWidgetItem* item, Qt::Key key) const
    {
        tree()->setCurrentItem(item);
        QTest::keyClick(tree(), key);
    }

    /// Replaces what the new-value field holds.
    void type(const QString& text) const { newValue()->setText(text); }
    void send() const { click(find<QPushButton>("send push button")); }
    void send(const QString& text) const
    {
        type(text);
        send();
    }
    void read() const { click(find<QPushButton>("read push button")); }
    /// Chooses a display mode: "hex", "dec" or "oct".
    void choose(const QString& which) const { click(mode(which)); }
    static void click(QAbstractButton* button)
    {
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2)); // on the mark of a radio button
    }

    int connectDialogs = 0; ///< how many came up in the last opening

private:
    static void answer(CConnectNodeDialog* dialog, int node)
    {
        if (node == cancels)
            return void(dialog->close());
        if (node != offline)
            dialog->findChild<QSpinBox*>()->setValue(node);
        click(dialog->findChild<QPushButton*>(node == offline ? "offline push button" : "connect push button"));
    }
    QPoint placeOf(QTreeWidgetItem* item) const
    {
        for (auto* above = item->parent(); above != nullptr; above = above->parent())
            above->setExpanded(true);
        tree()->scrollToItem(item);
        const QRect rect = tree()->visualItemRect(item);
        return { rect.left() + 8, rect.center().y() };
    }

    std::unique_ptr<CSheetFile> m_sheet;
};
