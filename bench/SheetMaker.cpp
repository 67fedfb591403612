// Writes the data sheets that the benchmarks read.
// SPDX-License-Identifier: MIT
#include "SheetMaker.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace
{

constexpr int firstIndex = 0x2000;
constexpr int entriesOfObject = 5;

void writeObject(QTextStream& out, const QString& index)
{
    out << "[" << index << "]\nParameterName=Channel parameters " << index
        << "\nObjectType=0x9\nSubNumber=" << entriesOfObject << "\n";
    for (int sub = 0; sub < entriesOfObject; ++sub)
        out << "[" << index << "sub" << sub << "]\nParameterName=Parameter " << sub
            << "\nObjectType=0x7\nDataType=0x0007\nAccessType=rw\nPDOMapping=0\nDefaultValue=0x" << sub << "\n";
}

} // namespace

void writeSheet(const QString& fileName, int objects)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("the sheet cannot be written");
    QTextStream out(&file);
    out << "[FileInfo]\nCreatedBy=benchmark\n[DeviceInfo]\nVendorName=Brask Works\n[ManufacturerObjects]\n";
    out << "SupportedObjects=" << objects << "\n";
    for (int n = 0; n < objects; ++n)
        out << n + 1 << "=0x" << QString::number(firstIndex + n, 16) << "\n";
    for (int n = 0; n < objects; ++n)
        writeObject(out, QString::number(firstIndex + n, 16));
}

CSheet::CSheet(int objects)
{
    writeSheet(fileName(), objects);
}

qint64 CSheet::size() const
{
    return QFileInfo(fileName()).size();
}
