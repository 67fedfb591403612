// A screen of a chosen size for a test program, without a display.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

/// Make it before the application: the application then has one screen of this size, in device-independent pixels.
class CSmallScreen
{
public:
    CSmallScreen(int width, int height)
    {
        QFile file(m_folder.filePath("screens.json"));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("no file for the screen");
        file.write(QByteArray("{\"screens\":[{\"name\":\"small\",\"x\":0,\"y\":0,\"width\":") +
                   QByteArray::number(width) + ",\"height\":" + QByteArray::number(height) +
                   ",\"logicalDpi\":96,\"dpr\":1}]}");
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + file.fileName().toLocal8Bit());
    }

private:
    QTemporaryDir m_folder;
};
