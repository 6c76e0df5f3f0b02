#include "toolkit/pattern.h"

#include "toolkit/atomic.h"
#include "toolkit/clock.h"
#include "toolkit/memory.h"
#include "toolkit/thread.h"

#define PCRE2_CODE_UNIT_WIDTH 0
#include <algorithm>
#include <cstring>
#include <pcre2.h>
#include <utility>

namespace toolkit {

/// The expression's own text follows, for the form that is compiled when it is first needed.
struct Pattern {
    int unitBytes;
    uint flags;
    bool unbroken; ///< what was tried at one place of a text decides about others
    size_t length, head;
    void* code;
    // The same to match to the end of a text, and with texts that may go on; null until they are needed, atomic.
    void *whole, *begun;
};

namespace {

// The engine exists three times, told apart by the end of each name.
template <int Bytes> struct Engine;
#define ORV_ENGINE(bytes, bits)                                                                                        \
    template <> struct Engine<bytes> {                                                                                 \
        using Unit = PCRE2_UCHAR##bits;                                                                                \
        using Code = pcre2_code_##bits;                                                                                \
        using Stack = pcre2_jit_stack_##bits;                                                                          \
        static constexpr auto makeGeneral = pcre2_general_context_create_##bits;                                       \
        static constexpr auto freeGeneral = pcre2_general_context_free_##bits;                                         \
        static constexpr auto makeCompile = pcre2_compile_context_create_##bits;                                       \
        static constexpr auto freeCompile = pcre2_compile_context_free_##bits;                                         \
        static constexpr auto setNesting = pcre2_set_parens_nest_limit_##bits;                                         \
        static constexpr auto setNewline = pcre2_set_newline_##bits;                                                   \
        static constexpr auto compile = pcre2_compile_##bits;                                                          \
        static constexpr auto jitCompile = pcre2_jit_compile_##bits;                                                   \
        static constexpr auto freeCode = pcre2_code_free_##bits;                                                       \
        static constexpr auto info = pcre2_pattern_info_##bits;                                                        \
        static constexpr auto makeContext = pcre2_match_context_create_##bits;                                         \
        static constexpr auto freeContext = pcre2_match_context_free_##bits;                                           \
        static constexpr auto makeData = pcre2_match_data_create_##bits;                                               \
        static constexpr auto freeData = pcre2_match_data_free_##bits;                                                 \
        static constexpr auto places = pcre2_get_ovector_pointer_##bits;                                               \
        static constexpr auto setLastStart = pcre2_set_offset_limit_##bits;                                            \
        static constexpr auto setSteps = pcre2_set_match_limit_##bits;                                                 \
        static constexpr auto setHeap = pcre2_set_heap_limit_##bits;                                                   \
        static constexpr auto match = pcre2_match_##bits;                                                              \
        static constexpr auto makeStack = pcre2_jit_stack_create_##bits;                                               \
        static constexpr auto freeStack = pcre2_jit_stack_free_##bits;                                                 \
        static constexpr auto useStack = pcre2_jit_stack_assign_##bits;                                                \
        static inline ORV_THREAD_LOCAL Stack* threadStack = nullptr;                                                   \
    };
ORV_ENGINE(1, 8)
ORV_ENGINE(2, 16)
ORV_ENGINE(4, 32)
#undef ORV_ENGINE

/// Calls `f` with the engine of a width.
template <class F> decltype(auto) withEngine(int unitBytes, F&& f) {
    if (unitBytes == 2) return f(Engine<2>());
    if (unitBytes == 4) return f(Engine<4>());
    return f(Engine<1>());
}

// Memory

void* takeBlock(size_t size, void*) { return allocBlock(size); }
void giveBlock(void* block, void*) { freeBlock(block); }

/// Room on the stack for the small records that a search needs; what doesn't fit becomes blocks.
class Scratch {
public:
    static void* take(size_t size, void* scratch) {
        auto self = static_cast<Scratch*>(scratch);
        size = (size + 15) & ~size_t(15);
        if (size > sizeof self->room - self->used) return allocBlock(size);
        self->used += size;
        return self->room + self->used - size;
    }
    static void give(void* place, void* scratch) {
        auto self = static_cast<Scratch*>(scratch);
        if (place < self->room || place >= self->room + sizeof self->room) freeBlock(place);
    }

private:
    size_t used = 0;
    alignas(16) char room[1024];
};

// The stack of compiled code: what needs little takes the thread's own, what needs more this one.

constexpr size_t firstStack = 64 << 10, largestStack = 4 << 20;

void freeThreadStacks(void*) {
    Engine<1>::freeStack(std::exchange(Engine<1>::threadStack, nullptr));
    Engine<2>::freeStack(std::exchange(Engine<2>::threadStack, nullptr));
    Engine<4>::freeStack(std::exchange(Engine<4>::threadStack, nullptr));
}
constexpr ThreadHooks stackHooks{nullptr, nullptr, freeThreadStacks};
int stackHooksSet = 0;

/// The running thread's; null without memory.
template <class E> typename E::Stack* threadStack() {
    if (E::threadStack) return E::threadStack;
    if (int unset = 0; compareExchange(stackHooksSet, unset, 1)) addThreadHooks(&stackHooks);
    threadNumber();
    return E::threadStack = E::makeStack(firstStack, largestStack, nullptr);
}

// Compiling

/// Whether the text has something that makes a place depend on what was tried at those before. Telling so of a text
/// that only looks like it does no harm.
template <class Unit> bool looksUnbroken(const Unit* text, size_t length) {
    auto stands = [&](size_t at, const char* word) {
        for (; *word; ++word, ++at)
            if (at >= length || text[at] != Unit(*word)) return false;
        return true;
    };
    for (size_t i = 0; i < length; ++i)
        if ((text[i] == '\\' && stands(i, "\\G")) || (text[i] == '(' && (stands(i, "(*COMMIT") || stands(i, "(*SKIP"))))
            return true;
    return false;
}

void setFault(PatternFault& fault, int error, size_t position) {
    fault.position = position;
    pcre2_get_error_message_8(error, reinterpret_cast<PCRE2_UCHAR8*>(fault.text), sizeof fault.text);
}

template <class E>
void* compileText(const Pattern& pattern, const void* text, size_t length, uint32_t options, PatternFault& fault) {
    options |= PCRE2_USE_OFFSET_LIMIT;
    if (!(pattern.flags & patternCaptures)) options |= PCRE2_NO_AUTO_CAPTURE;
    options |= pattern.flags & patternUnicode
                   ? PCRE2_UTF | PCRE2_UCP | PCRE2_MATCH_INVALID_UTF | PCRE2_NEVER_BACKSLASH_C
                   : PCRE2_NEVER_UTF;
    auto general = E::makeGeneral(takeBlock, giveBlock, nullptr);
    auto context = general ? E::makeCompile(general) : nullptr;
    typename E::Code* code = nullptr;
    if (context) {
        E::setNesting(context, patternNesting);
        E::setNewline(context, PCRE2_NEWLINE_LF);
        int error = 0;
        size_t position = 0;
        code = E::compile(static_cast<const typename E::Unit*>(text), length, options, &error, &position, context);
        if (!code) setFault(fault, error, std::min(position, length));
        // Without memory for its machine code the expression is interpreted.
        if (code) E::jitCompile(code, PCRE2_JIT_COMPLETE);
    } else
        setFault(fault, PCRE2_ERROR_NOMEMORY, 0);
    E::freeCompile(context);
    E::freeGeneral(general);
    return code;
}

/// The form that matches to the end of a text which may go on: the engine knows none, so the expression is followed by
/// a test for the end. What it may leave open at its own end, a quotation or a comment, is ended first.
template <class E> void* compileBegun(const Pattern& pattern, PatternFault& fault) {
    using Unit = typename E::Unit;
    constexpr size_t around = 16;
    auto made = static_cast<Unit*>(allocBlock((pattern.length + around) * sizeof(Unit)));
    auto text = reinterpret_cast<const Unit*>(&pattern + 1);
    void* code = nullptr;
    for (const char* end : {"\\E)\\z", "\r\n\\E)\\z"}) {
        if (!made || code) break;
        Unit* out = std::copy_n(text, pattern.head, made);
        for (const char* at = "(?:"; *at;) *out++ = Unit(*at++);
        out = std::copy_n(text + pattern.head, pattern.length - pattern.head, out);
        for (const char* at = end; *at;) *out++ = Unit(*at++);
        code = compileText<E>(pattern, made, size_t(out - made), 0, fault);
    }
    freeBlock(made);
    return code;
}

/// The form that a search needs; null without memory.
template <class E> const typename E::Code* codeFor(const Pattern& pattern, const PatternSearch& search) {
    using Code = typename E::Code;
    if (!search.whole) return static_cast<const Code*>(pattern.code);
    void*& place = search.partial ? const_cast<Pattern&>(pattern).begun : const_cast<Pattern&>(pattern).whole;
    void* made = loadAcquire(place);
    if (made) return static_cast<const Code*>(made);
    PatternFault fault;
    made = search.partial ? compileBegun<E>(pattern, fault)
                          : compileText<E>(pattern, &pattern + 1, pattern.length, PCRE2_ENDANCHORED, fault);
    void* other = nullptr;
    if (made && !compareExchange(place, other, made)) {
        E::freeCode(static_cast<Code*>(made));
        made = other;
    }
    return static_cast<const Code*>(made);
}

// Searching

constexpr size_t firstStretch = 256, longestStretch = size_t(1) << 15;
constexpr uint32_t interpreterKilobytes = 64 << 10;

/// Steps at one place of a stretch: a stretch is done in some milliseconds by compiled code, whatever it takes.
uint32_t stepsAt(size_t stretch) { return uint32_t(std::clamp<size_t>((size_t(1) << 20) / stretch, 64, 1 << 18)); }

/// `at`, or the start of the character, or of the line end of two, that it stands in.
template <class Unit> size_t atCharacter(const Unit* text, size_t at, bool unicode) {
    if (text[at] == '\n' && text[at - 1] == '\r') return at - 1;
    if constexpr (sizeof(Unit) == 1)
        for (size_t back = 0; unicode && back < 4 && back < at; ++back)
            if ((text[at - back] & 0xC0) != 0x80) return at - back;
    if constexpr (sizeof(Unit) == 2)
        if (unicode && (text[at] & 0xFC00) == 0xDC00 && (text[at - 1] & 0xFC00) == 0xD800) return at - 1;
    return at;
}

template <class E> class Search {
public:
    Search(const Pattern& pattern, const PatternSearch& search)
        : pattern(pattern), search(search), broken(!pattern.unbroken && !search.fixed && !search.whole),
          text(search.length ? static_cast<const Unit*>(search.text) : reinterpret_cast<const Unit*>(&pattern + 1)) {
        general = E::makeGeneral(Scratch::take, Scratch::give, &scratch);
        context = general ? E::makeContext(general) : nullptr;
        data = context ? E::makeData(1, general) : nullptr;
    }
    ~Search() {
        E::freeData(data);
        E::freeContext(context);
        E::freeGeneral(general);
    }
    Search(const Search&) = delete;

    PatternEnd run(size_t& from, size_t& to) {
        const auto code = codeFor<E>(pattern, search);
        if (!data || !code) return PatternEnd::NoMemory;
        E::setHeap(context, interpreterKilobytes);
        if (!broken) {
            stretch = search.fixed || search.whole ? 1 : search.length - search.first + 1;
            steps = stepsAt(stretch);
        }
        for (;;) {
            const size_t next = nextStretch();
            const bool last = !broken || next > search.length;
            E::setLastStart(context, search.fixed || search.whole ? at : last ? search.length : next - 1);
            E::setSteps(context, steps);
            const int result = E::match(code, text, search.length, at, options, data, context);
            if (result >= 0 || result == PCRE2_ERROR_PARTIAL) {
                const size_t* places = E::places(data);
                from = std::min(places[0], places[1]);
                to = std::max(places[0], places[1]);
                return result >= 0 ? PatternEnd::Found : PatternEnd::Partial;
            }
            if (result == PCRE2_ERROR_NOMATCH && last) return PatternEnd::None;
            const large now = processClockNanos();
            if (!begun) begun = before = now;
            if (now - begun >= search.budget) return PatternEnd::TimeUp;
            const large took = now - before;
            before = now;
            if (result == PCRE2_ERROR_NOMATCH)
                advance(next, took);
            else if (PatternEnd end = retry(result, took, search.budget - (now - begun)); end != PatternEnd::None)
                return end;
        }
    }

private:
    using Unit = typename E::Unit;

    /// The start of the stretch behind the one that begins at `at`.
    size_t nextStretch() const {
        if (!broken || search.length - at < stretch) return search.length + 1;
        const size_t next = atCharacter(text, at + stretch, pattern.flags & patternUnicode);
        return next > at ? next : at + stretch;
    }

    void advance(size_t next, large took) {
        at = next;
        options &= ~uint32_t(PCRE2_NO_JIT);
        // The interpreter looks through the whole text each time.
        const large calm = 2'000'000 + large(search.length);
        if (took > 8 * calm)
            stretch = std::max<size_t>(stretch / 2, 1);
        else if (took < calm)
            stretch = std::min(2 * stretch, most);
        if (most < longestStretch && ++done % 32 == 0) most *= 2;
        steps = stepsAt(stretch);
    }

    /// Prepares another try of the same stretch; what the search ends with if there can be none, else `None`.
    PatternEnd retry(int result, large took, large left) {
        switch (result) {
        case PCRE2_ERROR_JIT_STACKLIMIT:
            if (auto own = stackUsed ? nullptr : threadStack<E>()) {
                E::useStack(context, nullptr, own);
                stackUsed = true;
                return PatternEnd::None;
            }
            if (options & PCRE2_NO_JIT) return PatternEnd::TooDeep;
            options |= PCRE2_NO_JIT;
            return PatternEnd::None;
        case PCRE2_ERROR_MATCHLIMIT:
            if (broken && stretch > 1) {
                stretch = most = std::max<size_t>(stretch / 16, 1);
                steps = stepsAt(stretch);
                return PatternEnd::None;
            } else {
                if (steps == UINT32_MAX) return PatternEnd::TooDeep;
                // As many more as there is time for, going by how long those took.
                const double factor = took > 0 ? std::min(4.0, double(left) / double(took)) : 4.0;
                if (factor < 1.25) return PatternEnd::TimeUp;
                steps = uint32_t(std::min(steps * factor, double(UINT32_MAX)));
                return PatternEnd::None;
            }
        case PCRE2_ERROR_NOMEMORY:
            return PatternEnd::NoMemory;
        default:
            return PatternEnd::TooDeep;
        }
    }

    const Pattern& pattern;
    const PatternSearch& search;
    const bool broken; ///< the text is searched in stretches
    const Unit* text;
    size_t at = search.first, stretch = firstStretch, most = longestStretch;
    uint32_t steps = stepsAt(firstStretch), options = search.partial ? PCRE2_PARTIAL_HARD : 0;
    uint done = 0;
    bool stackUsed = false;
    large begun = 0, before = 0;
    Scratch scratch;
    decltype(E::makeGeneral(nullptr, nullptr, nullptr)) general;
    decltype(E::makeContext(nullptr)) context;
    decltype(E::makeData(0, nullptr)) data;
};

template <class E> uint patternInfo(const Pattern& pattern, uint32_t what) {
    uint32_t value = 0;
    E::info(static_cast<const typename E::Code*>(pattern.code), what, &value);
    return value;
}

} // namespace

Pattern* compilePattern(const void* text, size_t length, size_t head, int unitBytes, uint flags, PatternFault& fault) {
    const size_t bytes = length * size_t(unitBytes);
    const bool fits = length <= patternLimit;
    auto pattern = fits ? static_cast<Pattern*>(allocBlock(sizeof(Pattern) + bytes + 4)) : nullptr;
    if (!pattern) {
        setFault(fault, fits ? PCRE2_ERROR_NOMEMORY : PCRE2_ERROR_PATTERN_TOO_LARGE, 0);
        return nullptr;
    }
    *pattern = {unitBytes, flags, false, length, head, nullptr, nullptr, nullptr};
    if (bytes) std::memcpy(pattern + 1, text, bytes);
    withEngine(unitBytes, [&](auto engine) {
        using E = decltype(engine);
        pattern->unbroken = looksUnbroken(reinterpret_cast<const typename E::Unit*>(pattern + 1), length);
        pattern->code = compileText<E>(*pattern, pattern + 1, length, 0, fault);
    });
    if (pattern->code) return pattern;
    freeBlock(pattern);
    return nullptr;
}

void freePattern(Pattern* pattern) {
    if (!pattern) return;
    withEngine(pattern->unitBytes, [&](auto engine) {
        using E = decltype(engine);
        for (void* code : {pattern->code, pattern->whole, pattern->begun})
            E::freeCode(static_cast<typename E::Code*>(code));
    });
    freeBlock(pattern);
}

uint patternGroups(const Pattern& pattern) {
    return withEngine(pattern.unitBytes,
                      [&](auto engine) { return patternInfo<decltype(engine)>(pattern, PCRE2_INFO_CAPTURECOUNT); });
}

uint patternNames(const Pattern& pattern) {
    return withEngine(pattern.unitBytes,
                      [&](auto engine) { return patternInfo<decltype(engine)>(pattern, PCRE2_INFO_NAMECOUNT); });
}

PatternName patternName(const Pattern& pattern, uint index) {
    return withEngine(pattern.unitBytes, [&](auto engine) -> PatternName {
        using E = decltype(engine);
        const typename E::Unit* table = nullptr;
        E::info(static_cast<const typename E::Code*>(pattern.code), PCRE2_INFO_NAMETABLE, &table);
        const uint size = patternInfo<E>(pattern, PCRE2_INFO_NAMEENTRYSIZE);
        const auto* entry = table + size_t(index) * size;
        // The number stands in two bytes, or in one unit, ahead of the terminated name.
        constexpr uint head = sizeof(typename E::Unit) == 1 ? 2 : 1;
        const auto* name = entry + head;
        return {name, size_t(std::find(name, entry + size, 0) - name),
                head == 2 ? entry[0] * 256u + entry[1] : entry[0]};
    });
}

PatternEnd findPattern(const Pattern& pattern, const PatternSearch& search, size_t& from, size_t& to) {
    if (search.first > search.length) return PatternEnd::None;
    return withEngine(pattern.unitBytes, [&](auto engine) {
        using Unit = typename decltype(engine)::Unit;
        PatternSearch aligned = search;
        auto text = static_cast<const Unit*>(search.text);
        // A place inside a character counts as the one behind it.
        while (aligned.first && aligned.first < search.length && pattern.flags & patternUnicode &&
               aligned.first - search.first < 3 && atCharacter(text, aligned.first, true) < aligned.first &&
               text[aligned.first] != '\n')
            ++aligned.first;
        return Search<decltype(engine)>(pattern, aligned).run(from, to);
    });
}

} // namespace toolkit
