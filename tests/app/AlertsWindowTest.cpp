#include "alerts/LocalAlertStore.hpp"
#include "alerts/MacAlertsService.hpp"
#include "app/AlertPhotoPreview.hpp"
#include "app/MacAlertsContentView.hpp"
#include "cloud/CloudMac.hpp"
#include "simulation/mac/camera/JpegWriter.hpp"
#include "simulation/mac/camera/TurboImageCodec.hpp"
#include "simulation/mac/display/SimulatedApplicationActivation.hpp"
#include "simulation/mac/display/SimulatedDisplays.hpp"
#include "simulation/mac/display/SimulatedPreviewPanel.hpp"
#include "simulation/mac/display/SimulatedSavePanels.hpp"
#include "simulation/mac/language/IcuCalendar.hpp"
#include "ui/Description.hpp"
#include "ui/Interaction.hpp"
#include "ui/Node.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <tuple>

namespace sentrel::test {
namespace {

using testing::ElementsAre;
using namespace std::string_literals;

/// 5 March 2026, 14:07:09 UTC.
constexpr Date thursday{794412429.0};

/// A calendar that counts how often it is asked to write a date.
class CountingCalendar final : public ports::Calendar {
public:
    ports::DateInterval interval(ports::CalendarUnit unit, Date date) override { return real.interval(unit, date); }
    Date adding(ports::CalendarUnit unit, int count, Date date) override { return real.adding(unit, count, date); }
    int component(ports::CalendarUnit unit, Date date) override { return real.component(unit, date); }
    std::string monthName(Date date) override { return real.monthName(date); }
    std::string formatted(Date date, Style dateStyle, Style timeStyle) override
    {
        ++datesWritten;
        return real.formatted(date, dateStyle, timeStyle);
    }
    std::string formatted(Date date, const std::string& pattern, const std::string& locale) override
    {
        return real.formatted(date, pattern, locale);
    }

    simulation::IcuCalendar real;
    int datesWritten = 0;
};

/// A Mac without an iCloud account, some alerts on it, and the person at the alerts window.
class AlertsWindowTest : public testing::Test {
protected:
    AlertsWindowTest()
    {
        mac_.icloud.account.setStatus(ports::CloudAccountStatus::noAccount);
        mac_.wallClock.offset = thursday.secondsSince(mac_.wallClock.now());
        previewPanel_.setControl({.accepts = [] { return true; },
                                  .begin = [this] { previewPanel_.setDataSource(preview_.dataSource()); },
                                  .end = [this] { previewPanel_.setDataSource(nullptr); }});
    }

    /// An alert of so many seconds ago; gives its id.
    std::string save(double age, std::optional<Bytes> photo = {}, bool pendingUpload = false)
    {
        AlertEvent alert = alertNumber(++count_);
        alert.timestamp = thursday.addingSeconds(-age);
        alert.deviceName = "Ada's MacBook";
        if (photo) {
            alert.photoFileName = alert.id.text() + ".jpg";
        }
        store_.save(alert, photo, pendingUpload);
        return alert.id.text();
    }
    static Bytes photo(int width = 40)
    {
        simulation::RgbxImage image{width, 30};
        for (int y = 0; y < image.height(); ++y) {
            for (int i = 0; i < image.width() * 4; ++i) {
                image.row(y)[i] = static_cast<std::uint8_t>(i * y * 37);
            }
        }
        return *simulation::encodeJpeg(image, 80);
    }
    void open()
    {
        window_.appeared();
        settle();
    }
    void settle() { world_.clock.advance(std::chrono::seconds{2}); }
    ui::Interaction press(std::string_view wanted)
    {
        const auto result = ui::press(window_.body(), wanted);
        settle();
        return result;
    }
    void select(const std::set<std::string>& rows)
    {
        EXPECT_EQ(ui::selectRows(window_.body(), "alerts", rows), ui::Interaction::done);
        settle();
    }
    std::vector<std::string> textsIn(std::string_view wanted)
    {
        const auto body = window_.body();
        const auto node = ui::find(body, wanted);
        return node ? ui::visibleTexts(*node->view) : std::vector<std::string>{"nothing there"};
    }
    bool shows(std::string_view wanted) { return ui::find(window_.body(), wanted).has_value(); }
    /// The photo that a renderer draws; an image without data when there is none.
    ui::Image photoShown()
    {
        const auto body = window_.body();
        const auto node = ui::find(body, "photo");
        return node ? *ui::elementOf<ui::Image>(*node->view) : ui::Image{};
    }

