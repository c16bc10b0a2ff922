// Where the picture lies in its view: zoom and position, in device pixels.
#pragma once

namespace KestraBatch {

class ViewTransform {
public:
    static constexpr double least_zoom = 1.0 / 64, most_zoom = 64;

    /// Another picture size; fits again when the view was fitted, otherwise keeps the place.
    void set_picture(int width, int height);
    void set_view(int width, int height);
    /// Whole picture, at most at its own size.
    void fit();
    bool is_fitted() const { return fitted_; }
    /// The point of the picture under (x, y) stays there.
    void zoom_about(double x, double y, double factor);
    void set_zoom(double zoom); ///< about the middle of the view
    void pan(double dx, double dy);

    double zoom() const { return zoom_; }
    double left() const { return left_; }
    double top() const { return top_; }
    /// Pixel under a point of the view; false when the point is outside of the picture.
    bool pixel_at(double x, double y, int& column, int& row) const;
    /// The same, moved to the nearest pixel; the picture must not be empty.
    void nearest_pixel(double x, double y, int& column, int& row) const;

private:
    void keep_in_view();

    int width_ = 0, height_ = 0, view_width_ = 1, view_height_ = 1;
    double zoom_ = 1, left_ = 0, top_ = 0;
    bool fitted_ = true;
};

} // namespace KestraBatch
