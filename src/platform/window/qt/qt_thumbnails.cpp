// Small pictures with their titles beneath.
#include "platform/window/qt/qt_control.h"
#include "platform/window/qt/qt_window.h"

#include <QListWidget>
#include <QPainter>

#include <algorithm>

namespace platform {

namespace {

constexpr int least_thumbnail = 8, largest_thumbnail = 1024, gap = 6; ///< pixels

class ThumbnailsControl : public QtControl {
public:
    ThumbnailsControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , list_(new QListWidget(parent_widget()))
      , size_(std::clamp(spec.thumbnail.width, least_thumbnail, largest_thumbnail),
              std::clamp(spec.thumbnail.height, least_thumbnail, largest_thumbnail)) {
        list_->setViewMode(QListView::IconMode);
        list_->setMovement(QListView::Static);
        list_->setResizeMode(QListView::Adjust);
        list_->setUniformItemSizes(true);
        list_->setWordWrap(true);
        list_->setTextElideMode(Qt::ElideRight);
        list_->setIconSize(size_);
        list_->setGridSize(size_ + QSize(2 * gap, gap + 2 * list_->fontMetrics().height()));
        list_->setContextMenuPolicy(Qt::CustomContextMenu);
        list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
        if (spec.multiple_selection) {
            list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
        }
        if (!spec.framed) {
            list_->setFrameShape(QFrame::NoFrame);
        }
        take(list_);
        listen();
    }
    void set_rows(std::vector<ListRow> rows) override {
        const Quiet quiet(quiet_);
        // Pictures come one after another: rows that stay keep their items and the view its place.
        while (list_->count() > static_cast<int>(rows.size())) {
            delete list_->takeItem(list_->count() - 1);
        }
        list_->clearSelection();
        list_->setCurrentRow(-1);
        pictures_.resize(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const QString title = qt_text(rows[i].text);
            const int row = static_cast<int>(i);
            if (row == list_->count()) {
                list_->addItem(title);
                list_->item(row)->setIcon(icon_of(nullptr));
                pictures_[i] = nullptr;
            }
            QListWidgetItem* item = list_->item(row);
            item->setText(title);
            item->setToolTip(qt_tool_tip(rows[i].text));
            if (pictures_[i] != rows[i].picture) {
                item->setIcon(icon_of(rows[i].picture.get()));
                pictures_[i] = rows[i].picture;
            }
        }
    }
    int row_count() const override { return list_->count(); }
    std::string row_text(int index) const override {
        const QListWidgetItem* item = list_->item(index);
        return item != nullptr ? item->text().toStdString() : std::string();
    }
    std::vector<int> selection() const override {
        std::vector<int> rows;
        for (const QListWidgetItem* item : list_->selectedItems()) {
            rows.push_back(list_->row(item));
        }
        std::sort(rows.begin(), rows.end());
        return rows;
    }
    void select(const std::vector<int>& rows) override {
        const Quiet quiet(quiet_);
        list_->clearSelection();
        list_->setCurrentRow(-1);
        for (const int row : rows) {
            QListWidgetItem* item = list_->item(row);
            if (item == nullptr) {
                continue;
            }
            if (list_->selectedItems().isEmpty()) {
                list_->setCurrentItem(item, QItemSelectionModel::ClearAndSelect);
                list_->scrollToItem(item);
            } else if (spec_.multiple_selection) {
                item->setSelected(true);
            }
        }
    }

protected:
    bool has_rows() const override { return true; }
    bool act(std::string_view action, std::string_view argument) override {
        const std::vector<int> numbers = script_numbers(argument);
        const int row = numbers.empty() ? -1 : numbers.front();
        const bool is_row = list_->item(row) != nullptr;
        if (action == "select" || (action == "click" && row >= 0)) {
            if (!is_row && !spec_.multiple_selection) {
                return false;
            }
            select(numbers);
            raise({ControlEventKind::changed, is_row ? row : -1});
            return true;
        }
        if (action != "double_click" && action != "right_click") {
            return false;
        }
        if (is_row) {
            select({row});
        }
        raise({action == "double_click" ? ControlEventKind::double_clicked
                                        : ControlEventKind::right_clicked,
               row});
        return true;
    }

private:
    void listen() {
        connect(list_, &QListWidget::itemSelectionChanged, this, [this] {
            const std::vector<int> rows = selection();
            const int current = list_->currentRow();
            const bool is_in = std::find(rows.begin(), rows.end(), current) != rows.end();
            raise({ControlEventKind::changed,
                   is_in || rows.empty() ? (is_in ? current : -1) : rows.front()});
        });
        connect(list_, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
            raise({ControlEventKind::double_clicked, list_->row(item)});
        });
        connect(list_, &QListWidget::customContextMenuRequested, this, [this](const QPoint& at) {
            const QListWidgetItem* item = list_->itemAt(at);
            raise({ControlEventKind::right_clicked,
                   item != nullptr ? list_->row(item) : -1,
                   -1,
                   0,
                   {at.x(), at.y()}});
        });
    }
    /// The picture in the middle of its field, or an empty field.
    QIcon icon_of(const WindowPicture* picture) const {
        const double scale = std::max(1.0, list_->devicePixelRatioF());
        QImage field((QSizeF(size_) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
        field.setDevicePixelRatio(scale);
        field.fill(Qt::transparent);
        QPainter painter(&field);
        const QImage image = picture != nullptr ? image_view(*picture) : QImage();
        const QRect room(QPoint(), size_);
        if (image.isNull()) {
            painter.fillRect(room, QColor(128, 128, 128, 40));
        } else if (const QRect place = fit_picture(image.size(), room); !place.isEmpty()) {
            painter.drawImage(place.topLeft(), scaled_image(image, place.size(), scale));
        }
        painter.end();
        QIcon icon;
        const QPixmap pixmap = QPixmap::fromImage(field);
        icon.addPixmap(pixmap);
        icon.addPixmap(pixmap, QIcon::Selected); // the style would tint it
        return icon;
    }

    QListWidget* list_;
    QSize size_;
    std::vector<SharedPicture> pictures_; ///< that the rows show
};

} // namespace

std::unique_ptr<QtControl> make_thumbnails(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<ThumbnailsControl>(window, spec);
}

} // namespace platform
