#pragma once

#include "platform/UserNotificationCenter.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

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
    };

    /// `started` is called for each delivery that comes under way, within `add` or `finish`.
    explicit DeliveryQueue(std::function<void(Delivery& delivery)> started) : started_(std::move(started)) {}

    /// Completes at once with an error when too many are under way already.
    void add(NotificationRequest request, Completion completion);
    /// Completes what has not been sent yet.
    void removePending(const std::string& identifier);

    /// The delivery that is under way for the identifier, or null.
    Delivery* find(const std::string& identifier);
    /// Null when that delivery has ended or is in another stage.
    Delivery* find(const std::string& identifier, std::uint64_t turn, Stage stage);

    /// Last in the order of sending.
    void makeReady(Delivery& delivery);
    /// A delivery that was sent in vain, in the order in which the deliveries were handed over.
    void makeReadyAgain(Delivery& delivery);
    bool hasReady() const { return !ready_.empty(); }
    /// The next to be sent, in the stage `ready`; null when there is none.
    Delivery* takeReady();

    /// Ends the delivery: the one that waits behind it comes under way, then the completion is called.
    void finish(Delivery& delivery, const std::optional<std::string>& error);

private:
    struct Entry {
        Delivery current;
        std::optional<Delivery> next;
    };

    void start(Delivery& delivery);

    std::function<void(Delivery&)> started_;
    std::map<std::string, Entry> entries_;
    /// Identifier and turn; an element whose delivery has ended meanwhile is skipped.
    std::deque<std::pair<std::string, std::uint64_t>> ready_;
    std::uint64_t turns_ = 0;
};

} // namespace velloway
