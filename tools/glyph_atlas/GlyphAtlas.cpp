// Build-time generator: renders the printable ASCII glyphs of one font with FreeType, turns each
// into a signed distance field, packs the fields into one atlas image and writes the atlas as an
// RGBA GdkPixdata record together with the table of glyph metrics (eight integers a glyph).
//
// glyph_atlas FONT SIZE WIDTH HEIGHT USED_HEIGHT PADDING SPREAD OUT_IMAGE OUT_METRICS

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

namespace
{

constexpr int kFirstCode = 32;
constexpr int kLastCode = 126;
// Outlines are rendered this many times larger than the design size, so the distances are
// measured to a quarter of a design pixel before they are averaged down.
constexpr int kOversample = 4;

struct Settings
{
    std::string fontPath;
    int designSize = 0;  // pixels
    int atlasWidth = 0;  // pixels
    int atlasHeight = 0; // pixels of the image
    int usedHeight = 0;  // pixels that glyph cells may occupy from the top
    int padding = 0;     // design pixels of field around each glyph's ink
    double spread = 0.0; // design pixels from the edge to a field value of 0 or 1
    std::string imagePath;
    std::string metricsPath;
};

struct Glyph
{
    int code = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    int originX = 0;
    int originY = 0;
    int advance = 0;
    std::vector<std::uint8_t> field; // width * height values, 0..255, inside above 127
};

// Squared distance transform of one line (Felzenszwalb and Huttenlocher), in place.
void distanceTransform1d(std::vector<double>& f, std::vector<double>& d, std::vector<int>& v,
                         std::vector<double>& z, int n)
{
    int k = 0;
    v[0] = 0;
    z[0] = -std::numeric_limits<double>::infinity();
    z[1] = std::numeric_limits<double>::infinity();
    for (int q = 1; q < n; ++q)
    {
        double s = ((f[q] + q * q) - (f[v[k]] + v[k] * v[k])) / (2.0 * q - 2.0 * v[k]);
        while (s <= z[k])
        {
            --k;
            s = ((f[q] + q * q) - (f[v[k]] + v[k] * v[k])) / (2.0 * q - 2.0 * v[k]);
        }
        ++k;
        v[k] = q;
        z[k] = s;
        z[k + 1] = std::numeric_limits<double>::infinity();
    }
    k = 0;
    for (int q = 0; q < n; ++q)
    {
        while (z[k + 1] < q)
            ++k;
        d[q] = (q - v[k]) * (q - v[k]) + f[v[k]];
    }
}

// Gives, for every pixel of a width x height grid, the distance in pixels to the nearest pixel
// whose `target` flag is set (0 on such pixels).
std::vector<double> distanceTo(const std::vector<bool>& target, int width, int height)
{
    const double far = 1e20;
    std::vector<double> grid(static_cast<std::size_t>(width) * height);
    for (std::size_t i = 0; i < grid.size(); ++i)
        grid[i] = target[i] ? 0.0 : far;
    const int longest = std::max(width, height);
    std::vector<double> f(longest), d(longest), z(longest + 1);
    std::vector<int> v(longest);
    for (int x = 0; x < width; ++x)
    {
        for (int y = 0; y < height; ++y)
            f[y] = grid[static_cast<std::size_t>(y) * width + x];
        distanceTransform1d(f, d, v, z, height);
        for (int y = 0; y < height; ++y)
            grid[static_cast<std::size_t>(y) * width + x] = d[y];
    }
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x)
            f[x] = grid[static_cast<std::size_t>(y) * width + x];
        distanceTransform1d(f, d, v, z, width);
        for (int x = 0; x < width; ++x)
            grid[static_cast<std::size_t>(y) * width + x] = std::sqrt(d[x]);
    }
    return grid;
}

// Oversampled pixels with at least this coverage count as inside the glyph.
constexpr std::uint8_t kInsideCoverage = 128;

// The oversampled pixels that count as inside a rendered glyph: left and right edges, bottom and
// top edges (y up, from the baseline).
struct InkBox
{
    int left = 0;
    int right = 0;
    int bottom = 0;
    int top = 0;
};

bool isInside(const FT_Bitmap& bitmap, unsigned row, unsigned column)
{
    return bitmap.buffer[static_cast<std::ptrdiff_t>(row) * bitmap.pitch + column] >= kInsideCoverage;
}

