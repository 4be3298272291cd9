#pragma once

#include "fakes/Journal.h"
#include "platform/UserNotificationCenter.h"

#include <algorithm>
#include <deque>
#include <map>

namespace velloway::test {

/// Keeps what is on screen, by identifier. Completions wait until the test answers them.
class FakeUserNotificationCenter : public UserNotificationCenter {
public:
    explicit FakeUserNotificationCenter(Journal* journal = nullptr) : journal_(journal) {}

    void setDelegate(UserNotificationCenterDelegate* newDelegate) override {
        note("notification delegate");
        delegate = newDelegate;
    }
    void add(const NotificationRequest& request,
             std::function<void(const std::optional<std::string>&)> completion) override {
        note("add " + request.identifier);
        requests.push_back(request);
        hadCompletion.push_back(static_cast<bool>(completion));
        if (!addError) {
            delivered.insert_or_assign(request.identifier, request);
        }
        if (completion) {
            completion(addError);
        }
    }
    void removeDelivered(const std::vector<std::string>& identifiers) override {
        for (const auto& identifier : identifiers) {
            note("removeDelivered " + identifier);
            delivered.erase(identifier);
        }
    }
    void removePending(const std::vector<std::string>& identifiers) override {
        for (const auto& identifier : identifiers) {
            note("removePending " + identifier);
        }
    }
    void getAuthorizationStatus(std::function<void(AuthorizationStatus)> completion) override {
        note("notification settings");
        statusQueries.push_back(std::move(completion));
    }
    void
    requestAuthorization(unsigned options,
                         std::function<void(bool, const std::optional<std::string>&)> completion) override {
        note("request authorization " + std::to_string(options));
        authorizationQueries.push_back(std::move(completion));
    }
    void setCategories(const std::vector<NotificationCategory>& newCategories) override {
        note("notification categories");
        categories = newCategories;
    }

    void answerStatus(AuthorizationStatus status) {
        auto query = std::move(statusQueries.front());
        statusQueries.pop_front();
        query(status);
    }
    void answerAuthorization(bool granted, const std::optional<std::string>& error = {}) {
        auto query = std::move(authorizationQueries.front());
        authorizationQueries.pop_front();
        query(granted, error);
    }

    UserNotificationCenterDelegate* delegate = nullptr;
    std::optional<std::string> addError;
    std::vector<NotificationRequest> requests;
    std::vector<bool> hadCompletion;
    std::map<std::string, NotificationRequest> delivered;
    std::vector<NotificationCategory> categories;
    std::deque<std::function<void(AuthorizationStatus)>> statusQueries;
    std::deque<std::function<void(bool, const std::optional<std::string>&)>> authorizationQueries;

private:
    void note(std::string entry) {
        if (journal_) {
            journal_->note(std::move(entry));
        }
    }

    Journal* journal_;
};

} // namespace velloway::test
