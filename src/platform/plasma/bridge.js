// SPDX-License-Identifier: MIT

// Runs inside KWin. Reports windows, displays and moves to the program, and places windows for it.
//
// The program cannot call a script. So the script calls the program's "next", which the program answers once
// it has commands. Plasma 5 and 6 have different names for the same things; the script asks which exist.
"use strict";

const service = "@SERVICE@";
const path = "/org/tessarel/Bridge";
const programInterface = "org.tessarel.Bridge";

const ownPid = @PID@;
const isPlasma6 = workspace.windowList !== undefined;

const known = new Map(); // window identifier -> window
const placing = new Map(); // window identifier -> the placement that has not settled
const settled = new Map(); // window identifier -> the last one that has: the wanted frame and the frame taken
const requested = new Map(); // window identifier -> the serial of a placement, if KWin was last asked for its frame

function report(event) {
    callDBus(service, path, programInterface, "report", JSON.stringify(event));
}

function rect(r) {
    return [r.x, r.y, r.width, r.height];
}

function identifier(window) {
    return String(window.internalId);
}

// Plasma 6 also lists windows that are closing, unmanaged ones of X programs, such as menus, and KWin's own.
function isManaged(window) {
    return !window.deleted && window.managed !== false && !String(window).startsWith("KWin::InternalWindow");
}

function allWindows() {
    if (isPlasma6)
        return Array.from(workspace.stackingOrder).filter(isManaged);
    return Array.from(workspace.clientList()).sort((a, b) => a.stackingOrder - b.stackingOrder);
}

function activeWindow() {
    return isPlasma6 ? workspace.activeWindow : workspace.activeClient;
}

function isOnCurrentDesktop(window) {
    if (window.onAllDesktops)
        return true;
    if (isPlasma6)
        return Array.from(window.desktops).indexOf(workspace.currentDesktop) >= 0;
    return Array.from(window.x11DesktopIds).indexOf(workspace.currentDesktop) >= 0;
}

// A window with no activity of its own is in all of them.
function isInCurrentActivity(window) {
    return window.activities.length === 0 || window.activities.indexOf(workspace.currentActivity) >= 0;
}

// No property that Plasma 6 has, too, tells the windows of X programs from others.
function isWayland(window) {
    return !/^KWin::(Xwayland|X11)Window/.test(String(window));
}

function kind(window) {
    // Panels and overlays of the layer-shell protocol look like normal windows that cannot be moved.
    if (window.specialWindow || (!window.moveable && !window.fullScreen))
        return "other";
    // Wayland knows no types of windows: a dialog is a window that belongs to another one.
    if (window.dialog || (isWayland(window) && window.transient))
        return "dialog";
    return window.normalWindow ? "standard" : "floating";
}

function describe(window) {
    return {
        name: identifier(window),
        pid: window.pid,
        application: String(window.desktopFileName),
        class: String(window.resourceClass),
        frame: rect(window.frameGeometry),
        kind: kind(window),
        minimized: window.minimized,
        fullScreen: window.fullScreen,
        onCurrentDesktop: isOnCurrentDesktop(window) && isInCurrentActivity(window),
        opacity: window.opacity
    };
}

function displays() {
    const all = [];
    const add = (screen) => all.push({
        frame: rect(workspace.clientArea(KWin.ScreenArea, screen, workspace.currentDesktop)),
        usable: rect(workspace.clientArea(KWin.MaximizeArea, screen, workspace.currentDesktop))
    });
    if (isPlasma6)
        Array.from(workspace.screens).forEach(add);
    else
        for (let screen = 0; screen < workspace.numScreens; ++screen)
            add(screen);
    return all;
}

let reportedDisplays = ""; // as JSON

function reportDisplays() {
    const all = displays();
    const text = JSON.stringify(all);
    if (text === reportedDisplays)
        return;
    reportedDisplays = text;
    report({ event: "displays", displays: all });
}

function reportOrder() {
    report({ event: "order", names: allWindows().map(identifier) });
}

