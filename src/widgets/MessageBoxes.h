// The program's message boxes: modal, with an OK button, and always plain text, since names of files and interfaces and
// answers of a gateway may look like markup.
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

class QWidget;

namespace messageBox
{

/// Title of a box about an action of the program: "Velmora - Print" for "Print".
QString titleOf(const char* action);

/// Shows `text` under `title` and returns when the user has closed the box.
void information(QWidget* parent, const QString& title, const QString& text);
void warning(QWidget* parent, const QString& title, const QString& text);
void critical(QWidget* parent, const QString& title, const QString& text);
/// The same with the icon of the parent's window in place of a symbol.
void about(QWidget* parent, const QString& title, const QString& text);

/// The toolkit's box about itself.
void aboutQt(QWidget* parent, const QString& title);

/// While it lives, looks after all boxes that come up, also the toolkit's own: their buttons have no icons, and a text
/// that would make the box larger than its screen scrolls. What the box says its text is stays the same.
class CBoxCare : public QObject
{
    Q_OBJECT

public:
    CBoxCare();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

/// Takes the icons off the buttons of a dialog: the toolkit gives some to its own, which would then differ from ours.
void removeButtonIcons(const QWidget* dialog);

} // namespace messageBox
