#include "tools/orv/packages.h"

#include "core/ZCoreLib.h"
#include "core/construct.h"
#include "object/ZEnumType.h"
#include "object/ztype.h"
#include "text/ZRegExp.h"
#include "toolkit/epoch.h"
#include "tools/orv/catalogue.h"
#include "tools/orv/command.h"
#include "tools/orv/json.h"
#include "tools/orv/where.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace orv::tool {

namespace {

constexpr const char* command = "packages";
constexpr int mostTold = 20; ///< of what is damaged in one file

// Where stanzas come from

/// A file, the standard input, or what the package manager's own tool unpacks of a compressed list.
class Input {
public:
    explicit Input(const std::string& file) {
        if (file == "-") {
            from = STDIN_FILENO;
        } else if (isPacked(file)) {
            unpack(file);
        } else {
            from = open(file.c_str(), O_RDONLY | O_CLOEXEC);
            if (from < 0) failure = std::strerror(errno);
        }
    }
    ~Input() { finish(); }
    Input(const Input&) = delete;

    size_t read(char* bytes, size_t size) {
        ssize_t got = -1;
        while (from >= 0 && (got = ::read(from, bytes, size)) < 0 && errno == EINTR) {}
        if (got < 0 && failure.empty()) failure = std::strerror(errno);
        return got < 0 ? 0 : size_t(got);
    }
    /// What went wrong; empty if nothing did.
    std::string finish() {
        if (from > STDIN_FILENO) close(from);
        from = -1;
        int status = 0;
        if (child > 0 && waitpid(child, &status, 0) == child && status != 0 && failure.empty())
            failure = "it can't be unpacked";
        child = -1;
        return failure;
    }

private:
    static bool isPacked(const std::string& file) {
        for (const char* ending : {".lz4", ".xz", ".gz", ".bz2", ".zst", ".lzma"}) {
            const size_t length = std::strlen(ending);
            if (file.size() > length && file.compare(file.size() - length, length, ending) == 0) return true;
        }
        return false;
    }
    void unpack(const std::string& file) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            failure = std::strerror(errno);
            return;
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        const char* program = "/usr/lib/apt/apt-helper";
        const std::string path = file[0] == '-' ? "./" + file : file; // no option of that program
        const char* arguments[] = {program, "cat-file", path.c_str(), nullptr};
        const int error = posix_spawn(&child, program, &actions, nullptr, const_cast<char**>(arguments), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
        from = ends[0];
        if (error) {
            child = -1;
            failure = std::string(program) + ": " + std::strerror(error);
        }
    }

    int from = -1;
    pid_t child = -1;
    std::string failure;
};

/// A folder's package lists, in order; any other file as it is.
std::vector<std::string> filesOf(const std::vector<std::string>& given) {
    std::vector<std::string> files;
    for (const std::string& name : given) {
        std::error_code error;
        if (!std::filesystem::is_directory(name, error)) {
            files.push_back(name);
            continue;
        }
        const size_t before = files.size();
        for (std::filesystem::directory_iterator at(name, error), end; !error && at != end; at.increment(error))
            if (at->path().filename().string().find("_Packages") != std::string::npos)
                files.push_back(at->path().string());
        std::sort(files.begin() + std::ptrdiff_t(before), files.end());
        if (files.size() == before) files.push_back(name); // to be complained of
    }
    return files;
}

/// Shows on a terminal how far a long work has come.
class Count {
public:
    explicit Count(std::FILE* log) : log(isatty(fileno(log)) ? log : nullptr) {}
    ~Count() {
        if (shown) std::fputs("\r\x1b[K", log);
    }
    void show(int packages) {
        if (!log || packages % 4096 != 0 || packages == shown) return;
        std::fprintf(log, "\r%d packages", packages);
        std::fflush(log);
        shown = packages;
    }

private:
    std::FILE* log;
    int shown = 0;
};

// What is printed

std::string value(const ZObject& object, const ZSelector& name) {
    const ZVariant held = object.getProperty(name);
    return held.isNull() ? "" : printed(held);
}
large sizeOf(const ZObject& object) { return object.getProperty(zsel<"Installed-Size">()).toLarge(); }

std::string jsonValue(const ZVariant& value) {
    return value.type() == ztype<large>() ? printed(value) : jsonText(printed(value));
}

/// An object with the same property, each bound to the other's: a circle, which ends after one round.
class Twin {
public:
    Twin(ZObject& object, const ZSelector& name)
        : field(name), twin(ZRetainPtrT<ZObject>::adopt(zmake<ZObject>())),
          counter(ZRetainPtrT<ChangeCounter>::adopt(zmake<ChangeCounter>())) {
        if (!twin || !counter || !twin->setDynamicProperty(field, object.getProperty(field), true)) return;
        object.xbind(twin.get(), field, field);
        for (ZObject* side : {&object, twin.get()}) side->bind(counter.get(), field, zsel<"void add()">());
    }
    std::string value() const { return twin ? printed(twin->getProperty(field)) : ""; }
    int settings() const { return counter ? counter->count() : 0; }

private:
    ZSelector field;
    ZRetainPtrT<ZObject> twin;
    ZRetainPtrT<ChangeCounter> counter;
};

struct Run {
    const PackageOptions& options;
    Catalogue& catalogue;
    std::FILE *out, *log;
    bool failed = false;
    bool misunderstood = false; ///< what was asked

