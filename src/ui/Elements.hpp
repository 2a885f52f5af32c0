#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/SecretText.hpp"
#include "ui/Binding.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <variant>

namespace sentrel::ui {

// The kinds of views. Lengths are in points; texts are in the user's language already. The parts of an element are its
// view's children.

/// Keys that have a meaning of their own in a window.
enum class Key { returnKey, deleteKey, escape };

/// Arranges its children in a row or in a column.
struct Stack {
    enum class Axis { horizontal, vertical };
    enum class Alignment { leading, center, trailing };
    Axis axis = Axis::vertical;
    double spacing = 8.0;
    Alignment alignment = Alignment::center; ///< across the axis
};

/// Takes the space that is left over along its stack's axis.
struct Spacer {};

/// A thin line across its stack's axis.
struct Divider {};

struct Text {
    enum class Style { largeTitle, title, headline, body, callout, caption };
    enum class Color { primary, secondary, alarm };
    std::string text;
    Style style = Style::body;
    Color color = Color::primary;
};

struct Image {
    enum class Source { systemSymbol, memory };
    Source source = Source::systemSymbol;
    /// Name of the symbol, or key of the data in memory. Other data has another key: renderers compare names only.
    std::string name;
    std::shared_ptr<const Bytes> data = nullptr; ///< an image file's content, in memory

    friend bool operator==(const Image& one, const Image& other)
    {
        return one.source == other.source && one.name == other.name;
    }
};

struct Button {
    enum class Role { standard, prominent, destructive, cancel };
    std::string title;
    Action action;
    Role role = Role::standard;
    std::optional<Key> shortcut;
    std::optional<Image> image;
};

/// A checkbox.
struct Toggle {
    std::string label;
    Binding<bool> isOn;
};

struct Slider {
    std::string label;
    Binding<double> value;
    double lower = 0.0;
    double upper = 1.0;
    std::optional<double> step; ///< continuous without one
    std::string valueText;      ///< shown beside the slider, unless empty
};

struct TextField {
    std::string prompt; ///< shown while the field is empty
    Binding<std::string> text;
    Action submit; ///< by the return key
};

/// A field that doesn't show its text.
struct SecureField {
    std::string prompt;
    Binding<SecretText> text;
    Action submit; ///< by the return key
};

/// Rows in sections; its children are sections. A row is identified by its view's explicit id.
struct List {
    enum class Selection { none, single, multiple };
    Selection mode = Selection::none;
    Binding<std::set<std::string>> selection;
};

/// Settings in sections, labels and controls in line; its children are sections.
struct Form {};

/// Children under a heading, in a form or a list.
struct Section {
    std::string header;
    std::string footer;
};

/// Two children: a sidebar that the user can hide, and the detail.
struct SplitView {
    Binding<bool> isSidebarShown;
};

/// Progress of work from 0 to 1; indeterminate without a fraction.
struct Progress {
    std::string label;
    std::optional<double> fraction;
};

/// Attached to a view: its children stand in the window's toolbar.
struct Toolbar {};

/// Attached to a view: its child covers the window's content until the state takes it away.
struct Sheet {
    Action dismiss; ///< called when the user closes it without one of its buttons
};

/// Attached to a view: a question or a notice whose answers are its children, buttons. Every answer closes it.
struct Dialog {
    enum class Kind { confirmation, alert };
    Kind kind = Kind::alert;
    std::string title;
    std::string message;
    Action dismiss; ///< called after any answer, or when closed without one
};

using Element = std::variant<Stack, Spacer, Divider, Text, Image, Button, Toggle, Slider, TextField, SecureField, List,
                             Form, Section, SplitView, Progress, Toolbar, Sheet, Dialog>;

} // namespace sentrel::ui
