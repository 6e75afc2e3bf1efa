// SPDX-License-Identifier: MIT

// Runs inside KWin as an effect that changes nothing on the screen. It is active while the user moves a window
// and holds one modifier key: only effects see the modifiers, and whether an effect is active is the only
// thing that a scripted one can tell other programs.
"use strict";

const modifier = @MODIFIER@;
const isPlasma6 = effects.windowStartUserMovedResized === undefined; // there each window announces its moves
const afterDrop = 10000; // milliseconds in which the program reads whether the key was held at the end

let dragged = null; // the window that the user moves
let isButtonDown = true;
let held = 0; // the modifiers as last seen
let lastHeld = 0; // the modifiers that were held last during this move
let animation = null; // keeps the effect active while there is one

const nothing = [{ type: Effect.Opacity, from: 1.0, to: 1.0 }];

function deactivate() {
    if (animation !== null)
        cancel(animation);
    animation = null;
}

function setHeld(modifiers) {
    held = modifiers;
    if (held !== 0)
        lastHeld = held;
    const isActive = (held & modifier) !== 0;
    if (isActive && animation === null)
        animation = set({ window: dragged, duration: 1, animations: nothing });
    else if (!isActive)
        deactivate();
}

// With a movement or a click come the modifiers that are held, on newer versions of 6 also with a key alone. With a key
// alone KWin 5.27 reports those that were held before it, if at all. So a key that goes up while the pointer
// rests is seen; one that goes down is taken for the one that was held before, and the first is seen with the
// next movement or the release.
function mouseChanged(position, oldPosition, buttons, oldButtons, modifiers, oldModifiers) {
    const isMouse = position.x !== oldPosition.x || position.y !== oldPosition.y || buttons !== oldButtons;
    isButtonDown = buttons !== 0;
    if (isMouse || isPlasma6)
        setHeld(modifiers);
    else
        setHeld(modifiers !== 0 ? 0 : lastHeld);
}

// Connected only during a move, so that the effect costs nothing at any other time.
function moveStarted(window) {
    deactivate();
    dragged = window;
    isButtonDown = true;
    held = 0;
    lastHeld = 0;
    effects.mouseChanged.connect(mouseChanged);
}

function moveFinished() {
    effects.mouseChanged.disconnect(mouseChanged);
    const isHeldAtDrop = animation !== null && !isButtonDown; // Escape ends a move with the button down
    deactivate();
    if (isHeldAtDrop)
        // Active until it has begun and ended; KWin repaints nothing during the delay.
        animation = animate({ window: dragged, delay: afterDrop, duration: 1, animations: nothing });
    dragged = null;
}

// Follows the moves that `source` announces.
function follow(source) {
    source.windowStartUserMovedResized.connect(moveStarted);
    source.windowFinishUserMovedResized.connect(moveFinished);
}

if (isPlasma6) {
    Array.from(effects.stackingOrder).forEach(follow);
    effects.windowAdded.connect(follow);
} else {
    follow(effects);
}
