#pragma once

#include "core/ZError.h"
#include "text/ZString.h"
#include "text/strtable.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

/// The UTF-8 of a string.
inline std::string utf8(const ZString& text) {
    char* copy = text.astr();
    std::string out = copy ? copy : "";
    zfree(copy);
    return out;
}

/// The bytes of a string, well-formed or not.
inline std::string plain(const ZString& text) {
    orv::detail::TextIn<char> bytes(text.view());
    return std::string(bytes.text, size_t(bytes.length));
}

/// A UTF-8 text in a form.
inline ZString inForm(const std::string& text, ZString::Type type) {
    ZString made(text.c_str(), int(text.size()));
    made.setType(type);
    return made;
}

/// The forms that hold text themselves.
inline const ZString::Type widths[] = {ZString::Char, ZString::WChar, ZString::IChar};

/// Calls `f(text, type)` with a text in every form.
template <class F> void inEveryForm(const std::string& text, F f) {
    for (ZString::Type type : widths) f(inForm(text, type), type);
    f(inForm(text, ZString::Internal), ZString::Internal);
}

/// Opens the table of internal texts for a test, and sees that none is left.
class StringTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(orv::strtable::open()); }
    void TearDown() override {
        EXPECT_EQ(orv::strtable::texts(), 0);
        EXPECT_EQ(zrecover(), 0);
        orv::strtable::close();
    }
};