    void complainOf(const std::string& message) {
        complain(command, message, log);
        failed = true;
    }

    void load();
    bool select(std::vector<int>& chosen);
    void printSections();
    void printPackages(const std::vector<int>& chosen);
    void printOne(int index);
    void show();
    void set(const std::string& change);
    void set(int index, const std::string& field, const std::string& text);
};

void Run::load() {
    Count progress(log);
    for (const std::string& file : filesOf(options.files)) {
        Input input(file);
        int told = 0;
        auto tell = [&](const Damage& damage) {
            if (++told <= mostTold) complainOf(file + ":" + std::to_string(damage.line) + ": " + damage.what);
        };
        auto read = [&](char* bytes, size_t size) {
            progress.show(catalogue.count());
            return input.read(bytes, size);
        };
        if (!catalogue.load(read, tell)) return complainOf("there is no memory for all packages");
        if (told > mostTold) complainOf(file + ": " + std::to_string(told - mostTold) + " more like these");
        if (std::string fault = input.finish(); !fault.empty()) complainOf(file + ": " + fault);
    }
    if (!catalogue.bindTotals()) complainOf("there is no memory for all bindings");
}

/// The packages that the options ask for; false if an option can't be understood.
bool Run::select(std::vector<int>& chosen) {
    std::unique_ptr<Where> condition;
    if (!options.where.empty()) {
        TextFault fault;
        auto typeOf = [&](const std::string& name) { return catalogue.fieldType(name); };
        condition = Where::read(options.where, typeOf, fault);
        if (!condition) {
            complainOf("--where, column " + std::to_string(fault.column) + ": " + fault.what);
            constexpr size_t shown = 100;
            if (options.where.size() <= shown && options.where.find_first_of("\t\n\r") == std::string::npos)
                std::fprintf(log, "    %s\n    %*s\n", options.where.c_str(), int(fault.column), "^");
            misunderstood = true;
            return false;
        }
    }
    ZRegExp pattern;
    if (!options.match.empty() && !pattern.setPattern(ZString(options.match.c_str()), ZRegExp::UCDGroup)) {
        const std::string_view before(options.match.data(), size_t(std::max(pattern.errorPosition(), 0)));
        const auto column = std::count_if(before.begin(), before.end(), [](char c) { return (c & 0xC0) != 0x80; });
        complainOf("--match, column " + std::to_string(column + 1) + ": " + printed(pattern.errorText()));
        misunderstood = true;
        return false;
    }
    const PackageSection* section = nullptr;
    if (!options.section.empty() && !(section = catalogue.section(options.section))) {
        complainOf("there is no section \"" + options.section + "\"");
        return false;
    }
    for (int i = 0; i < catalogue.count(); ++i) {
        const ZObject* package = catalogue.package(i);
        if (section && package->getParent() != section) continue;
        if (!options.match.empty() && pattern.find(ZString(package->selector())) < 0) {
            if (!pattern.gaveUp()) continue;
            complainOf("--match: " + catalogue.key(i) + ": " + printed(pattern.errorText()));
            return false;
        }
        if (condition && !condition->matches(*package)) continue;
        chosen.push_back(i);
    }
    return true;
}

void Run::printSections() {
    std::vector<const PackageSection*> sections;
    for (const ZObject* at = catalogue.all()->getFirst(nullptr, ZSelector()); at; at = at->getNext())
        sections.push_back(static_cast<const PackageSection*>(at));
    std::sort(sections.begin(), sections.end(), [](const PackageSection* a, const PackageSection* b) {
        return std::strcmp(a->selector().string(), b->selector().string()) < 0;
    });
    const PackageSection& all = *catalogue.all();
    // Asked as a script would, by the text of the method.
    const double mean = all.invoke("real meanSize() const", {}).toReal();
    if (options.json) {
        std::fputs("{\"sections\": [", out);
        const char* between = "";
        for (const PackageSection* section : sections) {
            std::fprintf(out, "%s{\"name\": %s, \"packages\": %d, \"installedSize\": %lld}", between,
                         jsonText(section->selector().string()).c_str(), section->packages(), section->total());
            between = ",\n ";
        }
        std::fprintf(out, "],\n \"packages\": %d, \"installedSize\": %lld, \"meanSize\": %.1f}\n", all.packages(),
                     all.total(), mean);
        return;
    }
    std::fprintf(out, "%-28s %8s %12s\n", "section", "packages", "KiB");
    for (const PackageSection* section : sections)
        std::fprintf(out, "%-28s %8d %12lld\n", section->selector().string(), section->packages(), section->total());
    std::fprintf(out, "%-28s %8d %12lld   %.1f KiB a package\n", "all", all.packages(), all.total(), mean);
}

void Run::printPackages(const std::vector<int>& chosen) {
    large total = 0;
    const char* between = "";
    if (options.json) std::fputs("{\"packages\": [", out);
    for (int index : chosen) {
        const ZObject& package = *catalogue.package(index);
        total += sizeOf(package);
        if (options.json) {
            std::fputs(between, out);
            printOne(index);
            between = ",\n ";
        } else {
            std::fprintf(out, "%-60s %10lld  %s\n", catalogue.key(index).c_str(), sizeOf(package),
                         package.getParent()->selector().string());
        }
    }
    std::fprintf(out, options.json ? "],\n \"count\": %zu, \"installedSize\": %lld}\n" : "%zu packages, %lld KiB\n",
                 chosen.size(), total);
}

/// A package with all its fields, in the order of its stanza.
void Run::printOne(int index) {
    const ZObject& package = *catalogue.package(index);
    ZArrayT<ZSelector> names;
    package.dynamicPropertyNames(names);
    if (options.json) std::fprintf(out, "{\"key\": %s", jsonText(catalogue.key(index)).c_str());
    for (const ZSelector& name : names) {
        const ZVariant held = package.getProperty(name);
        if (options.json)
            std::fprintf(out, ", %s: %s", jsonText(name.string()).c_str(), jsonValue(held).c_str());
        else
            std::fprintf(out, "%s: %s\n", name.string(), printed(held).c_str());
    }
    if (options.json) std::fputc('}', out);
}

void Run::show() {
    const std::vector<int> found = catalogue.findAll(options.show);
    if (found.empty()) return complainOf("there is no package \"" + options.show + "\"");
    const char* between = options.json ? "[" : "";
    for (int index : found) {
        std::fputs(between, out);
        printOne(index);
        between = options.json ? ",\n " : "\n";
    }
    if (options.json) std::fputs("]\n", out);
}

/// "NAME.PROPERTY=VALUE", where the name may be a whole key, with "." and "=" in it, and the property
/// "Maintainer.name".
void Run::set(const std::string& change) {
    for (size_t sign = change.find('='); sign != change.npos; sign = change.find('=', sign + 1))
        for (size_t dot = change.rfind('.', sign); dot != change.npos;
             dot = dot ? change.rfind('.', dot - 1) : change.npos) {
            const std::vector<int> found = catalogue.findAll(change.substr(0, dot));
            if (found.empty()) continue;
            if (found.size() > 1)
                return complainOf("\"" + change.substr(0, dot) + "\" may be " + catalogue.key(found[0]) + " or " +
                                  catalogue.key(found[1]) + "; give the whole key");
            return set(found[0], change.substr(dot + 1, sign - dot - 1), change.substr(sign + 1));
        }
    complainOf("--set " + change + ": expected NAME.PROPERTY=VALUE with the name of a package");
}

void Run::set(int index, const std::string& field, const std::string& text) {
    ZObject& package = *catalogue.package(index);
    const std::string key = catalogue.key(index);
    const ZSelector name(field.c_str());
    const ZVariant before = package.getProperty(name);
    if (before.isNull()) return complainOf(key + " has no field \"" + field + "\"");
    if (sameField(field, "Section")) return complainOf("the section of a package can't be set");
    const ZVariant after = catalogue.read(field, text);
    if (after.isNull())
        return complainOf("\"" + text + "\" is no " + catalogue.fieldType(field)->getName().string() + " for " + field);
    std::FILE* trace = options.json ? log : out;
    std::fprintf(trace, "%s.%s: %s -> %s\n", key.c_str(), field.c_str(), printed(before).c_str(),
                 printed(after).c_str());
    PackageSection::changed = [trace](const PackageSection& section, large old) {
        std::fprintf(trace, "  %s.total: %lld -> %lld\n", section.selector().string(), old, section.total());
    };
    Twin twin(package, name);
    if (!package.setProperty(name, after)) complainOf("it can't be set");
    PackageSection::changed = nullptr;
    if (twin.settings())
        std::fprintf(trace, "  a twin that is bound both ways: %s -> %s, after %d settings\n", printed(before).c_str(),
                     twin.value().c_str(), twin.settings());
}

} // namespace

