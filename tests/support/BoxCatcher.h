// Answers the modal message boxes that a test causes, and keeps the title, text and icon of each.
// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QList>
#include <QMessageBox>
#include <QTimer>

/// Watches for modal message boxes for as long as it lives. Each is noted and accepted as soon as it is shown.
class CBoxCatcher : public QObject
{
public:
    struct tBox {
        QString title;
        QString text;
        QMessageBox::Icon icon;
        Qt::TextFormat format;
        bool waitCursor; ///< an override cursor was set while the box was shown
    };

    CBoxCatcher() { qApp->installEventFilter(this); }

    /// The boxes so far, in the order in which they came up.
    const QList<tBox>& boxes() const { return m_boxes; }
    qsizetype count() const { return m_boxes.size(); }
    /// The only box so far; an empty one when there is none or more than one.
    tBox only() const { return m_boxes.size() == 1 ? m_boxes.first() : tBox{}; }
    void clear() { m_boxes.clear(); }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        auto* box = qobject_cast<QMessageBox*>(object);
        if (box != nullptr && event->type() == QEvent::Show) {
            m_boxes.append({ box->windowTitle(), box->text(), box->icon(), box->textFormat(),
                             QGuiApplication::overrideCursor() != nullptr });
            QTimer::singleShot(0, box, [box] { box->accept(); });
        }
        return QObject::eventFilter(object, event);
    }

private:
    QList<tBox> m_boxes;
};
