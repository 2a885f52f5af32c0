#include "mac/windows/NodeTarget.hpp"

#include "mac/foundation/CallCopy.hpp"
#include "mac/foundation/FoundationValues.hpp"
#include "ui/Node.hpp"

#include <utility>

using namespace sentrel;

// An action may bring a tree without this node, which ends the target: each method calls a copy, at its end.
@implementation SentrelNodeTarget

- (void)pressed:(id)sender
{
    if (const auto* const button = ui::elementOf<ui::Button>(node)) {
        mac::callCopy(button->action);
    }
}

- (void)toggled:(id)sender
{
    if (const auto* const toggle = ui::elementOf<ui::Toggle>(node)) {
        mac::callCopy(toggle->isOn.set, static_cast<NSButton*>(sender).state == NSControlStateValueOn);
    }
}

- (void)slid:(id)sender
{
    if (const auto* const slider = ui::elementOf<ui::Slider>(node)) {
        mac::callCopy(slider->value.set, static_cast<NSSlider*>(sender).doubleValue);
    }
}

- (void)submitted:(id)sender
{
    const auto* const secure = ui::elementOf<ui::SecureField>(node);
    const auto* const plain = ui::elementOf<ui::TextField>(node);
    const ui::Action submit = secure != nullptr ? secure->submit : plain != nullptr ? plain->submit : ui::Action{};
    if (submit) {
        submit();
        return;
    }
    [static_cast<NSControl*>(sender).nextResponder tryToPerform:@selector(returnKeyPressed:) with:sender];
}

- (BOOL)control:(NSControl*)control textView:(NSTextView*)textView doCommandBySelector:(SEL)commandSelector
{
    if (commandSelector != @selector(cancelOperation:)) {
        return NO;
    }
    return [control.nextResponder tryToPerform:@selector(cancelOperation:) with:control];
}

- (void)controlTextDidChange:(NSNotification*)notification
{
    NSTextField* const field = notification.object;
    if (const auto* const secure = ui::elementOf<ui::SecureField>(node)) {
        mac::callCopy(secure->text.set, mac::secretTextOf(field));
    } else if (const auto* const plain = ui::elementOf<ui::TextField>(node)) {
        mac::callCopy(plain->text.set, mac::textOf(field.stringValue));
    }
}

- (void)controlTextDidEndEditing:(NSNotification*)notification
{
    NSNumber* const movement = notification.userInfo[NSTextMovementUserInfoKey];
    // After the return key the field selects its text and keeps the keyboard.
    if (movement.integerValue != NSTextMovementReturn) {
        [self tellFocus:false];
    }
}

- (void)tellFocus:(bool)isFocused
{
    // Not while the first responder changes: the new tree may want to change it, too.
    __weak SentrelNodeTarget* const weakSelf = self;
    dispatch_async(dispatch_get_main_queue(), ^{
        SentrelNodeTarget* const target = weakSelf;
        if (target != nil && target->node.traits.focus) {
            mac::callCopy(target->node.traits.focus->set, isFocused);
        }
    });
}

@end

namespace {

BOOL tellIfAccepted(NSTextField* field, BOOL isAccepted)
{
    if (isAccepted) {
        [static_cast<SentrelNodeTarget*>(field.delegate) tellFocus:true];
    }
    return isAccepted;
}

} // namespace

@implementation SentrelTextField

- (BOOL)becomeFirstResponder
{
    return tellIfAccepted(self, [super becomeFirstResponder]);
}

@end

@implementation SentrelSecureField

- (BOOL)becomeFirstResponder
{
    return tellIfAccepted(self, [super becomeFirstResponder]);
}

@end

namespace sentrel::mac {

SecretText secretTextOf(NSTextField* field)
{
    NSString* const text = field.stringValue;
    SecretBytes bytes{[text lengthOfBytesUsingEncoding:NSUTF8StringEncoding]};
    NSUInteger used = 0;
    NSRange rest = NSMakeRange(0, 0);
    [text getBytes:bytes.writable().data()
             maxLength:bytes.size()
            usedLength:&used
              encoding:NSUTF8StringEncoding
               options:0
                 range:NSMakeRange(0, text.length)
        remainingRange:&rest];
    return SecretText{std::move(bytes)};
}

void setText(NSTextField* field, NSString* text)
{
    if ([field.stringValue isEqualToString:text]) {
        return;
    }
    NSText* const editor = field.currentEditor;
    if (editor != nil) {
        editor.string = text;
        return;
    }
    field.stringValue = text;
}

} // namespace sentrel::mac
