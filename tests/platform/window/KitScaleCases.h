#pragma once

namespace velmoran::test
{

// How both window kits turn a screen resolution into the display scale: 1.0 up to 96 dpi, dpi / 96
// above it, at most 2.0.
struct DpiCase
{
    int dpi;
    float scale;
};
constexpr DpiCase kDpiCases[] = {{0, 1.0f}, {96, 1.0f}, {120, 1.25f}, {144, 1.5f}, {192, 2.0f}, {300, 2.0f}};

// How both kits turn a logical size into device pixels: scaled, rounded half up.
struct SizeCase
{
    int logical;
    float scale;
    int device;
};
constexpr SizeCase kSizeCases[] = {{100, 1.0f, 100},  {100, 1.25f, 125}, {50, 1.25f, 63},
                                   {998, 1.5f, 1497}, {634, 1.5f, 951},  {634, 2.0f, 1268}};

} // namespace velmoran::test
