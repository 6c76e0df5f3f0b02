#pragma once

#include "object/typeKinds.h"

#include <cstddef>
#include <type_traits>

/// The texts of C++ types at compile time: as signatures spell them and as types are registered.
namespace orv::glue {

/// A text as a template argument.
template <size_t N> struct FixedText {
    char text[N];
    consteval FixedText(const char (&source)[N]) {
        for (size_t i = 0; i < N; ++i) text[i] = source[i];
    }
};

/// A zero-ended text made at compile time.
template <size_t N> struct Chars {
    char text[N + 1] = {};
    constexpr operator const char*() const { return text; }
};

/// A part of a text that lives as long as the program.
struct NamePart {
    const char* text;
    size_t length;
};

// How a type is spelled. A type without a row here is named as the compiler names it: classes and enums.

/// The spellings under which a C++ type is registered; the one that made texts use comes first.
template <class T> inline constexpr const char* spellings[2] = {};
template <> inline constexpr const char* spellings<void>[2] = {"void"};
template <> inline constexpr const char* spellings<bool>[2] = {"bool"};
template <> inline constexpr const char* spellings<char>[2] = {"char"};
template <> inline constexpr const char* spellings<int8>[2] = {"int8"};
template <> inline constexpr const char* spellings<byte>[2] = {"byte"};
template <> inline constexpr const char* spellings<int16>[2] = {"short", "int16"};
template <> inline constexpr const char* spellings<word>[2] = {"word"};
template <> inline constexpr const char* spellings<int>[2] = {"int"};
template <> inline constexpr const char* spellings<uint>[2] = {"uint"};
template <> inline constexpr const char* spellings<long>[2] = {"long"};
template <> inline constexpr const char* spellings<unsigned long>[2] = {"ulong"};
template <> inline constexpr const char* spellings<large>[2] = {"large"};
template <> inline constexpr const char* spellings<ularge>[2] = {"ularge"};
template <> inline constexpr const char* spellings<float>[2] = {"float"};
template <> inline constexpr const char* spellings<real>[2] = {"real", "double"};
template <> inline constexpr const char* spellings<wchar>[2] = {"wchar"};
template <> inline constexpr const char* spellings<ichar>[2] = {"ichar"};
template <> inline constexpr const char* spellings<TypeKinds::Type>[2] = {"ZMetaType::Type"};
template <> inline constexpr const char* spellings<TypeKinds::Flags>[2] = {"ZMetaType::Flags"};

template <class T> constexpr NamePart compilerName() {
    const char* at = __PRETTY_FUNCTION__;
    while (!(at[0] == 'T' && at[1] == ' ' && at[2] == '=' && at[3] == ' ')) ++at;
    at += 4;
    const char* end = at;
    while (*end && *end != ';') ++end;
    if (!*end) --end; // the "]"
    return {at, size_t(end - at)};
}
template <class T> inline constexpr NamePart nameOf = compilerName<T>();

/// Without what stands in the angle brackets.
template <class T> constexpr NamePart templateName() {
    NamePart name = nameOf<T>;
    size_t length = 0;
    while (length < name.length && name.text[length] != '<') ++length;
    return {name.text, length};
}

/// Collects a text; without room it only counts.
struct TextSink {
    char* out = nullptr;
    size_t length = 0;
    char last = 0;

