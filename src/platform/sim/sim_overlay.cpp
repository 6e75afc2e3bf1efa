// SPDX-License-Identifier: MIT

#include "platform/sim/sim_overlay.h"

namespace tessarel::sim {

namespace {

/// Records all calls in the port, which tests look at.
class SimOverlayWindow : public OverlayWindow {
public:
    explicit SimOverlayWindow(SimOverlay& overlay) : m_overlay(overlay) {}
    ~SimOverlayWindow() override { m_overlay.isVisible = false; }

    void setFrame(const Rect& screenFrame) override {
        m_overlay.screenFrame = screenFrame;
        ++m_overlay.framesSet;
    }
    void setFigures(const std::vector<OverlayFigure>& figures, const std::vector<Rect>& changed) override {
        m_overlay.figures = figures;
        m_overlay.changed = changed;
        ++m_overlay.drawings;
    }
    void orderFront() override {
        m_overlay.isVisible = true;
        ++m_overlay.ordersFront;
    }
    void orderOut() override {
        m_overlay.isVisible = false;
        ++m_overlay.ordersOut;
    }

private:
    SimOverlay& m_overlay;
};

} // namespace

std::unique_ptr<OverlayWindow> SimOverlay::createWindow() {
    ++windows;
    return std::make_unique<SimOverlayWindow>(*this);
}

} // namespace tessarel::sim