function reportEverything() {
    const active = activeWindow();
    const all = displays();
    reportedDisplays = JSON.stringify(all);
    report({
        event: "everything",
        windows: allWindows().map(describe),
        active: active ? identifier(active) : "",
        displays: all
    });
}

function isMovedByUser(window) {
    return window.move || window.resize;
}

let move = null; // the move that goes on: where the window was before, in which tile, where it was last, how often
                 // its maximised state has changed, where the pointer was, and the steps since
let reportEnd = null; // reports how the last move has ended, if that has not been reported yet

// Calls `work` once KWin has finished what it is doing.
function later(work) {
    callDBus("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId", work);
}

function areZonesShown() {
    return allWindows().some((window) => window.pid === ownPid && kind(window) === "other");
}

// KWin has tiles of its own for Shift and for the edges of the screen. While the program shows its zones, the
// window stays where it was dropped. KWin has not told the window about the tile yet; otherwise two sizes
// would be under way to it, and some programs end with a mixture of both.
function leaveNewTile(window, tileBefore) {
    if (!window.tile || window.tile === tileBefore || !areZonesShown())
        return;
    const frame = rect(window.frameGeometry);
    window.tile = null;
    // KWin would still give the window its earlier size back when it is moved again. Maximising makes it forget
    // that size; a Wayland window is not told, because it has been undone by then.
    window.setMaximize(true, false);
    window.setMaximize(false, false);
    setFrame(window, frame);
}

function isPointerIn([left, top, width, height]) {
    const { x, y } = workspace.cursorPos;
    return x >= left && x < left + width && y >= top && y < top + height;
}

function isPointerAtEdge() {
    const { x, y } = workspace.cursorPos;
    return displays().some(({ frame, usable }) => isPointerIn(frame) &&
        (x <= usable[0] + 20 || x >= usable[0] + usable[2] - 20 || y <= usable[1] + 5));
}

// Returns whether KWin may have maximised the window, or put it into its tile, because it was dropped where the pointer
// is: at an edge, or with Shift, which the script does not see, in one of the tiles that the user arranges.
function mayBeDropped(window) {
    const isArranged = window.tile && window.tile.layoutDirection !== undefined;
    return isArranged ? isPointerIn(rect(window.tile.absoluteGeometry)) : isPointerAtEdge();
}

// Returns whether KWin, as it ended the move, has maximised or tiled the window. The first change of its maximised
// state has undone it.
function isPutInPlace(window, ended) {
    return (ended.maximisedChanges > 0 && ended.maximisedChanges % 2 === 0) ||
        (Boolean(window.tile) && window.tile !== ended.tile);
}

function hasFrameAgain(window, ended) {
    return !areEqual(ended.start, ended.last) && areEqual(ended.start, rect(window.frameGeometry));
}

// KWin says in the same way that a move has ended and that Escape has taken the window back. One that was maximised
// or tiled is so again at once, but has its frame only when its program has responded.
function endMove(window, ended) {
    if (!ended.isReported && ended.steps === 1) // a mouse may make a single movement
        reportStep(window, ended);
    const isInPlace = isPutInPlace(window, ended);
    const isTakenBack = isInPlace && !mayBeDropped(window);
    if (!isTakenBack)
        leaveNewTile(window, ended.tile);
    const reportThisEnd = () => {
        if (reportEnd !== reportThisEnd)
            return; // reported when the next move began
        reportEnd = null;
        const isCancelled =
            !ended.isReported || isTakenBack || (!isInPlace && hasFrameAgain(window, ended));
        reportMove(isCancelled ? "moveCancelled" : "moveFinished", window);
    };
    reportEnd = reportThisEnd;
    later(reportThisEnd);
}

function pointer() {
    return [workspace.cursorPos.x, workspace.cursorPos.y];
}

function reportMove(event, window, isMove = window.move, frame = rect(window.frameGeometry)) {
    report({ event: event, name: identifier(window), move: isMove, frame: frame, pointer: pointer() });
}

