#include "tools/orv/words.h"

#include "core/ZCoreLib.h"
#include "core/ZHashMapT.h"
#include "core/construct.h"
#include "text/ZChar.h"
#include "text/ZFileInfo.h"
#include "text/ZFileName.h"
#include "text/transcode.h"
#include "toolkit/clock.h"
#include "toolkit/files.h"
#include "toolkit/system.h"
#include "toolkit/text.h"
#include "toolkit/utf8.h"
#include "tools/orv/command.h"
#include "tools/orv/json.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <set>
#include <thread>
#include <unistd.h>

namespace orv::tool {

namespace {

constexpr size_t fileLimit = size_t(1) << 30; // bytes of the largest text that is read

enum class Kind { Text, Binary, Compressed, Undecodable, Unreadable };
constexpr int kinds = 5;
constexpr const char* kindNames[kinds] = {"text", "binary", "compressed", "undecodable", "unreadable"};

using Block = std::unique_ptr<void, void (*)(const void*)>;
Block owned(void* block) { return {block, zfree}; }

/// What one thread has found.
struct Tally {
    ZSelectMapT<int> words;
    large total = 0, bytes = 0;
    large files[kinds] = {};
    std::vector<std::pair<size_t, Kind>> passedOver; // index of the file
    bool outOfMemory = false;
};

/// Whether a code point separates words, by its category; ASCII from a table.
class Separators {
public:
    Separators() {
        for (ichar c = 0; c < 128; ++c) ascii[c] = ZChar::wordSeparator(ZChar::category(c));
    }
    bool operator()(ichar c) const { return c < 128 ? ascii[c] : ZChar::wordSeparator(ZChar::category(c)); }

private:
    bool ascii[128];
};

bool count(Tally& tally, const char* word, size_t length) {
    ZSelector name;
    if (!name.setBytes(word, int(length))) return false;
    ++tally.total;
    if (int* known = tally.words.get(name)) {
        ++*known;
        return true;
    }
    return tally.words.set(name, 1);
}

/// Counts the words of UTF-8 text; false when there is no memory.
bool countText(Tally& tally, const char* at, const char* end, const Separators& separates) {
    const char* word = nullptr;
    while (at < end) {
        const char* start = at;
        if (!separates(detail::decodeCode(at, end))) {
            if (!word) word = start;
        } else if (word) {
            if (!count(tally, word, size_t(start - word))) return false;
            word = nullptr;
        }
    }
    return !word || count(tally, word, size_t(end - word));
}

bool begins(const char* data, size_t size, std::string_view magic) {
    return size >= magic.size() && std::memcmp(data, magic.data(), magic.size()) == 0;
}

/// gzip, xz, bzip2, zstd, zip and lz4 by their published magic bytes.
bool isCompressed(const char* data, size_t size) {
    using namespace std::string_view_literals;
    for (auto magic : {"\x1F\x8B"sv,
                       "\xFD"
                       "7zXZ\0"sv,
                       "BZh"sv, "\x28\xB5\x2F\xFD"sv, "PK\x03\x04"sv, "\x04\x22\x4D\x18"sv})
        if (begins(data, size, magic)) return true;
    return false;
}

/// 16-bit text behind a byte order mark as UTF-8; null when there is no memory.
Block fromWide(const char* data, size_t size, size_t& length) {
    bool bigFirst = byte(data[0]) == 0xFE;
    size_t units = size / 2 - 1;
    Block wide = owned(__zalloc(units * sizeof(wchar)));
    auto unit = static_cast<wchar*>(wide.get());
    if (!unit) return wide;
    for (size_t i = 0; i < units; ++i) {
        byte first = byte(data[2 * i + 2]), second = byte(data[2 * i + 3]);
        unit[i] = bigFirst ? wchar(first << 8 | second) : wchar(second << 8 | first);
    }
    length = detail::transcode(static_cast<char*>(nullptr), 0, unit, units);
    Block text = owned(__zalloc(length));
    if (text) detail::transcode(static_cast<char*>(text.get()), length, unit, units);
    return text;
}

Kind countFile(Tally& tally, const ZFileName& file, const Separators& separates) {
    size_t size = 0;
    Block content = owned(file.read(size, fileLimit));
    auto data = static_cast<const char*>(content.get());
    if (!data) return Kind::Unreadable;
    tally.bytes += large(size);
    if (isCompressed(data, size)) return Kind::Compressed;
    if (begins(data, size, "\xFF\xFE") || begins(data, size, "\xFE\xFF")) {
        size_t length = 0;
        Block text = fromWide(data, size, length);
        auto wide = static_cast<const char*>(text.get());
        tally.outOfMemory |= !wide || !countText(tally, wide, wide + length, separates);
        return Kind::Text;
    }
    if (begins(data, size, "\xEF\xBB\xBF")) data += 3, size -= 3;
    if (std::memchr(data, 0, std::min(size, size_t(8000)))) return Kind::Binary;
    if (!toolkit::utf8Valid(data, size)) return Kind::Undecodable;
    tally.outOfMemory |= !countText(tally, data, data + size, separates);
    return Kind::Text;
}

std::string utf8(const ZString& text) {
    Block copy = owned(text.astr());
    return copy ? static_cast<const char*>(copy.get()) : "";
}

/// The files below the folders, each once, in the order of their names.
class Listing {
public:
    /// False if something of it is missing.
    bool add(const std::string& folder, const std::string& match) {
        ZFailGuard guard;
        ZFileName start(folder.c_str());
        ZString pattern(match.c_str());
        bool whole = !start.isEmpty();
        auto wanted = [&](const ZString& name, bool) {
            if (match.empty()) return true;
            ZString file = ZFileName(name).fileName();
            whole &= !file.isEmpty();
            return file.match(pattern);
        };
        ZFileName::Names found;
        if (!start.isFile())
            whole &= ZFileName::scanFiles(found, start, true, {}, wanted);
        else if (wanted(start, false))
            whole &= note(start);
        for (const ZString& name : std::as_const(found)) whole &= note(name);
        return whole && !guard.rose();
    }
    /// Threads take files in this order.
    void sort() {
        std::sort(files.begin(), files.end(), [](auto& a, auto& b) { return a.compare(b) < 0; });
    }
    const std::vector<ZFileName>& all() const { return files; }

private:
    bool note(const ZString& name) {
        toolkit::FileStatus status;
        Block path = owned(name.astr());
        if (!path) return false;
        // A file that has gone since is passed over.
        if (toolkit::fileStatus(static_cast<const char*>(path.get()), status) != 0) return true;
        if (seen.insert({status.device, status.inode}).second) files.emplace_back(name);
        return true;
    }

