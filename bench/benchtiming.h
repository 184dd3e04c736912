#pragma once

#include <QElapsedTimer>

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
