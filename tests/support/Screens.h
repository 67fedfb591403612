// Screens of chosen sizes for a test program, without a display.
// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSize>
#include <QTemporaryDir>

/// Make it before the application: the application then has these screens, side by side, in device-independent pixels.
class CScreens
{
public:
    explicit CScreens(std::initializer_list<QSize> sizes)
    {
        QJsonArray screens;
        int left = 0;
        for (const QSize size : sizes) {
            screens.append(QJsonObject{ { "name", QString("screen at %1").arg(left) },
                                        { "x", left },
                                        { "y", 0 },
                                        { "width", size.width() },
                                        { "height", size.height() },
                                        { "logicalDpi", 96 },
                                        { "dpr", 1 } });
            left += size.width();
        }
        QFile file(m_folder.filePath("screens.json"));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("no file for the screens");
        file.write(QJsonDocument(QJsonObject{ { "screens", screens } }).toJson());
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + file.fileName().toLocal8Bit());
    }

private:
    QTemporaryDir m_folder;
};
