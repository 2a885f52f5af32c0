#include "simulation/mac/files/JsonMembers.hpp"

#include "foundation/Json.hpp"

#include <nlohmann/json.hpp>

namespace sentrel::simulation {

namespace {

constexpr std::string_view whiteSpace = " \t\n\r";

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(whiteSpace);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(whiteSpace) - begin + 1);
}

// Finds the commas and colons of the outermost level: those outside strings and inner values.
class Splitter {
public:
    explicit Splitter(std::string_view inside) : inside_(inside) {}

    std::vector<JsonMember> split()
    {
        for (; place_ < inside_.size(); ++place_) {
            step(inside_[place_]);
        }
        endMember();
        return std::move(members_);
    }

private:
    void step(char character)
    {
        if (isInString_) {
            stepInString(character);
            return;
        }
        switch (character) {
        case '"':
            isInString_ = true;
            break;
        case '{':
        case '[':
            ++level_;
            break;
        case '}':
        case ']':
            --level_;
            break;
        case ':':
            if (level_ == 0) {
                key_ = take();
            }
            break;
        case ',':
            if (level_ == 0) {
                endMember();
            }
            break;
        default:
            break;
        }
    }

    void stepInString(char character)
    {
        if (character == '\\') {
            ++place_; // an escaped character ends nothing
        } else if (character == '"') {
            isInString_ = false;
        }
    }

    std::string_view take()
    {
        const std::string_view part = trimmed(inside_.substr(begin_, place_ - begin_));
        begin_ = place_ + 1;
        return part;
    }

    void endMember()
    {
        const std::string_view value = take();
        if (!value.empty()) {
            members_.push_back({Json::parse(key_).get<std::string>(), std::string{value}});
        }
    }

    std::string_view inside_;
    std::size_t place_ = 0;
    std::size_t begin_ = 0;
    std::size_t level_ = 0;
    bool isInString_ = false;
    std::string_view key_;
    std::vector<JsonMember> members_;
};

} // namespace

std::vector<JsonMember> splitJsonObject(std::string_view text)
{
    const std::size_t open = text.find('{'); // a byte order mark may come before it
    const std::size_t close = text.rfind('}');
    return Splitter{text.substr(open + 1, close - open - 1)}.split();
}

std::string joinJsonObject(const std::vector<JsonMember>& members)
{
    std::string text = "{";
    for (const JsonMember& member : members) {
        text += text.size() == 1 ? "\n  " : ",\n  ";
        text += encodeJson(Json(member.key));
        text += ": ";
        text += member.value;
    }
    return text += "\n}\n";
}

} // namespace sentrel::simulation
