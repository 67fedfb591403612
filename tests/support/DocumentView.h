// A document window as its user sees it: the tree, the fields, the titles and the status texts.
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

#include <memory>

/// Shows a new window. Widgets are named by their object name without the kind: `field("object name")`.
class CDocumentView
{
public:
    CDocumentView() { window->show(); }

    QTreeWidget* tree() const { return find<QTreeWidget>("object dictionary list view"); }
    QTreeWidgetItem* root() const { return tree()->topLevelItem(0); }
    /// The item with this text below `parent`, or the first one anywhere.
    QTreeWidgetItem* item(const QString& text, QTreeWidgetItem* parent = nullptr) const
    {
        for (auto* found : tree()->findItems(text, Qt::MatchExactly | Qt::MatchCaseSensitive | Qt::MatchRecursive))
            if (parent == nullptr || found->parent() == parent)
                return found;
        qFatal("no item \"%s\"", qPrintable(text));
    }

    QString field(const QString& name) const { return find<QLineEdit>(name + " line edit")->text(); }
    bool checked(const QString& name) const { return find<QCheckBox>(name + " check box")->isChecked(); }
    /// The title of a group box.
    QString box(const QString& name) const { return find<QGroupBox>(name + " group box")->title(); }
    /// The title and the fields of the object, its check boxes as "x" or "-".
    QStringList objectPart() const
    {
        return { box("object description"), field("object name"),    field("object code"),
                 field("object data type"), mark("compound object"), mark("mandatory object") };
    }
    /// The same of the entry.
    QStringList entryPart() const
    {
        return {
            box("entry description"), field("parameter name"), field("parameter data type"), field("access type"),
            field("value range"),     field("default value"),  mark("mandatory entry"),      mark("mapped entry")
        };
    }

    QLineEdit* newValue() const { return find<QLineEdit>("new value line edit"); }
    /// What the actual-value field shows.
    QString value() const { return field("actual value"); }
    /// "hex", "dec" or "oct".
    QRadioButton* mode(const QString& which) const { return find<QRadioButton>(which + " radio button"); }
    /// The modes whose radio button is on.
    QString modes() const
    {
        QStringList on;
        for (const char* which : { "hex", "dec", "oct" })
            if (mode(which)->isChecked())
                on << which;
        return on.join(' ');
    }

    /// The status texts so far. Each is meant for 2000 ms; another time is shown behind it.
    QStringList statuses() const
    {
        QStringList texts;
        for (const auto& message : m_messages)
            texts << message[0].toString() +
                         (message[1].toInt() == 2000 ? "" : " for " + message[1].toString() + " ms");
        return texts;
    }
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

    const std::unique_ptr<CMDIWindow> window = std::make_unique<CMDIWindow>();

private:
    QString mark(const QString& name) const { return checked(name) ? "x" : "-"; }

    QSignalSpy m_messages{ window.get(), &CMDIWindow::message };
};
