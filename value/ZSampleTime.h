#pragma once

#include "text/ZTime.h"
#include "value/ZVArray.h"

/// A stop-watch that averages: each span from `start` to `stop` is a sample. A plain value of one thread.
class ORV_API ZSampleTime {
public:
    ZSampleTime() = default;

    void start();
    /// Keeps the span since `start`, unless it is shorter than the minimum. False without memory to keep it.
    bool stop();
    /// The mean of all samples in seconds, worked out anew after a `stop`; 0 without samples.
    real average();

    const ZVArray& samples() const { return sample; }
    /// How many samples whoever shows them wants to see; nothing is dropped by it.
    int samplingCount() const { return wanted; }
    void setSamplingCount(int count) { wanted = count; }
    /// In seconds.
    real minimumTime() const { return minimum; }
    void setMinimumTime(real seconds) { minimum = seconds; }

private:
    ZTime time;
    ZVArray sample;
    int wanted = 16;
    real averageTime = 0;
    real minimum = 1e-5;
    bool resetSample = true;
};
