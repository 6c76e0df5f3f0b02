#include "tools/orv/catalogue.h"

#include "core/construct.h"
#include "module/packages.h"
#include "object/ZCompositeType.h"
#include "object/ZEnumType.h"
#include "object/ztype.h"
#include "tools/orv/where.h"

#include <algorithm>
#include <charconv>

namespace orv::tool {

namespace {

constexpr const glue::ClassRow* types[] = {glue::rowOf<PackageSection>(), glue::rowOf<ChangeCounter>(),
                                           glue::rowOf<PackageVersion>()};
constexpr const char* uses[] = {"orv.core.base", "orv.core.object"};
constexpr PackageRow ownPackages[] = {{"orv.tool.packages", ZPackage::Public, types, uses}};

ZString stringOf(std::string_view text) { return ZString(text.data(), int(text.size())); }
ZSelector nameOf(std::string_view text) { return ZSelector(text.data(), int(text.size())); }

} // namespace

std::string printed(const ZVariant& value) {
    ZString text;
    const ZMetaType* type = value.type();
    if (const ZEnumType* names = type ? type->enumType() : nullptr) {
        text = ZString(names->name(value.toInt()));
    } else if (type && type->compositeType()) {
        return printed(value.getProperty("name")) + " <" + printed(value.getProperty("address")) + ">";
    } else {
        text = value.toString();
    }
    char* bytes = text.astr();
    std::string out = bytes ? bytes : "";
    zfree(bytes);
    return out;
}

Catalogue::Catalogue() {
    open = registerPackages("orv.tool", ownPackages) && makeTypes();
    root = ZRetainPtrT<PackageSection>::adopt(open ? zmake<PackageSection>() : nullptr);
    // Buckets for some ten thousand keys.
    open = root && packages.setTypes(ztype<ZString>(), ztype<ZObject>()) && packages.init(0, 100, 16, 0, 0, 0);
    if (open) root->setSelector("all");
}
Catalogue::~Catalogue() = default;

bool Catalogue::makeTypes() {
    ZPackage* package = ZPackage::findPackage("orv.tool.packages");
    if (!package) return false;
    auto priority = ZRetainPtrT<ZEnumType>::adopt(zmake<ZEnumType>(package, ZSelector("Priority")));
    auto maintainer = ZRetainPtrT<ZCompositeType>::adopt(zmake<ZCompositeType>(package, ZSelector("Maintainer")));
    if (!priority || !maintainer) return false;
    priority->data().setExclusive(true);
    int value = 1;
    for (const char* name : {"required", "important", "standard", "optional", "extra"})
        if (!priority->add(ZSelector(name), value++)) return false;
    if (!maintainer->setMember("name", ztype<ZString>()) || !maintainer->setMember("address", ztype<ZString>()))
        return false;
    priorityType = priority.get();
    maintainerType = maintainer.get();
    const std::pair<const char*, ZMetaType*> typed[] = {
        {"Installed-Size", ztype<large>()},   {"Size", ztype<large>()},   {"Version", ztype<PackageVersion>()},
        {"Section", ztype<ZSelector>()},      {"Priority", priorityType}, {"Maintainer", maintainerType},
        {"Architecture", ztype<ZSelector>()},
    };
    for (auto [name, type] : typed) fields.emplace(name, FieldKind{ZSelector(name), type});
    return true;
}

std::string Catalogue::keyOf(const std::string& name, const std::string& architecture, const std::string& version) {
    return name + ":" + architecture + "=" + version;
}

size_t Catalogue::FieldHash::operator()(std::string_view name) const {
    size_t hash = 14695981039346656037u; // FNV-1a
    for (char c : name) hash = (hash ^ size_t(c >= 'A' && c <= 'Z' ? c + 32 : c)) * 1099511628211u;
    return hash;
}

Catalogue::FieldKind& Catalogue::fieldKind(std::string_view name) {
    auto known = fields.find(name);
    if (known == fields.end())
        known = fields.emplace(std::string(name), FieldKind{nameOf(name), ztype<ZString>()}).first;
    return known->second;
}

PackageSection* Catalogue::sectionFor(std::string_view name) {
    if (auto known = sections.find(name); known != sections.end()) return known->second;
    auto made = ZRetainPtrT<PackageSection>::adopt(zmake<PackageSection>());
    if (!made) return nullptr;
    made->setSelector(nameOf(name));
    made->setParent(root.get());
    sections.emplace(std::string(name), made.get());
    return made.get();
}

ZVariant Catalogue::maintainer(std::string_view text) const {
    const size_t bracket = text.find('<');
    std::string_view name = text.substr(0, bracket), address;
    if (bracket != text.npos) {
        address = text.substr(bracket + 1);
        address = address.substr(0, address.find('>'));
    }
    while (!name.empty() && name.back() == ' ') name.remove_suffix(1);
    void* made = maintainerType->createInstance();
    if (!made) return {};
    *static_cast<ZString*>(maintainerType->field(made, zsel<"name">())) = stringOf(name);
    *static_cast<ZString*>(maintainerType->field(made, zsel<"address">())) = stringOf(address);
    ZVariant value;
    value.setValue(maintainerType, made, false, false); // which takes it over
    return value;
}

ZVariant Catalogue::readAs(ZMetaType* type, std::string_view text) const {
    if (type == ztype<ZString>()) return stringOf(text);
    if (type == ztype<ZSelector>()) return nameOf(text);
    if (type == maintainerType) return maintainer(text);
    if (type != ztype<large>()) return readLiteral(type, std::string(text));
    large number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number >= 0 ? ZVariant(number) : ZVariant();
}
ZVariant Catalogue::read(const std::string& field, std::string_view text) const {
    ZMetaType* type = fieldType(field);
    return type ? readAs(type, text) : ZVariant();
}

bool Catalogue::add(const std::vector<StanzaReader::Field>& stanza, size_t line,
                    const std::function<void(const Damage&)>& tell) {
    auto value = [&](std::string_view wanted) {
        auto found =
            std::find_if(stanza.begin(), stanza.end(), [&](auto& field) { return sameField(field.name, wanted); });
        return found == stanza.end() ? std::string_view() : found->value;
    };
    const std::string_view name = value("Package"), version = value("Version"), section = value("Section");
    if (name.empty() || version.empty()) {
        tell({line, std::string("the stanza has no field ") + (name.empty() ? "Package" : "Version")});
        return true;
    }
    const std::string key = keyOf(std::string(name), std::string(value("Architecture")), std::string(version));
    const ZString keyText = stringOf(key);
    if (int index = packages.findKey(keyText); index >= 0) {
        if (index >= firstOfFile) tell({line, key + " is there twice"});
        return true;
    }
    PackageSection* parent = sectionFor(section.empty() ? "none" : section);
    auto object = ZRetainPtrT<ZObject>::adopt(zmake<ZObject>());
    if (!parent || !object) return false;
    object->setSelector(nameOf(name));
    for (const auto& field : stanza) {
        const FieldKind& kind = fieldKind(field.name);
        const ZVariant read = readAs(kind.type, field.value);
        if (!read.isNull() && !object->setDynamicProperty(kind.name, read, true)) return false;
        if (read.isNull())
            tell({line, key + ": " + std::string(field.name) + " is left out: \"" +
                            std::string(field.value.substr(0, 60)) + "\" can't be understood"});
    }
    object->setParent(parent);
    return packages.add(keyText, ZVariant(object.get()));
}

bool Catalogue::load(const StanzaReader::Source& source, const std::function<void(const Damage&)>& tell) {
    firstOfFile = count();
    StanzaReader reader(source, tell);
    std::vector<StanzaReader::Field> stanza;
    while (reader.next(stanza))
        if (!add(stanza, reader.line(), tell)) return false;
    return true;
}

bool Catalogue::bindTotals() {
    static constexpr const char* resum = "void resum()";
    bool done = true;
    for (auto& [name, section] : sections) {
        for (ZObject* package = section->getFirst(nullptr, ZSelector()); package; package = package->getNext())
            if (package->hasProperty(zsel<"Installed-Size">()))
                done &= package->bind(section, zsel<"Installed-Size">(), ZSelector(resum)) >= 0;
        section->resum();
        done &= section->bind(root.get(), zsel<"total">(), ZSelector(resum)) >= 0;
    }
    root->resum();
    return done;
}

ZObject* Catalogue::package(int index) const { return packages.entry(index).toObject(); }
std::string Catalogue::key(int index) const { return printed(packages.key(index)); }
ZObject* Catalogue::find(const std::string& key) const { return packages.variant(ZVariant(stringOf(key))).toObject(); }

std::vector<int> Catalogue::findAll(const std::string& name) const {
    std::vector<int> found;
    if (int index = packages.findKey(ZVariant(stringOf(name))); index >= 0) return {index};
    for (int i = 0; i < count(); ++i) {
        const std::string own = key(i);
        const size_t colon = own.find(':'), sign = own.find('=');
        if (own.substr(0, colon) == name || own.substr(0, sign) == name) found.push_back(i);
    }
    return found;
}

PackageSection* Catalogue::section(const std::string& name) const {
    auto known = sections.find(name);
    return known == sections.end() ? nullptr : known->second;
}

ZMetaType* Catalogue::fieldType(const std::string& name) const {
    const size_t dot = name.find('.');
    auto known = fields.find(std::string_view(name).substr(0, dot));
    if (known == fields.end()) return nullptr;
    if (dot == name.npos) return known->second.type;
    return known->second.type == maintainerType ? maintainerType->member(nameOf(std::string_view(name).substr(dot + 1)))
                                                : nullptr;
}

} // namespace orv::tool
