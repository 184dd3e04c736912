#pragma once

#include "model/menudocument.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <vector>

/// Wall-clock times, in milliseconds and sorted from fastest to slowest, of `runs` runs of
/// `measured`. `prepare` runs before each run, untimed (e.g. to hand every run a fresh copy of a
/// document).
template <typename Prepare, typename Measured>
std::vector<double> sortedMilliseconds(int runs, Prepare prepare, Measured measured)
{
    std::vector<double> times;
    for (int run = 0; run < std::max(1, runs); ++run) {
        prepare();
        QElapsedTimer timer;
        timer.start();
        measured();
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times;
}

/// Median wall-clock time, in milliseconds, of `runs` runs of `measured`, each after an untimed
/// `prepare`.
template <typename Prepare, typename Measured> double medianMilliseconds(int runs, Prepare prepare, Measured measured)
{
    const std::vector<double> times = sortedMilliseconds(runs, prepare, measured);
    return times[times.size() / 2];
}

/// The median and the slowest of a series of times, in milliseconds.
struct MedianAndWorst
{
    double median = 0;
    double worst = 0;
};

/// The median and the slowest of `times` (at least one).
inline MedianAndWorst medianAndWorst(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return MedianAndWorst { times[times.size() / 2], times.back() };
}

/// Lets the event loop run for `milliseconds`, as the editor's does between two edits.
inline void idle(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

/// A copy that shares nothing with `document`, so that timing a change does not include the copy.
inline MenuDocument detachedCopy(const MenuDocument& document)
{
    MenuDocument copy = document;
    copy.items.detach();
    return copy;
}
