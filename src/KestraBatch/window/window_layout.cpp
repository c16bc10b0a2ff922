// Actions, menus, bars and pages of the window.
#include "KestraBatch/window/icons.h"
#include "KestraBatch/window/render_window.h"

#include <QAction>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

namespace KestraBatch {

namespace {

constexpr int panel_width = 312;

struct ActionRow {
    WindowCommand command;
    IconShape icon;
    const char* text;
    const char* short_text; ///< under the icon
    const char* tip;
    const char* key;
};

constexpr ActionRow action_table[] = {
    {WindowCommand::pause, IconShape::pause, "&Pause", "Pause", "Halts the render; nothing is lost",
     "Space"},
    {WindowCommand::stop, IconShape::stop, "&Stop\tEsc", "Stop",
     "Ends the render and keeps the picture so far (Esc)", ""},
    {WindowCommand::again, IconShape::again, "Render &again", "Again",
     "Reads the drawing's files anew and renders from the start", "F5"},
    {WindowCommand::more_passes, IconShape::again, "&More passes...", "More",
     "Adds passes: the picture gets cleaner", "Ctrl+M"},
    {WindowCommand::save, IconShape::save, "&Save", "Save", "Saves under the automatic names",
     "Ctrl+S"},
    {WindowCommand::save_as, IconShape::save_as, "Save &as...", "Save as",
     "Saves under a name of your choice: png, jpg, exr, hdr or QorImage", "Ctrl+Shift+S"},
    {WindowCommand::copy_picture, IconShape::copy, "&Copy picture", "Copy",
     "Puts the picture as shown on the clipboard", "Ctrl+C"},
    {WindowCommand::copy_name, IconShape::copy_name, "Copy file &name", "Copy name",
     "Puts the name of the saved file on the clipboard", "Ctrl+Shift+C"},
    {WindowCommand::region, IconShape::region, "&Region", "Region",
     "Drag a rectangle: that part is rendered first", "R"},
    {WindowCommand::clear_region, IconShape::clear_region, "C&lear region", "Clear",
     "Renders all parts alike again", "Shift+R"},
    {WindowCommand::fit, IconShape::fit, "&Fit", "Fit", "Shows the whole picture", "F"},
    {WindowCommand::actual_size, IconShape::actual_size, "&100 %", "100 %",
     "One pixel of the picture on one of the screen", "1"},
    {WindowCommand::keep_settings, IconShape::keep, "&Keep settings", "Keep",
     "Hands changed tone and light back to the drawing, for its next render", "Ctrl+K"},
    {WindowCommand::open, IconShape::open, "&Open...", "Open",
     "Opens a QorImage, whose tone and light can still be changed", "Ctrl+O"},
};

QLabel* make_label(const QString& accessible, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setAccessibleName(accessible);
    return label;
}

} // namespace

void RenderWindow::make_actions() {
    for (const ActionRow& row : action_table) {
        auto* action = new QAction(make_icon(row.icon), row.text, this);
        action->setIconText(row.short_text);
        const QString key = row.key;
        action->setShortcut(QKeySequence(key));
        action->setToolTip(key.isEmpty() ? QString(row.tip) : QString("%1 (%2)").arg(row.tip, key));
        action->setStatusTip("");
        connect(action, &QAction::triggered, this,
                [this, command = row.command] { trigger(command); });
        actions_[row.command] = action;
    }
    actions_[WindowCommand::region]->setCheckable(true);
    auto* escape_key = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape_key, &QShortcut::activated, this, [this] { escape(); });
}

