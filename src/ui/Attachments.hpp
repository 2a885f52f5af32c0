#pragma once

#include "ui/View.hpp"

#include <string>
#include <vector>

namespace sentrel::ui {

/// A view attached to a view of a tree.
struct Attachment {
    std::string identity;       ///< as in `Node`
    const View* view = nullptr; ///< in the tree that was walked
    bool isEnabled = true;      ///< neither it nor a view around it is disabled
};

/// The visible attachments of the tree's visible views, without attachments inside attachments.
[[nodiscard]] std::vector<Attachment> attachmentsOf(const View& root);

} // namespace sentrel::ui
