#include "remote/CommandRouter.h"
namespace velloway {
void CommandRouter::handle(const RemoteCommand&) {}
} // namespace velloway
