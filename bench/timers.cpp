// How close the system clock's waits come to their length: many waits of 2 to 6 seconds run at
// once (a coarse timer may end those up to 5 % early), and the figures say how early the
// earliest and how late the latest ended. A wait must never end early.
#include "platform/Clock.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    SystemClock clock;
    constexpr int waits = 40;
    std::vector<double> ratios;
    ratios.reserve(waits);
    QElapsedTimer elapsed;
    elapsed.start();
    int open = waits;
    for (int i = 0; i < waits; ++i) {
        const double seconds = 2.0 + 4.0 * i / (waits - 1);
        clock.schedule(seconds, &app, [&, seconds] {
            ratios.push_back(double(elapsed.nsecsElapsed()) / 1e9 / seconds);
            if (--open == 0) {
                app.quit();
            }
        });
    }
    app.exec();
    const auto [earliest, latest] = std::minmax_element(ratios.begin(), ratios.end());
    const auto early = std::count_if(ratios.begin(), ratios.end(), [](double r) { return r < 1.0; });
    std::printf("timers: %d waits of 2–6 s at once\n", waits);
    std::printf("  ended early: %lld of %d\n", static_cast<long long>(early), waits);
    std::printf("  earliest: %.4f of its length\n", *earliest);
    std::printf("  latest:   %.4f of its length\n", *latest);
    return early == 0 ? 0 : 1;
}