// KWin does not tell where a finger is, which moves the window but not the pointer. So a move is reported from the
// first step on that finds the pointer elsewhere than at the start of the move. With a mouse that is the second step.
function reportStep(window, ongoing) {
    if (!ongoing.isReported)
        reportMove("moveStarted", window, ongoing.isMove, ongoing.start);
    ongoing.isReported = true;
    reportMove("moveStepped", window);
}

// Reports a change of anything but the frame, after the script's turn: KWin may be in the middle of it.
function reportWindow(window) {
    if (known.has(identifier(window)))
        report({ event: "window", window: describe(window) });
}

// The compositor announces no change of the usable area. Only panels change it, and KWin computes it anew after it
// has announced the change of the panel, if it announces any: a panel may keep its frame.
function afterPanelChange(window) {
    if (kind(window) === "other")
        later(reportDisplays);
}

function areEqual(one, other) {
    return one.every((number, i) => number === other[i]);
}

// KWin rounds the frame of an X program's window to pixels of the X server. They are smaller than KWin's own if the
// program applies the scale of the display itself.
function areClose(one, other) {
    return one.every((number, i) => Math.abs(number - other[i]) < 1);
}

function settle(name, window) {
    const placement = placing.get(name);
    const frame = rect(window.frameGeometry);
    // Some programs first take their earlier size when they leave the maximised state, whatever they are asked
    // for.
    if (placement.isRepeatable && !areClose(frame, placement.frame)) {
        placement.isRepeatable = false;
        requestFrame(window, placement);
        patience.start();
        return;
    }
    placing.delete(name);
    settled.set(name, { wanted: placement.frame, taken: frame });
    report({ event: "placed", name: name, serial: placement.serial, frame: frame });
}

// Ends a placement that no signal has ended in time. A window in its wanted position has refused the size, and
// already had the one that it takes instead; that of any other window does not respond.
function settleLate(name) {
    const window = known.get(name);
    const placement = placing.get(name);
    if (hasSettled(window, placement.frame))
        return settle(name, window);
    placing.delete(name);
    report({ event: "placed", name: name, serial: placement.serial, late: true,
             frame: rect(window.frameGeometry) });
}

const patience = new QTimer();
patience.interval = 200; // less than the program waits
patience.singleShot = true;
patience.timeout.connect(() => Array.from(placing.keys()).forEach(settleLate));

// A window that has its wanted position has also taken its size, or refused it: both come at once.
function hasSettled(window, wanted) {
    const { x, y } = window.frameGeometry;
    return areClose([x, y], wanted);
}

// Returns whether the window has refused a part of the frame before and is still as it was then.
function hasRefused(name, window, wanted) {
    const last = settled.get(name);
    return last !== undefined && areEqual(last.wanted, wanted) && areEqual(last.taken, rect(window.frameGeometry));
}

function frameChanged(window) {
    const name = identifier(window);
    const placement = placing.get(name);
    if (placement && placement.isSent && hasSettled(window, placement.frame))
        settle(name, window);
    else if (!isMovedByUser(window))
        report({ event: "frame", name: name, frame: rect(window.frameGeometry) });
    afterPanelChange(window);
}

// Returns the largest length of at most `wanted` that differs from `now` by whole steps. KWin gives the window
// of an X program every size, and the program itself takes a smaller one instead, at any time later.
function inSteps(wanted, now, step) {
    return step > 1 ? now + Math.floor((wanted - now) / step) * step : wanted;
}

// Returns the length closest to `wanted` within the limits of the program, to which KWin adds its decoration.
function withinLimits(wanted, outside, inside, minimum, maximum) {
    const decoration = Math.max(outside - inside, 0); // the image may be larger than the frame, by a shadow
    return Math.max(Math.min(wanted, maximum + decoration), minimum + decoration);
}

