// Values for the debugger. A comment "p EXPRESSION => TEXT" tells what gdb has to print when `stopHere` is reached:
// "…" stands for anything.

#include "core/ZCoreLib.h"
#include "core/ZHashSetT.h"
#include "core/ZHashTreeT.h"
#include "core/ZSelectorSpace.h"
#include "core/construct.h"
#include "object/ZObject.h"
#include "text/ZString.h"
#include "value/ZVariant.h"

#include <cstring>

namespace {

struct Node : ZTreeItemT<int, Node> {
    int number;
    explicit Node(int number) : number(number) {}
    int key() const { return number; }
};

struct alignas(16) Wide {
    long low, high;
};

[[gnu::noinline]] void stopHere() { asm volatile("" ::: "memory"); }

} // namespace

int main() {
    ZCoreLib library("sample", false, false, true);

    // Names
    ZSelector none, name("width"), method("int   foo(const ZString &, int)"), path("a.b.c"), odd("say \"\\\" \xC3\xBC");
    ZSelectorSpace::space().setPermanentLimit(1);
    ZSelector counted("two words"), goes("goes");
    [[maybe_unused]] uint gone = goes.key();
    [[maybe_unused]] uint far = 0xFFFFFFFF;
    // p none => <empty>
    // p name => "width" Name
    // p method => "int foo(const ZString&, int)" Method
    // p path => "a.b.c" UID
    // p odd => "say \"\\\" ü" Any
    // p counted => "two words" Names
    // p *(ZSelector*)&gone => <selector … isn't in the space>
    // p *(ZSelector*)&far => <selector 4294967295 isn't in the space>

    // Texts
    ZString empty, narrow("gr\xC3\xBCn\n\x01"), wide(u"gr\u00FCn \U0001F600"), widest(U"\U0001F600"), torn("a\xFFz");
    ZString held(u"held"), longer;
    held.internalize();
    for (int i = 0; i < 25; ++i) longer.append("0123456789");
    alignas(ZString) char damage[sizeof(ZString)], freed[sizeof(ZString)];
    std::memset(damage, 0x40, sizeof damage);
    std::memset(freed, 0, sizeof freed);
    uint lost = 8000000;
    std::memcpy(freed + sizeof(void*), &lost, sizeof lost);
    // p empty => ""
    // p narrow => "grün\n\001"
    // p wide => u"grün 😀"
    // p widest => U"😀"
    // p torn => "a\\xffz"
    // p held => u"held" #1
    // p longer => "0123456789012345678901234567890123456789"...
    // p *(ZString*)damage => <no memory at 0x4040404040404048>
    // p *(ZString*)freed => <internal string 8000000 isn't held>

    // Containers
    ZArrayT<int> numbers;
    for (int i = 1; i < 4; ++i) numbers.append(i * i);
    ZArrayT<ZString> texts;
    texts.append(narrow);
    texts.append(held);
    ZArrayT<Wide> wides;
    wides.append(Wide{1, 2});
    ZArrayT<double> nothing;
    ZHashMapT<ZString, ZKeyValueT<ZString, int>> map;
    map.set(wide, 7);
    map.set(narrow, 8);
    ZSelectMapT<ZArrayT<int>> lists;
    lists.set(name, numbers);
    ZHashSetT<ZSelector> set;
    set.add(path);
    set.add(name);
    ZHashTreeT<int, Node> tree;
    for (int i = 20; i < 22; ++i) tree.add(zmake<Node>(i));
    // p numbers => ZArrayT<int> of 3 = {1, 4, 9}
    // p texts => ZArrayT<ZString> of 2 = {"grün\n\001", u"held" #1}
    // p wides => ZArrayT<(anonymous namespace)::Wide> of 1 = {{low = 1, high = 2}}
    // p nothing => ZArrayT<double> of 0
    // p map => ZHashMapT<ZString, ZKeyValueT<ZString, int> > of 2 = {[u"grün 😀"] = 7, ["grün\n\001"] = 8}
    // p lists => ZSelectMapT<ZArrayT<int> > of 1 = {["width" Name] = ZArrayT<int> of 3 = {1, 4, 9}}
    // p set => ZHashSetT<ZSelector> of 2 = {"a.b.c" UID, "width" Name}
    // p tree => ZHashTreeT<int, (anonymous namespace)::Node> of 2 = {… in a tree, … 20}, {… in a tree, … 21}}

    // Values and objects
    ZVariant nil, whole(-7), fraction(0.25f), yes(true), big(ularge(1) << 63), word(path), sentence(narrow);
    auto object = zmake<ZObject>();
    object->setSelector(name);
    ZVariant holder(object);
    // p nil => null
    // p whole => int -7
    // p fraction => float 0.25
    // p yes => bool true
    // p big => ularge 9223372036854775808
    // p word => ZSelector "a.b.c" UID
    // p sentence => ZString "grün\n\001"
    // p holder => "width" ZObject at 0x…
    // p *object => "width" ZObject at 0x…

    goes.clear();
    stopHere();
    holder.clear();
    object->release();
}
