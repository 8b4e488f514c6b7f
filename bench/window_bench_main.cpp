// The main() of the benchmarks that run real windows: the application is
// made first, on the offscreen platform.

#include <QApplication>
#include <QStandardPaths>

#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The browser's engine runs as root here, without a graphics card.
    qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-gpu");
    QStandardPaths::setTestModeEnabled(true);
    const QApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