void RenderWindow::make_menus() {
    const auto add = [this](QMenu* menu, std::initializer_list<WindowCommand> commands) {
        for (const WindowCommand command : commands) {
            menu->addAction(actions_.at(command));
        }
    };
    QMenu* file = menuBar()->addMenu("&File");
    add(file, {WindowCommand::open, WindowCommand::save, WindowCommand::save_as});
    file->addSeparator();
    add(file, {WindowCommand::copy_picture, WindowCommand::copy_name});
    file->addSeparator();
    QAction* ask = file->addAction("As&k before closing");
    ask->setCheckable(true);
    ask->setChecked(memory_.ask_at_closing);
    connect(ask, &QAction::toggled, this, [this](bool on) { memory_.ask_at_closing = on; });
    connect(file->addAction("&Close"), &QAction::triggered, this, [this] { close(); });
    file->actions().back()->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_W));

    QMenu* render = menuBar()->addMenu("&Render");
    add(render, {WindowCommand::pause, WindowCommand::stop, WindowCommand::again,
                 WindowCommand::more_passes});
    render->addSeparator();
    add(render, {WindowCommand::region, WindowCommand::clear_region});
    render->addSeparator();
    add(render, {WindowCommand::keep_settings});

    QMenu* view = menuBar()->addMenu("&View");
    add(view, {WindowCommand::fit, WindowCommand::actual_size});
    connect(view->addAction("Zoom &in"), &QAction::triggered, this,
            [this] { view_->zoom_step(1); });
    view->actions().back()->setShortcuts({QKeySequence("+"), QKeySequence("Ctrl++")});
    connect(view->addAction("Zoom &out"), &QAction::triggered, this,
            [this] { view_->zoom_step(-1); });
    view->actions().back()->setShortcuts({QKeySequence("-"), QKeySequence("Ctrl+-")});
    view->addSeparator();
    QAction* grain = view->addAction("Finished picture without &grain");
    grain->setCheckable(true);
    grain->setChecked(without_grain_);
    grain->setToolTip("As png and jpg are saved; off: as it was rendered");
    connect(grain, &QAction::toggled, this, [this](bool on) { without_grain_ = on; });
    QAction* pages = view->addAction("&Pages at the right");
    pages->setCheckable(true);
    pages->setChecked(true);
    pages->setShortcut(QKeySequence("F9"));
    connect(pages, &QAction::toggled, this, [this](bool on) { tabs_->setVisible(on); });

    QMenu* help = menuBar()->addMenu("&Help");
    connect(help->addAction("&Keys and mouse"), &QAction::triggered, this, [this] { show_help(); });
    help->actions().back()->setShortcut(QKeySequence("F1"));
    connect(help->addAction("&About"), &QAction::triggered, this, [this] { show_about(); });
}

void RenderWindow::make_toolbar() {
    QToolBar* bar = addToolBar("Tools");
    bar->setObjectName("tools");
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    bar->setIconSize(QSize(22, 22));
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    const std::initializer_list<std::initializer_list<WindowCommand>> groups = {
        {WindowCommand::pause, WindowCommand::stop, WindowCommand::again},
        {WindowCommand::save, WindowCommand::save_as, WindowCommand::copy_picture,
         WindowCommand::copy_name},
        {WindowCommand::region, WindowCommand::clear_region},
        {WindowCommand::fit, WindowCommand::actual_size},
        {WindowCommand::keep_settings}};
    for (const auto& group : groups) {
        if (!bar->actions().empty()) {
            bar->addSeparator();
        }
        for (const WindowCommand command : group) {
            bar->addAction(actions_.at(command));
        }
    }
    // The buttons stay where they are when Pause becomes Resume.
    QWidget* pause = bar->widgetForAction(actions_.at(WindowCommand::pause));
    pause->setMinimumWidth(pause->fontMetrics().horizontalAdvance("Resume") + 12);
}

QWidget* RenderWindow::make_pages() {
    tabs_ = new QTabWidget(this);
    tabs_->setDocumentMode(true);
    tabs_->setMinimumWidth(260);
    tabs_->setUsesScrollButtons(true);
    tone_panel_ = new TonePanel(model_, tabs_);
    light_panel_ = new LightPanel(model_, memory_.brighten, tabs_);
    settings_panel_ = new SettingsPanel(tabs_);
    messages_panel_ = new MessagesPanel(tabs_);
    tone_panel_->on_change = [this] { retone(); };
    light_panel_->on_change = [this] { retone(); };
    tabs_->addTab(tone_panel_, "Tone");
    tabs_->addTab(light_panel_, "Light");
    tabs_->addTab(settings_panel_, "Settings");
    const int messages = tabs_->addTab(messages_panel_, "Messages");
    messages_panel_->on_change = [this, messages] {
        const int count = messages_panel_->warnings();
        tabs_->setTabText(messages,
                          count > 0 ? QString("Messages (%1)").arg(count) : QString("Messages"));
    };
    tabs_->setTabToolTip(0, "How the finished light is shown");
    tabs_->setTabToolTip(1, "How strong each kind of light is, without rendering again");
    tabs_->setTabToolTip(2, "What this picture was rendered with");
    tabs_->setTabToolTip(messages, "What was noticed on the way");
    return tabs_;
}