    std::vector<ZFileName> files;
    std::set<std::pair<ularge, ularge>> seen;
};

/// A row of the table.
struct Row {
    ZSelector word;
    int count;
    size_t key, keyLength; // of its collation key in the store of keys
};

/// All words with their counts, in the order asked for; the rows that aren't asked for may be in any order behind.
class Table {
public:
    bool merge(std::vector<Tally>& tallies) {
        ZSelectMapT<int>& all = tallies[0].words;
        for (size_t i = 1; i < tallies.size(); ++i) {
            for (auto at = tallies[i].words.begin(); at != tallies[i].words.end(); ++at)
                if (int* known = all.get(at.key()))
                    *known += at.value();
                else if (!all.set(at.key(), at.value()))
                    return false;
            tallies[i].words.clear();
        }
        for (auto at = all.begin(); at != all.end(); ++at) rows.push_back({at.key(), at.value(), 0, 0});
        return true;
    }
    void sort(bool byText, size_t top) {
        if (byText) {
            for (Row& row : rows) addKey(row);
            order([this](const Row& a, const Row& b) { return textBefore(a, b); }, top);
            return;
        }
        // Only rows that reach into the table need a key, to stand in order among equal counts.
        auto more = [](const Row& a, const Row& b) { return a.count > b.count; };
        size_t shown = std::min(top, rows.size());
        if (shown < rows.size() && shown > 0) {
            std::nth_element(rows.begin(), rows.begin() + long(shown - 1), rows.end(), more);
            int least = rows[shown - 1].count;
            auto end = std::partition(rows.begin(), rows.end(), [least](const Row& row) { return row.count >= least; });
            for (auto at = rows.begin(); at != end; ++at) addKey(*at);
            std::sort(rows.begin(), end, [&](auto& a, auto& b) { return before(a, b); });
            return;
        }
        for (Row& row : rows) addKey(row);
        std::sort(rows.begin(), rows.end(), [&](auto& a, auto& b) { return before(a, b); });
    }
    std::vector<Row> rows;

private:
    template <class F> void order(F less, size_t top) {
        auto end = rows.begin() + long(std::min(top, rows.size()));
        std::partial_sort(rows.begin(), end, rows.end(), less);
    }
    void addKey(Row& row) {
        size_t length = size_t(row.word.length());
        row.key = keys.size();
        keys.resize(row.key + 4 * length + 16);
        row.keyLength = toolkit::sortKey(&keys[row.key], keys.size() - row.key, row.word.string(), length);
        size_t room = keys.size() - row.key;
        keys.resize(row.key + row.keyLength);
        if (row.keyLength > room) toolkit::sortKey(&keys[row.key], row.keyLength, row.word.string(), length);
    }
    bool textBefore(const Row& a, const Row& b) const {
        std::basic_string_view<byte> keyA(&keys[a.key], a.keyLength), keyB(&keys[b.key], b.keyLength);
        if (int order = keyA.compare(keyB)) return order < 0;
        return std::strcmp(a.word.string(), b.word.string()) < 0;
    }
    bool before(const Row& a, const Row& b) const { return a.count != b.count ? a.count > b.count : textBefore(a, b); }

