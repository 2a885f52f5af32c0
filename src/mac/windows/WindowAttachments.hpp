#pragma once

#include "ui/View.hpp"

#import <AppKit/AppKit.h>

#include <map>
#include <memory>
#include <string>

namespace sentrel::mac {

class WindowToolbar;

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

/// The attachments of a tree's views, at its window. Main thread.
class WindowAttachments {
public:
    WindowAttachments();
    ~WindowAttachments();
    WindowAttachments(const WindowAttachments&) = delete;
    WindowAttachments& operator=(const WindowAttachments&) = delete;

    /// Shows the attachments of the tree's views, and removes those that are gone. No sheet or dialog begins over a
    /// window that is not on the screen.
    void show(NSWindow* window, const ui::View& content);

private:
    std::map<std::string, std::unique_ptr<Overlay>> overlays_; // by identity
    std::unique_ptr<WindowToolbar> toolbar_;
};

} // namespace sentrel::mac
