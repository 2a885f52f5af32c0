#include "foundation/TextList.hpp"

#include <algorithm>
#include <utility>

namespace sentrel {

namespace {

template <class Texts> TextList listOf(const Texts& texts)
{
    TextListWriter writer;
    for (const auto& text : texts) {
        writer.add(text);
    }
    return writer.take();
}

} // namespace

TextList::TextList(std::initializer_list<std::string_view> texts) : TextList(listOf(texts))
{
}

TextList::TextList(const std::vector<std::string>& texts) : TextList(listOf(texts))
{
}

std::string_view TextList::joined() const
{
    return content_ == nullptr ? std::string_view{} : std::string_view{content_->joined};
}

TextList TextList::with(const std::vector<std::string>& more) const
{
    std::size_t characters = joined().size();
    for (const std::string& text : more) {
        characters += text.size();
    }
    TextListWriter writer;
    writer.reserve(size() + more.size(), characters);
    writer.add(*this);
    for (const std::string& text : more) {
        writer.add(text);
    }
    return writer.take();
}

TextList TextList::from(std::size_t first) const
{
    TextListWriter writer;
    writer.add(*this, first);
    return writer.take();
}

std::size_t TextList::commonWith(const TextList& other) const
{
    const std::size_t most = std::min(size(), other.size());
    if (content_ == other.content_ || most == 0) {
        return most;
    }
    const auto ends = content_->ends.begin();
    const auto sameEnds = static_cast<std::size_t>(
        std::mismatch(ends, ends + static_cast<std::ptrdiff_t>(most), other.content_->ends.begin()).first - ends);
    if (sameEnds == 0) {
        return 0;
    }
    const std::size_t length = content_->ends[sameEnds - 1];
    if (joined().substr(0, length) == other.joined().substr(0, length)) {
        return sameEnds; // the usual case, many characters at a time
    }
    const auto differing = static_cast<std::size_t>(
        std::mismatch(joined().begin(), joined().begin() + static_cast<std::ptrdiff_t>(length), other.joined().begin())
            .first -
        joined().begin());
    return static_cast<std::size_t>(std::upper_bound(ends, ends + static_cast<std::ptrdiff_t>(sameEnds), differing) -
                                    ends);
}

void TextListWriter::add(std::string_view text)
{
    content_.joined += text;
    content_.ends.push_back(content_.joined.size());
}

void TextListWriter::add(const TextList& texts, std::size_t first)
{
    if (first >= texts.size()) {
        return;
    }
    const auto& [joined, ends] = *texts.content_;
    const std::size_t skipped = first == 0 ? 0 : ends[first - 1];
    const std::size_t before = content_.joined.size();
    content_.joined.append(joined, skipped);
    const std::size_t count = content_.ends.size();
    content_.ends.resize(count + ends.size() - first);
    std::transform(ends.begin() + static_cast<std::ptrdiff_t>(first), ends.end(),
                   content_.ends.begin() + static_cast<std::ptrdiff_t>(count),
                   [before, skipped](std::size_t end) { return end - skipped + before; });
}

void TextListWriter::reserve(std::size_t texts, std::size_t characters)
{
    content_.ends.reserve(texts);
    content_.joined.reserve(characters);
}

TextList TextListWriter::take()
{
    return content_.ends.empty() ? TextList{} : TextList{std::exchange(content_, {})};
}

} // namespace sentrel