    std::basic_string<byte> keys;
};

/// The share of the work that is done, on a terminal.
class Progress {
public:
    Progress(std::FILE* log, size_t all) : log(isatty(fileno(log)) ? log : nullptr), all(all) {}
    void show(size_t done) const {
        if (log && all) std::fprintf(log, "\r%zu of %zu files", done, all), std::fflush(log);
    }
    ~Progress() {
        if (log) std::fprintf(log, "\r\033[K");
    }

private:
    std::FILE* log;
    size_t all;
};

std::vector<Tally> countFiles(const std::vector<ZFileName>& files, int threads, std::FILE* log) {
    std::vector<Tally> tallies(static_cast<size_t>(threads));
    std::atomic<size_t> next{0}, running{size_t(threads)};
    Separators separates;
    auto work = [&](Tally& tally) {
        for (size_t i; !tally.outOfMemory && (i = next.fetch_add(1)) < files.size();) {
            Kind kind = countFile(tally, files[i], separates);
            ++tally.files[int(kind)];
            if (kind != Kind::Text) tally.passedOver.emplace_back(i, kind);
        }
        --running;
    };
    Progress progress(log, files.size());
    std::vector<std::thread> team;
    for (Tally& tally : tallies) team.emplace_back(work, std::ref(tally));
    for (int tick = 1; running > 0; ++tick) {
        std::this_thread::sleep_for(std::chrono::milliseconds(tick < 20 ? 2 : 100));
        if (tick >= 20) progress.show(std::min(next.load(), files.size()));
    }
    for (auto& thread : team) thread.join();
    return tallies;
}

struct Sums {
    large words = 0, bytes = 0, files[kinds] = {};
    bool outOfMemory = false;
};

Sums sum(const std::vector<Tally>& tallies) {
    Sums sums;
    for (const Tally& tally : tallies) {
        sums.words += tally.total;
        sums.bytes += tally.bytes;
        sums.outOfMemory |= tally.outOfMemory;
        for (int kind = 0; kind < kinds; ++kind) sums.files[kind] += tally.files[kind];
    }
    return sums;
}

void namePassedOver(const std::vector<Tally>& tallies, const std::vector<ZFileName>& files, std::FILE* log) {
    std::vector<std::pair<size_t, Kind>> all;
    for (const Tally& tally : tallies) all.insert(all.end(), tally.passedOver.begin(), tally.passedOver.end());
    std::sort(all.begin(), all.end());
    for (auto& [file, kind] : all) std::fprintf(log, "%s: %s\n", kindNames[int(kind)], utf8(files[file]).c_str());
}

void printTable(const Table& table, size_t top, const Sums& sums, std::FILE* out) {
    for (size_t i = 0; i < std::min(top, table.rows.size()); ++i)
        std::fprintf(out, "%10d  %s\n", table.rows[i].count, table.rows[i].word.string());
    std::fprintf(out, "%10lld  words, %zu different\n", sums.words, table.rows.size());
}

void printJson(const Table& table, size_t top, const Sums& sums, std::FILE* out) {
    std::fprintf(out, "{\"total\": %lld, \"different\": %zu, \"bytes\": %lld, \"files\": {", sums.words,
                 table.rows.size(), sums.bytes);
    for (int kind = 0; kind < kinds; ++kind)
        std::fprintf(out, "%s\"%s\": %lld", kind ? ", " : "", kindNames[kind], sums.files[kind]);
    std::fprintf(out, "}, \"words\": [");
    for (size_t i = 0; i < std::min(top, table.rows.size()); ++i)
        std::fprintf(out, "%s\n  {\"text\": %s, \"count\": %d}", i ? "," : "",
                     jsonText(table.rows[i].word.string()).c_str(), table.rows[i].count);
    std::fprintf(out, "\n]}\n");
}

int run(const WordOptions& options, std::FILE* out, std::FILE* log) {
    Listing listing;
    int exit = Done;
    for (const std::string& folder : options.folders)
        if (!listing.add(folder, options.match)) {
            complain("words", folder + ": can't be read", log);
            exit = Failed;
        }
    listing.sort();
    size_t processors = std::max(1u, std::thread::hardware_concurrency());
    int threads = int(options.threads > 0 ? size_t(options.threads) : processors);
    std::vector<Tally> tallies = countFiles(listing.all(), threads, log);
    if (options.verbose) namePassedOver(tallies, listing.all(), log);
    Sums sums = sum(tallies);
    if (sums.files[int(Kind::Unreadable)]) exit = Failed;
    Table table;
    if (sums.outOfMemory || !table.merge(tallies)) {
        complain("words", "out of memory", log);
        return Failed;
    }
    size_t top = options.top > 0 ? size_t(options.top) : table.rows.size();
    table.sort(options.byText, top);
    (options.json ? printJson : printTable)(table, top, sums, out);
    std::fprintf(log, "%lld texts", sums.files[0]);
    for (int kind = 1; kind < kinds; ++kind)
        if (sums.files[kind]) std::fprintf(log, ", %lld %s", sums.files[kind], kindNames[kind]);
    std::fprintf(log, "; %.1f MB read by %d threads\n", double(sums.bytes) / 1e6, threads);
    return std::fflush(out) == 0 && !std::ferror(out) ? exit : Failed;
}

} // namespace

int countWords(const WordOptions& options, std::FILE* out, std::FILE* log) {
    large start = toolkit::processClockNanos();
    int exit = Failed;
    {
        ZCoreLib library("orv", false, false, true);
        if (ZCoreLib::valid())
            exit = run(options, out, log);
        else
            complain("words", "the library can't be started", log);
    }
    std::fprintf(log, "%.3f s, at most %.1f MB of memory\n", double(toolkit::processClockNanos() - start) / 1e9,
                 double(toolkit::peakMemory()) / 1e6);
    return exit;
}

void addWords(CLI::App& app, int& exit) {
    auto options = std::make_shared<WordOptions>();
    auto order = std::make_shared<std::string>("count");
    CLI::App* words = app.add_subcommand("words", "Counts the words of all texts below some folders");
    words->add_option("folder", options->folders, "Folders, or single files; each file counts once")->required();
    words->add_option("--top", options->top, "Show only so many rows")->check(CLI::PositiveNumber);
    words->add_option("--sort", *order, "By falling count, or by text in collation order")
        ->check(CLI::IsMember({"count", "text"}))
        ->capture_default_str();
    words->add_option("--threads", options->threads, "Threads that read and count; one a processor if not given")
        ->check(CLI::Range(1, 256));
    words->add_option("--match", options->match, "Only files whose name matches, with * and ?");
    words->add_flag("--json", options->json, "Write JSON");
    words->add_flag("--verbose", options->verbose, "Name the files that are passed over");
    words->footer(
        "The table goes to standard output, everything else to standard error. Files that are binary, compressed\n"
        "or not UTF-8 (or UTF-16 with a byte order mark) are counted and passed over.");
    words->callback([options, order, &exit] {
        options->byText = *order == "text";
        exit = countWords(*options, stdout, stderr);
    });
}

} // namespace orv::tool
