// Signs that every application's dialogs use.
#include "apps/make_images/images.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace make_images {

namespace {

constexpr Point kMiddle{24, 24};

/// A pane beside a page, with a sign in the page.
void draw_pane(Canvas& canvas, bool add) {
    canvas.paint(box({31, 9}, {44, 39}, 3), kWash);
    canvas.paint(frame({4, 9}, {44, 39}, 3.5, kStroke), kInk);
    canvas.paint(stroke({{31, 9}, {31, 39}}, kThin), kInk);
    canvas.paint(stroke({{11.5, 24}, {23.5, 24}}, kStroke), kInk);
    if (add) {
        canvas.paint(stroke({{17.5, 18}, {17.5, 30}}, kStroke), kInk);
    }
}
void draw_add_pane(Canvas& canvas) { draw_pane(canvas, true); }
void draw_remove_pane(Canvas& canvas) { draw_pane(canvas, false); }

Shape tack_head() {
    return polygon({{15, 5},
                    {33, 5},
                    {33, 10},
                    {30, 12},
                    {31, 22},
                    {37, 27},
                    {37, 31},
                    {11, 31},
                    {11, 27},
                    {17, 22},
                    {18, 12},
                    {15, 10}});
}
Shape tack_needle() { return stroke({{24, 32}, {24, 43}}, kThin); }

void draw_tack(Canvas& canvas) { canvas.paint(any({tack_head(), tack_needle()}), kInk); }

/// The tack pulled out, lying on its side: what is not tacked goes away after its work.
void draw_hide(Canvas& canvas) {
    const Shape head = turned(tack_head(), 90);
    canvas.paint(head, kWash);
    canvas.paint([head](Point p) { return std::abs(head(p)) - kThin / 2; }, kInk);
    canvas.paint(turned(tack_needle(), 90), kInk);
}

void draw_dropdown(Canvas& canvas) {
    canvas.paint(polygon({{11, 18}, {37, 18}, {24, 33}}), kInk);
    canvas.paint(outline({{11, 18}, {37, 18}, {24, 33}}, 3), kInk);
}

void draw_arrow(Canvas& canvas, double degrees) {
    canvas.paint(turned(any({stroke({{9, 24}, {39, 24}}, kStroke),
                             stroke({{27, 12}, {39, 24}, {27, 36}}, kStroke)}),
                        degrees),
                 kInk);
}
void draw_arrow_right(Canvas& canvas) { draw_arrow(canvas, 0); }
void draw_arrow_down(Canvas& canvas) { draw_arrow(canvas, 90); }
void draw_arrow_left(Canvas& canvas) { draw_arrow(canvas, 180); }
void draw_arrow_up(Canvas& canvas) { draw_arrow(canvas, 270); }

void draw_folder(Canvas& canvas) {
    const std::vector<Point> body{{5, 39}, {5, 10}, {18, 10}, {22, 15}, {43, 15}, {43, 39}};
    canvas.paint(polygon(body), kWash);
    canvas.paint(outline(body, kStroke), kInk);
    canvas.paint(stroke({{5, 21}, {43, 21}}, kThin), kInk);
}

Ink hue(Point p) {
    const double turn = std::atan2(p.y - 24, p.x - 24) / (2 * std::numbers::pi);
    const auto channel = [&](double shift) {
        const double t = turn + shift - std::floor(turn + shift);
        return 0.15 + 0.77 * std::clamp(std::abs(6 * t - 3) - 1, 0.0, 1.0);
    };
    return {channel(0), channel(2.0 / 3), channel(1.0 / 3)};
}

void draw_color_wheel(Canvas& canvas) { canvas.paint(ring(kMiddle, 15, 10), hue); }

void draw_help(Canvas& canvas) {
    canvas.paint(ring(kMiddle, 18.5, kStroke), kInk);
    canvas.paint(arc({24, 19.5}, 6, 180, 405, kStroke), kInk);
    canvas.paint(stroke({{28.2, 23.7}, {24, 28}}, kStroke), kInk);
    canvas.paint(disc({24, 34.5}, 2.4), kInk);
}

/// The green button.
void draw_render(Canvas& canvas) {
    canvas.paint(disc(kMiddle, 20), kGreen);
    canvas.paint(polygon({{19, 14.5}, {34.5, 24}, {19, 33.5}}), kWhite);
    canvas.paint(outline({{19, 14.5}, {34.5, 24}, {19, 33.5}}, 2), kWhite);
}

void draw_stop(Canvas& canvas) {
    canvas.paint(disc(kMiddle, 20), kRed);
    canvas.paint(box({16, 16}, {32, 32}, 2), kWhite);
}

void draw_reset(Canvas& canvas) {
    canvas.paint(arc(kMiddle, 15, -50, 215, kStroke), kInk);
    canvas.paint(polygon({{22.5, 4.5}, {35.6, 12.5}, {22.5, 20}}), kInk);
}

void draw_search(Canvas& canvas) {
    canvas.paint(disc({20, 20}, 12), kWash);
    canvas.paint(ring({20, 20}, 12.5, kStroke), kInk);
    canvas.paint(stroke({{30, 30}, {41, 41}}, 4.6), kInk);
}

void draw_save(Canvas& canvas) {
    canvas.paint(stroke({{24, 6}, {24, 29}}, kStroke), kInk);
    canvas.paint(stroke({{14, 20}, {24, 30}, {34, 20}}, kStroke), kInk);
    canvas.paint(stroke({{6, 30}, {6, 41}, {42, 41}, {42, 30}}, kStroke), kInk);
}

void draw_open(Canvas& canvas) {
    canvas.paint(stroke({{24, 30}, {24, 7}}, kStroke), kInk);
    canvas.paint(stroke({{14, 17}, {24, 7}, {34, 17}}, kStroke), kInk);
    canvas.paint(stroke({{6, 30}, {6, 41}, {42, 41}, {42, 30}}, kStroke), kInk);
}

void draw_info(Canvas& canvas) {
    canvas.paint(ring(kMiddle, 18.5, kStroke), kInk);
    canvas.paint(stroke({{24, 22}, {24, 34}}, kStroke), kInk);
    canvas.paint(disc({24, 14.5}, 2.4), kInk);
}

void draw_warning(Canvas& canvas) {
    const std::vector<Point> corners{{24, 7}, {43, 40}, {5, 40}};
    canvas.paint(polygon(corners), Ink{kWarm.red, kWarm.green, kWarm.blue, 0.28});
    canvas.paint(outline(corners, kStroke), kWarm);
    canvas.paint(stroke({{24, 19}, {24, 28}}, kStroke), kWarm);
    canvas.paint(disc({24, 34}, 2.3), kWarm);
}

constexpr ImageRow kComm[] = {
    {"comm/images/add_pane.png", 48, draw_add_pane},
    {"comm/images/remove_pane.png", 48, draw_remove_pane},
    {"comm/images/tack.png", 48, draw_tack},
    {"comm/images/hide.png", 48, draw_hide},
    {"comm/images/dropdown.png", 48, draw_dropdown},
    {"comm/images/arrow_right.png", 48, draw_arrow_right},
    {"comm/images/arrow_down.png", 48, draw_arrow_down},
    {"comm/images/arrow_left.png", 48, draw_arrow_left},
    {"comm/images/arrow_up.png", 48, draw_arrow_up},
    {"comm/images/folder.png", 48, draw_folder},
    {"comm/images/color_wheel.png", 48, draw_color_wheel},
    {"comm/images/help.png", 48, draw_help},
    {"comm/images/render.png", 48, draw_render},
    {"comm/images/stop.png", 48, draw_stop},
    {"comm/images/reset.png", 48, draw_reset},
    {"comm/images/search.png", 48, draw_search},
    {"comm/images/save.png", 48, draw_save},
    {"comm/images/open.png", 48, draw_open},
    {"comm/images/info.png", 48, draw_info},
    {"comm/images/warning.png", 48, draw_warning},
};

} // namespace

std::span<const ImageRow> comm_images() { return kComm; }

} // namespace make_images
