#pragma once

#include "platform/Accessibility.h"
#include "platform/DispatchQueue.h"
#include "platform/InputEvents.h"
#include "platform/Log.h"
#include "platform/Scripts.h"
#include "remote/InputInjection.h"

#include <optional>
#include <string_view>

namespace velloway {

/// The values read from one `remote_control` message; each is absent when its key is missing or holds
/// another type. The text views live as long as the message.
struct RemoteCommand {
    std::optional<std::string_view> command;
    std::optional<std::string_view> type;
    std::optional<std::string_view> text;
    std::optional<std::string_view> button;
    std::optional<std::string_view> url;
    std::optional<double> dx;
    std::optional<double> dy;
};

/// Decides what a remote command means. Keys are injected inside the call; pointer moves, clicks and scripts
/// go to the main queue, so the two kinds can pass one another. Keeps nothing between commands.
class CommandRouter {
public:
    /// The ports must outlive every job on the main queue.
    CommandRouter(DispatchQueue& main, InputEvents& input, Scripts& scripts, Accessibility& accessibility,
                  Log& log)
        : main_(main), injection_(input), scripts_(scripts), accessibility_(accessibility), log_(log) {}

    /// Server queue.
    void handle(const RemoteCommand& message);

private:
    bool handleMedia(std::string_view command);
    void handleCommand(std::string_view command, const std::optional<std::string_view>& url);
    bool checkAccess(std::string_view command);
    void postScript(SystemScript script);

    DispatchQueue& main_;
    InputInjection injection_;
    Scripts& scripts_;
    Accessibility& accessibility_;
    Log& log_;
};

} // namespace velloway
