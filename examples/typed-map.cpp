// Containers whose types are known at run time only: one class for an array of anything, one for a map of anything.
#include <core/ZCoreLib.h>
#include <object/ZMetaType.h>
#include <object/ztype.h>
#include <text/ZBlendPos.h>
#include <value/ZVArray.h>
#include <value/ZVHashSet.h>
#include <value/ZVKeyMap.h>
#include <value/ZVSelectMap.h>
#include <value/ZVariant.h>

#include <cstdio>

int main() {
    ZCoreLib library("typed-map", false, false, true);

    // Named values of one type: options, settings, bags of properties. They keep the order in which they came.
    ZVSelectMap inks(ztype<real>());
    inks.set("cyan", 0.8);
    inks.set("yellow", 0.1);
    inks.set("black", "0.25"); // converted to the map's type
    inks.set("cyan", 0.7);     // replaced, and still first
    std::printf("%s:", inks.getValueType()->getName().string());
    for (int i = 0; i < int(inks.count()); ++i) std::printf(" %s %.2f", inks.key(i).string(), inks.entry(i).toReal());
    std::printf("\n");

    // A copy shares its items until one of the two is changed.
    ZVSelectMap darker = inks;
    darker.set("black", 0.75);
    std::printf("black %.2f and %.2f\n", inks.variant("black").toReal(), darker.variant("black").toReal());

    // Half way between the two, key for key.
    ZVSelectMap between;
    between.blendFrom(&inks, &darker, ZBlendPos(0.5));
    std::printf("black half way: %.2f\n", between.variant("black").toReal());

    // Keys of any type that compares.
    ZVKeyMap names(ztype<int>(), ztype<ZString>());
    for (int page : {3, 1, 2}) names.set(page, ZString(page == 1 ? "cover" : "page"));
    names.sort();
    std::printf("%d keys, the first is %d\n", int(names.count()), names.key(0).toInt());

    // A text in words becomes an array of names.
    ZVArray words(ZString("red green blue"));
    words.sort();
    std::printf("%d words, green at %d\n", int(words.count()), words.findPos(ZSelector("green")));

    // A set, made of an array; what is there twice counts once.
    ZVHashSet set(ztype<ZSelector>());
    set.add(words);
    set.add(ZSelector("red"));
    std::printf("%d in the set, blue %s\n", int(set.count()), set.contains(ZSelector("blue")) ? "too" : "not");

    // As a property it is a container of its object; `ZVariant` reaches into it without knowing its class.
    ZVariant value(ztype<ZVSelectMap>(), &inks);
    value.setProperty("yellow", 1);
    std::printf("%d items, yellow %.0f\n", value.itemCount(), value.getProperty("yellow").toReal());
    return 0;
}