    CloudWorld world_;
    CloudMac mac_{world_, "Ada"};
    const MainActor actor_{mac_.process};
    LocalAlertStore store_{actor_, mac_.files, mac_.host};
    AlertUploader uploader_{actor_, *mac_.cloud, world_.log};
    CountingCalendar calendar_;
    MacAlertsService service_{actor_, *mac_.cloud,
                              store_, uploader_,
                              [] {},  {mac_.defaults, mac_.files, mac_.wallClock, calendar_, mac_.language}};
    simulation::SimulatedSavePanels savePanels_{world_.hardware, mac_.disk};
    simulation::SimulatedPreviewPanel previewPanel_{world_.log};
    simulation::TurboImageCodec codec_;
    simulation::SimulatedApplicationActivation activation_;
    simulation::SimulatedDisplays displays_{mac_.process, world_.log, activation_};
    AlertPhotoPreview preview_{previewPanel_};
    MacAlertsContentView window_{
        {actor_, service_, preview_, calendar_, mac_.files, mac_.host, codec_, mac_.language, savePanels_, displays_}};
    int count_ = 0;
};

TEST_F(AlertsWindowTest, LoadsThenSaysThatThereIsNothing)
{
    EXPECT_THAT(ui::visibleTexts(window_.body()),
                ElementsAre("Loading alerts…", "Toggle Sidebar", "Refresh", "Delete Alert"));
    // Somebody impatient, who closes the window and opens it again.
    for (int i = 0; i < 100; ++i) {
        window_.appeared();
        world_.clock.advance(std::chrono::milliseconds{20});
    }
    EXPECT_THAT(ui::visibleTexts(window_.body()),
                ElementsAre("No Alerts Yet", "Arm Sentrel on this Mac. When a trigger fires, alerts appear here.",
                            "Toggle Sidebar", "Refresh", "Delete Alert"));
    EXPECT_EQ(press("toggleSidebar"), ui::Interaction::unreachable);
    EXPECT_EQ(press("delete"), ui::Interaction::unreachable);
    save(0);
    press("Refresh");
    EXPECT_FALSE(shows("No Alerts Yet"));
}

TEST_F(AlertsWindowTest, ListsAlertsByDateUnderTheServicesMessages)
{
    save(60, {}, true);
    save(26 * 3600);
    save(40 * 86400.0);
    service_.errorMessage = "iCloud has a cold";
    open();
    service_.errorMessage = "iCloud has a cold";
    EXPECT_THAT(textsIn("sidebar"),
                ElementsAre("Some alerts are waiting to upload to iCloud.", "iCloud has a cold", //
                            "Today", "Motion Detected", "2:06\u202FPM", "Waiting to upload to iCloud", "Yesterday",
                            "Motion Detected", "12:07\u202FPM", "Saved on this Mac only", "January", "Motion Detected",
                            "Jan 24, 2026, 2:07\u202FPM", "Saved on this Mac only"));
}

TEST_F(AlertsWindowTest, TheDetailFollowsTheSelection)
{
    const auto first = save(60);
    const auto second = save(120);
    open();
    EXPECT_THAT(textsIn("detail"),
                ElementsAre("Select an Alert", "Choose one or more alerts to view details or delete."));
    select({first});
    EXPECT_THAT(textsIn("summary"), ElementsAre("Motion Detected", "March 5, 2026 at 2:06:09\u202FPM", "Ada's MacBook",
                                                "Saved on this Mac only"));
    EXPECT_THAT(textsIn("photoPane"), ElementsAre("Photo unavailable", "Retry"));
    select({first, second});
    EXPECT_THAT(textsIn("detail"), ElementsAre("2 Alerts Selected", "Delete Selected"));
    EXPECT_TRUE(shows("Delete Selected Alerts"));
    // One of them is deleted elsewhere.
    service_.deleteAlerts({*UUID::parse(first)});
    settle();
    EXPECT_THAT(textsIn("summary"), testing::Contains("March 5, 2026 at 2:05:09\u202FPM"));
}

TEST_F(AlertsWindowTest, TheSidebarHidesAndTheButtonSaysWhatItDoes)
{
    save(60);
    open();
    const auto state = [&] {
        const auto body = window_.body();
        return std::pair{ui::elementOf<ui::SplitView>(body)->isSidebarShown.value,
                         ui::find(body, "toggleSidebar")->view->traits.help};
    };
    EXPECT_EQ(state(), std::pair(true, std::string{"Hide Sidebar"}));
    press("Toggle Sidebar");
    EXPECT_EQ(state(), std::pair(false, std::string{"Show Sidebar"}));
    EXPECT_FALSE(shows("Today") || shows("sidebar/alerts"));
    EXPECT_TRUE(shows("Select an Alert"));
    const auto body = window_.body();
    ui::elementOf<ui::SplitView>(body)->isSidebarShown.set(true); // dragged out
    EXPECT_EQ(state(), std::pair(true, std::string{"Hide Sidebar"}));
}

TEST_F(AlertsWindowTest, LoadsThePhotoOfEachAlertAndAgainOnRetry)
{
    const auto withPhoto = save(60, photo());
    const auto other = save(120, photo(48));
    const auto noImage = save(180, bytesOf("this is no photo"));
    open();
    EXPECT_EQ(ui::selectRows(window_.body(), "alerts", {withPhoto}), ui::Interaction::done);
    EXPECT_THAT(textsIn("photoPane"), ElementsAre("Loading photo…"));
    EXPECT_EQ(ui::selectRows(window_.body(), "alerts", {other}), ui::Interaction::done); // before it has come
    settle();
    EXPECT_EQ(*photoShown().data, photo(48));
    select({withPhoto});
    EXPECT_EQ(*photoShown().data, photo());
    EXPECT_THAT(textsIn("photoPane"), ElementsAre("Preview", "Download Photo"));

    select({noImage});
    EXPECT_EQ(photoShown().data, nullptr);
    press("Retry");
    EXPECT_THAT(textsIn("photoPane"), ElementsAre("Photo unavailable", "Retry"));
    store_.save(service_.alerts.get()->back().alert, photo(56), false);
    press("Retry");
    EXPECT_EQ(*photoShown().data, photo(56));
    EXPECT_TRUE(photoShown().name.ends_with("-2")) << photoShown().name;
}

TEST_F(AlertsWindowTest, PreviewsATemporaryCopy)
{
    const auto id = save(60, photo());
    open();
    select({id});
    press("Preview");
    const auto file = mac_.temporaryFolder() / ("alert_preview_" + id + ".jpg");
    EXPECT_THAT(previewPanel_.items(), ElementsAre(file));
    EXPECT_EQ(preview_.dataSource()->itemAt(0), file);
    EXPECT_EQ(codec_.pixelSize(*mac_.posixFiles.read(file)), (ports::PixelSize{40, 30}));
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms{0600});

