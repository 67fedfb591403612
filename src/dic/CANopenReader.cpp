// The data-sheet reader's entry points.
// SPDX-License-Identifier: MIT
#include "dic/CANopenReader.h"

#include "dic/EdsLoad.h"

#include <QFile>

int CCANopenReader::load(const char* fileName)
{
    if (!m_dictionary)
        return 0;
    m_dictionary->m_fileName = QFile::decodeName(fileName);
    m_dictionary->m_fileType = m_fileType;
    switch (m_fileType) {
    case CCANopen::typeEDS:
    case CCANopen::typeDCF:
        return loadEDS(fileName);
    case CCANopen::typeXML:
        return loadXML(fileName);
    case CCANopen::typeCOP:
        return loadCOP(fileName);
    default:
        return 0;
    }
}

int CCANopenReader::loadEDS(const char* fileName)
{
    return m_dictionary && loadEdsFile(*m_dictionary, fileName) ? 1 : 0;
}

int CCANopenReader::loadXML(const char*)
{
    return 0;
}

int CCANopenReader::loadCOP(const char*)
{
    return 0;
}

const char* CCANopenReader::version()
{
    return "$Rev: 1 $";
}
