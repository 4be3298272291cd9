#pragma once

#include "fakes/FakePlatform.h"
#include "features/NotificationManager.h"
#include "state/AppNotificationCenter.h"
#include "state/HistoryStore.h"
#include "state/StoreLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {

/// A store, the server's hold on it and the notifications, on a host of fakes.
class FeatureTest : public testing::Test {
protected:
    FeatureTest() { link->historyStore = store; }

    /// Title and body of every notification so far, in order.
    std::vector<std::pair<std::string, std::string>> banners() const {
        std::vector<std::pair<std::string, std::string>> all;
        for (const NotificationRequest& request : host.notificationCenter.requests) {
            all.emplace_back(request.content.title, request.content.body);
        }
        return all;
    }

    using Banners = std::vector<std::pair<std::string, std::string>>;
    using Entries = std::vector<std::string>;

    FakePlatform host;
    std::shared_ptr<HistoryStore> store = std::make_shared<HistoryStore>(host.host);
    std::shared_ptr<StoreLink> link = std::make_shared<StoreLink>();
    NotificationManager notificationManager{host.notificationCenter, host.host, host.log};
    AppNotificationCenter appNotifications;
};

} // namespace velloway::test
