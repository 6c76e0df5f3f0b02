#include "gauge.h"

#include <core/ZCoreLib.h>
#include <core/ZRetainPtrT.h>
#include <module/packages.h>
#include <object/ztype.h>
#include <value/ZVariant.h>

#include <cstdio>

namespace {

constexpr const orv::glue::ClassRow* types[] = {orv::glue::rowOf<Gauge>(), orv::glue::rowOf<Reading>()};
constexpr const char* uses[] = {"orv.core.object"};
constexpr orv::PackageRow packages[] = {{"plant.gauges", ZPackage::Public, types, uses}};
constexpr orv::PackageRow taken[] = {{"orv.core.object", ZPackage::Public, types, uses}};

bool run() {
    auto boiler = ZRetainPtrT<ZObject>::adopt(ZObject::create("Gauge"));
    if (!boiler) return false;
    boiler->setProperty(zsel<"level">(), 120);
    std::printf("%s %d %s\n", boiler->type()->getName().string(), boiler->getProperty("level").toInt(),
                boiler->enumName("State", boiler->getProperty("state").toInt()).string());
    std::printf("above 100: %d\n", boiler->invoke("int above(int)", {100}).toInt());
    const Reading read(7, 0.5);
    ZVariant reading(ztype<Reading>(), &read);
    std::printf("scaled %g of %s\n", reading.invoke("double scaled()", {}).toReal(),
                ztype<Reading>()->package()->selector().string());
    return boiler->type() == ztype<Gauge>() && ztype<Gauge>()->isType(ztype<ZObject>());
}

} // namespace

int main() {
    bool good = true;
    // Each start knows the types anew.
    for (int start = 0; start < 2; ++start) {
        ZCoreLib library("plant", false, false, true);
        good &= !orv::registerPackages("other", taken) && orv::registerPackages("plant", packages) &&
                !orv::registerPackages("plant", packages);
        good &= run();
    }
    return good ? 0 : 1;
}
