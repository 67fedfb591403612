// Loading a data sheet into the dictionary, compared with reading its lines only.
// SPDX-License-Identifier: MIT
#include "SheetMaker.h"
#include "dic/CANopen.h"
#include "dic/CANopenReader.h"

#include <QFile>
#include <benchmark/benchmark.h>

namespace
{

void loadSheet(benchmark::State& state)
{
    const CSheet sheet(int(state.range(0)));
    const QByteArray name = QFile::encodeName(sheet.fileName());
    for (auto _ : state) {
        CCANopen dictionary;
        CCANopenReader reader(&dictionary, CCANopen::typeEDS);
        if (reader.load(name.constData()) != 1 || int64_t(dictionary.m_objectArray.size()) != state.range(0))
            state.SkipWithError("the sheet did not load");
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * sheet.size());
}
BENCHMARK(loadSheet)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void readLines(benchmark::State& state)
{
    const CSheet sheet(int(state.range(0)));
    for (auto _ : state) {
        QFile file(sheet.fileName());
        if (!file.open(QIODevice::ReadOnly))
            state.SkipWithError("the sheet did not open");
        qsizetype characters = 0;
        while (!file.atEnd())
            characters += QString::fromUtf8(file.readLine()).size();
        benchmark::DoNotOptimize(characters);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * sheet.size());
}
BENCHMARK(readLines)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
