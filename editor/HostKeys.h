#pragma once

#include "EditorInput.h"

#include <array>
#include <utility>

namespace velmoran::editor
{

// Keys as a VST 3 host passes them to IPlugView::onKeyDown/onKeyUp: a virtual key code of the
// interface's own numbering for keys without a character, and modifier bits.
namespace hostkeys
{
inline constexpr int kBack = 1;
inline constexpr int kReturn = 4;
inline constexpr int kEscape = 6;
inline constexpr int kLeft = 11;
inline constexpr int kUp = 12;
inline constexpr int kRight = 13;
inline constexpr int kDown = 14;
inline constexpr int kEnter = 19;
inline constexpr int kDelete = 22;
inline constexpr int kShiftModifier = 1 << 0;
} // namespace hostkeys

// The editor's key (the window system's numbering of EditorInput.h) for a host's key code; 0 for a
// key the editor has no use for.
constexpr int editorKeyFromHost(int hostKeyCode)
{
    constexpr std::array<std::pair<int, int>, 9> kKeys = {{{hostkeys::kBack, keys::kBackspace},
                                                           {hostkeys::kReturn, keys::kReturn},
                                                           {hostkeys::kEnter, keys::kReturn},
                                                           {hostkeys::kEscape, keys::kEscape},
                                                           {hostkeys::kLeft, keys::kLeft},
                                                           {hostkeys::kUp, keys::kUp},
                                                           {hostkeys::kRight, keys::kRight},
                                                           {hostkeys::kDown, keys::kDown},
                                                           {hostkeys::kDelete, keys::kDelete}}};
    for (const auto& [host, editor] : kKeys)
        if (host == hostKeyCode)
            return editor;
    return 0;
}

// The modifiers of a host's modifier bits.
constexpr Modifiers editorModifiersFromHost(int hostModifiers)
{
    Modifiers modifiers;
    modifiers.fine = (hostModifiers & hostkeys::kShiftModifier) != 0;
    return modifiers;
}

} // namespace velmoran::editor
