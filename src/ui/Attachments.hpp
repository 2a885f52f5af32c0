#pragma once

#include "ui/View.hpp"

#include <string>
#include <vector>

namespace sentrel::ui {

/// Something attached to a view of a tree.
struct Attachment {
    std::string identity;       ///< as `Node` has it
    const View* view = nullptr; ///< in the tree that was walked
    bool isEnabled = true;      ///< neither it nor what it is attached to is disabled
};

/// The attachments of the tree's views, those that are hidden left out; not what is attached inside an attachment.
[[nodiscard]] std::vector<Attachment> attachmentsOf(const View& root);

} // namespace sentrel::ui
