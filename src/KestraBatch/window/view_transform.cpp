// Zoom and position of the picture.
#include "KestraBatch/window/view_transform.h"

#include <algorithm>
#include <cmath>

namespace KestraBatch {

namespace {

/// A picture that is smaller than the view is centred; a larger one leaves no gap.
double placed(double position, double picture, double view) {
    return picture <= view ? std::round((view - picture) / 2)
                           : std::clamp(position, view - picture, 0.0);
}

} // namespace

void ViewTransform::set_picture(int width, int height) {
    if (width == width_ && height == height_) {
        return;
    }
    width_ = width;
    height_ = height;
    fitted_ ? fit() : keep_in_view();
}

void ViewTransform::set_view(int width, int height) {
    const double dx = (width - view_width_) / 2.0, dy = (height - view_height_) / 2.0;
    view_width_ = std::max(width, 1);
    view_height_ = std::max(height, 1);
    if (fitted_) {
        fit();
    } else {
        pan(dx, dy);
    }
}

void ViewTransform::fit() {
    fitted_ = true;
    if (width_ > 0 && height_ > 0) {
        const double across = static_cast<double>(view_width_) / width_;
        const double down = static_cast<double>(view_height_) / height_;
        zoom_ = std::clamp(std::min(across, down), least_zoom, 1.0);
    }
    keep_in_view();
}

void ViewTransform::zoom_about(double x, double y, double factor) {
    const double zoom = std::clamp(zoom_ * factor, least_zoom, most_zoom);
    const double scale = zoom / zoom_;
    left_ = x - (x - left_) * scale;
    top_ = y - (y - top_) * scale;
    zoom_ = zoom;
    fitted_ = false;
    keep_in_view();
}

void ViewTransform::set_zoom(double zoom) {
    zoom_about(view_width_ / 2.0, view_height_ / 2.0, zoom / zoom_);
    left_ = std::round(left_); // whole device pixels keep 100 % sharp
    top_ = std::round(top_);
}

void ViewTransform::pan(double dx, double dy) {
    left_ += dx;
    top_ += dy;
    keep_in_view();
}

void ViewTransform::keep_in_view() {
    left_ = placed(left_, width_ * zoom_, view_width_);
    top_ = placed(top_, height_ * zoom_, view_height_);
}

bool ViewTransform::pixel_at(double x, double y, int& column, int& row) const {
    const double across = std::floor((x - left_) / zoom_), down = std::floor((y - top_) / zoom_);
    if (across < 0 || down < 0 || across >= width_ || down >= height_) {
        return false;
    }
    column = static_cast<int>(across);
    row = static_cast<int>(down);
    return true;
}

void ViewTransform::nearest_pixel(double x, double y, int& column, int& row) const {
    column = static_cast<int>(std::clamp(std::floor((x - left_) / zoom_), 0.0, width_ - 1.0));
    row = static_cast<int>(std::clamp(std::floor((y - top_) / zoom_), 0.0, height_ - 1.0));
}

} // namespace KestraBatch
