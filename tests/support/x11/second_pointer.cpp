// SPDX-License-Identifier: MIT

#include "support/x11/second_pointer.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <array>
#include <stdexcept>
#include <string_view>

namespace tessarel::x11test {

namespace {

constexpr std::string_view kPointerName = "Second pointer"; // the server appends the kind of the device

/// The changes of the hierarchy as the server expects them, in units of four bytes.
struct AddMaster {
    std::uint16_t type = XCB_INPUT_HIERARCHY_CHANGE_TYPE_ADD_MASTER;
    std::uint16_t length = 4;
    std::uint16_t nameLength = 6;
    std::uint8_t sendCore = 1;
    std::uint8_t enable = 1;
    std::array<char, 8> name = {'S', 'e', 'c', 'o', 'n', 'd', 0, 0};
};
struct RemoveMaster {
    std::uint16_t type = XCB_INPUT_HIERARCHY_CHANGE_TYPE_REMOVE_MASTER;
    std::uint16_t length = 3;
    std::uint16_t device = 0;
    std::uint8_t returnMode = XCB_INPUT_CHANGE_MODE_FLOAT;
    std::uint8_t pad = 0;
    std::uint16_t returnPointer = 0;
    std::uint16_t returnKeyboard = 0;
};

template <class Change>
bool changeHierarchy(xcb_connection_t* xcb, const Change& change) {
    const auto cookie = xcb_input_xi_change_hierarchy_checked(
        xcb, 1, reinterpret_cast<const xcb_input_hierarchy_change_t*>(&change));
    return own(xcb_request_check(xcb, cookie)) == nullptr;
}

} // namespace

SecondPointer::SecondPointer(const std::string& display) : m_observer(display) {
    xcb_connection_t* const xcb = m_observer.x().get();
    const auto version =
        own(xcb_input_xi_query_version_reply(xcb, xcb_input_xi_query_version(xcb, 2, 2), nullptr));
    if (!version || !changeHierarchy(xcb, AddMaster{}))
        throw std::runtime_error("no second master pointer");
    m_pointer = find();
    xcb_input_xi_set_client_pointer(xcb, XCB_NONE, m_pointer);
    m_observer.x().roundTrip();
}

SecondPointer::~SecondPointer() {
    remove();
}

void SecondPointer::remove() {
    if (m_pointer == 0)
        return;
    changeHierarchy(m_observer.x().get(), RemoveMaster{.device = m_pointer});
    m_pointer = 0;
}

void SecondPointer::type(xcb_keycode_t key) {
    for (const int event : {XCB_KEY_PRESS, XCB_KEY_RELEASE})
        xcb_test_fake_input(m_observer.x().get(), static_cast<std::uint8_t>(event), key, XCB_CURRENT_TIME,
                            m_observer.root(), 0, 0, 0);
    m_observer.x().roundTrip();
}

/// Returns the id of the new master pointer.
std::uint16_t SecondPointer::find() {
    xcb_connection_t* const xcb = m_observer.x().get();
    const auto devices = own(xcb_input_xi_query_device_reply(
        xcb, xcb_input_xi_query_device(xcb, XCB_INPUT_DEVICE_ALL_MASTER), nullptr));
    if (!devices)
        throw std::runtime_error("no devices");
    for (auto device = xcb_input_xi_query_device_infos_iterator(devices.get()); device.rem > 0;
         xcb_input_xi_device_info_next(&device)) {
        const std::string_view name(xcb_input_xi_device_info_name(device.data),
                                    static_cast<std::size_t>(device.data->name_len));
        if (name == kPointerName)
            return device.data->deviceid;
    }
    throw std::runtime_error("the second master pointer is not listed");
}

} // namespace tessarel::x11test
