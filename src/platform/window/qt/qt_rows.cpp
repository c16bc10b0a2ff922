// Lists, check lists and trees.
#include "platform/window/qt/qt_control.h"
#include "platform/window/qt/qt_window.h"

#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QTreeWidget>

#include <algorithm>
#include <numeric>

namespace platform {

namespace {

constexpr int row_number = Qt::UserRole; ///< data of an item: its row

/// Rows with check marks need air between the marks.
class MarkedRows : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        constexpr int air = 3; // pixels
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, air);
    }
};

class ListControl : public QtControl {
public:
    ListControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , tree_(new QTreeWidget(parent_widget())) {
        tree_->setHeaderHidden(!spec.show_header);
        tree_->setRootIsDecorated(spec.kind == ControlKind::tree);
        tree_->setUniformRowHeights(true);
        tree_->setAllColumnsShowFocus(true);
        tree_->setEditTriggers(QAbstractItemView::NoEditTriggers);
        tree_->setContextMenuPolicy(Qt::CustomContextMenu);
        tree_->setTabKeyNavigation(false);
        if (has_marks()) {
            tree_->setItemDelegate(new MarkedRows(tree_));
        }
        if (spec.multiple_selection) {
            tree_->setSelectionMode(QAbstractItemView::ExtendedSelection);
        }
        if (!spec.framed) {
            tree_->setFrameShape(QFrame::NoFrame);
        }
        QHeaderView* header = tree_->header();
        header->setResizeContentsPrecision(64); // rows looked at for a column's width
        header->setSectionsMovable(false);
        header->setSectionsClickable(spec.show_header);
        take(tree_);
        listen();
    }

    void set_rows(std::vector<ListRow> rows) override;
    void set_tree(std::vector<TreeRow> rows) override;
    int row_count() const override { return static_cast<int>(items_.size()); }
    std::string row_text(int index) const override {
        if (index == 0 && spec_.show_header && row_count() > 0) {
            return tree_->headerItem()->text(0).toStdString();
        }
        const QTreeWidgetItem* item = item_at(index);
        return item != nullptr ? item->text(0).toStdString() : std::string();
    }
    bool is_row_checked(int index) const override {
        const QTreeWidgetItem* item = item_at(index);
        return item != nullptr && item->checkState(0) == Qt::Checked;
    }
    void check_row(int index, bool checked) override {
        const Quiet quiet(quiet_);
        if (QTreeWidgetItem* item = item_at(index); item != nullptr && has_marks()) {
            item->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
        }
    }
    std::vector<int> selection() const override {
        std::vector<int> rows;
        for (const QTreeWidgetItem* item : tree_->selectedItems()) {
            rows.push_back(row_of(item));
        }
        std::sort(rows.begin(), rows.end());
        return rows;
    }
    void select(const std::vector<int>& rows) override;

protected:
    bool has_rows() const override { return true; }
    bool act(std::string_view action, std::string_view argument) override;

private:
    static int row_of(const QTreeWidgetItem* item) {
        return item != nullptr ? item->data(0, row_number).toInt() : -1;
    }
    QTreeWidgetItem* item_at(int index) const {
        return index >= 0 && index < row_count() ? items_[static_cast<std::size_t>(index)]
                                                 : nullptr;
    }
    bool has_marks() const {
        return spec_.kind == ControlKind::check_list ||
               (spec_.kind == ControlKind::tree && spec_.check_marks);
    }
    void listen();
    std::unique_ptr<QTreeWidgetItem> make_item(int row, const QStringList& texts, bool checked);
    void set_columns(int count);
    void clear();
    void raise_row(ControlEventKind kind, const QTreeWidgetItem* item, int column) {
        raise({kind, row_of(item), column});
    }

    QTreeWidget* tree_;
    std::vector<QTreeWidgetItem*> items_; ///< by row; null for the header's
};

void ListControl::listen() {
    connect(tree_, &QTreeWidget::itemSelectionChanged, this, [this] {
        const QList<QTreeWidgetItem*> selected = tree_->selectedItems();
        QTreeWidgetItem* current = tree_->currentItem();
        const bool is_current = current != nullptr && current->isSelected();
        raise_row(ControlEventKind::changed,
                  is_current || selected.isEmpty() ? (is_current ? current : nullptr)
                                                   : selected.front(),
                  -1);
    });
    connect(tree_, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* item, int column) {
                raise_row(ControlEventKind::double_clicked, item, column);
            });
    connect(tree_, &QTreeWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        ControlEvent event{ControlEventKind::right_clicked,
                           row_of(tree_->itemAt(at)),
                           tree_->columnAt(at.x()),
                           0,
                           {at.x(), at.y()}};
        raise(event);
    });
    connect(tree_, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int) {
        raise_row(ControlEventKind::checked_row, item, -1);
    });
    connect(tree_->header(), &QHeaderView::sectionClicked, this, [this](int column) {
        raise({ControlEventKind::header_clicked, -1, column});
    });
}

