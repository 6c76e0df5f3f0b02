#include "text/ZString.h"
#include "text/ZStringArg.h"

#include "core/ZError.h"
#include "text/number.h"

#include <cstring>

using namespace orv;
using detail::TextIn;
using detail::TextView;
using detail::withText;

namespace {

constexpr int mostArguments = 9; ///< that placeholders can name

/// What stands for a placeholder.
struct Piece {
    TextView text;
    char room[352]; ///< the digits of a number: as long as the largest real with the most decimals that it gets

    void setInteger(large value) { text = TextView(room, inttostr(room, sizeof room, value, 10, 0, false, false)); }
    void setReal(double value) {
        text = TextView(room, realtostr(room, sizeof room, value, 0, realPrecision(value, 0), U'.'));
    }
};

/// What a run needs beside the text.
struct Arguments {
    Piece pieces[mostArguments + 1]; ///< the code, then the arguments
    bool hasCode = false;
    int count = 0;

    void setCode(uint code) {
        hasCode = true;
        pieces[0].setInteger(code);
    }
    const Piece* piece(int number) const {
        return number == 0 ? (hasCode ? pieces : nullptr) : number <= count ? pieces + number : nullptr;
    }
};

/// Reads arguments by their types; texts have the width of `C`.
template <class C> void readArguments(Arguments& out, const char* types, var_arg* list) {
    va_list values;
    va_copy(values, list->list);
    for (; types && *types && out.count < mostArguments; ++types) {
        Piece& piece = out.pieces[++out.count];
        if (*types == 'i')
            piece.setInteger(va_arg(values, int));
        else if (*types == 'r')
            piece.setReal(va_arg(values, double));
        else if (const C* text = va_arg(values, const C*); *types == 's')
            piece.text = TextView(text, detail::givenLength(text, -1));
    }
    va_end(values);
}

void readArguments(Arguments& out, const ZStringArg* values, int count) {
    for (int i = 0; i < count && i < mostArguments; ++i) {
        Piece& piece = out.pieces[++out.count];
        if (values[i].type == 'i')
            piece.setInteger(values[i].integer);
        else if (values[i].type == 'r')
            piece.setReal(values[i].real);
        else if (values[i].type == 's')
            piece.text = values[i].text.view();
    }
}

/// The characters that a backslash takes their meaning from.
inline bool isSpecial(ichar code) {
    return code < 128 && code != 0 && std::strchr("\"#$%&():;<=>?[\\]^{}", char(code)) != nullptr;
}

/// Runs a text, and answers the units of the result; with a null `out` it only measures.
template <class C> size_t runText(C* out, const C* text, const C* end, const Arguments& arguments) {
    size_t done = 0;
    while (text < end) {
        C unit = *text++;
        if (unit == '\\' && text < end && isSpecial(ichar(std::make_unsigned_t<C>(*text))))
            unit = *text++;
        else if (unit == '%' && text < end) {
            if (*text == '%')
                ++text;
            else if (const Piece* piece = *text >= '0' && *text <= '9' ? arguments.piece(*text - '0') : nullptr) {
                ++text;
                done += withText(piece->text, [&](auto* from, int length) -> size_t {
                    if constexpr (sizeof(*from) == sizeof(C)) {
                        if (out && length) std::memcpy(out + done, from, size_t(length) * sizeof(C));
                        return size_t(length);
                    } else
                        return detail::transcode(out ? out + done : nullptr, out ? size_t(length) * 4 : 0, from,
                                                 size_t(length));
                });
                continue;
            }
        }
        if (out) out[done] = unit;
        ++done;
    }
    return done;
}

} // namespace

template <class C> bool ZString::runResource(const void* prepared) {
    auto& arguments = *static_cast<const Arguments*>(prepared);
    TextIn<C> text(view());
    if (text.failed) return false;
    size_t need = runText<C>(nullptr, text.text, text.text + text.length, arguments);
    if (need > size_t(maxCapacity)) return false;
    ZString made;
    if (need) {
        made.record = newRecord(detail::widthOf<C>, large(need), int(need));
        if (!made.record) return false;
        runText(made.record->units<C>(), text.text, text.text + text.length, arguments);
    }
    swap(made);
    return true;
}

// The six forms of each width.
#define ORV_EXEC_RES(name, C)                                                                                          \
    bool ZString::name(const char* types, ...) {                                                                       \
        var_arg list;                                                                                                  \
        va_start(list.list, types);                                                                                    \
        Arguments arguments;                                                                                           \
        readArguments<C>(arguments, types, &list);                                                                     \
        va_end(list.list);                                                                                             \
        return runResource<C>(&arguments);                                                                             \
    }                                                                                                                  \
    bool ZString::name(uint code, const char* types, ...) {                                                            \
        var_arg list;                                                                                                  \
        va_start(list.list, types);                                                                                    \
        Arguments arguments;                                                                                           \
        readArguments<C>(arguments, types, &list);                                                                     \
        va_end(list.list);                                                                                             \
        arguments.setCode(code);                                                                                       \
        return runResource<C>(&arguments);                                                                             \
    }                                                                                                                  \
    bool ZString::name##Arg(const ZStringArg* values, int count) {                                                     \
        Arguments arguments;                                                                                           \
        readArguments(arguments, values, count);                                                                       \
        return runResource<C>(&arguments);                                                                             \
    }                                                                                                                  \
    bool ZString::name##Arg(uint code, const ZStringArg* values, int count) {                                          \
        Arguments arguments;                                                                                           \
        readArguments(arguments, values, count);                                                                       \
        arguments.setCode(code);                                                                                       \
        return runResource<C>(&arguments);                                                                             \
    }
ORV_EXEC_RES(execResA, char)
ORV_EXEC_RES(execResW, wchar)
ORV_EXEC_RES(execResI, ichar)
#undef ORV_EXEC_RES

ZString::ZString(uint index, const char* types, var_arg* list) : ZString(int(index)) {
    Arguments arguments;
    readArguments<char>(arguments, types, list);
    if (runResource<char>(&arguments)) return;
    clear();
    ZError::fail();
}
