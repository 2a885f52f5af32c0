#pragma once

#include "alerts/LocalAlertStore.hpp"
#include "alerts/MacAlertsService.hpp"
#include "cloud/CloudMac.hpp"
#include "simulation/mac/language/IcuCalendar.hpp"

#include <gtest/gtest.h>

namespace sentrel::test {

/// The alerts of a Mac with iCloud. Alerts are known by their numbers; a higher one is newer.
class AlertsMac : public testing::Test {
protected:
    AlertsMac()
    {
        mac.await(mac.cloud->verifyCacheOwner());
        launch();
    }
    ~AlertsMac() override { quit(); }

    void launch()
    {
        const MainActor actor{mac.process};
        store = std::make_unique<LocalAlertStore>(actor, mac.files, mac.host);
        uploader = std::make_unique<AlertUploader>(actor, *mac.cloud, world.log);
        service = std::make_unique<MacAlertsService>(
            actor, *mac.cloud, *store, *uploader, [this] { ++timesCaughtUp; },
            MacAlertsService::Ports{mac.defaults, mac.files, mac.wallClock, calendar, mac.language});
    }
    void quit()
    {
        service.reset();
        uploader.reset();
        store.reset();
    }
    void relaunch()
    {
        quit();
        mac.relaunch();
        launch();
    }

    void save(int number, bool isPending = true, const std::optional<Bytes>& photo = std::nullopt)
    {
        store->save(alert(number, photo.has_value()), photo, isPending);
        service->merge({alert(number, photo.has_value()), isPending});
    }
    static AlertEvent alert(int number, bool hasPhoto = false)
    {
        AlertEvent event = alertNumber(number);
        if (hasPhoto) {
            event.photoFileName = event.id.text() + ".jpg";
        }
        return event;
    }
    void putIntoCloud(std::initializer_list<int> numbers)
    {
        mac.await(mac.cloud->refreshAvailability(true));
        for (const int number : numbers) {
            mac.await(mac.cloud->uploadAlert(alert(number), std::nullopt));
        }
    }
    [[nodiscard]] std::string rows() const
    {
        std::string text;
        for (const AlertRow& row : *service->alerts.get()) {
            const char* const marks[] = {"c", "m", "w"}; // cloud, this Mac only, waiting
            text += std::to_string(numberOf(row.alert)) + marks[static_cast<int>(row.storageLocation)] + " ";
        }
        return text;
    }
    std::vector<int> here()
    {
        std::vector<int> numbers;
        for (const StoredAlert& stored : store->alerts()) {
            numbers.push_back(numberOf(stored.alert));
        }
        return numbers;
    }
    std::vector<int> uploadsInOrder() const
    {
        std::vector<int> numbers;
        for (const auto& event : world.log.named("alert.uploaded")) {
            numbers.push_back(UUID::parse(event.text("id"))->octets()[1]);
        }
        return numbers;
    }
    [[nodiscard]] std::uint64_t countInCloud() { return world.server.count("owner", "AlertEvent"); }
    [[nodiscard]] std::uint64_t saves() const { return mac.icloud.link.requests(CloudOperation::save); }
    void refresh() { mac.await(service->refresh()); }
    void catchUp() { mac.await(service->catchUp()); }
    template <class T> Task<T> start(Async<T> work) { return MainActor{mac.process}.spawn(std::move(work)); }

    CloudWorld world;
    CloudMac mac{world, "MacBook"};
    simulation::IcuCalendar calendar;
    int timesCaughtUp = 0;
    std::unique_ptr<LocalAlertStore> store;
    std::unique_ptr<AlertUploader> uploader;
    std::unique_ptr<MacAlertsService> service;
    const Bytes picture = bytesOf("a photo");
};

} // namespace sentrel::test
