// Objects by name: made, read, written, called, copied, without a class of their own.
#include <core/ZCoreLib.h>
#include <core/ZRetainPtrT.h>
#include <object/ZMetaType.h>
#include <object/ZObject.h>
#include <value/ZVariant.h>

#include <cstdio>

namespace {

ZRetainPtrT<ZObject> page(const char* name, int width, int height) {
    auto made = ZRetainPtrT<ZObject>::adopt(ZObject::create("ZObject"));
    made->setSelector(name);
    // Properties that no class declares; true adds what isn't there.
    made->setDynamicProperty("width", width, true);
    made->setDynamicProperty("height", height, true);
    return made;
}

void print(const ZObject& object) {
    std::printf("%s:", object.selector().string());
    ZArrayT<ZSelector> names;
    object.dynamicPropertyNames(names);
    for (const ZSelector& name : names)
        std::printf(" %s=%s", name.string(), object.getProperty(name).toSelector().string());
    std::printf("\n");
}

} // namespace

int main() {
    ZCoreLib library("hello-object", false, false, true); // its destruction stops the library

    auto book = page("book", 210, 297), cover = page("cover", 210, 297);
    cover->setParent(book.get()); // the parent holds its children
    cover->setProperty("width", cover->getProperty("width").toInt() * 2);
    print(*cover);

    // A value is given as the type that is asked for. A property that isn't there is refused, and nothing changes.
    std::printf("as text: \"%s\"\n", cover->getProperty("width").toSelector().string());
    std::printf("a property that isn't there: %s\n", cover->setProperty("depth", 3) ? "set" : "refused");

    // Objects stand in a tree, and are found by name.
    book->findObject("cover", false)->setProperty("height", 300);
    std::printf("the cover is %d high\n", cover->getProperty("height").toInt());

    // Methods by their signature, as a script would call them.
    ZVariant copy = cover->invoke("ZType* copy() const", {});
    copy.setProperty("width", 100);
    std::printf("the copy is %d wide, the cover %d\n", copy.getProperty("width").toInt(),
                cover->getProperty("width").toInt());
    std::printf("children: %d\n", book->invoke("int countObjects() const", {}).toInt());

    // What a type offers is found at run time.
    std::printf("%s is a ZType: %s\n", cover->type()->getName().string(), cover->isType("ZType") ? "yes" : "no");
    return 0;
}
