// Standing rules between objects: a change of one property sets another, an event of one object calls a method of
// another, and nobody of them knows of it.
#include <core/ZCoreLib.h>
#include <core/ZRetainPtrT.h>
#include <core/construct.h>
#include <object/ZBinding.h>
#include <object/ZMethodPtr.h>
#include <object/ZObject.h>
#include <value/ZVariant.h>

#include <cstdio>

namespace {

using Object = ZRetainPtrT<ZObject>;

Object object(const char* name) {
    auto made = Object::adopt(ZObject::create("ZObject"));
    made->setSelector(name);
    return made;
}
int number(const Object& of, const char* property) { return of->getProperty(property).toInt(); }

} // namespace

int main() {
    ZCoreLib library("bind-properties", false, false, true);

    // A slider sets the zoom of a view. What the target lacks is made.
    Object slider = object("slider"), view = object("view");
    slider->setDynamicProperty("position", 100, true);
    slider->bind(view.get(), "position", "zoom");
    slider->setProperty("position", 150);
    std::printf("position %d, zoom %d\n", number(slider, "position"), number(view, "zoom"));

    // The other way too: a circle, which ends after one round.
    view->bind(slider.get(), "zoom", "position");
    view->setProperty("zoom", 80);
    std::printf("zoom %d, position %d\n", number(view, "zoom"), number(slider, "position"));

    // Higher priorities come first; a rule can be switched off.
    Object label = object("label");
    const int place = slider->bind(label.get(), "position", "text");
    ZBinding::setPriority(place, ZBinding::High);
    slider->setProperty("position", 60);
    ZBinding::enable(place, false);
    slider->setProperty("position", 70);
    std::printf("position %d, zoom %d, text %d\n", number(slider, "position"), number(view, "zoom"),
                number(label, "text"));

    // A rule ends with either side, or when it is taken back.
    label = Object();
    slider->unbind(view.get(), "position", "zoom");
    slider->setProperty("position", 10);
    std::printf("position %d, zoom %d\n", number(slider, "position"), number(view, "zoom"));
    return 0;
}
