// An input plugin that ends a program as soon as its main window and a dialog have been painted.
// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QDialog>
#include <QEvent>
#include <QGenericPlugin>
#include <QMainWindow>

#include <cstdlib>

/// Ends the process without destructors: what comes after the painting is not measured.
class CEndWhenPainted : public QObject
{
public:
    CEndWhenPainted() { QCoreApplication::instance()->installEventFilter(this); }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            m_window = m_window || qobject_cast<QMainWindow*>(object) != nullptr;
            m_dialog = m_dialog || qobject_cast<QDialog*>(object) != nullptr;
        } else if (m_window && m_dialog) { // what is in a window is painted before any other event
            std::_Exit(EXIT_SUCCESS);
        }
        return false;
    }

private:
    bool m_window = false;
    bool m_dialog = false;
};

class CEndPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "EndPlugin.json")

public:
    QObject* create(const QString&, const QString&) override { return new CEndWhenPainted; }
};

#include "EndPlugin.moc"
