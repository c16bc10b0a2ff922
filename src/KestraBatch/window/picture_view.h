// The picture in its view: zoom about the cursor, panning, crisp pixels, a region.
#pragma once

#include "KestraBatch/render_session.h"
#include "KestraBatch/window/view_transform.h"

#include <QImage>
#include <QWidget>

#include <functional>
#include <vector>

namespace KestraBatch {

class PictureView : public QWidget {
public:
    explicit PictureView(QWidget* parent = nullptr);

    /// The picture at its size and halved again and again; empty for none.
    void set_picture(const std::vector<QImage>& levels);
    /// What stands there without a picture.
    void set_empty_text(const QString& text);
    /// What is laid over the picture, as a hint; empty for nothing.
    void set_hint(const QString& text);

    void fit();
    void set_zoom(double zoom);
    void zoom_step(int steps); ///< about the middle
    double zoom() const { return transform_.zoom(); }
    bool is_fitted() const { return transform_.is_fitted(); }

    /// While on, dragging draws a region.
    void set_region_mode(bool on);
    bool region_mode() const { return region_mode_; }
    void set_region(PictureRegion region);

    std::function<void(int column, int row)> on_pixel; ///< -1, -1 outside
    std::function<void(PictureRegion)> on_region;      ///< a region was drawn
    std::function<void()> on_zoom;

    QSize sizeHint() const override { return {800, 560}; }
    QSize minimumSizeHint() const override { return {220, 160}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void paint_picture(QPainter& painter, const QRect& exposed);
    void paint_region(QPainter& painter);
    void paint_hint(QPainter& painter);
    QRectF on_screen(const PictureRegion& region) const; ///< in device pixels
    PictureRegion dragged_region() const;
    void changed();
    void update_cursor();

    std::vector<QImage> levels_;
    ViewTransform transform_;
    QString empty_text_, hint_;
    PictureRegion region_;
    bool region_mode_ = false, dragging_ = false;
    QPointF press_, last_; ///< device pixels
};

} // namespace KestraBatch
