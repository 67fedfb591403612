// Opening a data sheet in a document window, from the call to the painted tree.
// SPDX-License-Identifier: MIT
#include "MDIWindow.h"
#include "SheetMaker.h"

#include <QApplication>
#include <QTreeWidget>
#include <benchmark/benchmark.h>

namespace
{

void openDocument(benchmark::State& state)
{
    const CSheet sheet(int(state.range(0)));
    for (auto _ : state) {
        CMDIWindow window;
        window.show();
        if (!window.openDocument(sheet.fileName(), nullptr))
            state.SkipWithError("the sheet did not open");
        QApplication::processEvents();
        benchmark::DoNotOptimize(window.grab());
    }
}
BENCHMARK(openDocument)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