std::unique_ptr<QTreeWidgetItem> ListControl::make_item(int row, const QStringList& texts,
                                                        bool checked) {
    auto item = std::make_unique<QTreeWidgetItem>(texts);
    item->setData(0, row_number, row);
    if (has_marks()) {
        item->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
    }
    items_[static_cast<std::size_t>(row)] = item.get();
    return item;
}

/// The last column takes the room that is left; the others are as wide as they need.
void ListControl::set_columns(int count) {
    tree_->setColumnCount(count);
    QHeaderView* header = tree_->header();
    header->setStretchLastSection(true);
    if (count == 1) { // a long row is reached by scrolling
        const QAbstractItemView* view = tree_;
        header->setMinimumSectionSize(std::max(view->sizeHintForColumn(0), 1));
        return;
    }
    header->setMinimumSectionSize(-1);
    for (int column = 0; column < count; ++column) {
        header->setSectionResizeMode(column, QHeaderView::Interactive);
        tree_->resizeColumnToContents(column);
    }
}

void ListControl::clear() {
    tree_->clear();
    items_.clear();
}

void ListControl::set_rows(std::vector<ListRow> rows) {
    const Quiet quiet(quiet_);
    clear();
    items_.resize(rows.size());
    std::vector<QStringList> texts;
    qsizetype columns = 1;
    for (const ListRow& row : rows) {
        QStringList cells{qt_text(row.text)};
        for (const std::string& cell : row.columns) {
            cells << qt_text(cell);
        }
        columns = std::max(columns, cells.size());
        texts.push_back(std::move(cells));
    }
    std::vector<std::size_t> order(rows.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    if (spec_.show_header && !order.empty()) {
        order.erase(order.begin());
        tree_->setHeaderLabels(texts.front());
    }
    if (spec_.sorted) {
        std::stable_sort(order.begin(), order.end(), [&texts](std::size_t a, std::size_t b) {
            return texts[a].front().compare(texts[b].front(), Qt::CaseInsensitive) < 0;
        });
    }
    QList<QTreeWidgetItem*> items;
    for (const std::size_t row : order) {
        items << make_item(static_cast<int>(row), texts[row], rows[row].checked).release();
    }
    tree_->addTopLevelItems(items); // takes them over
    set_columns(static_cast<int>(columns));
}

void ListControl::set_tree(std::vector<TreeRow> rows) {
    const Quiet quiet(quiet_);
    clear();
    items_.resize(rows.size());
    QList<QTreeWidgetItem*> roots;
    std::vector<QTreeWidgetItem*> path; // the last item of each depth
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const TreeRow& row = rows[i];
        QTreeWidgetItem* item =
            make_item(static_cast<int>(i), {qt_text(row.text)}, row.checked).release();
        const auto depth = std::min(static_cast<std::size_t>(std::max(0, row.depth)), path.size());
        path.resize(depth);
        if (path.empty()) {
            roots << item;
        } else {
            path.back()->addChild(item);
        }
        path.push_back(item);
    }
    tree_->addTopLevelItems(roots);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (items_[i]->childCount() > 0) {
            items_[i]->setExpanded(rows[i].expanded);
        }
    }
    set_columns(1);
}

void ListControl::select(const std::vector<int>& rows) {
    const Quiet quiet(quiet_);
    tree_->clearSelection();
    bool is_first = true;
    for (const int row : rows) {
        QTreeWidgetItem* item = item_at(row);
        if (item == nullptr || (!is_first && !spec_.multiple_selection)) {
            continue;
        }
        if (std::exchange(is_first, false)) {
            tree_->setCurrentItem(item, 0,
                                  QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
            tree_->scrollToItem(item);
        } else {
            item->setSelected(true);
        }
    }
    if (is_first) {
        tree_->setCurrentItem(nullptr);
    }
}

bool ListControl::act(std::string_view action, std::string_view argument) {
    const std::vector<int> numbers = script_numbers(argument);
    const int row = numbers.empty() ? -1 : numbers.front();
    if (action == "select" || (action == "click" && row >= 0)) {
        if (item_at(row) == nullptr && !spec_.multiple_selection) {
            return false;
        }
        select(numbers);
        raise({ControlEventKind::changed, item_at(row) != nullptr ? row : -1});
        return true;
    }
    if (action == "double_click" || action == "right_click") {
        if (item_at(row) != nullptr) {
            select({row});
        }
        raise({action == "double_click" ? ControlEventKind::double_clicked
                                        : ControlEventKind::right_clicked,
               row});
        return true;
    }
    if (action == "header" && spec_.kind == ControlKind::list_box) {
        raise({ControlEventKind::header_clicked, -1, row});
        return true;
    }
    if (action == "check_row" && has_marks() && numbers.size() >= 2 && item_at(row) != nullptr) {
        check_row(row, numbers[1] != 0);
        raise({ControlEventKind::checked_row, row});
        return true;
    }
    return false;
}

} // namespace

std::unique_ptr<QtControl> make_list(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<ListControl>(window, spec);
}

} // namespace platform
