// Drives a document window as its user does, with mouse and keys, and says what the window shows.
// SPDX-License-Identifier: MIT
#pragma once

#include "MDIWindow.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTreeWidget>

/// Widgets are named by their object name without the kind: `field("object name")`. A name, or the text of an
/// item, that does not exist ends the test program.
class CDocumentDriver
{
public:
    /// The window must live as long as the driver is used.
    explicit CDocumentDriver(CMDIWindow* document);

    // What the window shows:

    QTreeWidget* tree() const { return find<QTreeWidget>("object dictionary list view"); }
    QTreeWidgetItem* root() const { return tree()->topLevelItem(0); }
    /// The item with this text below `parent`, or the first one anywhere.
    QTreeWidgetItem* item(const QString& text, const QTreeWidgetItem* parent = nullptr) const;

    /// The texts of the items below; " +" marks expanded ones.
    static QStringList children(const QTreeWidgetItem* item);

    QString field(const QString& name) const { return find<QLineEdit>(name + " line edit")->text(); }
    bool checked(const QString& name) const { return find<QCheckBox>(name + " check box")->isChecked(); }
    /// The title of a group box.
    QString box(const QString& name) const { return find<QGroupBox>(name + " group box")->title(); }
    /// The title and the fields of the object, its check boxes as "x" or "-".
    QStringList objectPart() const;
    /// The same of the entry.
    QStringList entryPart() const;

    QLineEdit* newValue() const { return find<QLineEdit>("new value line edit"); }
    /// What the actual-value field shows.
    QString value() const { return field("actual value"); }
    /// The radio button of a display mode: "hex", "dec" or "oct".
    QRadioButton* mode(const QString& which) const { return find<QRadioButton>(which + " radio button"); }
    /// The modes whose radio button is on.
    QString modes() const;

    /// The status texts since the driver was made. A text that is not shown for 2000 ms has its time appended.
    QStringList statuses() const;
    void forgetStatuses() { m_messages.clear(); }

    /// The widget with this whole object name.
    template <typename Widget>
    Widget* find(const QString& name) const
    {
        auto* widget = window->findChild<Widget*>(name);
        if (widget == nullptr)
            qFatal("no widget \"%s\"", qPrintable(name));
        return widget;
    }

    // What its user does:

    /// Clicks the item; the items above it are expanded first.
    void press(QTreeWidgetItem* item, Qt::MouseButton button = Qt::LeftButton) const;
    void press(const QString& text) const { press(item(text)); }
    /// Clicks the item of an entry, for example " 1: Vendor Id" below "1018: Identity Object".
    void press(const QString& object, const QString& entry) const { press(item(entry, item(object))); }
    /// Clicks the item as a user reaches it: each closed item above it is clicked and opened by the Return key.
    void reach(QTreeWidgetItem* item) const;
    void reach(const QString& text) const { reach(item(text)); }
    void doubleClick(QTreeWidgetItem* item) const;
    /// Moves the highlight to the item without clicking it, then presses the key.
    void hit(QTreeWidgetItem* item, Qt::Key key) const;

    /// Types a new value in place of the old one.
    void type(const QString& text) const;
    void send() const { click(find<QPushButton>("send push button")); }
    /// Types a new value and clicks Send.
    void send(const QString& text) const;
    void read() const { click(find<QPushButton>("read push button")); }
    /// Clicks a display mode: "hex", "dec" or "oct".
    void choose(const QString& which) const { click(mode(which)); }
    static void click(QAbstractButton* button);

    CMDIWindow* const window;

private:
    QString mark(const QString& name) const { return checked(name) ? "x" : "-"; }
    QPoint placeOf(QTreeWidgetItem* item) const;

    QSignalSpy m_messages;
};
