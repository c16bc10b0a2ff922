// A bar of tabs above the frame of a page. The page itself is an embedded window.
#include "platform/window/qt/qt_control.h"
#include "platform/window/qt/qt_window.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QTabBar>

namespace platform {

namespace {

constexpr int frame_width = 2; ///< pixels, between the frame's outside and the page

class TabsWidget : public QWidget {
public:
    explicit TabsWidget(QWidget* parent)
      : QWidget(parent)
      , bar(new QTabBar(this)) {
        bar->setDrawBase(false);
        bar->setExpanding(false);
        bar->setUsesScrollButtons(true);
        bar->setElideMode(Qt::ElideNone);
        setFocusProxy(bar);
    }
    QTabBar* bar;

    /// The page's frame, in the widget.
    QRect frame() const {
        const int overlap = style()->pixelMetric(QStyle::PM_TabBarBaseOverlap, nullptr, bar);
        return rect().adjusted(0, std::max(0, bar_height() - overlap), 0, 0);
    }
    QRect page() const {
        return {frame_width, bar_height() + frame_width, std::max(0, width() - 2 * frame_width),
                std::max(0, height() - bar_height() - 2 * frame_width)};
    }
    void place_bar() { bar->setGeometry(0, 0, width(), bar_height()); }

protected:
    void resizeEvent(QResizeEvent*) override { place_bar(); }
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        QStyleOptionTabWidgetFrame option;
        option.initFrom(this);
        option.rect = frame();
        option.lineWidth = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
        option.shape = QTabBar::RoundedNorth;
        option.tabBarSize = bar->size();
        option.tabBarRect = bar->geometry();
        option.selectedTabRect = bar->tabRect(bar->currentIndex());
        style()->drawPrimitive(QStyle::PE_FrameTabWidget, &option, &painter, this);
    }

private:
    int bar_height() const {
        return bar->count() > 0 ? bar->sizeHint().height() : fontMetrics().height() + 8;
    }
};

class TabsControl : public QtControl {
public:
    TabsControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , tabs_(new TabsWidget(parent_widget())) {
        take(tabs_);
        tabs_->bar->setFont(tabs_->font());
        if (!spec.tab_stop) {
            tabs_->bar->setFocusPolicy(Qt::ClickFocus);
        }
        if (!spec.accessible_name.empty()) {
            tabs_->bar->setAccessibleName(qt_text(spec.accessible_name));
        }
        connect(tabs_->bar, &QTabBar::currentChanged, this, [this](int page) {
            tabs_->update();
            raise({ControlEventKind::tab_selected, page});
        });
    }
    void set_rows(std::vector<ListRow> rows) override {
        const Quiet quiet(quiet_);
        QTabBar& bar = *tabs_->bar;
        while (bar.count() > static_cast<int>(rows.size())) {
            bar.removeTab(bar.count() - 1);
        }
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const int page = static_cast<int>(i);
            const QString label = qt_text(rows[i].text);
            if (page == bar.count()) {
                bar.addTab(label);
            } else {
                bar.setTabText(page, label);
            }
        }
        tabs_->place_bar();
        tabs_->update();
    }
    int row_count() const override { return tabs_->bar->count(); }
    std::string row_text(int index) const override {
        return tabs_->bar->tabText(index).toStdString();
    }
    std::vector<int> selection() const override {
        const int page = tabs_->bar->currentIndex();
        return page < 0 ? std::vector<int>() : std::vector<int>{page};
    }
    void select(const std::vector<int>& rows) override {
        const Quiet quiet(quiet_);
        if (!rows.empty() && rows.front() >= 0 && rows.front() < row_count()) {
            tabs_->bar->setCurrentIndex(rows.front());
            tabs_->update();
        }
    }
    WindowRect page_rect() const override {
        return rect_of(tabs_->page().translated(tabs_->pos()));
    }
    bool has_focus() const override { return tabs_->window()->focusWidget() == tabs_->bar; }
    bool turn_page(int amount) override {
        const int count = row_count();
        if (count > 1) {
            tabs_->bar->setCurrentIndex((tabs_->bar->currentIndex() + amount + count) % count);
        }
        return count > 1;
    }

protected:
    bool act(std::string_view action, std::string_view argument) override {
        const std::vector<int> numbers = script_numbers(argument);
        if (action != "tab" || numbers.empty() || numbers.front() < 0 ||
            numbers.front() >= row_count()) {
            return false;
        }
        select({numbers.front()});
        raise({ControlEventKind::tab_selected, numbers.front()});
        return true;
    }

private:
    TabsWidget* tabs_;
};

} // namespace

std::unique_ptr<QtControl> make_tabs(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<TabsControl>(window, spec);
}

} // namespace platform
