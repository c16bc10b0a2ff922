// Signs of the options dialog's tabs, the program's own sign, and a panorama.
#include "apps/make_images/images.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace make_images {

namespace {

constexpr Point kMiddle{24, 24};

Point on_circle(Point center, double radius, double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    return {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
}

void draw_rays(Canvas& canvas, Point center, double from, double to, int count) {
    for (int i = 0; i < count; ++i) {
        const double degrees = 360.0 * i / count;
        canvas.paint(
            stroke({on_circle(center, from, degrees), on_circle(center, to, degrees)}, kStroke),
            kWarm);
    }
}

/// Three sliders.
void draw_setup(Canvas& canvas) {
    constexpr double knobs[] = {32, 16, 28};
    for (int i = 0; i < 3; ++i) {
        const double y = 11 + 13.0 * i;
        canvas.paint(stroke({{6, y}, {42, y}}, kStroke), kInk);
        canvas.paint(disc({knobs[i], y}, 5.4), kInk);
        canvas.paint(disc({knobs[i], y}, 2.2), kWhite);
    }
}

void draw_light(Canvas& canvas) {
    const Shape glass =
        any({disc({24, 18}, 12), polygon({{15, 26}, {33, 26}, {29, 34}, {19, 34}})});
    canvas.paint(glass, Ink{kWarm.red, kWarm.green, kWarm.blue, 0.30});
    canvas.paint([glass](Point p) { return std::abs(glass(p)) - kStroke / 2; }, kWarm);
    canvas.paint(stroke({{19, 39}, {29, 39}}, kStroke), kInk);
    canvas.paint(stroke({{21.5, 44}, {26.5, 44}}, kStroke), kInk);
}

void draw_sun(Canvas& canvas) {
    canvas.paint(disc(kMiddle, 9), kWarm);
    draw_rays(canvas, kMiddle, 14.5, 20, 8);
}

/// A chrome ball that shows a horizon.
void draw_hdri(Canvas& canvas) {
    const Shape ball = disc(kMiddle, 18.5);
    canvas.paint(both(ball, box({0, 25}, {48, 48}, 0)), kWash);
    canvas.paint(disc({31, 15}, 4.4), kWarm);
    canvas.paint(both(ball, arc({24, -6}, 31.5, 40, 140, kThin)), kInk);
    canvas.paint(ring(kMiddle, 18.5, kStroke), kInk);
}

void draw_hills(Canvas& canvas, const Shape& inside) {
    canvas.paint(
        both(inside, polygon({{4, 40}, {17, 22}, {26, 33}, {33, 26}, {44, 38}, {44, 44}, {4, 44}})),
        kInk);
}

void draw_background(Canvas& canvas) {
    const Shape page = box({5, 9}, {43, 39}, 3);
    canvas.paint(page, kWash);
    draw_hills(canvas, page);
    canvas.paint(disc({32, 17.5}, 4), kWarm);
    canvas.paint(frame({5, 9}, {43, 39}, 3.5, kStroke), kInk);
}

/// The same with the picture's file corner in front.
void draw_image(Canvas& canvas) {
    const std::vector<Point> page{{9, 4}, {30, 4}, {40, 14}, {40, 44}, {9, 44}};
    canvas.paint(polygon(page), kWash);
    canvas.paint(
        both(polygon(page),
             polygon({{9, 38}, {19, 25}, {27, 34}, {32, 29}, {40, 38}, {40, 44}, {9, 44}})),
        kInk);
    canvas.paint(disc({20, 16}, 3.8), kWarm);
    canvas.paint(outline(page, kStroke), kInk);
    canvas.paint(stroke({{30, 4}, {30, 14}, {40, 14}}, kThin), kInk);
}

std::vector<Point> star(Point center, double radius, double waist) {
    std::vector<Point> points;
    points.reserve(8);
    for (int i = 0; i < 8; ++i) {
        points.push_back(on_circle(center, i % 2 == 0 ? radius : waist, 45.0 * i));
    }
    return points;
}

void draw_special(Canvas& canvas) {
    canvas.paint(polygon(star({20, 26}, 18, 5.5)), kInk);
    canvas.paint(polygon(star({37, 11}, 9, 2.8)), kWarm);
}

void draw_more(Canvas& canvas) {
    for (const double x : {10.0, 24.0, 38.0}) {
        canvas.paint(disc({x, 24}, 4.2), kInk);
    }
}

void draw_presets(Canvas& canvas) {
    for (const double y : {6.0, 26.0}) {
        for (const double x : {6.0, 26.0}) {
            const bool chosen = x < 20 && y < 20;
            canvas.paint(box({x, y}, {x + 16, y + 16}, 3), chosen ? kInk : kWash);
            canvas.paint(frame({x, y}, {x + 16, y + 16}, 3, kThin), kInk);
        }
    }
}

/// A pencil that draws a line.
void draw_styles(Canvas& canvas) {
    const std::vector<Point> wood{{31, 6}, {40, 15}, {19, 36}, {8, 38}, {10, 27}};
    canvas.paint(polygon(wood), kWash);
    canvas.paint(outline(wood, kStroke), kInk);
    canvas.paint(stroke({{25, 12}, {34, 21}}, kThin), kInk);
    canvas.paint(stroke({{22, 43}, {42, 43}}, kStroke), kWarm);
}

void draw_camera(Canvas& canvas) {
    canvas.paint(box({4, 13}, {44, 40}, 4), kWash);
    canvas.paint(frame({4, 13}, {44, 40}, 4, kStroke), kInk);
    canvas.paint(stroke({{16, 12}, {19, 7}, {29, 7}, {32, 12}}, kStroke), kInk);
    canvas.paint(ring({24, 26.5}, 7.5, kStroke), kInk);
}

void draw_layers(Canvas& canvas) {
    for (const double y : {30.0, 23.0}) {
        canvas.paint(stroke({{5, y}, {24, y + 11}, {43, y}}, kThin), kInk);
    }
    const std::vector<Point> top{{24, 5}, {43, 16}, {24, 27}, {5, 16}};
    canvas.paint(polygon(top), kWash);
    canvas.paint(outline(top, kStroke), kInk);
}

/// The program's sign: a solid in the sun, one side bright, one in half shade, one in shade.
void draw_sign(Canvas& canvas) {
    constexpr Point top{24, 6}, left{8, 15}, right{40, 15}, middle{24, 24}, low_left{8, 33},
        low_right{40, 33}, bottom{24, 42};
    canvas.paint(polygon({top, right, middle, left}), Ink{0.97, 0.72, 0.32});
    canvas.paint(polygon({left, middle, bottom, low_left}), Ink{0.36, 0.57, 0.82});
    canvas.paint(polygon({middle, right, low_right, bottom}), Ink{0.18, 0.33, 0.54});
    for (const std::vector<Point>& edge :
         {std::vector<Point>{left, middle, right}, std::vector<Point>{middle, bottom}}) {
        canvas.paint(stroke(edge, 1.2), Ink{1, 1, 1, 0.75});
    }
}

constexpr ImageRow kKestra[] = {
    {"kestra/images/setup.png", 48, draw_setup},
    {"kestra/images/light.png", 48, draw_light},
    {"kestra/images/sun.png", 48, draw_sun},
    {"kestra/images/hdri.png", 48, draw_hdri},
    {"kestra/images/background.png", 48, draw_background},
    {"kestra/images/image.png", 48, draw_image},
    {"kestra/images/special.png", 48, draw_special},
    {"kestra/images/more.png", 48, draw_more},
    {"kestra/images/presets.png", 48, draw_presets},
    {"kestra/images/styles.png", 48, draw_styles},
    {"kestra/images/camera.png", 48, draw_camera},
    {"kestra/images/layers.png", 48, draw_layers},
    {"kestra/images/tsqor.png", 128, draw_sign},
    // A strip of buttons looks for a picture by the name of the page.
    {"test/images/test_gallery_sun.png", 48, draw_sun},
    {"test/images/test_gallery_lamps.png", 48, draw_light},
};

/// Radiance's shared-exponent pixel, after Ward, "Real Pixels", Graphics Gems II (1991).
void append_pixel(std::string& text, double red, double green, double blue) {
    const double most = std::max({red, green, blue});
    int exponent = 0;
    const double factor = most > 1e-32 ? std::frexp(most, &exponent) * 256 / most : 0;
    for (const double channel : {red, green, blue}) {
        text += static_cast<char>(static_cast<unsigned char>(channel * factor));
    }
    text += static_cast<char>(most > 1e-32 ? exponent + 128 : 0);
}

} // namespace

std::span<const ImageRow> kestra_images() { return kKestra; }

std::string panorama() {
    constexpr int kWidth = 192, kHeight = 96;
    std::string text = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y " + std::to_string(kHeight) +
                       " +X " + std::to_string(kWidth) + "\n";
    for (int y = 0; y < kHeight; ++y) {
        const double height = 1 - 2.0 * (y + 0.5) / kHeight; // 1 zenith, -1 nadir
        for (int x = 0; x < kWidth; ++x) {
            const double to_sun = std::hypot(x - 130.0, (y - 26.0) * 1.15);
            const double glow = 40 * std::exp(-to_sun * to_sun / 8) + 1.6 * std::exp(-to_sun / 14);
            if (height >= 0) {
                const double haze = std::exp(-5 * height);
                append_pixel(text, 0.22 + 0.75 * haze + glow, 0.42 + 0.55 * haze + 0.92 * glow,
                             0.85 + 0.15 * haze + 0.75 * glow);
            } else {
                const double far = std::exp(7 * height);
                append_pixel(text, 0.16 + 0.35 * far, 0.20 + 0.32 * far, 0.10 + 0.28 * far);
            }
        }
    }
    return text;
}

} // namespace make_images
