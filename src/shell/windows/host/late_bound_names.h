// The names by which the add-in reaches the host's objects. They are bound late, in any case of letters
// and wherever they stand in the objects' tables. A host that calls a member something else needs a
// change of this file only.
//
// "property" is read with DISPATCH_PROPERTYGET | DISPATCH_METHOD, so a host may offer a method
// without arguments in its place, and set with DISPATCH_PROPERTYPUT. The types below are those sent;
// the host converts, as usual.
#pragma once

namespace zolvane::names {

// ---- HostObject: the host's object model, given to the page as ObjectParent ----

// property, object: the instrument link. Read anew for each use.
inline constexpr const wchar_t* instrumentLink = L"InstrumentLink";

// method (BSTR line): writes one line to the host's log.
inline constexpr const wchar_t* writeLogLine = L"WriteLogLine";

// property, boolean: whether the host offers a message dialogue of its own.
inline constexpr const wchar_t* hostDialogAvailable = L"HostDialogAvailable";

// property, object: the host's dialogues, whose property MessageDialog is a HostDialog.
inline constexpr const wchar_t* dialogs = L"Dialogs";
inline constexpr const wchar_t* messageDialog = L"MessageDialog";

// ---- InstrumentLink ----

// property, boolean, read and set: the stop flag.
inline constexpr const wchar_t* stop = L"Stop";

// property, boolean, only set: the hold flag.
inline constexpr const wchar_t* hold = L"Hold";

// method (BSTR command, BSTR reply, 32-bit number, always 0), boolean: sends one line and waits for
// the answer. Both texts are passed by reference (VT_BYREF | VT_BSTR); the link puts the answer into
// reply. True when answered.
inline constexpr const wchar_t* sendCommand = L"SendCommand";

// ---- HostDialog: the host's message dialogue ----

// properties, only set: 16-bit integer, text, text.
inline constexpr const wchar_t* style = L"Style";
inline constexpr const wchar_t* title = L"Title";
inline constexpr const wchar_t* message = L"Message";

// method (boolean): shows the dialogue and returns at once.
inline constexpr const wchar_t* show = L"Show";

// property, 16-bit integer: negative while the dialogue is open, then the number of the chosen button.
inline constexpr const wchar_t* result = L"Result";

// ---- The host's window, given to the page as FormParent ----

// property, boolean, only set: whether the page has something to save.
inline constexpr const wchar_t* changed = L"Changed";

// property, object: the status bar; its property Panels, addressed by the key STATUS, is the
// panel of the progress text. Panels may take the key itself, as an argument, or be an object
// whose default member takes it.
inline constexpr const wchar_t* statusBar = L"sbstatusbar";
inline constexpr const wchar_t* panels = L"Panels";
inline constexpr const wchar_t* statusPanelKey = L"STATUS";

// property of the panel, text, read and set.
inline constexpr const wchar_t* text = L"Text";

// method without arguments: takes the focus, when the page is clicked beside its controls.
inline constexpr const wchar_t* setFocus = L"SetFocus";

// ---- What the add-in gives the host ----

// property of the object that IAddInForm.Frame returns, 32-bit integer, read-only: its window handle.
inline constexpr const wchar_t* frameWindow = L"hWnd";

// ---- The settings-file service ----

// Its registered name. Where it is not registered, the class identifier in hestrion_cmds.idl is used.
inline constexpr const wchar_t* iniFileServiceProgId = L"HestrionCmds.IniFileService";

}  // namespace zolvane::names
