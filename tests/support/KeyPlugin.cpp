// An input plugin that presses keys in the real program, step by step.
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QGenericPlugin>
#include <QKeySequence>
#include <QTest>
#include <QTextStream>
#include <QTimer>
#include <QWidget>

#include <cstdio>

/// Each line of the file VELMORA_TEST_STEPS is a step: the title of a window, a tab, and what is done as soon as the
/// window is shown: a key such as "Ctrl+Q", a text in quotes, or "close", which closes the window from code. Every step
/// is reported on standard output by the title of its window.
class CKeyPresser : public QObject
{
    Q_OBJECT

public:
    CKeyPresser()
    {
        QFile file(qEnvironmentVariable("VELMORA_TEST_STEPS"));
        if (file.open(QIODevice::ReadOnly))
            m_steps = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
        lookAgain();
    }

private:
    void lookAgain() { QTimer::singleShot(10, this, &CKeyPresser::look); }
    void look()
    {
        if (m_steps.isEmpty())
            return;
        const QStringList step = m_steps.first().split('\t');
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->windowTitle() == step.first() && isReady(window, step.last())) {
                m_steps.removeFirst();
                std::printf("%s\n", qUtf8Printable(step.first()));
                std::fflush(stdout);
                lookAgain(); // at once: the action may open a dialog and return when that is closed
                return act(window, step.last());
            }
        lookAgain();
    }
    /// True if a user could do it now.
    static bool isReady(QWidget* window, const QString& action)
    {
        const bool blocked =
            QApplication::activeModalWidget() != nullptr && QApplication::activeModalWidget() != window;
        window->activateWindow();
        return window->isVisible() && (action == "close" || (!blocked && QApplication::activeWindow() == window));
    }
    static void act(QWidget* window, const QString& action)
    {
        QWidget* target = window->focusWidget() != nullptr ? window->focusWidget() : window;
        if (action == "close") {
            window->close();
        } else if (action.startsWith('"')) {
            QTest::keyClicks(target, action.mid(1, action.size() - 2));
        } else {
            const QKeyCombination key = QKeySequence(action)[0];
            QTest::keyClick(target, key.key(), key.keyboardModifiers());
        }
    }

    QStringList m_steps;
};

class CKeyPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "KeyPlugin.json")

public:
    QObject* create(const QString&, const QString&) override { return new CKeyPresser; }
};

#include "KeyPlugin.moc"
