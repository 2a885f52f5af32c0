#pragma once

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel {

/// A list of texts in one piece of memory, which its copies share: a copy costs nothing, however long the list. A list
/// never changes in place, so copies may be read on several threads. Views of its texts are valid while a copy lives.
class TextList {
public:
    class Iterator;
    using value_type = std::string_view;
    using const_iterator = Iterator;

    TextList() = default;
    TextList(std::initializer_list<std::string_view> texts);
    TextList(const std::vector<std::string>& texts);

    [[nodiscard]] std::size_t size() const { return content_ == nullptr ? 0 : content_->ends.size(); }
    [[nodiscard]] bool empty() const { return size() == 0; }
    [[nodiscard]] std::string_view operator[](std::size_t place) const;
    [[nodiscard]] Iterator begin() const;
    [[nodiscard]] Iterator end() const;

    /// All texts one after another.
    [[nodiscard]] std::string_view joined() const;

    /// This list and then `more`.
    [[nodiscard]] TextList with(const std::vector<std::string>& more) const;

    /// The texts of this list from `first` on.
    [[nodiscard]] TextList from(std::size_t first) const;

    /// How many texts at the beginning are the same in both lists.
    [[nodiscard]] std::size_t commonWith(const TextList& other) const;

    friend bool operator==(const TextList& left, const TextList& right)
    {
        return left.size() == right.size() && left.commonWith(right) == left.size();
    }

private:
    friend class TextListWriter;

    struct Content {
        std::string joined;
        std::vector<std::size_t> ends; ///< of each text in `joined`
    };
    explicit TextList(Content content) : content_(std::make_shared<const Content>(std::move(content))) {}

    std::shared_ptr<const Content> content_; ///< null for an empty list
};

/// Makes a list text by text.
class TextListWriter {
public:
    void add(std::string_view text);
    void add(const TextList& texts, std::size_t first = 0);
    void reserve(std::size_t texts, std::size_t characters);
    [[nodiscard]] TextList take();

private:
    TextList::Content content_;
};

class TextList::Iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::string_view;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = std::string_view;

    Iterator() = default;
    Iterator(const TextList& list, std::size_t place) : list_(&list), place_(place) {}
    [[nodiscard]] std::string_view operator*() const { return (*list_)[place_]; }
    Iterator& operator++()
    {
        ++place_;
        return *this;
    }
    Iterator operator++(int)
    {
        const Iterator before = *this;
        ++place_;
        return before;
    }
    friend bool operator==(const Iterator&, const Iterator&) = default;

private:
    const TextList* list_ = nullptr;
    std::size_t place_ = 0;
};

inline TextList::Iterator TextList::begin() const
{
    return {*this, 0};
}

inline TextList::Iterator TextList::end() const
{
    return {*this, size()};
}

inline std::string_view TextList::operator[](std::size_t place) const
{
    const std::size_t start = place == 0 ? 0 : content_->ends[place - 1];
    return std::string_view{content_->joined}.substr(start, content_->ends[place] - start);
}

} // namespace sentrel
