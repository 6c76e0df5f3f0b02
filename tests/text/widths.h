#pragma once

#include "core/memory.h"
#include "text/transcode.h"

#include <gtest/gtest.h>
#include <string>

using Widths = testing::Types<char, wchar, ichar>;

/// UTF-8 as text of another width; bytes that aren't become U+FFFD, but in UTF-8 they stay.
template <class C> std::basic_string<C> in(const std::string& bytes) {
    if constexpr (sizeof(C) == 1)
        return bytes;
    else {
        std::basic_string<C> out(orv::detail::transcode<C>(nullptr, 0, bytes.data(), bytes.size()), C());
        orv::detail::transcode(out.data(), out.size(), bytes.data(), bytes.size());
        return out;
    }
}
/// The way back, for messages and comparisons.
template <class C> std::string out(const std::basic_string<C>& text) {
    std::string bytes(orv::detail::transcode<char>(nullptr, 0, text.data(), text.size()), '\0');
    orv::detail::transcode(bytes.data(), bytes.size(), text.data(), text.size());
    return bytes;
}
template <class C> std::string out(const C* text) {
    return out(std::basic_string<C>(text ? text : in<C>("(null)").c_str()));
}
/// The text of a new block, which is freed.
template <class C> std::string taken(C* made) {
    std::string text = out(static_cast<const C*>(made));
    zfree(made);
    return text;
}
