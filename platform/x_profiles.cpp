#include "platform/x_profiles.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

namespace tamlo::platform {
namespace {

struct Freer {
    void operator()(void* reply) const noexcept { std::free(reply); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Freer>;

std::string nameOf(int head)
{
    return head == 0 ? "_ICC_PROFILE" : "_ICC_PROFILE_" + std::to_string(head);
}

} // namespace

XProfiles::XProfiles(void* connection) : connection_(connection)
{
    auto* const x = static_cast<xcb_connection_t*>(connection_);
    const xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(x));
    if (screens.rem > 0) root_ = screens.data->root;
    std::vector<xcb_intern_atom_cookie_t> asked;
    for (int head = 0; head < kMostHeads; ++head) {
        const std::string name = nameOf(head);
        asked.push_back(xcb_intern_atom(x, 0, static_cast<std::uint16_t>(name.size()), name.c_str()));
    }
    for (const xcb_intern_atom_cookie_t cookie : asked) {
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x, cookie, nullptr));
        atoms_.push_back(reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE});
    }
}

std::vector<std::uint8_t> XProfiles::read(int head) const
{
    constexpr std::uint32_t kMostWords = 4 << 20; // 16 MiB: no screen's profile comes near it
    if (head < 0 || head >= kMostHeads || atoms_[static_cast<std::size_t>(head)] == XCB_ATOM_NONE) return {};
    auto* const x = static_cast<xcb_connection_t*>(connection_);
    const xcb_get_property_cookie_t cookie = xcb_get_property(
        x, 0, root_, atoms_[static_cast<std::size_t>(head)], XCB_GET_PROPERTY_TYPE_ANY, 0, kMostWords);
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, nullptr));
    if (!reply || reply->format != 8 || reply->bytes_after > 0) return {};
    const auto* const bytes = static_cast<const std::uint8_t*>(xcb_get_property_value(reply.get()));
    return {bytes, bytes + xcb_get_property_value_length(reply.get())};
}

bool XProfiles::isChange(const void* event) const
{
    constexpr std::uint8_t kSent = 0x80; // a flag on events that another program sent
    const auto* const any = static_cast<const xcb_generic_event_t*>(event);
    if ((any->response_type & ~kSent) != XCB_PROPERTY_NOTIFY) return false;
    const auto* const property = static_cast<const xcb_property_notify_event_t*>(event);
    return property->window == root_ && property->atom != XCB_ATOM_NONE &&
           std::ranges::find(atoms_, property->atom) != atoms_.end();
}

} // namespace tamlo::platform
