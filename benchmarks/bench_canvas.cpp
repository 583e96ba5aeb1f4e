// SPDX-License-Identifier: MIT
#include "MosaicPixels.h"
#include "Mouse.h"
#include "Pictures.h"
#include "ScribbleArea.h"

#include <QApplication>
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <memory>

namespace
{

constexpr QSize kPicturePx(3840, 2160);

const QImage& picture()
{
    static const QImage image = noise(kPicturePx);
    return image;
}

// The floor of all figures here.
void copyPicture(benchmark::State& state)
{
    for (auto _ : state) {
        QImage copy = picture().copy();
        benchmark::DoNotOptimize(copy.bits());
    }
}
BENCHMARK(copyPicture)->Unit(benchmark::kMicrosecond);

void pixelatePicture(benchmark::State& state)
{
    const int blockSize = int(state.range(0));
    QImage pixelated(kPicturePx, QImage::Format_ARGB32);
    for (auto _ : state) {
        mosaic::makeMosaicImage(pixelated, picture(), blockSize);
        benchmark::DoNotOptimize(pixelated.bits());
    }
}
BENCHMARK(pixelatePicture)
    ->Arg(2)
    ->Arg(3)
    ->Arg(4)
    ->Arg(5)
    ->Arg(8)
    ->Arg(10)
    ->Arg(16)
    ->Arg(20)
    ->Unit(benchmark::kMicrosecond);

// As choosing the tool does, on a canvas that was used before.
void chooseMosaic(benchmark::State& state)
{
    ScribbleArea canvas;
    canvas.resize(kPicturePx);
    canvas.setImage(picture());
    canvas.setMosaicBlur(int(state.range(0)));
    for (auto _ : state)
        canvas.setPaintTypeToMosaic();
}
BENCHMARK(chooseMosaic)->Arg(2)->Arg(20)->Unit(benchmark::kMicrosecond);

// With the memory of the two pictures still to be had.
void chooseMosaicFirst(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto canvas = std::make_unique<ScribbleArea>();
        canvas->resize(kPicturePx);
        canvas->setImage(picture());
        canvas->setMosaicBlur(int(state.range(0)));
        state.ResumeTiming();
        canvas->setPaintTypeToMosaic();
        state.PauseTiming();
        canvas.reset();
        malloc_trim(0);
        state.ResumeTiming();
    }
}
BENCHMARK(chooseMosaicFirst)->Arg(2)->Unit(benchmark::kMicrosecond);

void mosaicSegment(benchmark::State& state)
{
    ScribbleArea canvas;
    canvas.resize(kPicturePx);
    canvas.setImage(picture());
    canvas.setPaintTypeToMosaic();
    const Mouse mouse(&canvas);
    mouse.press(QPoint(1000, 1000));
    mouse.move(QPoint(1040, 1000));
    bool there = true;
    for (auto _ : state) {
        mouse.move(there ? QPoint(1000, 1000) : QPoint(1040, 1000));
        there = !there;
    }
}
BENCHMARK(mosaicSegment)->Unit(benchmark::kMicrosecond);

// Undo and redo of an edit of 200 x 200 pixels.
void undoAndRedo(benchmark::State& state)
{
    ScribbleArea canvas;
    canvas.resize(kPicturePx);
    canvas.setImage(picture());
    canvas.setPaintTypeToGraph();
    canvas.setGraphState(ScribbleArea::GRAPH_RECT);
    Mouse(&canvas).drag(QPoint(1000, 1000), QPoint(1197, 1197));
    canvas.completeScribble();
    canvas.setPaintTypeToScribble();
    for (auto _ : state) {
        canvas.undo();
        canvas.redo();
    }
}
BENCHMARK(undoAndRedo)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
