#include "value/ZSampleTime.h"

#include "object/ztype.h"

void ZSampleTime::start() {
    time = ZTime();
    time.start();
}
bool ZSampleTime::stop() {
    time.stop();
    const real span = time.seconds();
    resetSample = true;
    if (span < minimum) return true;
    return (sample.hasType() || sample.setType(ztype<real>())) && sample.appendItem(&span);
}
real ZSampleTime::average() {
    if (!resetSample) return averageTime;
    real sum = 0;
    for (uint i = 0; i < sample.count(); ++i) sum += *static_cast<const real*>(std::as_const(sample).get(int(i)));
    averageTime = sample.isEmpty() ? 0 : sum / sample.count();
    resetSample = false;
    return averageTime;
}
