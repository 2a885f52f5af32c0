#pragma once

#include "ui/View.hpp"

#import <AppKit/AppKit.h>

#include <map>
#include <memory>
#include <string>

namespace sentrel::mac {

class WindowToolbar;

/// A sheet or a dialog over a window, from the tree's wish for it until the tree has it no more. Its end takes it away.
/// Main thread.
class Overlay {
public:
    Overlay() = default;
    virtual ~Overlay() = default;
    Overlay(const Overlay&) = delete;
    Overlay& operator=(const Overlay&) = delete;

    /// Whether it can show this attachment.
    [[nodiscard]] virtual bool suits(const ui::View& attachment) const = 0;

    /// Brings it up to date; begins it over the window where that has not happened yet.
    virtual void show(NSWindow* window, const ui::View& attachment) = 0;
};

[[nodiscard]] std::unique_ptr<Overlay> makeSheet();
[[nodiscard]] std::unique_ptr<Overlay> makeDialog();

/// What is attached to the views of a tree, at the tree's window. Main thread.
class WindowAttachments {
public:
    WindowAttachments();
    ~WindowAttachments();
    WindowAttachments(const WindowAttachments&) = delete;
    WindowAttachments& operator=(const WindowAttachments&) = delete;

    /// Shows what is attached to the tree's views, and takes away what is there no more. Nothing new begins over a
    /// window that is not on the screen.
    void show(NSWindow* window, const ui::View& content);

private:
    std::map<std::string, std::unique_ptr<Overlay>> overlays_; // by identity
    std::unique_ptr<WindowToolbar> toolbar_;
};

} // namespace sentrel::mac