void RenderWindow::make_bars() {
    view_ = new PictureView(this);
    view_->on_pixel = [this](int column, int row) {
        column_ = column;
        row_ = row;
        statusBar()->clearMessage(); // it would lie over the values
        show_pixel();
    };
    view_->on_region = [this](PictureRegion region) { set_region(region); };
    view_->on_zoom = [this] {
        zoom_->setText(QString("%1 %").arg(view_->zoom() * 100, 0, 'f', 0));
    };

    auto* strip = new QWidget(this);
    auto* row = new QHBoxLayout(strip);
    row->setContentsMargins(10, 6, 10, 6);
    row->setSpacing(12);
    state_ = make_label("State", strip);
    state_->setMinimumWidth(state_->fontMetrics().horizontalAdvance("Building the scene"));
    time_ = make_label("Elapsed and remaining time", strip);
    progress_ = new QProgressBar(strip);
    progress_->setAccessibleName("Progress");
    progress_->setTextVisible(true);
    progress_->setAlignment(Qt::AlignCenter);
    progress_->setMinimumWidth(120);
    row->addWidget(state_);
    row->addWidget(progress_, 1);
    row->addWidget(time_);

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    auto* left = new QWidget(splitter);
    auto* column = new QVBoxLayout(left);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(view_, 1);
    column->addWidget(strip);
    splitter->addWidget(left);
    splitter->addWidget(make_pages());
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 0);
    splitter->setCollapsible(0, false);
    splitter->setSizes({1000, panel_width});
    setCentralWidget(splitter);

    pixel_ = make_label("Pixel under the cursor", this);
    pixel_->setMinimumWidth(20);
    size_ = make_label("Size of the picture", this);
    zoom_ = make_label("Zoom", this);
    zoom_->setMinimumWidth(zoom_->fontMetrics().horizontalAdvance("6400 %"));
    zoom_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    statusBar()->addWidget(pixel_, 1);
    statusBar()->addPermanentWidget(size_);
    statusBar()->addPermanentWidget(zoom_);
}

void RenderWindow::show_help() {
    QString rows;
    const auto add = [&rows](const QString& key, const QString& does) {
        rows += QString("<tr><td style='padding-right:16px'><b>%1</b></td><td>%2</td></tr>")
                    .arg(key, does);
    };
    for (const ActionRow& row : action_table) {
        add(row.command == WindowCommand::stop ? "Esc" : row.key,
            QString(row.tip).remove(" (Esc)"));
    }
    add("+ and -", "Zooms in and out; the arrow keys move the picture");
    add("F9", "Hides and shows the pages at the right");
    QMessageBox box(
        QMessageBox::NoIcon, "Keys and mouse",
        "<p>The <b>wheel</b> zooms about the cursor, <b>dragging</b> moves the picture, "
        "a <b>double click</b> goes between the whole picture and 100 %.</p><table>" +
            rows +
            "</table><p>A double click on a slider brings back its rendered value. "
            "A QorImage can be dropped on the window.</p>",
        QMessageBox::Close, this);
    box.setTextFormat(Qt::RichText);
    box.exec();
}

void RenderWindow::show_about() {
    QMessageBox box(QMessageBox::NoIcon, "About " + name_, version_, QMessageBox::Close, this);
    box.setIconPixmap(windowIcon().pixmap(64));
    box.exec();
}

} // namespace KestraBatch
