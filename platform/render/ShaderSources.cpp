#include "ShaderSources.h"

namespace velmoran::platform
{

// Vertex stage of the flat, scanline and grid programs.
const char* const kPositionColourVertexSource = R"glsl(#version 150
in vec2 pos;
in vec4 colour;
out vec4 VertColour;
uniform mat4 LProjectionMatrix;
uniform mat4 LModelViewMatrix;
void main ()
{
VertColour = colour;
gl_Position = LProjectionMatrix * LModelViewMatrix * vec4(pos, 0.0, 1.0);
})glsl";

// Flat colour with the saturation mix.
const char* const kFlatFragmentSource = R"glsl(#version 150
uniform float fSaturation;
in vec4 VertColour;
out vec4 FragColour;
void main ()
{
    vec4 col = VertColour;
    float v = dot(vec3(col), vec3(0.2126, 0.7152, 0.0722));
    vec4 mono = vec4(v, v, v, col[3]);
    FragColour = vec4(mix(mono, col, fSaturation));
//FragColour = VertColour;
})glsl";

// Vertex stage of the textured program.
const char* const kTexturedVertexSource = R"glsl(#version 150
in vec2 vertPos;
in vec2 vertTexCoord;
out vec2 fragTexCoord;
uniform mat4 LProjectionMatrix;
uniform mat4 LModelViewMatrix;
void main ()
{
fragTexCoord = vertTexCoord;
gl_Position = LProjectionMatrix * LModelViewMatrix * vec4(vertPos, 0.0, 1.0);
})glsl";

// Bicubic (Catmull-Rom) texture reconstruction from nine bilinear taps, tint, gamma and saturation.
const char* const kTexturedFragmentSource = R"glsl(#version 150
uniform sampler2D tex;
uniform vec4 texColour;
uniform float fSaturation;
uniform float fWidth;
uniform float fHeight;
uniform float fGamma;
in vec2 fragTexCoord;
out vec4 finalColour;
void main ()
{
    vec2 texSize;
    vec2 invTexSize;
    texSize.x = fWidth;
    texSize.y = fHeight;
    invTexSize = 1.0 / texSize;
    vec2 tc = floor((fragTexCoord * texSize) - 0.5) + 0.5;
    vec2 f = (fragTexCoord * texSize) - tc;
    vec2 f2 = f * f;
    vec2 f3 = f2 * f;
    vec2 w0 = ((-1.0 * f3) + (2.0 * f2) - (1.0 * f)) * 0.5;
    vec2 w1 = ((3.0 * f3) - (5.0 * f2) + 2.0) * 0.5;
    vec2 w2 = ((-3.0 * f3) + (4.0 * f2) + (1.0 * f)) * 0.5;
    vec2 w3 = ((1.0 * f3) - (1.0 * f2)) * 0.5;
    vec2 s0 = w1 + w2;
    vec2 f0 = w2 / (w1 + w2);
    vec2 tc0 = tc - 1.0;
    vec2 tc3 = tc + 2.0;
    vec2 tm0 = tc + f0;
    tc0 = tc0 * invTexSize;
    tc3 = tc3 * invTexSize;
    tm0 = tm0 * invTexSize;
    vec4 nSum = texture(tex, vec2(tc0.x, tc0.y) ) * w0.x * w0.y
 + texture(tex, vec2(tm0.x, tc0.y) ) * s0.x * w0.y
 + texture(tex, vec2(tc3.x, tc0.y) ) * w3.x * w0.y
 + texture(tex, vec2(tc0.x, tm0.y ) ) * w0.x * s0.y
 + texture(tex, vec2(tm0.x, tm0.y ) ) * s0.x * s0.y
 + texture(tex, vec2(tc3.x, tm0.y ) ) * w3.x * s0.y
 + texture(tex, vec2(tc0.x, tc3.y) ) * w0.x * w3.y
 + texture(tex, vec2(tm0.x, tc3.y) ) * s0.x * w3.y
 + texture(tex, vec2(tc3.x, tc3.y) ) * w3.x * w3.y;
    w0 = w0 + w1 + w2 + w3;
    float nDenom = w0.x * w0.y;
    vec4 lColour = (nSum / vec4(nDenom, nDenom, nDenom, nDenom)) * texColour;
    lColour = clamp(lColour, 0.0, 1.0);
    vec3 gColour = vec3(lColour);
    gColour = pow(gColour, vec3(fGamma));
    float v = dot(gColour, vec3(0.2126, 0.7152, 0.0722));
    vec4 mono = vec4(v, v, v, lColour[3]);
    vec4 colour = vec4(gColour, lColour[3]);    finalColour = vec4(mix(mono, colour, fSaturation));
})glsl";

