#pragma once

#include "ui/Attachments.hpp"

#import <AppKit/AppKit.h>

#include <map>
#include <memory>
#include <string>

@class SentrelToolbarDelegate;

namespace sentrel::mac {

/// A sheet or a dialog over a window, for as long as the tree has it. Its destructor removes it. Main thread.
class Overlay {
public:
    Overlay() = default;
    virtual ~Overlay() = default;
    Overlay(const Overlay&) = delete;
    Overlay& operator=(const Overlay&) = delete;

    /// Whether it can show this attachment.
    [[nodiscard]] virtual bool suits(const ui::View& attachment) const = 0;

    /// Updates it; begins it over the window, if that is not nil and it has not begun.
    virtual void show(NSWindow* window, const ui::View& attachment) = 0;
};

[[nodiscard]] std::unique_ptr<Overlay> makeSheet();
[[nodiscard]] std::unique_ptr<Overlay> makeDialog();

/// A window's toolbar: the children of all toolbars that are attached to the tree. Buttons are items of the toolbar's
/// own kind, spacers its flexible spaces, other views are drawn in it. Main thread.
class WindowToolbar {
public:
    WindowToolbar();
    WindowToolbar(const WindowToolbar&) = delete;

    /// Shows these in the window, if not nil; without any, removes its toolbar.
    void show(NSWindow* window, const std::vector<ui::Attachment>& toolbars);

private:
    void showItem(const std::string& identity, const ui::View& view, bool isEnabled);
    void arrange();

    NSToolbar* const toolbar_;
    SentrelToolbarDelegate* const delegate_;
};

/// The attachments of a tree's views, at its window. Main thread.
class WindowAttachments {
public:
    WindowAttachments() = default;
    WindowAttachments(const WindowAttachments&) = delete;

    /// Shows the attachments of the tree's views, and removes those that are gone. No sheet or dialog begins over a
    /// window that is not on the screen.
    void show(NSWindow* window, const ui::View& content);

private:
    std::map<std::string, std::unique_ptr<Overlay>> overlays_; // by identity
    std::unique_ptr<WindowToolbar> toolbar_;
};

} // namespace sentrel::mac
