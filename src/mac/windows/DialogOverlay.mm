#include "mac/foundation/CallCopy.hpp"
#include "mac/foundation/FoundationValues.hpp"
#include "mac/windows/Appearance.hpp"
#include "mac/windows/WindowAttachments.hpp"
#include "ui/Node.hpp"

#include <vector>

namespace sentrel::mac {

namespace {

/// The buttons of a dialog that are not hidden.
std::vector<ui::View> answersOf(const ui::View& attachment)
{
    std::vector<ui::View> answers;
    for (const ui::View& child : attachment.children) {
        if (ui::elementOf<ui::Button>(child) != nullptr && !child.traits.isHidden) {
            answers.push_back(child);
        }
    }
    return answers;
}

/// The question, shared with the alert's completion handler. Unwanted once the tree has removed the dialog.
struct Question {
    std::vector<ui::View> answers;
    ui::Action dismiss;
    bool isWanted = true;
    bool hasEnded = false;

    void answer(NSModalResponse response)
    {
        hasEnded = true;
        if (!isWanted) {
            return;
        }
        // Copies: the first call may remove the dialog.
        const ui::Action after = dismiss;
        const auto index = static_cast<std::size_t>(response - NSAlertFirstButtonReturn);
        const ui::Action action = response >= NSAlertFirstButtonReturn && index < answers.size()
                                      ? ui::elementOf<ui::Button>(answers[index])->action
                                      : ui::Action{};
        callCopy(action);
        callCopy(after);
    }
};

/// A question or a notice as the system's alert, attached to the window.
class DialogOverlay final : public Overlay {
public:
    ~DialogOverlay() override
    {
        question_->isWanted = false;
        // Through the stored window: an alert that still waits for its turn has no parent.
        if (hasBegun_ && !question_->hasEnded) {
            [parent_ endSheet:alert_.window returnCode:NSModalResponseAbort];
        }
    }

    [[nodiscard]] bool suits(const ui::View& attachment) const override
    {
        // An alert is shown once, and its buttons are made once.
        if (ui::elementOf<ui::Dialog>(attachment) == nullptr || question_->hasEnded) {
            return false;
        }
        return !hasBegun_ || answersOf(attachment).size() == question_->answers.size();
    }

    void show(NSWindow* window, const ui::View& attachment) override
    {
        const ui::Dialog& dialog = *ui::elementOf<ui::Dialog>(attachment);
        question_->answers = answersOf(attachment);
        question_->dismiss = dialog.dismiss;
        alert_.alertStyle =
            dialog.kind == ui::Dialog::Kind::confirmation ? NSAlertStyleWarning : NSAlertStyleInformational;
        alert_.messageText = stringObject(dialog.title);
        alert_.informativeText = stringObject(dialog.message);
        if (!hasBegun_ && window != nil) {
            hasBegun_ = true;
            parent_ = window;
            begin(window);
        }
        showButtons();
    }

private:
    void begin(NSWindow* window)
    {
        for (const ui::View& answer : question_->answers) {
            [alert_ addButtonWithTitle:stringObject(ui::visibleText(answer))];
        }
        const std::shared_ptr<Question> question = question_;
        [alert_ beginSheetModalForWindow:window
                       completionHandler:^(NSModalResponse response) {
                           question->answer(response);
                       }];
    }

    void showButtons()
    {
        for (NSUInteger index = 0; index < alert_.buttons.count && index < question_->answers.size(); ++index) {
            showButton(alert_.buttons[index], question_->answers[index], question_->answers.size() == 1);
        }
    }

    static void showButton(NSButton* shown, const ui::View& answer, bool isOnlyOne)
    {
        const ui::Button& button = *ui::elementOf<ui::Button>(answer);
        shown.title = stringObject(button.title);
        shown.enabled = !answer.traits.isDisabled;
        shown.hasDestructiveAction = button.role == ui::Button::Role::destructive;
        if (button.shortcut) {
            shown.keyEquivalent = keyEquivalentOf(button.shortcut);
        } else if (button.role == ui::Button::Role::cancel && !isOnlyOne) {
            shown.keyEquivalent = keyEquivalentOf(ui::Key::escape);
        } else if (button.role == ui::Button::Role::destructive) {
            // AppKit gives the first button the return key, which must not start a destructive action.
            shown.keyEquivalent = @"";
        }
    }

    const std::shared_ptr<Question> question_ = std::make_shared<Question>();
    NSAlert* const alert_ = [[NSAlert alloc] init];
    __weak NSWindow* parent_ = nil;
    bool hasBegun_ = false;
};

} // namespace

std::unique_ptr<Overlay> makeDialog()
{
    return std::make_unique<DialogOverlay>();
}

} // namespace sentrel::mac
