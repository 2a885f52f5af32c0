#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"

namespace sentrel::mac {

namespace {

/// The application's standard user defaults.
class MacUserDefaults final : public ports::UserDefaults {
public:
    [[nodiscard]] std::optional<Bytes> data(const std::string& key) override
    {
        NSData* const data = as<NSData>(objectFor(key));
        return data == nil ? std::nullopt : std::optional{bytesOf(data)};
    }

    void setData(const std::string& key, BytesView value) override
    {
        NSData* const data = [NSData dataWithBytes:value.data() length:value.size()];
        [NSUserDefaults.standardUserDefaults setObject:data forKey:stringObject(key)];
    }

    [[nodiscard]] std::optional<std::string> text(const std::string& key) override
    {
        // Not stringForKey:, which makes texts of numbers.
        return optionalText(as<NSString>(objectFor(key)));
    }

    void setText(const std::string& key, const std::string& value) override
    {
        [NSUserDefaults.standardUserDefaults setObject:stringObject(value) forKey:stringObject(key)];
    }

    [[nodiscard]] std::optional<std::vector<std::string>> texts(const std::string& key) override
    {
        NSArray<NSString*>* const array = [NSUserDefaults.standardUserDefaults stringArrayForKey:stringObject(key)];
        if (array == nil) {
            return std::nullopt;
        }
        std::vector<std::string> texts;
        texts.reserve(array.count);
        for (NSString* const element in array) {
            texts.push_back(textOf(element));
        }
        return texts;
    }

    void setTexts(const std::string& key, const std::vector<std::string>& value) override
    {
        [NSUserDefaults.standardUserDefaults setObject:stringObjects(value) forKey:stringObject(key)];
    }

    [[nodiscard]] std::optional<std::int64_t> integer(const std::string& key) override
    {
        // Not integerForKey:, which makes numbers of texts and zero of everything else.
        NSNumber* const number = as<NSNumber>(objectFor(key));
        return number == nil ? std::nullopt : std::optional<std::int64_t>{number.longLongValue};
    }

    void setInteger(const std::string& key, std::int64_t value) override
    {
        [NSUserDefaults.standardUserDefaults setInteger:value forKey:stringObject(key)];
    }

    void remove(const std::string& key) override
    {
        [NSUserDefaults.standardUserDefaults removeObjectForKey:stringObject(key)];
    }

private:
    static id objectFor(const std::string& key)
    {
        return [NSUserDefaults.standardUserDefaults objectForKey:stringObject(key)];
    }
};

} // namespace

std::unique_ptr<ports::UserDefaults> makeUserDefaults()
{
    return std::make_unique<MacUserDefaults>();
}

} // namespace sentrel::mac
