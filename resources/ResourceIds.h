#pragma once

#include <array>

namespace velmoran::resources
{

// Toggle switch faces: 64 x 86, two frames of 64 x 43 (off, on).
constexpr int kEffectSwitch = 129;
constexpr int kFlatButton = 130;
constexpr int kClearButton = 131;
constexpr int kSpectrumSwitch = 132;
constexpr int kSpectrumSourceSwitch = 133; // off: input, on: output
constexpr int kSpectrumSlopeSwitch = 134;  // off: flat, on: 3 dB per octave

// 16 x 16 icons of the band menu and the band info box.
constexpr int kIconLowPass = 135;
constexpr int kIconHighPass = 136;
constexpr int kIconPeak = 137;
constexpr int kIconLowShelf = 138;
constexpr int kIconHighShelf = 139;
constexpr int kIconBandPass = 140;
constexpr int kIconNoFilter = 141;
constexpr int kIconFilterFunction = 142; // menu title and the info box's type line
constexpr int kIconDelete = 143;
constexpr int kIconFrequency = 144;
constexpr int kIconQ = 145;
constexpr int kIconGain = 146;
constexpr int kIconBandState = 147;
constexpr int kIconSolo = 148;
constexpr int kIconLock = 149;

// Frame pieces and handles (two-frame pieces are 32 x 64: frame 0 normal, frame 1 lit).
constexpr int kPanelCorner = 150; // top-left corner bracket; mirror it for the other corners
constexpr int kScrew = 151;
constexpr int kLamp = 152;
constexpr int kWordmark = 153;    // 128 x 32
constexpr int kEmblem = 154;      // 32 x 32
constexpr int kBandHandle = 155;  // frame 1: selected
constexpr int kIdleHandle = 156;  // a switched-off band; frame 1: under the mouse
constexpr int kStatusPlate = 157; // 256 x 32, behind the status line
constexpr int kSoloHandle = 158;
constexpr int kMakerPlate = 159; // 128 x 32

// Image buttons and the selector.
constexpr int kChannelModeButton = 160; // three frames: both channels, left, right
constexpr int kPolarityButton = 161;
constexpr int kTitleButton = 162;
constexpr int kSoloButton = 163;
constexpr int kInfoButton = 164;
constexpr int kAutoLockSelector = 165; // five frames: off, "---", frequency, gain, pressed

// Software images for panels composed in memory.
constexpr int kPanelShading = 250;  // 32 x 256 vertical shading with an amber top edge
constexpr int kMessageButton = 251; // 24 x 48: face above, pressed face below
constexpr int kAlertSigns = 252;    // 24 x 48: warning above, error below
constexpr int kInfoSigns = 253;     // 24 x 48: information above, question below

// Distance-field glyph atlases.
constexpr int kDejaVuSansAtlas = 1024;
constexpr int kSairaAtlas = 1025;
constexpr int kMichromaAtlas = 1026;
constexpr int kArialSmallAtlas = 1027;

// Icon groups (standard Windows icon resources).
constexpr int kWindowIcon = 200;
constexpr int kInformationIcon = 260;
constexpr int kWarningIcon = 261;
constexpr int kErrorIcon = 262;

// An image and the number of frames stacked in it, as the editor loads it.
struct ImageResource
{
    int id;
    int frames;
};

// Every image drawn from the artwork, with its frame count.
constexpr std::array<ImageResource, 41> kArtworkImages = {{
    {kEffectSwitch, 2},
    {kFlatButton, 2},
    {kClearButton, 2},
    {kSpectrumSwitch, 2},
    {kSpectrumSourceSwitch, 2},
    {kSpectrumSlopeSwitch, 2},
    {kIconLowPass, 1},
    {kIconHighPass, 1},
    {kIconPeak, 1},
    {kIconLowShelf, 1},
    {kIconHighShelf, 1},
    {kIconBandPass, 1},
    {kIconNoFilter, 1},
    {kIconFilterFunction, 1},
    {kIconDelete, 1},
    {kIconFrequency, 1},
    {kIconQ, 1},
    {kIconGain, 1},
    {kIconBandState, 1},
    {kIconSolo, 1},
    {kIconLock, 1},
    {kPanelCorner, 2},
    {kScrew, 2},
    {kLamp, 2},
    {kWordmark, 1},
    {kEmblem, 1},
    {kBandHandle, 2},
    {kIdleHandle, 2},
    {kStatusPlate, 1},
    {kSoloHandle, 2},
    {kMakerPlate, 1},
    {kChannelModeButton, 3},
    {kPolarityButton, 2},
    {kTitleButton, 2},
    {kSoloButton, 2},
    {kInfoButton, 2},
    {kAutoLockSelector, 5},
    {kPanelShading, 1},
    {kMessageButton, 1},
    {kAlertSigns, 1},
    {kInfoSigns, 1},
}};

} // namespace velmoran::resources
