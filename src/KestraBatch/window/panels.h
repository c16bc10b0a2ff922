// The pages at the window's right: tone, light, settings, messages.
#pragma once

#include "KestraBatch/window/window_model.h"

#include <QString>
#include <QWidget>

#include <array>
#include <functional>
#include <memory>
#include <vector>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTreeWidget;
class QVBoxLayout;

namespace KestraBatch {

/// A name, a slider, a number field and a button that resets: one adjustable value.
class ValueRow : public QWidget {
public:
    struct Range {
        double lowest = 0, highest = 100;
        int decimals = 0;
        QString suffix;
    };
    ValueRow(const QString& name, const QString& tip, const Range& range, bool checkable,
             QWidget* parent);
    ~ValueRow() override;

    /// Shows values without calling `on_change`.
    void show_value(double value, bool on, bool changed);
    double value() const;
    bool is_on() const;

    std::function<void(double value, bool on)> on_change;
    std::function<void()> on_reset;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override; ///< a double click resets

private:
    struct Parts;
    void report();
    void make_parts(const QString& name, const QString& tip, bool checkable);
    void connect_parts();

    Range range_;
    std::unique_ptr<Parts> parts_;
};

/// Scrolls its rows when they do not fit.
class TonePanel : public QWidget {
public:
    TonePanel(WindowModel& model, QWidget* parent);
    void refresh();
    ValueRow& row(int row) { return *rows_.at(static_cast<std::size_t>(row)); }

    std::function<void()> on_change;

private:
    WindowModel& model_;
    std::array<ValueRow*, tone_rows> rows_{};
    QPushButton* reset_ = nullptr;
};

class LightPanel : public QWidget {
public:
    LightPanel(WindowModel& model, bool brighten, QWidget* parent);
    void refresh(); ///< makes the rows anew when the channels are others
    ValueRow& row(int channel) { return *rows_.at(static_cast<std::size_t>(channel)); }
    bool brighten() const;

    std::function<void()> on_change;

private:
    void make_rows();

    WindowModel& model_;
    QLabel* note_ = nullptr;
    QVBoxLayout* list_ = nullptr;
    QCheckBox* brighten_ = nullptr;
    QPushButton* reset_ = nullptr;
    std::vector<ValueRow*> rows_;
    std::vector<std::string> names_;
};

class SettingsPanel : public QWidget {
public:
    explicit SettingsPanel(QWidget* parent);
    void set_settings(const std::vector<SettingLine>& settings);
    void search(const QString& words);
    int shown() const; ///< settings that the search lets through

private:
    void filter();

    QLineEdit* search_ = nullptr;
    QTreeWidget* list_ = nullptr;
    QLabel* count_ = nullptr;
};

class MessagesPanel : public QWidget {
public:
    explicit MessagesPanel(QWidget* parent);
    /// Warnings of the render; those that are listed already stay.
    void set_warnings(const std::vector<Warning>& warnings);
    void add(const QString& text, bool trouble);
    void clear();
    int warnings() const { return static_cast<int>(known_); }

    std::function<void()> on_change;

private:
    QListWidget* list_ = nullptr;
    std::size_t known_ = 0;
};

} // namespace KestraBatch
