// Start-up of the program.
// SPDX-License-Identifier: MIT
#include "MainFrame.h"
#include "base/Product.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    // No application display name: it would be appended to the caption and to the titles of the boxes.
    QApplication application(argc, argv);
    QGuiApplication::setDesktopFileName(QStringLiteral("velmora"));
    QObject::connect(&application, &QGuiApplication::lastWindowClosed, &application, &QCoreApplication::quit);

    CMainFrame frame;
    frame.setWindowTitle(QStringLiteral("%1 - Version %2 Build %3")
                             .arg(QLatin1String(product::title), QLatin1String(product::version),
                                  QString::number(product::buildNumber())));
    QApplication::setWindowIcon(frame.windowIcon());
    frame.show();
    frame.initializeInterface();
    // Closed while the dialog was open: the event loop would not notice and run for ever.
    if (!frame.isVisible())
        return 0;
    return QApplication::exec();
}