    constexpr void put(char c) {
        if (out) out[length] = c;
        ++length;
        last = c;
    }
    constexpr void put(const char* text) {
        while (*text) put(*text++);
    }
    constexpr void put(NamePart part) {
        for (size_t i = 0; i < part.length; ++i) put(part.text[i]);
    }
};

template <class T> constexpr void writeType(TextSink& out);
template <class... A> constexpr void writeTypes(TextSink& out) {
    bool first = true;
    ((first ? void() : out.put(", "), first = false, writeType<A>(out)), ...);
}

template <class T> struct Instance { static constexpr bool ofTemplate = false; };
template <template <class...> class X, class... A> struct Instance<X<A...>> {
    static constexpr bool ofTemplate = true;
    static constexpr void write(TextSink& out) { writeTypes<A...>(out); }
    static constexpr const char* match(const char* at);
};

template <class T> constexpr void writeType(TextSink& out) {
    if constexpr (std::is_lvalue_reference_v<T>) {
        writeType<std::remove_reference_t<T>>(out);
        out.put('&');
    } else if constexpr (std::is_pointer_v<T>) {
        writeType<std::remove_pointer_t<T>>(out);
        out.put(std::is_const_v<T> ? "* const" : "*");
    } else if constexpr (std::is_const_v<T>) {
        out.put("const ");
        writeType<std::remove_const_t<T>>(out);
    } else if constexpr (spellings<T>[0] != nullptr) {
        out.put(spellings<T>[0]);
    } else if constexpr (Instance<T>::ofTemplate) {
        out.put(templateName<T>());
        out.put('<');
        Instance<T>::write(out);
        out.put(out.last == '>' ? " >" : ">");
    } else {
        out.put(nameOf<T>);
    }
}

/// Runs `write` twice: once to count, once to write.
template <class Write> constexpr auto makeText(Write write) {
    constexpr size_t length = [] {
        TextSink count;
        Write{}(count);
        return count.length;
    }();
    Chars<length> made;
    TextSink out{made.text};
    write(out);
    return made;
}

/// The text under which a type is registered: "ZHashMapT<ZSelector, ZRetainPtrT<ZMetaType> >".
template <class T> inline constexpr auto typeText = makeText([](TextSink& out) { writeType<T>(out); });

// Matching a written text. Each function answers what stands behind the match; null for none.

constexpr bool isNameChar(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
constexpr const char* matchText(const char* at, const char* text) {
    while (at && *text) at = *at == *text++ ? at + 1 : nullptr;
    return at;
}
constexpr const char* matchWord(const char* at, NamePart word) {
    if (!at) return nullptr;
    for (size_t i = 0; i < word.length; ++i)
        if (*at++ != word.text[i]) return nullptr;
    return isNameChar(*at) ? nullptr : at;
}
constexpr const char* matchWord(const char* at, const char* word) {
    at = matchText(at, word);
    return at && !isNameChar(*at) ? at : nullptr;
}

template <class T> constexpr const char* matchType(const char* at) {
    if (!at) return nullptr;
    if constexpr (std::is_lvalue_reference_v<T>) {
        return matchText(matchType<std::remove_reference_t<T>>(at), "&");
    } else if constexpr (std::is_pointer_v<T>) {
        return matchText(matchType<std::remove_pointer_t<T>>(at), std::is_const_v<T> ? "* const" : "*");
    } else if constexpr (std::is_const_v<T>) {
        return matchType<std::remove_const_t<T>>(matchText(at, "const "));
    } else if constexpr (spellings<T>[0] != nullptr) {
        const char* end = matchWord(at, spellings<T>[0]);
        if constexpr (spellings<T>[1] != nullptr)
            if (!end) end = matchWord(at, spellings<T>[1]);
        return end;
    } else if constexpr (Instance<T>::ofTemplate) {
        at = matchText(matchWord(at, templateName<T>()), "<");
        if (at) at = Instance<T>::match(at);
        return at ? matchText(at, at[-1] == '>' ? " >" : ">") : nullptr;
    } else {
        return matchWord(at, nameOf<T>);
    }
}
template <class... A> constexpr const char* matchTypes(const char* at) {
    bool first = true;
    ((at = first ? at : matchText(at, ", "), first = false, at = matchType<A>(at)), ...);
    return at;
}
template <template <class...> class X, class... A> constexpr const char* Instance<X<A...>>::match(const char* at) {
    return matchTypes<A...>(at);
}

// What a wrong row calls; the compiler's message names it.

void signatureIsNotInNormalForm();
void resultIsNotSpelledAsRegistered();
void parametersAreNotSpelledAsRegistered();
void typeIsNotSpelledAsRegistered();

/// `text` is "RESULT NAME(PARAMETERS)", every type in a registered spelling and all of it in the normal form of
/// selectors; anything else doesn't compile. `open`: a last parameter "..." follows.
template <class R, class... A> constexpr const char* checkedSignature(const char* text, const char* name, bool open) {
    const char* at = matchType<R>(text);
    if (!at) resultIsNotSpelledAsRegistered();
    at = matchText(matchText(matchText(at, " "), name), "(");
    if (!at) signatureIsNotInNormalForm();
    at = matchTypes<A...>(at);
    if (open) at = matchText(at, sizeof...(A) ? ", ..." : "...");
    at = matchText(at, ")");
    if (!at || *at) parametersAreNotSpelledAsRegistered();
    return text;
}

template <class T> constexpr const char* checkedType(const char* text) {
    const char* end = matchType<T>(text);
    if (!end || *end) typeIsNotSpelledAsRegistered();
    return text;
}

/// The text of a signature, made from its types: for templates and for types that a macro can't spell.
template <FixedText Name, bool Open, class R, class... A>
inline constexpr auto signatureText = makeText([](TextSink& out) {
    writeType<R>(out);
    out.put(' ');
    out.put(Name.text);
    out.put('(');
    writeTypes<A...>(out);
    if (Open) out.put(sizeof...(A) ? ", ..." : "...");
    out.put(')');
});
template <class T, class... A>
inline constexpr auto constructorText = makeText([](TextSink& out) {
    writeType<T>(out);
    out.put('(');
    writeTypes<A...>(out);
    out.put(')');
});
template <class T>
inline constexpr auto destructorText = makeText([](TextSink& out) {
    out.put('~');
    writeType<T>(out);
    out.put("()");
});

} // namespace orv::glue
