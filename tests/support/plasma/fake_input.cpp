// SPDX-License-Identifier: MIT

#include "support/plasma/fake_input.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace tessarel::plasmatest {

FakeInput::FakeInput(const std::string& socket, const x11test::Environment& environment)
    : m_process({TESSAREL_FAKE_INPUT, socket}, environment) {
    expect("ready");
}

void FakeInput::press(std::initializer_list<std::uint32_t> keys) {
    for (const std::uint32_t one : keys)
        setKey(one, true);
    std::vector<std::uint32_t> reversed(keys);
    std::reverse(reversed.begin(), reversed.end());
    for (const std::uint32_t one : reversed)
        setKey(one, false);
}

void FakeInput::setKey(std::uint32_t key, bool isPressed) {
    inject("key " + std::to_string(key) + (isPressed ? " 1" : " 0"));
}

void FakeInput::moveTo(double x, double y) {
    inject("move " + std::to_string(x) + ' ' + std::to_string(y));
}

void FakeInput::setLeftButton(bool isPressed) {
    inject(isPressed ? "button 1" : "button 0");
}

void FakeInput::touch(double x, double y) {
    inject("touch " + std::to_string(x) + ' ' + std::to_string(y));
}

void FakeInput::moveTouchTo(double x, double y) {
    inject("move-touch " + std::to_string(x) + ' ' + std::to_string(y));
}

void FakeInput::endTouch() {
    inject("end-touch");
}

std::filesystem::path FakeInput::program() {
    return TESSAREL_FAKE_INPUT;
}

void FakeInput::inject(const std::string& command) {
    m_process.writeLine(command);
    expect("done");
}

void FakeInput::expect(const std::string& reply) {
    if (m_process.readLine() != reply)
        throw std::runtime_error("unknown reply of the synthetic input");
}

} // namespace tessarel::plasmatest
