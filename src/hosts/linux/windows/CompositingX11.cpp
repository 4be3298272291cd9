#include "hosts/linux/windows/Compositing.h"

#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace velloway {

namespace {

template <class Reply> std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
    return {reply, &std::free};
}

} // namespace

bool isCompositing() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11) {
        return true;
    }
    // A compositing manager announces itself by owning this selection. All screens of Qt are one X screen.
    constexpr std::string_view selection = "_NET_WM_CM_S0";
    auto* server = x11->connection();
    const auto atom = owned(xcb_intern_atom_reply(
        server, xcb_intern_atom(server, false, selection.size(), selection.data()), nullptr));
    if (!atom) {
        return false;
    }
    const auto owner =
        owned(xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

} // namespace velloway