// Returns the size closest to the wanted one that the program takes, as far as it has announced. A Wayland
// program that is asked for another size and keeps its own need not respond, and KWin moves its window only
// once it does.
function sizeToTake(window, width, height) {
    const now = window.frameGeometry;
    if (isWayland(window)) {
        const image = window.bufferGeometry;
        return [withinLimits(width, now.width, image.width, window.minSize.width, window.maxSize.width),
                withinLimits(height, now.height, image.height, window.minSize.height, window.maxSize.height)];
    }
    if (!window.resizeable) // KWin gives the window of an X program every size
        return [now.width, now.height];
    const step = window.basicUnit || { width: 1, height: 1 }; // Plasma 6 does not report it
    return [inSteps(width, now.width, step.width), inSteps(height, now.height, step.height)];
}

// Plasma 5 does not say which windows are maximised.
function mayBeMaximised(window) {
    const usable = workspace.clientArea(KWin.MaximizeArea, window);
    return window.frameGeometry.width === usable.width || window.frameGeometry.height === usable.height;
}

let isSettingFrame = false;

function setFrame(window, frame) {
    isSettingFrame = true;
    window.frameGeometry = { x: frame[0], y: frame[1], width: frame[2], height: frame[3] };
    isSettingFrame = false;
}

function requestFrame(window, placement) {
    requested.delete(identifier(window));
    setFrame(window, placement.frame);
    requested.set(identifier(window), placement.serial);
}

// KWin has been asked for a frame, which the window of a slow program takes only later. If the script has not
// asked, the user has, for example by a key of KWin: this replaces the placement.
function frameRequested(window) {
    if (!isSettingFrame && !isMovedByUser(window))
        reportDisplays(); // KWin does the same to all Wayland windows when the usable area has changed
    const name = identifier(window);
    if (!requested.has(name))
        return;
    report({ event: "replaced", name: name, serial: requested.get(name) });
    requested.delete(name);
    placing.delete(name);
}

function place(command) {
    const window = known.get(command.name);
    if (!window)
        return;
    requested.delete(command.name);
    const [x, y, width, height] = command.frame;
    const frame = [x, y, ...sizeToTake(window, width, height)];
    const wasMaximised = mayBeMaximised(window);
    if (window.setMaximize)
        window.setMaximize(false, false);
    if (window.tile)
        window.tile = null; // otherwise KWin puts it back when the usable area changes
    const isRefused = hasRefused(command.name, window, frame);
    const placement = { serial: command.serial, frame: frame, isSent: false,
                        isRepeatable: wasMaximised && !isRefused };
    placing.set(command.name, placement);
    requestFrame(window, placement);
    placement.isSent = true;
    patience.start();
    // No signal follows when nothing has to change, or when the compositor has moved the window at once.
    if (isRefused || areClose(rect(window.frameGeometry), frame))
        settle(command.name, window);
}

let isOwnWindowAwaited = false; // one that is to be brought to the user as soon as it is there

function isOwnWindow(window) {
    return window.pid === ownPid && kind(window) !== "other";
}

// Wayland lets no program raise its windows without a token of the program that the user is in.
function bringToUser(window) {
    if (!isOnCurrentDesktop(window)) {
        if (isPlasma6)
            window.desktops = [workspace.currentDesktop];
        else
            window.desktop = workspace.currentDesktop;
    }
    if (!isInCurrentActivity(window))
        window.activities = [workspace.currentActivity];
    if (isPlasma6)
        workspace.activeWindow = window;
    else
        workspace.activeClient = window;
}

function bringOwnWindows() {
    const own = allWindows().filter(isOwnWindow);
    own.forEach(bringToUser);
    isOwnWindowAwaited = own.length === 0;
}