int listPackages(const PackageOptions& options, std::FILE* out, std::FILE* log) {
    ZCoreLib library("orv", false, false, true);
    Catalogue catalogue;
    if (!catalogue.isOpen()) {
        complain(command, "the library can't be started", log);
        return Failed;
    }
    Run run{options, catalogue, out, log};
    run.load();
    for (const std::string& change : options.set) run.set(change);
    if (!options.show.empty()) {
        run.show();
    } else if (!options.where.empty() || !options.section.empty() || !options.match.empty()) {
        if (std::vector<int> chosen; run.select(chosen)) run.printPackages(chosen);
    } else if (options.set.empty() || options.json) {
        run.printSections();
    }
    if (std::fflush(out) != 0 || std::ferror(out)) run.complainOf("the answer can't be written");
    return run.misunderstood ? Usage : run.failed ? Failed : Done;
}

void addPackages(CLI::App& app, int& exit) {
    auto options = std::make_shared<PackageOptions>();
    CLI::App* sub = app.add_subcommand(
        "packages", "Sums up the packages of a Debian system by section, or tells which ones fit a condition");
    sub->add_option(
        "FILE", options->files,
        "status file or package list, also compressed; \"-\" for the standard input; a folder for the lists "
        "in it; /var/lib/dpkg/status without it");
    auto where =
        sub->add_option("--where", options->where,
                        "only those for which it holds: NAME OP VALUE with and, or, not and brackets, as in "
                        "'Installed-Size > 20000 and "
                        "not Section = libs'; a field that isn't there matches nothing, so that \"not\" of it holds");
    auto section = sub->add_option("--section", options->section, "only those of a section");
    auto match =
        sub->add_option("--match", options->match, "only those of whose name a part matches a regular expression");
    sub->add_option("--show", options->show, "all fields of one: NAME, NAME:ARCH or NAME:ARCH=VERSION")
        ->excludes(where)
        ->excludes(section)
        ->excludes(match);
    sub->add_option("--set", options->set, "set a property, NAME.PROPERTY=VALUE, and tell how the change travels")
        ->expected(1)
        ->take_all();
    sub->add_flag("--json", options->json, "print JSON");
    sub->callback([options, &exit] {
        if (options->files.empty()) options->files.push_back("/var/lib/dpkg/status");
        exit = listPackages(*options, stdout, stderr);
    });
}

} // namespace orv::tool
