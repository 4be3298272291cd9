#include "hosts/mac/MacNetwork.h"

#include "hosts/mac/MacListener.h"

namespace velloway {

namespace {

NetworkRef<nw_parameters_t> parametersFrom(const ListenerParameters& wanted) {
    auto parameters = NetworkRef<nw_parameters_t>::adopt(
        nw_parameters_create_secure_tcp(NW_PARAMETERS_DISABLE_PROTOCOL, NW_PARAMETERS_DEFAULT_CONFIGURATION));
    nw_parameters_set_reuse_local_address(parameters.get(), wanted.allowLocalEndpointReuse);
    const auto options = NetworkRef<nw_protocol_options_t>::adopt(nw_ws_create_options(nw_ws_version_13));
    nw_ws_options_set_auto_reply_ping(options.get(), wanted.autoReplyPing);
    const auto stack =
        NetworkRef<nw_protocol_stack_t>::adopt(nw_parameters_copy_default_protocol_stack(parameters.get()));
    nw_protocol_stack_prepend_application_protocol(stack.get(), options.get());
    return parameters;
}

} // namespace

bool MacNetwork::acceptsPort(std::uint16_t) const {
    return true;
}

std::shared_ptr<NetworkListener> MacNetwork::makeListener(const ListenerParameters& parameters,
                                                          NetworkError& error) {
    if (parameters.webSocketVersion != 13) {
        error = {.localizedDescription = "Only WebSocket version 13 is supported",
                 .description = "unsupported WebSocket version " + std::to_string(parameters.webSocketVersion)};
        return nullptr;
    }
    const std::string port = std::to_string(parameters.port);
    auto listener = NetworkRef<nw_listener_t>::adopt(
        nw_listener_create_with_port(port.c_str(), parametersFrom(parameters).get()));
    if (!listener) {
        // The platform gives no reason here.
        error = {.localizedDescription = "The listener could not be created",
                 .description = "no listener on port " + port};
        return nullptr;
    }
    return std::make_shared<MacListener>(std::move(listener), beginActivity_);
}

} // namespace velloway
