#include "conformance/Suite.hpp"
#include "ports/FileSystem.hpp"
#include "ports/UserDefaults.hpp"

#include <algorithm>
#include <cerrno>

namespace sentrel::conformance {

namespace {

using Texts = std::vector<std::string>;

const std::string key = "conformance.entry";

/// The kinds of value that the key has: scalar (a text or data), list of texts, integer. A store may keep data as text.
std::string kindsOf(ports::UserDefaults& defaults)
{
    std::string kinds;
    kinds += defaults.data(key) || defaults.text(key) ? "s" : "";
    kinds += defaults.texts(key) ? "l" : "";
    kinds += defaults.integer(key) ? "i" : "";
    return kinds;
}

} // namespace

void checkDefaults(const Subject& subject, Report& report)
{
    ports::UserDefaults& defaults = subject.platform.defaults;
    defaults.remove(key);
    report.expect(kindsOf(defaults).empty(), "an absent key has no value", kindsOf(defaults));

    for (const std::string& text : {std::string{}, std::string{"12"}, std::string{"Größe 🔒\n"}}) {
        defaults.setText(key, text);
        report.expect(defaults.text(key) == text, "a text is read as written", text);
        report.expect(kindsOf(defaults) == "s", "a text is nothing else", kindsOf(defaults));
    }
    for (const std::int64_t number : {std::int64_t{0}, std::int64_t{-1}, INT64_MAX, INT64_MIN}) {
        defaults.setInteger(key, number);
        report.expect(defaults.integer(key) == number, "an integer is read as written", std::to_string(number));
        report.expect(kindsOf(defaults) == "i", "an integer is nothing else", kindsOf(defaults));
    }
    for (const Texts& texts : {Texts{}, Texts{"a", "", "ü"}}) {
        defaults.setTexts(key, texts);
        report.expect(defaults.texts(key) == texts, "texts are read as written");
        report.expect(kindsOf(defaults) == "l", "texts are nothing else", kindsOf(defaults));
    }
    Bytes all(65536);
    for (std::size_t index = 0; index < all.size(); ++index) {
        all[index] = static_cast<std::uint8_t>(index * 31U);
    }
    for (const Bytes& data : {Bytes{}, Bytes{0, 255}, all}) {
        defaults.setData(key, data);
        report.expect(defaults.data(key) == data, "data are read as written", std::to_string(data.size()));
        report.expect(kindsOf(defaults) == "s", "data are nothing else", kindsOf(defaults));
    }
    defaults.remove(key);
    report.expect(kindsOf(defaults).empty(), "a removed key has no value", kindsOf(defaults));
}

void checkFiles(const Subject& subject, Report& report)
{
    ports::FileSystem& files = subject.platform.files;
    const auto folder = subject.folder / "a" / "b";
    report.expect(files.createDirectories(folder, 0700) == 0, "folders are made with their parents");
    report.expect(files.createDirectories(folder, 0700) == 0, "a folder that is there is no error");
    report.expect(!files.list(subject.folder / "none") && !files.read(subject.folder / "none"),
                  "nothing is read from nowhere");

    int error = 0;
    report.expect(files.create(subject.folder / "none" / "file", 0600, error) == nullptr && error == ENOENT,
                  "a file needs its folder", std::to_string(error));
    const auto first = folder / "first";
    const auto write = [&](const std::filesystem::path& path, std::string_view text) {
        const auto file = files.create(path, 0600, error);
        return file != nullptr && file->write(bytesOf(text.substr(0, 2))) == 0 &&
               file->write(bytesOf(text.substr(2))) == 0 && file->synchronize() == 0;
    };
    report.expect(write(first, "longer than before") && write(first, "shorter"), "a file is written in parts");
    report.expect(files.read(first) == bytesOf("shorter"), "a new file of the same name begins empty");
    report.expect(write(folder / "second", "another"), "files lie side by side");

    auto names = files.list(folder).value_or(Texts{});
    std::ranges::sort(names);
    report.expect(names == Texts{"first", "second"}, "a folder lists its entries and no others");
    report.expect(files.rename(folder / "second", first) == 0 && files.read(first) == bytesOf("another"),
                  "renaming replaces");
    report.expect(!files.exists(folder / "second"), "the old name is gone");
    report.expect(files.synchronizeDirectory(folder) == 0, "a folder's entries reach the medium");
    report.expect(files.rename(folder / "second", first) == ENOENT, "nothing can't be renamed");
    report.expect(files.remove(first) == 0 && !files.exists(first), "a removed file is gone");
    report.expect(files.remove(first) == ENOENT, "removing nothing says so");
}

} // namespace sentrel::conformance