// The box around the inside pixels of the glyph in slot; all zero for a glyph without any.
InkBox insideBox(const FT_GlyphSlot slot)
{
    const FT_Bitmap& bitmap = slot->bitmap;
    InkBox box{std::numeric_limits<int>::max(), std::numeric_limits<int>::min(),
               std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
    for (unsigned row = 0; row < bitmap.rows; ++row)
        for (unsigned column = 0; column < bitmap.width; ++column)
            if (isInside(bitmap, row, column))
            {
                const int x = slot->bitmap_left + static_cast<int>(column);
                const int y = slot->bitmap_top - static_cast<int>(row);
                box = {std::min(box.left, x), std::max(box.right, x + 1), std::min(box.bottom, y - 1),
                       std::max(box.top, y)};
            }
    return box.left < box.right ? box : InkBox{};
}

// A length in oversampled pixels as the nearest whole number of design pixels.
int nearestDesignPixels(int oversampled)
{
    return static_cast<int>(std::lround(static_cast<double>(oversampled) / kOversample));
}

// The pen advance in design pixels, stepped as the rasteriser steps: to whole oversampled pixels
// first, then to whole design pixels, each time to the nearest with ties to even.
int advanceOf(const FT_GlyphSlot slot)
{
    const double oversampled = std::nearbyint(static_cast<double>(slot->advance.x) / 64.0);
    return static_cast<int>(std::nearbyint(oversampled / kOversample));
}

// Renders one character at the oversampled size and gives its cell, metrics and distance field.
Glyph makeGlyph(FT_Face face, int code, const Settings& settings)
{
    Glyph glyph;
    glyph.code = code;
    if (FT_Load_Char(face, static_cast<FT_ULong>(code), FT_LOAD_RENDER | FT_LOAD_NO_HINTING) != 0)
    {
        std::fprintf(stderr, "glyph_atlas: character %d is missing from %s\n", code,
                     settings.fontPath.c_str());
        std::exit(1);
    }
    const FT_GlyphSlot slot = face->glyph;
    const FT_Bitmap& bitmap = slot->bitmap;
    glyph.advance = advanceOf(slot);

    // The cell sits on the ink as the field sees it, with its place and its size each rounded to
    // the nearest design pixel: widening both edges outwards could add almost a pixel on each side.
    const InkBox ink = insideBox(slot);
    const int pad = settings.padding;
    const int inkLeft = nearestDesignPixels(ink.left);
    const int inkTop = nearestDesignPixels(ink.top);
    glyph.width = nearestDesignPixels(ink.right - ink.left) + 2 * pad;
    glyph.height = nearestDesignPixels(ink.top - ink.bottom) + 2 * pad;
    glyph.originX = pad - inkLeft;
    glyph.originY = inkTop + pad;

    // Inside flags on the oversampled grid of the whole cell.
    const int gridWidth = glyph.width * kOversample;
    const int gridHeight = glyph.height * kOversample;
    std::vector<bool> inside(static_cast<std::size_t>(gridWidth) * gridHeight, false);
    const int offsetX = slot->bitmap_left - (inkLeft - pad) * kOversample;
    const int offsetY = (inkTop + pad) * kOversample - slot->bitmap_top;
    for (unsigned row = 0; row < bitmap.rows; ++row)
        for (unsigned column = 0; column < bitmap.width; ++column)
            if (isInside(bitmap, row, column))
                inside[static_cast<std::size_t>(offsetY + static_cast<int>(row)) * gridWidth + offsetX +
                       static_cast<int>(column)] = true;
    std::vector<bool> outside(inside.size());
    for (std::size_t i = 0; i < inside.size(); ++i)
        outside[i] = !inside[i];
    const std::vector<double> toInside = distanceTo(inside, gridWidth, gridHeight);
    const std::vector<double> toOutside = distanceTo(outside, gridWidth, gridHeight);

    // Each design pixel takes the mean signed distance of its oversampled block, which for a
    // smooth edge is the distance at the pixel's centre.
    glyph.field.resize(static_cast<std::size_t>(glyph.width) * glyph.height);
    for (int y = 0; y < glyph.height; ++y)
        for (int x = 0; x < glyph.width; ++x)
        {
            double sum = 0.0;
            for (int sy = 0; sy < kOversample; ++sy)
                for (int sx = 0; sx < kOversample; ++sx)
                {
                    const std::size_t i =
                        static_cast<std::size_t>(y * kOversample + sy) * gridWidth + x * kOversample + sx;
                    sum += inside[i] ? toOutside[i] - 0.5 : -(toInside[i] - 0.5);
                }
            const double distance = sum / (kOversample * kOversample) / kOversample;
            const double value = std::clamp(0.5 + distance / (2.0 * settings.spread), 0.0, 1.0);
            glyph.field[static_cast<std::size_t>(y) * glyph.width + x] =
                static_cast<std::uint8_t>(std::lround(value * 255.0));
        }
    return glyph;
}

// Lowest top edge at which a cell of `width` fits with its left edge at `x`, on a skyline that
// holds the filled height of every atlas column.
int restingTop(const std::vector<int>& skyline, int x, int width)
{
    return *std::max_element(skyline.begin() + x, skyline.begin() + x + width);
}

// Places the cells tallest first, each at the lowest and then leftmost free spot of the skyline;
// false when they do not fit in the used area.
bool packGlyphs(std::vector<Glyph>& glyphs, int width, int height)
{
    std::vector<Glyph*> order;
    for (Glyph& glyph : glyphs)
        order.push_back(&glyph);
    std::stable_sort(order.begin(), order.end(),
                     [](const Glyph* a, const Glyph* b)
                     { return a->height != b->height ? a->height > b->height : a->width > b->width; });
    std::vector<int> skyline(static_cast<std::size_t>(width), 0);
    for (Glyph* glyph : order)
    {
        if (glyph->width > width)
            return false;
        int bestX = -1;
        int bestTop = std::numeric_limits<int>::max();
        for (int x = 0; x + glyph->width <= width; ++x)
        {
            const int top = restingTop(skyline, x, glyph->width);
            if (top < bestTop)
            {
                bestTop = top;
                bestX = x;
            }
        }
        if (bestTop + glyph->height > height)
            return false;
        glyph->x = bestX;
        glyph->y = bestTop;
        std::fill(skyline.begin() + bestX, skyline.begin() + bestX + glyph->width, bestTop + glyph->height);
    }
    return true;
}

void putBigEndian(std::vector<std::uint8_t>& out, std::uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(static_cast<std::uint8_t>(value >> shift));
}

void writeAtlas(const std::vector<Glyph>& glyphs, const Settings& settings)
{
    const std::uint32_t rowstride = 4u * static_cast<std::uint32_t>(settings.atlasWidth);
    std::vector<std::uint8_t> out;
    putBigEndian(out, 0x47646B50u);
    putBigEndian(out, 24u + rowstride * static_cast<std::uint32_t>(settings.atlasHeight));
    putBigEndian(out, 0x01010002u);
    putBigEndian(out, rowstride);
    putBigEndian(out, static_cast<std::uint32_t>(settings.atlasWidth));
    putBigEndian(out, static_cast<std::uint32_t>(settings.atlasHeight));
    const std::size_t pixelStart = out.size();
    out.resize(pixelStart + static_cast<std::size_t>(rowstride) * settings.atlasHeight, 0);
    for (std::size_t i = pixelStart + 3; i < out.size(); i += 4)
        out[i] = 255;
    for (const Glyph& glyph : glyphs)
        for (int y = 0; y < glyph.height; ++y)
            for (int x = 0; x < glyph.width; ++x)
            {
                const std::uint8_t value = glyph.field[static_cast<std::size_t>(y) * glyph.width + x];
                std::uint8_t* pixel = &out[pixelStart + static_cast<std::size_t>(glyph.y + y) * rowstride +
                                           static_cast<std::size_t>(glyph.x + x) * 4];
                pixel[0] = pixel[1] = pixel[2] = value;
            }
    std::ofstream file(settings.imagePath, std::ios::binary);
    file.write(reinterpret_cast<const char*>(out.data()), static_cast<std::streamsize>(out.size()));
    if (!file)
    {
        std::fprintf(stderr, "glyph_atlas: cannot write %s\n", settings.imagePath.c_str());
        std::exit(1);
    }
}

void writeMetrics(const std::vector<Glyph>& glyphs, const Settings& settings)
{
    std::ofstream file(settings.metricsPath);
    file << "// Generated from " << settings.fontPath << " at " << settings.designSize << " pixels.\n";
    file << "// code, atlas x, atlas y, cell width, cell height, origin x, origin y, advance\n";
    for (const Glyph& glyph : glyphs)
        file << "{" << glyph.code << ", " << glyph.x << ", " << glyph.y << ", " << glyph.width << ", "
             << glyph.height << ", " << glyph.originX << ", " << glyph.originY << ", " << glyph.advance
             << "},\n";
    if (!file)
    {
        std::fprintf(stderr, "glyph_atlas: cannot write %s\n", settings.metricsPath.c_str());
        std::exit(1);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 10)
    {
        std::fprintf(
            stderr,
            "usage: glyph_atlas FONT SIZE WIDTH HEIGHT USED_HEIGHT PADDING SPREAD OUT_IMAGE OUT_METRICS\n");
        return 2;
    }
    Settings settings;
    settings.fontPath = argv[1];
    settings.designSize = std::atoi(argv[2]);
    settings.atlasWidth = std::atoi(argv[3]);
    settings.atlasHeight = std::atoi(argv[4]);
    settings.usedHeight = std::atoi(argv[5]);
    settings.padding = std::atoi(argv[6]);
    settings.spread = std::atof(argv[7]);
    settings.imagePath = argv[8];
    settings.metricsPath = argv[9];

    FT_Library library = nullptr;
    FT_Face face = nullptr;
    if (FT_Init_FreeType(&library) != 0 || FT_New_Face(library, settings.fontPath.c_str(), 0, &face) != 0)
    {
        std::fprintf(stderr, "glyph_atlas: cannot open font %s\n", settings.fontPath.c_str());
        return 1;
    }
    FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(settings.designSize * kOversample));

    std::vector<Glyph> glyphs;
    for (int code = kFirstCode; code <= kLastCode; ++code)
        glyphs.push_back(makeGlyph(face, code, settings));
    FT_Done_Face(face);
    FT_Done_FreeType(library);

    if (!packGlyphs(glyphs, settings.atlasWidth, settings.usedHeight))
    {
        std::fprintf(stderr, "glyph_atlas: the glyphs of %s at %d pixels do not fit in %d x %d\n",
                     settings.fontPath.c_str(), settings.designSize, settings.atlasWidth,
                     settings.usedHeight);
        return 1;
    }
    writeAtlas(glyphs, settings);
    writeMetrics(glyphs, settings);
    return 0;
}
