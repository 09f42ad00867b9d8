// Screens of text that replace each other at 1,000 × 800: the two photographs that are taken first, and every
// frame of each transition. Times are those of the thread's own processor time: on a busy machine the worst
// of many frames would otherwise say how busy it is.

#include "support/KRManualClock.h"
#include "toolkit/navigation/KRNavigationController.h"
#include "toolkit/navigation/KRNavigationItem.h"
#include "toolkit/transitions/KRScreenshot.h"
#include "toolkit/transitions/KRTransitionView.h"

#include <QApplication>
#include <QPainter>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>
#include <map>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr QSize WindowSize(1000, 800);

class TextView final : public QWidget {
protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().color(QPalette::Base));
        for (int y = 20; y < height(); y += 20) {
            painter.drawText(10,
                y,
                QStringLiteral(
                    "Reading about tide tables before the walk tomorrow; line %1, and then some words "
                    "to the right of it that fill the rest")
                    .arg(y));
        }
    }
};

class TextScreen final : public KRViewController {
public:
    void loadView() override { setView(std::make_unique<TextView>()); }
    void viewDidLoad() override { navigationItem()->setTitle(QStringLiteral("Tides")); }
};

// Of all threads: the painter shares large areas out.
double processorMilliseconds()
{
    timespec time {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct Screens {
    Screens()
    {
        window.resize(WindowSize);
        switcher.setTargetView(&content);
        content.setGeometry(window.rect());
        switcher.setTargetFrame(window.rect());
        switcher.switchToViewController(shown, KRTransitionNone);
        other->view()->resize(WindowSize);
        window.show();
        QCoreApplication::processEvents();
    }

    KRManualClock clock;
    QWidget window;
    QWidget content { &window };
    KRViewControllerPtr shown = std::make_shared<KRNavigationController>(std::make_shared<TextScreen>());
    KRViewControllerPtr other = std::make_shared<KRNavigationController>(std::make_shared<TextScreen>());
    KRViewControllerSwitcher switcher;
};

void transitionFrames(benchmark::State& state)
{
    Screens screens;
    // By kind and number of the frame.
    std::map<std::pair<int, int>, std::vector<double>> frames;
    for ([[maybe_unused]] auto iteration : state) {
        double total = 0;
        for (int kind = KRTransitionFade; kind <= KRTransitionFancy; ++kind) {
            screens.switcher.switchToViewController(screens.other, kind);
            std::swap(screens.shown, screens.other);
            QCoreApplication::processEvents();
            for (int number = 0;; ++number) {
                const double start = processorMilliseconds();
                screens.clock.advance(KRViewControllerSwitcherTransition::FrameInterval);
                QCoreApplication::processEvents();
                const double frame = processorMilliseconds() - start;
                // The last one paints the new screen itself.
                if (!screens.switcher.transitionView())
                    break;
                frames[{ kind, number }].push_back(frame);
                total += frame;
            }
        }
        state.SetIterationTime(total / 1e3);
    }
    std::vector<double> medians;
    for (const auto& [frame, times] : frames)
        medians.push_back(median(times));
    state.counters["frames"] = double(medians.size());
    state.counters["median_ms"] = median(medians);
    state.counters["worst_ms"] = *std::max_element(medians.begin(), medians.end());
    for (int kind = KRTransitionFade; kind <= KRTransitionFancy; ++kind) {
        double worst = 0;
        for (const auto& [frame, times] : frames)
            worst = frame.first == kind ? std::max(worst, median(times)) : worst;
        state.counters["worst_of_" + std::to_string(kind)] = worst;
    }
}
BENCHMARK(transitionFrames)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

void snapshots(benchmark::State& state)
{
    Screens screens;
    std::vector<double> both;
    for ([[maybe_unused]] auto iteration : state) {
        const double start = processorMilliseconds();
        for (const KRViewControllerPtr& screen : { screens.shown, screens.other })
            benchmark::DoNotOptimize(CreateCGImageScreenshot(*screen->view()));
        both.push_back(processorMilliseconds() - start);
        state.SetIterationTime(both.back() / 1e3);
    }
    state.counters["median_ms"] = median(both);
}
BENCHMARK(snapshots)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(50);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
