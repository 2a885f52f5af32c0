#pragma once

#include "ui/Elements.hpp"

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sentrel::ui {

/// A color by its components in sRGB, each 0 to 1.
struct Color {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double opacity = 1.0;
    friend bool operator==(const Color&, const Color&) = default;
};

inline constexpr Color black{};

/// A requested size in points; missing values follow from the content and the available space.
struct SizeWish {
    std::optional<double> width;
    std::optional<double> height;
    std::optional<double> maximumWidth;
    friend bool operator==(const SizeWish&, const SizeWish&) = default;
};

/// Properties that views of any kind have.
struct Traits {
    /// Unique name among the siblings, without a slash; keeps the identity stable when siblings come and go.
    std::string id;
    std::string accessibilityLabel; ///< for screen readers, in place of the visible text
    std::string help;               ///< shown when the pointer rests on the view
    bool isHidden = false;          ///< not shown, but counts among its siblings
    bool isDisabled = false;        ///< applies to everything inside, too
    bool ignoresSafeAreas = false;  ///< extends below a camera housing and to the screen's edges
    double padding = 0.0;           ///< in points, on all sides
    SizeWish size;
    std::optional<Color> background;
    /// Keyboard focus. True requests it; the renderer sets it when the user moves the focus.
    std::optional<Binding<bool>> focus;
    /// Actions of keys in the window, unless a field that is being edited takes them.
    std::vector<std::pair<Key, Action>> keyCommands;
};

struct View;

/// The views inside another. Copies share them, so that copying a tree is cheap however long its lists are.
class Children {
public:
    Children() = default;
    Children(std::vector<View> views);
    Children(std::initializer_list<View> views);

    operator const std::vector<View>&() const;
    [[nodiscard]] const View* begin() const;
    [[nodiscard]] const View* end() const;
    [[nodiscard]] const View& front() const;
    [[nodiscard]] const View& operator[](std::size_t index) const;
    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] bool empty() const { return size() == 0; }

    /// Whether both share the very same views, not only equal ones.
    [[nodiscard]] bool isSameAs(const Children& other) const { return views_ == other.views_; }

private:
    std::shared_ptr<const std::vector<View>> views_; ///< null: none
};

/// A window's content or a part of it, as a value. A new state makes a new view; a renderer changes only the
/// differences and identifies each part by its identity (see `Node`). Made and used on the main thread.
struct View {
    Element element;
    Children children;
    std::vector<View> attachments; ///< toolbar, sheet, dialogs
    Traits traits;

    /// Each returns this view with one property changed, for building trees.
    [[nodiscard]] View id(std::string value) &&;
    [[nodiscard]] View accessibilityLabel(std::string value) &&;
    [[nodiscard]] View help(std::string value) &&;
    [[nodiscard]] View hidden(bool value) &&;
    [[nodiscard]] View disabled(bool value) &&;
    [[nodiscard]] View ignoringSafeAreas() &&;
    [[nodiscard]] View padding(double value) &&;
    [[nodiscard]] View sized(SizeWish value) &&;
    [[nodiscard]] View background(Color value) &&;
    [[nodiscard]] View focused(Binding<bool> value) &&;
    [[nodiscard]] View onKey(Key key, Action action) &&;
    [[nodiscard]] View attach(View attachment) &&;
};

/// A leaf, or a view of any kind with its children.
[[nodiscard]] View view(Element element, Children children = {});
[[nodiscard]] View verticalStack(std::vector<View> children, double spacing = 8.0,
                                 Stack::Alignment alignment = Stack::Alignment::center);
[[nodiscard]] View horizontalStack(std::vector<View> children, double spacing = 8.0,
                                   Stack::Alignment alignment = Stack::Alignment::center);
[[nodiscard]] View spacer();
[[nodiscard]] View divider();
[[nodiscard]] View text(std::string shown, Text::Style style = Text::Style::body,
                        Text::Color color = Text::Color::primary);
[[nodiscard]] View button(std::string title, Action action, Button::Role role = Button::Role::standard);
[[nodiscard]] View toggle(std::string label, Binding<bool> isOn);
[[nodiscard]] View section(std::string header, std::vector<View> children);

} // namespace sentrel::ui
