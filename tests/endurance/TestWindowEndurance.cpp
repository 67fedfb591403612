// The main window is opened and closed again and again, with documents, a connection and dialogs.
//   QT_QPA_PLATFORM=offscreen build/dev/tests/endurance/TestWindowEndurance 1000     the long run
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "FakeGateway.h"
#include "FrameDriver.h"
#include "Resources.h"
#include "TempSettings.h"

#include "DeviceInfoDialog.h"

#include <QApplication>
#include <QPixmapCache>

namespace
{

constexpr int few = 100;

// Kilobytes for each window: a bare main window with menus makes the toolkit keep 1, dialogs and documents 3 more. A
// document or a tree that stays takes 100.
constexpr long keptByTheToolkit = 8;

tGatewayAnswer answerTo(const std::string& line)
{
    return line.find(" read ") != std::string::npos ? "[#] 0x1\r\n" : "[#] OK\r\n";
}

void useWindow(unsigned short port)
{
    const CBoxCatcher boxes;
    CFrameDriver driver;
    driver.initializeGateway(port);
    driver.open(VELMORA_SHARE "/velmora-demo.eds", 5);
    driver.frame.newDocument();
    const CWhenShown<CDeviceInfoDialog> dialog([](CDeviceInfoDialog* shown) { shown->reject(); });
    driver.choose("&Device", "Device &Info");
    driver.frame.close();
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    const CTempSettings store;
    const int windows = argc > 1 ? QByteArray(argv[1]).toInt() : few;
    CFakeGateway gateway;
    gateway.answerWith(answerTo);
    endurance::CResources resources(windows, keptByTheToolkit);
    int problems = 0;
    for (int done = 0; done < windows; ++done) {
        QPixmapCache::clear(); // it grows up to its limit of 10 MB
        resources.step(done);
        useWindow(gateway.port());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        if (!gateway.awaitClosed() || !QApplication::allWidgets().isEmpty()) {
            std::printf("PROBLEM: window %d leaves %d widgets\n", done,
                        static_cast<int>(QApplication::allWidgets().size()));
            ++problems;
        }
    }
    return resources.finish(problems, "windows", windows);
}
