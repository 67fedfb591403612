// Loading a data sheet into the dictionary and freeing that, compared with cutting the file into lines.
// SPDX-License-Identifier: MIT
#include "LoadWork.h"
#include "Pair.h"
#include "SheetMaker.h"

#include <QFile>

#include <algorithm>
#include <optional>
#include <stdexcept>

namespace
{

// One file or several, one after the other.
class CLoadPair : public CPair
{
public:
    explicit CLoadPair(int objects) : m_sheet(objects), m_files{ QFile::encodeName(m_sheet->fileName()) } {}
    explicit CLoadPair(const QList<QByteArray>& files) : m_files(files) {}

    double ours() override { return secondsOfAll(loadAndFree); }
    double bare() override { return secondsOfAll(readLines); }

private:
    double secondsOfAll(bool (*work)(const char* file)) const
    {
        return secondsOf([&] {
            return std::all_of(m_files.begin(), m_files.end(), [work](auto& file) { return work(file.constData()); });
        });
    }

    const std::optional<CSheet> m_sheet;
    const QList<QByteArray> m_files;
};

// The names in the environment, with blanks between them.
std::unique_ptr<CPair> namedSheets()
{
    const QByteArray names = qgetenv("VELMORA_BENCH_SHEETS").simplified();
    if (names.isEmpty())
        throw std::runtime_error("VELMORA_BENCH_SHEETS names no data sheets");
    return std::make_unique<CLoadPair>(names.split(' '));
}

[[maybe_unused]] const bool added = [] {
    for (const int objects : { 100, 1000, 10000, 30000 })
        addPair(
            { "load/" + std::to_string(objects), 0, 1, [objects] { return std::make_unique<CLoadPair>(objects); } });
    return addPair({ "load/named", 0, 1, namedSheets });
}();

} // namespace
