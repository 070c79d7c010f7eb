#pragma once

// Ids of the action library (CAction::ActionLibrary), the Actid of keys and pen buttons.
// Ids without a name here do nothing.

// 1 to 26: shortcut keys, pressed and released in their listed order.
constexpr int kActionFirstShortcut = 1;
constexpr int kActionZoomIn = 21;       // Ctrl+"="
constexpr int kActionZoomOut = 22;      // Ctrl+"-"
constexpr int kActionBrushSmaller = 25; // "["
constexpr int kActionBrushBigger = 26;  // "]"
constexpr int kActionLastShortcut = 26;

// 101 to 111: system functions; a custom function of form 3 names them less kActionSystemBase.
constexpr int kActionSystemBase = 100;
constexpr int kActionShowDriver = 101;
constexpr int kActionScreenMapping = 102;
constexpr int kActionPenEraser = 103;
constexpr int kActionFineMode = 104;
constexpr int kActionRing1 = 105; // next function of the first ring
constexpr int kActionRing2 = 106;
constexpr int kActionTrackPad = 107;
constexpr int kActionPressBE = 109; // taps "B" or "E" in turn
constexpr int kActionKeyGroup = 110;
constexpr int kActionKeyPreview = 111;

// 201 to 205: modifiers, held while the key is; 206 to 211: mouse functions. A custom function
// of form 0 names both less kActionModifierBase.
constexpr int kActionModifierBase = 200;
constexpr int kActionShift = 201;
constexpr int kActionLeftAlt = 202;
constexpr int kActionRightAlt = 203;
constexpr int kActionCtrl = 204;
constexpr int kActionSpace = 205;
constexpr int kActionLeftClick = 206;
constexpr int kActionRightClick = 207;
constexpr int kActionMiddleClick = 208;
constexpr int kActionDoubleClick = 209;
constexpr int kActionWheelUp = 210;
constexpr int kActionWheelDown = 211;

// Functions of MyInput::DoMouseFunc: a mouse action id less kActionMouseBase.
constexpr int kActionMouseBase = 205;
constexpr int kMouseLeftClick = kActionLeftClick - kActionMouseBase;
constexpr int kMouseRightClick = kActionRightClick - kActionMouseBase;
constexpr int kMouseMiddleClick = kActionMiddleClick - kActionMouseBase;
constexpr int kMouseDoubleClick = kActionDoubleClick - kActionMouseBase;
constexpr int kMouseWheelUp = kActionWheelUp - kActionMouseBase;
constexpr int kMouseWheelDown = kActionWheelDown - kActionMouseBase;
