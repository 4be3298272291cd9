#include "server/MessageDispatch.h"
namespace velloway {
class MessageDispatch::Reading {};
MessageDispatch::MessageDispatch(const Targets& targets) : targets_(targets) {}
MessageDispatch::~MessageDispatch() = default;
void MessageDispatch::handle(std::string_view, std::size_t) {}
} // namespace velloway
