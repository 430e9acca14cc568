#pragma once
// The handful of Windows-style types, message numbers, key codes and result
// codes the game's logic is written against. The values are the Windows ones
// so the game's rules can compare against the same numbers.
#include <cstdint>

using UINT = std::uint32_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using BOOL = int;

// A platform result: 0 for success, otherwise a failure code handed back unchanged.
using Result = std::uint32_t;

class CPlatformWnd;
using HWND = CPlatformWnd*;

// Window messages.
constexpr UINT WM_DESTROY = 0x0002;
constexpr UINT WM_CLOSE = 0x0010;
constexpr UINT WM_QUIT = 0x0012;
constexpr UINT WM_ACTIVATEAPP = 0x001C;
constexpr UINT WM_SETCURSOR = 0x0020;
constexpr UINT WM_KEYDOWN = 0x0100;
constexpr UINT WM_KEYUP = 0x0101;
constexpr UINT MM_MCINOTIFY = 0x03B9;

// Completion notices of the music sequencer (the wParam of MM_MCINOTIFY).
constexpr WPARAM MCI_NOTIFY_SUCCESSFUL = 0x0001;
constexpr WPARAM MCI_NOTIFY_SUPERSEDED = 0x0002;
constexpr WPARAM MCI_NOTIFY_ABORTED = 0x0004;
constexpr WPARAM MCI_NOTIFY_FAILURE = 0x0008;

// Virtual-key codes. Letters and digits are their capital ASCII codes.
constexpr UINT VK_BACK = 8;
constexpr UINT VK_RETURN = 13;
constexpr UINT VK_ESCAPE = 27;
constexpr UINT VK_SPACE = 32;
constexpr UINT VK_LEFT = 37;
constexpr UINT VK_UP = 38;
constexpr UINT VK_RIGHT = 39;
constexpr UINT VK_DOWN = 40;
// Keys only someone watching a replay uses: the rules never hear them.
constexpr UINT VK_PRIOR = 0x21; // Page Up
constexpr UINT VK_NEXT = 0x22;  // Page Down
constexpr UINT VK_OEM_PLUS = 0xBB;
constexpr UINT VK_OEM_COMMA = 0xBC;
constexpr UINT VK_OEM_MINUS = 0xBD;
constexpr UINT VK_OEM_PERIOD = 0xBE;
constexpr UINT VK_OEM_4 = 0xDB; // [
constexpr UINT VK_OEM_6 = 0xDD; // ]

// Result codes.
constexpr Result S_OK = 0;
constexpr Result DD_OK = 0;
constexpr Result E_NOTIMPL = 0x80004001;
constexpr Result E_FAIL = 0x80004005;
constexpr Result DDERR_NOROTATIONHW = 0x88760122;
constexpr Result DDERR_OUTOFVIDEOMEMORY = 0x8876017C;
constexpr Result DDERR_SURFACELOST = 0x887601C2;
constexpr Result ERROR_FILE_NOT_FOUND = 2;
constexpr Result ERROR_PATH_NOT_FOUND = 3;
constexpr Result ERROR_ACCESS_DENIED = 5;
constexpr Result ERROR_WRITE_PROTECT = 19; // the file system is read-only
constexpr Result ERROR_INVALID_DATA = 13;
constexpr Result ERROR_WRITE_FAULT = 29;
constexpr Result ERROR_READ_FAULT = 30;
constexpr Result ERROR_DISK_FULL = 112;
constexpr Result ERROR_FILE_READ_ONLY = 6009;
constexpr Result ERROR_BAD_PATHNAME = 161;    // a part of the path is a file, not a folder
constexpr Result ERROR_BAD_FILE_TYPE = 222;   // a device, a pipe or a socket, not an ordinary file
constexpr Result ERROR_FILE_TOO_LARGE = 223;
constexpr Result ERROR_DIRECTORY = 267;       // a folder where a file was meant

// Message box flags and answers.
constexpr UINT MB_OK = 0x0000;
constexpr int IDOK = 1;

// Window styles and show commands the game asks for.
constexpr std::uint32_t WS_POPUP = 0x80000000;
constexpr std::uint32_t WS_EX_TOPMOST = 0x00000008;
constexpr std::uint32_t CS_VREDRAW = 0x0001;
constexpr std::uint32_t CS_HREDRAW = 0x0002;
constexpr int SW_SHOW = 5;
