#pragma once

namespace velmoran::editor
{

// Modifier keys held during an input event, and what a move knows of the left button.
struct Modifiers
{
    bool fine = false; // shift: smaller steps
    // The move arrived with the left button up: its release went elsewhere.
    bool leftButtonUp = false;
    bool toggle = false; // control: a click switches a band on or off instead of dragging it
};

// Virtual-key codes the editor reacts to (the window system's numbering).
namespace keys
{
inline constexpr int kBackspace = 0x08;
inline constexpr int kReturn = 0x0D;
inline constexpr int kEscape = 0x1B;
inline constexpr int kLeft = 0x25;
inline constexpr int kUp = 0x26;
inline constexpr int kRight = 0x27;
inline constexpr int kDown = 0x28;
inline constexpr int kDelete = 0x2E;
} // namespace keys

} // namespace velmoran::editor
