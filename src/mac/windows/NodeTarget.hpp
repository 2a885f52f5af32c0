#pragma once

#include "ui/View.hpp"

#import <AppKit/AppKit.h>

/// Receives the events of one node's control and hands them to the node's newest binding or action. Main thread.
@interface SentrelNodeTarget : NSObject <NSTextFieldDelegate> {
@public
    sentrel::ui::View node; ///< the newest, without its children
}
- (void)pressed:(id)sender;
- (void)toggled:(id)sender;
- (void)slid:(id)sender;
- (void)submitted:(id)sender;

/// The control has got the keyboard, or something else has it now.
- (void)gainedFocus;
- (void)lostFocus;
@end

/// What a field does not use itself goes up its responder chain by these; whoever shows the tree answers them.
@protocol SentrelKeyReceiver
- (void)returnKeyPressed:(id)sender;
- (void)cancelOperation:(id)sender;
@end

/// Fields that tell their target when they get the keyboard.
@interface SentrelTextField : NSTextField
@end
@interface SentrelSecureField : NSSecureTextField
@end

namespace sentrel::mac {

/// What is in the field, also while it is being edited. AppKit keeps copies of its own, which nobody can wipe.
[[nodiscard]] SecretText secretTextOf(NSTextField* field);

/// Replaces the field's text without ending an edit that is under way. Does nothing when it is there already.
void setText(NSTextField* field, NSString* text);

} // namespace sentrel::mac
