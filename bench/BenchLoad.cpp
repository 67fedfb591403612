// Loading a data sheet into the dictionary and freeing that, compared with cutting the file into lines.
// SPDX-License-Identifier: MIT
#include "LoadWork.h"
#include "Pair.h"
#include "SheetMaker.h"

#include <QFile>

namespace
{

class CLoadPair : public CPair
{
public:
    explicit CLoadPair(int objects) : m_sheet(objects), m_file(QFile::encodeName(m_sheet.fileName())) {}

    double ours() override
    {
        return secondsOf([this] { return loadAndFree(m_file.constData()); });
    }
    double bare() override
    {
        return secondsOf([this] { return readLines(m_file.constData()); });
    }

private:
    const CSheet m_sheet;
    const QByteArray m_file;
};

[[maybe_unused]] const bool added = [] {
    for (const int objects : { 100, 1000, 10000, 30000 })
        addPair(
            { "load/" + std::to_string(objects), 0, 1, [objects] { return std::make_unique<CLoadPair>(objects); } });
    return true;
}();

} // namespace