function watch(window) {
    known.set(identifier(window), window);
    const started = () => {
        if (reportEnd !== null)
            reportEnd();
        const frame = rect(window.frameGeometry);
        move = { window: window, isMove: window.move, start: frame, last: frame, tile: window.tile,
                 maximisedChanges: 0, pointer: pointer(), steps: 0, isReported: false };
    };
    const stepped = () => {
        if (move === null)
            return;
        move.last = rect(window.frameGeometry);
        ++move.steps;
        if (move.isReported || !areEqual(pointer(), move.pointer))
            reportStep(window, move);
    };
    const finished = () => {
        const ended = move;
        move = null;
        if (ended !== null)
            endMove(window, ended);
    };
    const changesMaximised = () => {
        if (move !== null && move.window === window)
            ++move.maximisedChanges;
    };
    if (window.interactiveMoveResizeStarted) {
        window.interactiveMoveResizeStarted.connect(started);
        window.interactiveMoveResizeStepped.connect(stepped);
        window.interactiveMoveResizeFinished.connect(finished);
    } else {
        window.clientStartUserMovedResized.connect(started);
        window.clientStepUserMovedResized.connect(stepped);
        window.clientFinishUserMovedResized.connect(finished);
    }
    for (const signal of ["clientMaximizedStateAboutToChange", "maximizedAboutToChange"])
        if (window[signal])
            window[signal].connect(changesMaximised);
    window.frameGeometryChanged.connect(() => frameChanged(window));
    // The program of an X window asks KWin, too, when it corrects its size.
    if (isWayland(window) && window.frameGeometryAboutToChange)
        window.frameGeometryAboutToChange.connect(() => frameRequested(window));
    const changed = () => reportWindow(window);
    for (const signal of ["minimizedChanged", "fullScreenChanged", "desktopChanged", "desktopsChanged",
                          "activitiesChanged", "opacityChanged", "transientChanged",
                          "desktopFileNameChanged", "windowClassChanged"])
        if (window[signal])
            window[signal].connect(changed);
}

function added(window) {
    if (!isManaged(window))
        return;
    watch(window);
    reportWindow(window);
    reportOrder();
    afterPanelChange(window);
    if (isOwnWindowAwaited && isOwnWindow(window)) {
        isOwnWindowAwaited = false;
        bringToUser(window);
    }
}

function removed(window) {
    if (!known.has(identifier(window)))
        return;
    if (reportEnd !== null)
        reportEnd(); // its window may be this one
    for (const map of [known, placing, settled, requested])
        map.delete(identifier(window));
    report({ event: "removed", name: identifier(window) });
    afterPanelChange(window);
}

function activated(window) {
    // For a new window KWin says so before it says that there is one.
    if (window && !known.has(identifier(window)))
        added(window);
    reportDisplays(); // the usable area may have changed while there was no window
    report({ event: "active", name: window ? identifier(window) : "" });
    reportOrder();
}

function carryOut(command) {
    if (command.bringOwnWindows)
        bringOwnWindows();
    else
        place(command);
}

// After 25 s without an answer a call fails, and KWin does not tell the script. So the call is renewed before.
// The script does that, because it would wake the program twice.
const renewal = new QTimer();
renewal.interval = 20000;
renewal.singleShot = true;
renewal.timeout.connect(renew);
let lastCall = 0;

function next() {
    const call = ++lastCall;
    callDBus(service, path, programInterface, "next", (text) => {
        try {
            if (text !== "")
                JSON.parse(text).forEach(carryOut);
        } finally { // a command that fails takes the later ones with it, but not those to come
            if (call === lastCall)
                next();
        }
    });
    renewal.start();
}

// A program that does not answer may be stopped, and go on at any time later. One that has gone in disorder, while
// it recorded a hot key, has left all shortcuts of the desktop blocked.
function renew() {
    next();
    callDBus("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner", service,
             (isThere) => {
                 if (isThere)
                     return;
                 renewal.stop();
                 callDBus("org.kde.kglobalaccel", "/kglobalaccel", "org.kde.KGlobalAccel", "blockGlobalShortcuts",
                          false);
             });
}

(workspace.windowAdded || workspace.clientAdded).connect((window) => {
    if (!known.has(identifier(window)))
        added(window);
});
(workspace.windowRemoved || workspace.clientRemoved).connect(removed);
(workspace.windowActivated || workspace.clientActivated).connect(activated);
for (const signal of ["screensChanged", "numberScreensChanged", "virtualScreenGeometryChanged"])
    if (workspace[signal])
        workspace[signal].connect(reportDisplays);
for (const signal of ["currentDesktopChanged", "currentActivityChanged"])
    if (workspace[signal])
        workspace[signal].connect(reportEverything);

allWindows().forEach(watch);
reportEverything();
next();
