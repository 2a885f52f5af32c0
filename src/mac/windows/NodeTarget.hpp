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

/// The control has gained or lost the keyboard.
- (void)tellFocus:(bool)isFocused;
@end

/// Keys that a field doesn't use, sent up its responder chain to the view that shows the tree.
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

/// The field's content, also during an edit. AppKit keeps copies of its own that can't be wiped.
[[nodiscard]] SecretText secretTextOf(NSTextField* field);

/// Replaces the field's text without ending an edit that is under way. Does nothing if it is unchanged.
void setText(NSTextField* field, NSString* text);

} // namespace sentrel::mac
