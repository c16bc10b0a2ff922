// Settings and messages.
#include "KestraBatch/window/icons.h"
#include "KestraBatch/window/panels.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace KestraBatch {

SettingsPanel::SettingsPanel(QWidget* parent)
  : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(8, 8, 8, 8);
    search_ = new QLineEdit(this);
    search_->setPlaceholderText("Search name, title or value");
    search_->setClearButtonEnabled(true);
    search_->setAccessibleName("Search settings");
    search_->setToolTip("Shows the settings that hold all of these words");
    column->addWidget(search_);
    list_ = new QTreeWidget(this);
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setAlternatingRowColors(true);
    list_->setSortingEnabled(true);
    list_->sortByColumn(0, Qt::AscendingOrder);
    list_->setHeaderLabels({"Setting", "Value", "Name"});
    list_->header()->setSectionResizeMode(0, QHeaderView::Interactive);
    list_->header()->resizeSection(0, 130);
    list_->header()->resizeSection(1, 64);
    list_->header()->resizeSection(2, 60); // and all that is left
    list_->setAccessibleName("Settings of this render");
    column->addWidget(list_, 1);
    count_ = new QLabel(this);
    count_->setWordWrap(true);
    column->addWidget(count_);
    connect(search_, &QLineEdit::textChanged, this, [this] { filter(); });
    filter();
}

void SettingsPanel::set_settings(const std::vector<SettingLine>& settings) {
    list_->setSortingEnabled(false);
    list_->clear();
    for (const SettingLine& line : settings) {
        const QString title = QString::fromStdString(line.title);
        const QString value = QString::fromStdString(line.value);
        const QString name = QString::fromStdString(line.name);
        auto* item = new QTreeWidgetItem(list_, {title, value, name});
        for (int column = 0; column < 3; ++column) {
            item->setToolTip(column, title + "\n" + name + " = " + value);
        }
    }
    list_->setSortingEnabled(true);
    filter();
}

void SettingsPanel::search(const QString& words) { search_->setText(words); }

int SettingsPanel::shown() const {
    int count = 0;
    for (int i = 0; i < list_->topLevelItemCount(); ++i) {
        count += list_->topLevelItem(i)->isHidden() ? 0 : 1;
    }
    return count;
}

void SettingsPanel::filter() {
    const QStringList words = search_->text().split(' ', Qt::SkipEmptyParts);
    for (int i = 0; i < list_->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = list_->topLevelItem(i);
        const QString all = item->text(0) + '\n' + item->text(1) + '\n' + item->text(2);
        bool fits = true;
        for (const QString& word : words) {
            fits = fits && all.contains(word, Qt::CaseInsensitive);
        }
        item->setHidden(!fits);
    }
    const int all = list_->topLevelItemCount();
    count_->setText(all == 0 ? QString("No setting differs from its factory value.")
                    : words.empty()
                        ? QString("%1 settings differ from their factory values.").arg(all)
                        : QString("%1 of %2 settings").arg(shown()).arg(all));
}

MessagesPanel::MessagesPanel(QWidget* parent)
  : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(8, 8, 8, 8);
    list_ = new QListWidget(this);
    list_->setWordWrap(true);
    list_->setSpacing(3);
    list_->setTextElideMode(Qt::ElideNone);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setResizeMode(QListView::Adjust);
    list_->setAccessibleName("Messages");
    column->addWidget(list_);
}

void MessagesPanel::set_warnings(const std::vector<Warning>& warnings) {
    while (known_ < warnings.size()) {
        const Warning& warning = warnings[known_++]; // counted ahead: add tells the number
        add(QString::fromStdString(warning.text), true);
    }
}

void MessagesPanel::add(const QString& text, bool trouble) {
    auto* item = new QListWidgetItem(text, list_);
    if (trouble) {
        item->setIcon(make_icon(IconShape::warning));
    }
    item->setToolTip(text);
    list_->scrollToBottom();
    if (on_change) {
        on_change();
    }
}

void MessagesPanel::clear() {
    list_->clear();
    known_ = 0;
    if (on_change) {
        on_change();
    }
}

} // namespace KestraBatch
