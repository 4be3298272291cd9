#pragma once

#include "platform/DispatchQueue.h"
#include "state/HistoryStore.h"

#include <memory>
#include <utility>

namespace velloway {

/// The server's hold on the store. It lives exactly as long as the server, so a job that holds it weakly knows
/// whether the server is still there. Main thread only, but for copying the pointers to it.
struct StoreLink {
    /// Weak: the server never keeps the store alive.
    std::weak_ptr<HistoryStore> historyStore;
};

/// Runs `step` on the main queue with the store; skipped if by then the server or the store has gone.
template <class Step> void withStore(DispatchQueue& main, std::weak_ptr<StoreLink> link, Step step) {
    hop(main, link, [step = std::move(step)](StoreLink& alive) mutable {
        if (auto store = alive.historyStore.lock()) {
            step(*store);
        }
    });
}

} // namespace velloway
