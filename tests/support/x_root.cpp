#include "tests/support/x_root.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <string_view>

namespace tamlo::test {

void setRootProfile(const std::vector<std::uint8_t>& bytes)
{
    constexpr std::string_view kName = "_ICC_PROFILE";
    xcb_connection_t* const x = xcb_connect(nullptr, nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    xcb_intern_atom_reply_t* const atom =
        xcb_intern_atom_reply(x, xcb_intern_atom(x, 0, kName.size(), kName.data()), nullptr);
    if (bytes.empty())
        xcb_delete_property(x, root, atom->atom);
    else
        xcb_change_property(x, XCB_PROP_MODE_REPLACE, root, atom->atom, XCB_ATOM_CARDINAL, 8,
                            static_cast<std::uint32_t>(bytes.size()), bytes.data());
    std::free(atom);
    std::free(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr)); // the server has done it
    xcb_disconnect(x);
}

} // namespace tamlo::test
