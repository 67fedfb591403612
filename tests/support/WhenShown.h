// Drives a modal dialog: calls a function of the test as soon as the dialog is shown.
// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QEvent>
#include <QTimer>

#include <functional>

/// For as long as it lives, calls `act` with every widget of the class that is shown; counts them.
///
///     CWhenShown<CConnectNodeDialog> connecting([](CConnectNodeDialog* dialog) { dialog->acceptOffline(); });
template <typename Widget>
class CWhenShown : public QObject
{
public:
    explicit CWhenShown(std::function<void(Widget*)> act) : m_act(std::move(act)) { qApp->installEventFilter(this); }

    int count() const { return m_count; }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        auto* widget = qobject_cast<Widget*>(object);
        if (widget != nullptr && event->type() == QEvent::Show) {
            ++m_count;
            QTimer::singleShot(0, widget, [this, widget] { m_act(widget); });
        }
        return QObject::eventFilter(object, event);
    }

private:
    std::function<void(Widget*)> m_act;
    int m_count = 0;
};