// Vertex stage of the circle program; hands the logical position on for the distance test.
const char* const kCircleVertexSource = R"glsl(#version 150
in vec2 circle_pos;
in vec4 circle_colour;
out vec4 CircleVertColour;
out vec2 CircleVertPos;
uniform mat4 LProjectionMatrix;
uniform mat4 LModelViewMatrix;
void main ()
{
CircleVertColour = circle_colour;
CircleVertPos = circle_pos;
gl_Position = LProjectionMatrix * LModelViewMatrix * vec4(circle_pos, 0.0, 1.0);
})glsl";

// Anti-aliased ring between the inner and outer radius; an inner radius of 0 gives a disc.
const char* const kCircleFragmentSource = R"glsl(#version 150
in vec4 CircleVertColour;
in vec2 CircleVertPos;
out vec4 CircleFragColour;
uniform vec2 CircleCentre;
uniform float CircleRadOuter;
uniform float CircleRadInner;
uniform float fSaturation;
void main ()
{
    vec2 pos = CircleVertPos.xy;
    vec4 colour;
    float dist = distance(pos, CircleCentre);
    float delta = fwidth(dist);
    float alpha1 = smoothstep(CircleRadOuter - delta, CircleRadOuter, dist);
    float alpha2 = smoothstep(CircleRadInner - delta, CircleRadInner, dist);
    vec4 col = CircleVertColour * vec4(1.0, 1.0, 1.0, (1.0 - alpha1) * (alpha2));
    float v = dot(vec3(col), vec3(0.2126, 0.7152, 0.0722));
    vec4 mono = vec4(v, v, v, col[3]);
    CircleFragColour = vec4(mix(mono, col, fSaturation));
})glsl";

// Darkens alternate bands of rows by an eighth more opacity.
const char* const kScanlineFragmentSource = R"glsl(#version 150
uniform float fSaturation;
uniform float fLineWidth;
in vec4 VertColour;
out vec4 FragColour;
void main ()
{
    vec4 colour = VertColour;
    float lum = (1.0 - step (mod(floor(gl_FragCoord.y), fLineWidth * 2), (fLineWidth - 1.0))) * 0.125;
    float trans = 1.0 - colour[3];
    trans = trans * (1.0 - lum);
    colour[3] = (1.0 - trans);
    lum = dot(vec3(colour), vec3(0.2126, 0.7152, 0.0722));
    vec4 mono = vec4(lum, lum, lum, colour[3]);
    FragColour = vec4(mix(mono, colour, fSaturation));
})glsl";

// Keeps only the first eighth of each grid cell on both axes: a dot grid.
const char* const kGridFragmentSource = R"glsl(#version 150
uniform float fSaturation;
uniform float fGridSize;
in vec4 VertColour;
out vec4 FragColour;
void main ()
{
    vec4 colour = VertColour;
    float a = 1.0 - step(fGridSize * 0.125, mod(floor(gl_FragCoord.y), fGridSize));
    float b = 1.0 - step(fGridSize * 0.125, mod(floor(gl_FragCoord.x), fGridSize));
    a = a * b;
    float v = dot(vec3(colour), vec3(0.2126, 0.7152, 0.0722));
    colour = colour * vec4(a, a, a, a);
    vec4 mono = vec4(v, v, v, colour[3]);
    FragColour = vec4(mix(mono, colour, fSaturation));
})glsl";

} // namespace velmoran::platform
