// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/xsettings.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace tarnwick::platform {
namespace {

/// Composes the property as a settings daemon does.
class Property {
 public:
    explicit Property(bool bigEndian, std::uint32_t count) : bigEndian_(bigEndian) {
        number(bigEndian ? 1 : 0, 1);
        number(0, 1);
        number(0, 2);
        number(7, 4);
        number(count, 4);
    }
    Property& integer(const std::string& name, std::uint32_t value) {
        header(0, name);
        number(value, 4);
        return *this;
    }
    Property& text(const std::string& name, const std::string& value) {
        header(1, name);
        number(static_cast<std::uint32_t>(value.size()), 4);
        padded(value);
        return *this;
    }
    Property& color(const std::string& name) {
        header(2, name);
        for (int i = 0; i < 4; ++i) {
            number(0x1234, 2);
        }
        return *this;
    }
    std::vector<std::byte> bytes;

 private:
    void header(std::uint32_t type, const std::string& name) {
        number(type, 1);
        number(0, 1);
        number(static_cast<std::uint32_t>(name.size()), 2);
        padded(name);
        number(3, 4);
    }
    void number(std::uint32_t value, int size) {
        for (int i = 0; i < size; ++i) {
            const int shift = 8 * (bigEndian_ ? size - 1 - i : i);
            bytes.push_back(static_cast<std::byte>(value >> shift & 0xFF));
        }
    }
    void padded(const std::string& text) {
        for (const char c : text) {
            bytes.push_back(static_cast<std::byte>(c));
        }
        while (bytes.size() % 4 != 0) {
            bytes.push_back(std::byte{0});
        }
    }

    bool bigEndian_;
};

class XSettingsByteOrder : public ::testing::TestWithParam<bool> {};

TEST_P(XSettingsByteOrder, FindsATextBehindSettingsOfEveryType) {
    Property property(GetParam(), 4);
    property.integer("Xft/DPI", 98304).color("Some/Color").text("Net/ThemeName", "Calm");
    property.text("Gtk/FontName", "Inter 11");
    EXPECT_EQ(xsettingsText(property.bytes, "Gtk/FontName"), "Inter 11");
    EXPECT_EQ(xsettingsText(property.bytes, "Net/ThemeName"), "Calm");
    EXPECT_EQ(xsettingsText(property.bytes, "Xft/DPI"), std::nullopt);
    EXPECT_EQ(xsettingsText(property.bytes, "Gtk/Font"), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(, XSettingsByteOrder, ::testing::Bool(),
                         [](const auto& row) { return row.param ? "BigEndian" : "LittleEndian"; });

TEST(XSettings, EveryTruncationBeforeTheEndOfTheTextIsAbsent) {
    Property property(false, 2);
    property.integer("Xft/DPI", 98304).text("Gtk/FontName", "Inter 11");
    for (std::size_t size = 0; size < property.bytes.size(); ++size) {
        EXPECT_EQ(xsettingsText(std::span(property.bytes).first(size), "Gtk/FontName"),
                  std::nullopt)
            << size;
    }
}

TEST(XSettings, NonsenseIsAbsent) {
    Property property(false, 2);
    property.text("Gtk/FontName", "Inter 11");
    auto bytes = property.bytes;
    bytes[0] = std::byte{9};  // No such byte order.
    EXPECT_EQ(xsettingsText(bytes, "Gtk/FontName"), std::nullopt);
    bytes = property.bytes;
    bytes[12] = std::byte{3};  // No such type.
    EXPECT_EQ(xsettingsText(bytes, "Gtk/FontName"), std::nullopt);
    // A count that promises more than there is ends at the end.
    EXPECT_EQ(xsettingsText(property.bytes, "Missing"), std::nullopt);
}

TEST(InterfaceFont, TakesFamilyAndSizeApart) {
    EXPECT_EQ(interfaceFont("Inter 11"), (InterfaceFont{"Inter", 11}));
    EXPECT_EQ(interfaceFont("Noto Sans 10.5"), (InterfaceFont{"Noto Sans", 10.5}));
    EXPECT_EQ(interfaceFont("Noto Sans Medium Italic 10"), (InterfaceFont{"Noto Sans", 10}));
    EXPECT_EQ(interfaceFont("Ubuntu, 12"), (InterfaceFont{"Ubuntu", 12}));
    EXPECT_EQ(interfaceFont("  Sans  Bold   9 "), (InterfaceFont{"Sans", 9}));
}

TEST(InterfaceFont, WithoutFamilyOrSensibleSizeThereIsNone) {
    for (const char* description : {"", " ", "Inter", "11", "Bold 11", "Inter 0", "Inter -4",
                                    "Inter 1000", "Inter 11px", "Inter nan", "Inter inf"}) {
        EXPECT_EQ(interfaceFont(description), std::nullopt) << description;
    }
}

}  // namespace
}  // namespace tarnwick::platform