    mac_.files.faults().set("create", 2);
    press("Preview");
    EXPECT_THAT(textsIn("photoFailure"),
                ElementsAre("Couldn't Preview Photo", "You don't have permission to save it there.", "OK"));
}

TEST_F(AlertsWindowTest, SavesUnderTheAlertsDateWhateverTheLocale)
{
    const auto id = save(0, photo());
    open();
    select({id});
    for (const char* const locale : {"en_US", "de_DE", "ar_EG", "ja-JP-u-ca-japanese", "th_TH", "fa_IR"}) {
        calendar_.real.setLocale(locale);
        press("Download Photo");
        const auto panel = savePanels_.shown().back();
        EXPECT_EQ(panel.nameFieldStringValue, "alert_2026-03-05_14-07-09.jpg") << locale;
        EXPECT_EQ(panel.title, "Save Alert Photo");
        EXPECT_THAT(panel.allowedContentTypes, ElementsAre("public.jpeg"));
    }
    const auto saved = mac_.posixFiles.read(mac_.disk / "Downloads" / "alert_2026-03-05_14-07-09.jpg");
    ASSERT_TRUE(saved);
    EXPECT_EQ(mac_.posixFiles.list(mac_.disk / "Downloads")->size(), 1U);
    EXPECT_EQ(codec_.pixelSize(*saved), (ports::PixelSize{40, 30}));
}

TEST_F(AlertsWindowTest, SaysWhyAPhotoCouldNotBeSaved)
{
    const auto whole = save(0, photo());
    Bytes damaged = photo(400);
    damaged.resize(damaged.size() / 2);
    const auto half = save(60, damaged);
    open();
    select({whole});
    savePanels_.setAnswer({.isCancelled = true, .folder = {}, .name = {}});
    press("Download Photo");
    EXPECT_FALSE(shows("photoFailure")) << "cancelling is no failure";

    savePanels_.setAnswer({.isCancelled = false, .folder = {}, .name = "photo.jpg"});
    const auto downloads = mac_.disk / "Downloads";
    constexpr auto denied = "You don't have permission to save it there.";
    constexpr auto full = "There is not enough space for it there.";
    // The first two faults strike the temporary file, the others the chosen one.
    const std::tuple<const char*, const char*, bool> faults[] = {
        {"create", denied, false}, {"write", full, false}, {"create", denied, true}, {"write", full, true}};
    for (const auto& [fault, message, isThere] : faults) {
        if (isThere) {
            std::ofstream{downloads / "photo.jpg"} << "older";
        }
        mac_.files.faults().set(fault, 2);
        press("Download Photo");
        EXPECT_THAT(textsIn("photoFailure"), ElementsAre("Couldn't Save Photo", message, "OK"));
        EXPECT_EQ(press("Refresh"), ui::Interaction::unreachable) << "it has to be read first";
        press("OK");
        EXPECT_FALSE(shows("photoFailure"));
        EXPECT_EQ(mac_.posixFiles.list(downloads)->size(), isThere ? 1U : 0U) << "no half file stays";
        EXPECT_EQ(mac_.posixFiles.read(downloads / "photo.jpg") == bytesOf("older"), isThere) << "nor does one go";
    }
    // Another volume takes no file by renaming it.
    mac_.files.faults().set("rename", 1);
    press("Download Photo");
    EXPECT_FALSE(shows("photoFailure"));
    EXPECT_EQ(codec_.pixelSize(*mac_.posixFiles.read(downloads / "photo.jpg")), (ports::PixelSize{40, 30}));
    EXPECT_THAT(*mac_.posixFiles.list(mac_.temporaryFolder()), testing::IsEmpty());

    select({half});
    press("Download Photo");
    EXPECT_THAT(textsIn("photoFailure"),
                ElementsAre("Couldn't Save Photo", "The photo could not be converted for saving.", "OK"));
    EXPECT_EQ(ui::pressKey(window_.body(), ui::Key::returnKey, ""), ui::Interaction::done);
    EXPECT_FALSE(shows("photoFailure"));
}

TEST_F(AlertsWindowTest, WhatIsSelectedMakesNoRowsAnew)
{
    const auto rows = [&] {
        const ui::View body = window_.body();
        return ui::find(body, "sidebar/alerts")->view->children;
    };
    const auto id = save(60);
    open();
    const ui::Children before = rows();
    select({id});
    EXPECT_TRUE(before.size() == 1 && before.isSameAs(rows()));
    save(120);
    open();
    EXPECT_FALSE(before.isSameAs(rows()));
}

TEST_F(AlertsWindowTest, OnePhotoIsTakenOutAtATime)
{
    const auto id = save(0, photo());
    open();
    select({id});
    savePanels_.setAnswerDelay(std::nullopt);
    press("Download Photo");
    EXPECT_EQ(press("Download Photo"), ui::Interaction::unreachable);
    EXPECT_EQ(press("Preview"), ui::Interaction::unreachable);
    savePanels_.answerPanel({.isCancelled = true, .folder = {}, .name = {}});
    settle();
    EXPECT_EQ(press("Preview"), ui::Interaction::done);

    // Nor are the buttons dead after a call that raised.
    savePanels_.faults().set("raises", 1);
    press("Download Photo");
    codec_.faults().set("raises", 1);
    press("Preview");
    EXPECT_THAT(textsIn("photoFailure"),
                ElementsAre("Couldn't Preview Photo", "The photo could not be converted for saving.", "OK"));
    press("OK");
    codec_.faults().set("raises", 1);
    select({});
    select({id});
    EXPECT_TRUE(shows("Photo unavailable"));
    press("Retry");
    EXPECT_EQ(press("Preview"), ui::Interaction::done);
}

TEST_F(AlertsWindowTest, DeletesTheOnesThatAreLeftOfTheSelection)
{
    const auto first = save(60);
    const auto second = save(120);
    open();
    select({first, second});
    EXPECT_EQ(ui::pressKey(window_.body(), ui::Key::deleteKey, ""), ui::Interaction::done);
    EXPECT_THAT(textsIn("deleteConfirmation"),
                ElementsAre("Delete selected alerts?", "2 alerts will be permanently removed.", "Delete", "Cancel"));
    service_.deleteAlerts({*UUID::parse(second)}); // meanwhile, elsewhere
    EXPECT_TRUE(shows("Delete this alert?"));
    press("deleteConfirmation/confirm");
    EXPECT_TRUE(shows("No Alerts Yet") && store_.identifiers().empty());
}

TEST_F(AlertsWindowTest, AThousandRowsAreWrittenOnce)
{
    open();
    std::set<std::string> ids;
    for (int i = 0; i < 1000; ++i) {
        AlertEvent alert = alertNumber(i);
        alert.timestamp = thursday.addingSeconds(-i);
        ids.insert(alert.id.text());
        service_.merge({alert, false});
    }
    calendar_.datesWritten = 0;
    EXPECT_TRUE(shows("alerts"));
    EXPECT_EQ(calendar_.datesWritten, 1000);
    select(ids);
    EXPECT_TRUE(shows("1000 Alerts Selected"));
    select({*ids.begin()});
    EXPECT_LE(calendar_.datesWritten, 1010) << "selecting writes no row";
    const auto headingsAfter = [&](const char* notification) {
        displays_.post(notification);
        world_.clock.runReady();
        const auto texts = textsIn("sidebar");
        return std::tuple(texts.at(1), std::ranges::count(texts, "Yesterday")); // below the notice
    };
    calendar_.real.setTimeZone("Australia/Brisbane"); // seven minutes past midnight
    EXPECT_EQ(headingsAfter("NSSystemTimeZoneDidChangeNotification"), std::tuple("Today"s, 1));
    mac_.wallClock.offset += 86400.0;
    EXPECT_EQ(headingsAfter("NSCalendarDayChangedNotification"), std::tuple("Yesterday"s, 1));
}

} // namespace
} // namespace sentrel::test
