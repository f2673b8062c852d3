#pragma once

namespace velmoran::platform
{

// GLSL 1.50 sources of the five programs, each one string without a trailing newline.
extern const char* const kPositionColourVertexSource;
extern const char* const kFlatFragmentSource;
extern const char* const kTexturedVertexSource;
extern const char* const kTexturedFragmentSource;
extern const char* const kCircleVertexSource;
extern const char* const kCircleFragmentSource;
extern const char* const kScanlineFragmentSource;
extern const char* const kGridFragmentSource;

} // namespace velmoran::platform
