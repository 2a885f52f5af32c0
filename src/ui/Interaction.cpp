#include "ui/Interaction.hpp"

#include "ui/Node.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

namespace sentrel::ui {

namespace {

/// Calls a copy: the closure may replace the tree that holds it.
void perform(Action action) // NOLINT(performance-unnecessary-value-param)
{
    if (action) {
        action();
    }
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
template <class T> void assign(Binding<T> binding, T value)
{
    if (binding.set) {
        binding.set(std::move(value));
    }
}

/// Finds the node and, when it can be reached, calls `use`, which returns whether the node suits.
template <class Use> Interaction withNode(const View& root, std::string_view wanted, Use use)
{
    const auto node = find(root, wanted);
    if (!node) {
        return Interaction::notFound;
    }
    if (!node->isEnabled || node->isBlocked) {
        return Interaction::unreachable;
    }
    return use(*node) ? Interaction::done : Interaction::unsuitable;
}

/// The dialog whose answer the node is, or null.
const Dialog* dialogAround(const View& root, const Node& node)
{
    const auto slash = node.identity.rfind('/');
    const auto outer = nodeAt(root, slash == node.identity.npos ? "" : node.identity.substr(0, slash));
    return outer ? elementOf<Dialog>(*outer->view) : nullptr;
}

void pressButton(const View& root, const Node& node, const Button& button)
{
    const Dialog* const dialog = dialogAround(root, node);
    const Action dismiss = dialog == nullptr ? Action{} : dialog->dismiss;
    perform(button.action);
    perform(dismiss);
}

/// The text with `more` at its end, in memory that is wiped.
SecretText joined(const SecretText& text, std::string_view more)
{
    SecretBytes bytes{text.view().size() + more.size()};
    const auto rest = std::ranges::copy(text.view(), bytes.writable().begin()).out;
    std::ranges::copy(more, rest);
    return SecretText{std::move(bytes)};
}

/// Number of bytes before the last character of a UTF-8 text.
template <class Text> std::size_t lengthWithoutLast(const Text& text)
{
    std::size_t length = text.size();
    const auto isContinuation = [](auto byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    while (length > 1 && isContinuation(text[length - 1])) {
        --length;
    }
    return length == 0 ? 0 : length - 1;
}

bool deleteLast(const View& field)
{
    if (const auto* const plain = elementOf<TextField>(field)) {
        assign(plain->text, plain->text.value.substr(0, lengthWithoutLast(plain->text.value)));
        return true;
    }
    if (const auto* const secure = elementOf<SecureField>(field)) {
        const BytesView bytes = secure->text.value.view();
        assign(secure->text, SecretText{SecretBytes{bytes.first(lengthWithoutLast(bytes))}});
        return true;
    }
    return false;
}

bool submitField(const View& field)
{
    const auto* const plain = elementOf<TextField>(field);
    const auto* const secure = elementOf<SecureField>(field);
    const Action submit = plain != nullptr ? plain->submit : secure != nullptr ? secure->submit : Action{};
    perform(submit);
    return static_cast<bool>(submit);
}

bool isUsable(const Node& node)
{
    return node.isEnabled && !node.isBlocked;
}

/// The dialog's answer for the key, or null: escape cancels; return gives the first answer, unless it is destructive or
/// cancels while there are others.
const Button* answerTo(const View& dialog, Key key)
{
    std::vector<const Button*> answers;
    for (const View& child : dialog.children) {
        const auto* const button = elementOf<Button>(child);
        if (button != nullptr && !child.traits.isHidden && !child.traits.isDisabled) {
            answers.push_back(button);
        }
    }
    if (key == Key::returnKey && !answers.empty()) {
        const Button::Role role = answers.front()->role;
        const bool isCancel = role == Button::Role::cancel && answers.size() > 1;
        return role == Button::Role::destructive || isCancel ? nullptr : answers.front();
    }
    const auto cancel = std::ranges::find(answers, Button::Role::cancel, &Button::role);
    return key == Key::escape && cancel != answers.end() ? *cancel : nullptr;
}

bool answerDialog(const std::vector<Node>& nodes, Key key)
{
    for (const Node& node : nodes) {
        const auto* const dialog = elementOf<Dialog>(*node.view);
        const Button* const answer = dialog != nullptr && isUsable(node) ? answerTo(*node.view, key) : nullptr;
        if (answer != nullptr) {
            const Action dismiss = dialog->dismiss;
            perform(answer->action);
            perform(dismiss);
            return true;
        }
    }
    return false;
}

bool holdsRow(const View& list, const std::string& id)
{
    return std::ranges::any_of(list.children, [&](const View& section) {
        return !section.traits.isHidden && std::ranges::any_of(section.children, [&](const View& row) {
            return !row.traits.isHidden && row.traits.id == id;
        });
    });
}

} // namespace

Interaction press(const View& root, std::string_view wanted)
{
    return withNode(root, wanted, [&](const Node& node) {
        if (const auto* const button = elementOf<Button>(*node.view)) {
            pressButton(root, node, *button);
            return true;
        }
        if (const auto* const toggle = elementOf<Toggle>(*node.view)) {
            assign(toggle->isOn, !toggle->isOn.value);
            return true;
        }
        return false;
    });
}

Interaction switchTo(const View& root, std::string_view wanted, bool isOn)
{
    return withNode(root, wanted, [&](const Node& node) {
        const auto* const toggle = elementOf<Toggle>(*node.view);
        if (toggle != nullptr && toggle->isOn.value != isOn) {
            assign(toggle->isOn, isOn);
        }
        return toggle != nullptr;
    });
}

Interaction slideTo(const View& root, std::string_view wanted, double value)
{
    return withNode(root, wanted, [&](const Node& node) {
        const auto* const slider = elementOf<Slider>(*node.view);
        if (slider == nullptr || std::isnan(value)) {
            return false;
        }
        double nearest = std::clamp(value, slider->lower, slider->upper);
        if (slider->step && *slider->step > 0.0) {
            const double steps = std::round((nearest - slider->lower) / *slider->step);
            nearest = std::min(slider->lower + steps * *slider->step, slider->upper);
        }
        assign(slider->value, nearest);
        return true;
    });
}

Interaction typeText(const View& root, std::string_view wanted, std::string_view text)
{
    return withNode(root, wanted, [&](const Node& node) {
        if (const auto* const plain = elementOf<TextField>(*node.view)) {
            assign(plain->text, plain->text.value + std::string{text});
            return true;
        }
        if (const auto* const secure = elementOf<SecureField>(*node.view)) {
            assign(secure->text, joined(secure->text.value, text));
            return true;
        }
        return false;
    });
}

Interaction setText(const View& root, std::string_view wanted, std::string_view text)
{
    return withNode(root, wanted, [&](const Node& node) {
        if (const auto* const plain = elementOf<TextField>(*node.view)) {
            assign(plain->text, std::string{text});
            return true;
        }
        if (const auto* const secure = elementOf<SecureField>(*node.view)) {
            assign(secure->text, joined(SecretText{}, text));
            return true;
        }
        return false;
    });
}

Interaction clearText(const View& root, std::string_view wanted)
{
    return setText(root, wanted, {});
}

Interaction selectRows(const View& root, std::string_view wanted, const std::set<std::string>& rows)
{
    return withNode(root, wanted, [&](const Node& node) {
        const auto* const list = elementOf<List>(*node.view);
        if (list == nullptr || list->mode == List::Selection::none) {
            return false;
        }
        if (list->mode == List::Selection::single && rows.size() > 1) {
            return false;
        }
        if (!std::ranges::all_of(rows, [&](const std::string& id) { return holdsRow(*node.view, id); })) {
            return false;
        }
        assign(list->selection, rows);
        return true;
    });
}

Interaction pressKey(const View& root, Key key, std::string_view focusedIdentity)
{
    const auto focused = focusedIdentity.empty() ? std::nullopt : nodeAt(root, focusedIdentity);
    if (focused && isUsable(*focused)) {
        const bool isTaken = (key == Key::returnKey && submitField(*focused->view)) ||
                             (key == Key::deleteKey && deleteLast(*focused->view));
        if (isTaken) {
            return Interaction::done;
        }
    }
    const auto nodes = nodesOf(root);
    for (const Node& node : nodes) {
        const auto* const button = elementOf<Button>(*node.view);
        if (button != nullptr && button->shortcut == key && isUsable(node)) {
            pressButton(root, node, *button);
            return Interaction::done;
        }
    }
    if (answerDialog(nodes, key)) {
        return Interaction::done;
    }
    for (const Node& node : nodes) {
        const auto& commands = node.view->traits.keyCommands;
        const auto command = std::ranges::find(commands, key, &std::pair<Key, Action>::first);
        if (command != commands.end() && isUsable(node)) {
            perform(command->second);
            return Interaction::done;
        }
    }
    return Interaction::notFound;
}

} // namespace sentrel::ui
