#pragma once

#include "platform/UserNotificationCenter.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace velloway {

/// The requests on their way from hand-over to screen. Main thread.
///
/// Per identifier one is under way and at most one waits: a later one takes the place of the one that waits, as
/// it would on screen. So a replacement never overtakes the answer that names what to replace.
class DeliveryQueue {
public:
    using Completion = std::function<void(const std::optional<std::string>& error)>;

    enum class Stage { askingDelegate, ready, sent };

    struct Delivery {
        NotificationRequest request;
        Completion completion;
        Stage stage = Stage::askingDelegate;
        /// Distinguishes a late answer for an earlier delivery from one for this.
        std::uint64_t turn = 0;
        unsigned options = 0;
        int attempts = 0;
        /// It was removed from the screen while it was on its way to the service.
        bool isRemoved = false;
        /// It is on our own banner and goes from there to the service.
        bool isMove = false;
    };

    /// `started` is called for each delivery that comes under way, within `add` or `finish`.
    explicit DeliveryQueue(std::function<void(Delivery& delivery)> started) : started_(std::move(started)) {}

    /// When too many are under way already, the oldest that has not been sent gives way and completes with an
    /// error.
    void add(NotificationRequest request, Completion completion);
    /// Adds a delivery that is ready at once and that nobody waits for. Returns false when there is no room or
    /// another delivery of that identifier is under way.
    bool addMove(NotificationRequest request, unsigned options);
    /// Completes what has not been sent yet.
    void removePending(const std::string& identifier);

    /// The delivery that is under way for the identifier, or null.
    Delivery* find(const std::string& identifier);
    /// Null when that delivery has ended or is in another stage.
    Delivery* find(const std::string& identifier, std::uint64_t turn, Stage stage);

    /// Also for a delivery that failed. Those that are ready are sent in the order in which they were
    /// handed over.
    void makeReady(Delivery& delivery);
    bool hasReady() const { return !ready_.empty(); }
    /// The next to be sent, in the stage `ready`; null when there is none.
    Delivery* takeReady();
    void markSent(Delivery& delivery);

    /// Ends the delivery: the one that waits behind it comes under way, then the completion is called.
    void finish(Delivery& delivery, const std::optional<std::string>& error);

private:
    struct Entry {
        Delivery current;
        std::optional<Delivery> next;
    };

    void start(Delivery& delivery);
    void makeRoom();

    std::function<void(Delivery&)> started_;
    std::map<std::string, Entry> entries_;
    /// The identifiers of those that have not been sent, by turn.
    std::map<std::uint64_t, std::string> waiting_;
    /// Those among them that may be sent.
    std::map<std::uint64_t, std::string> ready_;
    std::uint64_t turns_ = 0;
};

} // namespace velloway
